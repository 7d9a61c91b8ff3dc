#!/usr/bin/env bash
# The scaling figures of `qxrun sweep` on this machine: sweep_bench (1 and 2 threads in one
# process, start-up of a point, memory per worker), then whole `qxrun sweep` runs of 3363 points
# with 1 thread, 2 threads and 2 MPI ranks of 1 thread each, 3 times each, reporting the median
# wall time and the processor time (user + system, the ranks' included). An MPI job first pays
# for starting its ranks (Open MPI's start-up, measured on a sweep of two points); the points per
# second of the MPI sweep are given with and without it. Where Open MPI has its message-based
# one-sided component, the 2 ranks run once more as across machines: over TCP, with rank 0's
# counter served by messages, which move only while rank 0 is inside MPI.
# Usage: scripts/sweep-scaling.sh [build folder, default build]
set -euo pipefail
build=${1:-build}
root=$(cd "$(dirname "$0")/.." && pwd)
qxrun=$build/qxrun/qxrun
bars=$root/examples/data/orcl-1995-2014.txt
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export QXRUN_HOME=$work/home

echo "load average: $(cut -d' ' -f1-3 /proc/loadavg) on $(nproc) processors"
# Linux schedules each session as one group: while other sessions keep the processors busy, this
# one gets its group's share however many workers it runs, and the ratios measure that share.
grouped=$(cat /proc/sys/kernel/sched_autogroup_enabled 2>/dev/null || echo 0)
if [[ $grouped == 1 ]] && (($(cut -d. -f1 /proc/loadavg) >= $(nproc))); then
  echo "warning: the machine is busy; the ratios below are bounded by this session's share"
fi
"$build/bench/sweep_bench" 5

sweep=(sweep --data "$bars" --formula ma_cross --param fast=2:60:1 --param slow=20:300:5 --quiet)
points=3363
measure() {  # name, command...: median wall and processor seconds of 3 runs
  local name=$1
  shift
  local walls=() cpus=()
  for _ in 1 2 3; do
    local start end
    start=$(date +%s.%N)
    local before after
    before=$(awk '{print $14+$15+$16+$17}' /proc/$$/stat)
    "$@" >/dev/null
    end=$(date +%s.%N)
    after=$(awk '{print $14+$15+$16+$17}' /proc/$$/stat)
    walls+=("$(echo "$end - $start" | bc)")
    cpus+=("$(echo "($after - $before) / $(getconf CLK_TCK)" | bc -l)")
  done
  local wall cpu
  wall=$(printf '%s\n' "${walls[@]}" | sort -g | sed -n 2p)
  cpu=$(printf '%s\n' "${cpus[@]}" | sort -g | sed -n 2p)
  printf '%-22s %6.1f points/s  (median %.2f s wall, %.2f s processor)\n' "$name" \
    "$(echo "$points / $wall" | bc -l)" "$wall" "$cpu"
  last_wall=$wall
}
measure "1 thread" "$qxrun" "${sweep[@]}" --jobs 1
measure "2 threads" "$qxrun" "${sweep[@]}" --jobs 2
if command -v mpirun >/dev/null; then
  mpi=(mpirun -np 2 --allow-run-as-root --oversubscribe)
  measure "2 MPI ranks" "${mpi[@]}" "$qxrun" "${sweep[@]}" --jobs 1
  ranks_wall=$last_wall
  points=2
  measure "MPI start-up (2 pts)" "${mpi[@]}" "$qxrun" sweep --data "$bars" --formula ma_cross \
    --param fast=5:6:1 --param slow=20:20:10 --quiet --jobs 1
  printf '2 MPI ranks, start-up excluded: %.1f points/s\n' \
    "$(echo "3363 / ($ranks_wall - $last_wall)" | bc -l)"
  if ompi_info 2>/dev/null | grep 'MCA osc: pt2pt' >/dev/null; then
    points=3363
    measure "2 MPI ranks over TCP" "${mpi[@]}" --mca pml ob1 --mca btl self,tcp --mca osc pt2pt \
      "$qxrun" "${sweep[@]}" --jobs 1
  fi
fi
