#!/usr/bin/env bash
# Runs every fuzz harness for SECONDS seconds each (default 30), one after the other:
#   scripts/fuzz.sh [SECONDS] [HARNESS...]
# Harnesses: date_time, bar_file, run_file, engine. They are built with clang, libFuzzer,
# AddressSanitizer and UndefinedBehaviorSanitizer in build-fuzz/. Each starts from its seed
# corpus tests/fuzz/corpus/<harness>/ and keeps what it learns in build-fuzz/corpus/<harness>/.
# A finding stops the script with the harness's report; the input that caused it is saved in
# build-fuzz/findings/ (replay it with build-fuzz/tests/fuzz/fuzz_<harness> FILE).
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:-30}
if ! [[ "$seconds" =~ ^[1-9][0-9]*$ ]]; then
  echo "usage: fuzz.sh [SECONDS] [HARNESS...]  (SECONDS a whole number above 0, not '$seconds')" >&2
  exit 2
fi
shift || true
harnesses=("$@")
if [[ ${#harnesses[@]} -eq 0 ]]; then harnesses=(date_time bar_file run_file engine); fi
for harness in "${harnesses[@]}"; do
  if [[ ! -d "tests/fuzz/corpus/$harness" ]]; then
    echo "fuzz: no harness '$harness' (date_time, bar_file, run_file, engine)" >&2
    exit 2
  fi
done

./scripts/bootstrap.sh --checks

build=build-fuzz
CC=clang CXX=clang++ cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DSYSFUNCS_FUZZ=ON \
  -DSYSFUNCS_CHARSET=UTF-8 -DSYSFUNCS_BUILD_TESTS=OFF -DSYSFUNCS_BUILD_BENCH=OFF \
  -DSYSFUNCS_BUILD_EXAMPLES=OFF >/dev/null
targets=()
for harness in "${harnesses[@]}"; do targets+=("fuzz_$harness"); done
cmake --build "$build" -j2 --target "${targets[@]}"

mkdir -p "$build/findings" "$build/logs"
for harness in "${harnesses[@]}"; do
  corpus="$build/corpus/$harness"
  log="$build/logs/$harness.log"
  mkdir -p "$corpus"
  echo "== fuzz $harness for ${seconds}s"
  if ! TZ=Asia/Shanghai "$build/tests/fuzz/fuzz_$harness" -max_total_time="$seconds" -timeout=10 \
      -rss_limit_mb=2048 -print_final_stats=1 -artifact_prefix="$build/findings/$harness-" \
      "$corpus" "tests/fuzz/corpus/$harness" >"$log" 2>&1; then
    grep -v '^#\|^INFO:\|NEW_FUNC' "$log" | tail -n 40 >&2
    echo "fuzz: $harness has a finding; the full report is in $log" >&2
    exit 1
  fi
  # The last status line holds the executions (#N) and their rate.
  grep -E '^#[0-9]+' "$log" | tail -n 1
done
echo "fuzz: no finding"
