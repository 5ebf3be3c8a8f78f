#!/usr/bin/env bash
# Runs each libFuzzer harness for a while on a working copy of its corpus and
# prints one line per harness. Fails at the end when any harness crashed,
# timed out or ran out of memory; the input is in the artifacts folder.
#
#   fuzz/run-fuzzers.sh BUILD_DIR SECONDS NAME...
#
# FUZZ_FLAGS adds libFuzzer options (e.g. "-jobs=2" or "-fork=2 -ignore_crashes=1").
set -uo pipefail

build=${1:?build folder}
seconds=${2:?seconds per harness}
shift 2
source_dir=$(cd "$(dirname "$0")" && pwd)
mkdir -p "$build/corpus" "$build/artifacts" "$build/logs"

count_files() { find "$1" -type f 2>/dev/null | wc -l; }

failed=()
summary=()
for name in "$@"; do
  program="$build/fuzz/fuzz_$name"
  if [ ! -x "$program" ]; then
    summary+=("$(printf '%-9s no program %s' "$name" "$program")")
    failed+=("$name")
    continue
  fi
  corpus="$build/corpus/$name"
  mkdir -p "$corpus"
  # Seed the working copy; what the fuzzer found stays for the next run.
  if [ -d "$source_dir/corpus/$name" ]; then cp -n "$source_dir/corpus/$name"/* "$corpus"/ 2>/dev/null; fi
  before=$(count_files "$corpus")
  dict=()
  [ -f "$source_dir/dict/$name.dict" ] && dict=("-dict=$source_dir/dict/$name.dict")
  log="$build/logs/$name.log"
  artifacts_before=$(ls "$build/artifacts" | grep -c "^$name-" || true)
  echo "fuzz_$name: ${seconds}s, log in $log"
  # shellcheck disable=SC2086
  "$program" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
    -artifact_prefix="$build/artifacts/$name-" "${dict[@]}" ${FUZZ_FLAGS:-} "$corpus" >"$log" 2>&1
  status=$?
  execs=$(awk '/^stat::number_of_executed_units:/ {s += $2} END {print s + 0}' "$log")
  rate=$(awk '/^stat::average_exec_per_sec:/ {s += $2} END {print s + 0}' "$log")
  if [ "$execs" -eq 0 ]; then
    # -fork mode prints no final stats: its last progress line counts all jobs.
    execs=$(grep -oE '^#[0-9]+' "$log" | tail -1 | tr -d '#')
    rate=$(grep -oE 'exec/s [0-9]+' "$log" | tail -1 | cut -d' ' -f2)
  fi
  after=$(count_files "$corpus")
  artifacts_after=$(ls "$build/artifacts" | grep -c "^$name-" || true)
  if [ "$status" -ne 0 ] || [ "$artifacts_after" -gt "$artifacts_before" ]; then
    what=$(grep -m1 -oE 'SUMMARY: [A-Za-z]+[^ ]*: .*' "$log" | cut -c1-120)
    newest=$(ls -t "$build/artifacts" | grep "^$name-" | head -1)
    result="CRASH (${what:-exit $status}) input $build/artifacts/$newest"
    failed+=("$name")
  else
    result="no crash"
  fi
  summary+=("$(printf '%-9s %10s execs %7s/s  corpus %4s -> %4s  %s' "$name" "$execs" "$rate" "$before" "$after" "$result")")
done

echo
echo "Fuzzing summary (${seconds}s each):"
printf '  %s\n' "${summary[@]}"
if [ ${#failed[@]} -gt 0 ]; then
  echo "Failed: ${failed[*]}"
  exit 1
fi
