#!/usr/bin/env bash
# Runs every check a reviewer would: format, each public header compiled on its own, clang-tidy,
# the test suites under AddressSanitizer + UndefinedBehaviorSanitizer and under ThreadSanitizer,
# and a short run (30 s) of every fuzz harness. Exits non-zero on the first failure.
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/bootstrap.sh --checks

echo "== format"
mapfile -t sources < <(git ls-files --cached --others --exclude-standard -- '*.h' '*.cpp')
clang-format --dry-run -Werror "${sources[@]}"

echo "== public headers compile on their own"
for header in include/sysfuncs/*.h; do
  echo "#include \"sysfuncs/$(basename "$header")\"" |
    g++ -std=c++20 -Wall -Wextra -Werror -Iinclude -fsyntax-only -x c++ - ||
    { echo "check: $header does not compile on its own" >&2; exit 1; }
done

echo "== tests under AddressSanitizer + UndefinedBehaviorSanitizer"
cmake -S . -B build-asan -DCMAKE_BUILD_TYPE=Debug -DSYSFUNCS_SANITIZE=address,undefined \
  -DSYSFUNCS_BUILD_BENCH=OFF -DSYSFUNCS_BUILD_EXAMPLES=OFF >/dev/null
cmake --build build-asan -j2
ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
  ctest --test-dir build-asan --output-on-failure

echo "== clang-tidy"
# clang reads the sources as UTF-8 texts; the code page of the literals does not matter here.
mapfile -t library < <(git ls-files --cached --others --exclude-standard -- 'src/*.cpp')
# Two files at a time (each argument of run-clang-tidy is a pattern of file paths).
# A file clang-tidy cannot check at all fails the check as a finding would.
tidy_log=build-asan/clang-tidy.log
if ! run-clang-tidy -p build-asan -j 2 -quiet -extra-arg=-fexec-charset=UTF-8 \
  "${library[@]}" >"$tidy_log" 2>&1; then
  grep -E "(warning|error):" "$tidy_log" >&2 || tail -n 20 "$tidy_log" >&2
  echo "check: clang-tidy failed on some file; the whole output is in $tidy_log" >&2
  exit 1
fi
findings=$(grep -E "(warning|error):" "$tidy_log" || true)
if [[ -n "$findings" ]]; then
  echo "$findings" >&2
  echo "check: clang-tidy has findings" >&2
  exit 1
fi

echo "== tests under ThreadSanitizer"
cmake -S . -B build-tsan -DCMAKE_BUILD_TYPE=Debug -DSYSFUNCS_SANITIZE=thread \
  -DSYSFUNCS_BUILD_BENCH=OFF -DSYSFUNCS_BUILD_EXAMPLES=OFF >/dev/null
cmake --build build-tsan -j2
TSAN_OPTIONS=halt_on_error=1 ctest --test-dir build-tsan --output-on-failure

echo "== fuzz harnesses, 30 s each"
./scripts/fuzz.sh 30

echo "check: all clean"
