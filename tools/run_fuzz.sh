#!/usr/bin/env bash
# Builds the linux-fuzz preset and runs every fuzz target from its seeds (tests/fuzz/corpus/<name>)
# for a bounded time: tools/run_fuzz.sh [seconds per target, default 30] [target ...].
# Prints one line per target, "fuzz <name>: <N> runs, <F> failures"; an input that finds a fault
# is kept under build/linux-fuzz/findings/<name>/ and the script fails.
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:-30}
shift || true
targets=("$@")

cmake --preset linux-fuzz >/dev/null
cmake --build --preset linux-fuzz >/dev/null

build=build/linux-fuzz
if [ ${#targets[@]} -eq 0 ]; then
  # Every target this build has that has seeds (a stale program of an older build has none).
  for program in "$build"/tests/fuzz/fuzz_*; do
    name=${program##*/fuzz_}
    [ ! -d "tests/fuzz/corpus/$name" ] || targets+=("$name")
  done
fi
status=0
for name in "${targets[@]}"; do
  work=$(mktemp -d)
  findings=$build/findings/$name
  mkdir -p "$findings"
  log=$build/findings/$name.log
  # New inputs go to a scratch folder; the committed seeds stay as they are.
  if "$build/tests/fuzz/fuzz_$name" -max_total_time="$seconds" -timeout=25 -rss_limit_mb=2048 \
       -print_final_stats=1 -artifact_prefix="$findings/" "$work" "tests/fuzz/corpus/$name" \
       >"$log" 2>&1; then
    failures=0
  else
    failures=1
    status=1
  fi
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -n 1)
  echo "fuzz $name: ${runs:-0} runs, $failures failures"
  if [ $failures -ne 0 ]; then
    grep -E '^(==[0-9]+==ERROR|SUMMARY|artifact_prefix|Test unit written)' "$log" | head -n 5 || true
  fi
  rm -rf "$work"
done
exit $status
