#!/usr/bin/env bash
# Line and branch coverage of src/ by the unit tests: builds the linux-coverage preset, runs its
# tests from fresh counters and prints gcovr's summary (an HTML report goes to
# build/linux-coverage/coverage/index.html). Tests that count from several threads can leave a
# counter torn (gcov then prints a negative count); gcovr skips such lines.
set -euo pipefail
cd "$(dirname "$0")/.."
cmake --preset linux-coverage >/dev/null
cmake --build --preset linux-coverage
find build/linux-coverage -name '*.gcda' -delete
ctest --preset linux-coverage >/dev/null || echo "coverage: some tests failed; the numbers cover the run as it went"
mkdir -p build/linux-coverage/coverage
gcovr --root . --filter 'src/' --object-directory build/linux-coverage \
  --exclude '.*(CCaseTable|PluralRuleTable|LanguageCodeTable)\.cpp' \
  --exclude-unreachable-branches --exclude-throw-branches --gcov-ignore-parse-errors \
  --html-details build/linux-coverage/coverage/index.html --print-summary 2>&1 |
  grep -E '^(lines|branches|functions):'
