#!/usr/bin/env bash
# Installs what is missing, then builds and runs every test: Linux release (assertions on),
# Linux debug under AddressSanitizer + UndefinedBehaviorSanitizer, the tests that start threads
# under ThreadSanitizer, the Windows x64 cross build under Wine (after the Linux release and the
# Windows builds, the installed package with two applications built against it), then the fuzz
# targets for a bounded time each (tools/run_fuzz.sh). Prints CTest's summary per build and one
# line per fuzz target; fails when any test or target fails.
set -euo pipefail
cd "$(dirname "$0")/.."

tools/install_prerequisites.sh

presets=("$@")
[ ${#presets[@]} -gt 0 ] || presets=(linux-release linux-asan linux-tsan mingw linux-fuzz)

status=0
summary=()
echo "=== format"
if line=$(tools/check_format.sh); then summary+=("$line"); else echo "$line"; summary+=("format: FAILED"); status=1; fi
for preset in "${presets[@]}"; do
  if [ "$preset" = linux-fuzz ]; then
    echo "=== $preset: build and fuzz each target"
    log=$(mktemp)
    if ! tools/run_fuzz.sh "${QOR_FUZZ_SECONDS:-30}" | tee "$log"; then status=1; fi
    mapfile -t lines < <(grep '^fuzz ' "$log")
    summary+=("${lines[@]}")
    rm -f "$log"
    continue
  fi
  echo "=== $preset: configure and build"
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset"
  echo "=== $preset: test"
  log=$(mktemp)
  if ctest --preset "$preset" 2>&1 | tee "$log" | grep -E -v '^ +Start |Test +#' ; then :; fi
  if ! grep -q '100% tests passed' "$log"; then status=1; fi
  line=$(grep -E 'tests passed|tests failed' "$log" | tail -n 1 || true)
  if [ "$preset" = mingw ]; then
    # Under Wine a CTest test is a whole test program: add GoogleTest's own counts, the last
    # summary of each program's output (child processes print summaries of their own before).
    counts=$(awk '/^Output:/ {last = 0} /^\[  PASSED  \] [0-9]+ test/ {last = $4}
                  /^<end of output>/ {s += last; last = 0} END {print s + 0}' \
             build/mingw/Testing/Temporary/LastTest.log)
    line="$line (GoogleTest cases under Wine: $counts passed)"
  fi
  summary+=("$preset: $line")
  rm -f "$log"
  if [ "$preset" = linux-release ] || [ "$preset" = mingw ]; then
    # The installed package, used from outside the tree as an application would.
    echo "=== $preset: install and consumers"
    if line=$(tools/check_install.sh "$preset"); then :; else status=1; fi
    echo "$line"
    summary+=("$preset: ${line:-install: FAILED}")
  fi
done

echo "=== summary"
printf '%s\n' "${summary[@]}"
exit $status
