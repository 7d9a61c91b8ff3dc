#!/usr/bin/env bash
# Runs every check a reviewer would: format, each public header compiled on its own, and the test
# suites under AddressSanitizer + UndefinedBehaviorSanitizer. Exits non-zero on the first failure.
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/bootstrap.sh

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
  -DSYSFUNCS_BUILD_BENCH=OFF >/dev/null
cmake --build build-asan -j2
ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
  ctest --test-dir build-asan --output-on-failure

echo "check: all clean"
