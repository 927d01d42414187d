#!/bin/sh
# Runs fuzz targets one after the other, two million executions each and ten million of those that
# are functions of a text, and prints a table row for each:
#   make fuzz && tools/fuzz_all.sh [target[=executions]]...   (all of them without an argument)
# What the runs add to the kept inputs goes to $FUZZ_OUT (build/fuzz/new), one folder a target; so do
# the logs and the inputs of failures.
set -eu
cd "$(dirname "$0")/.."
programs=${FUZZ_PROGRAMS:-build/fuzz/fuzz}
out=${FUZZ_OUT:-build/fuzz/new}
[ -w /dev/shm ] && export TMPDIR="${TMPDIR:-/dev/shm}"  # files of targets on a disk halve the rate
[ $# -gt 0 ] || set -- $(sed -n 's/^generalutilities_fuzz(\([a-z][^ ]*\) .*/\1/p' fuzz/CMakeLists.txt)

echo '| Target | Executions | Seconds | Executions a second | Failures |'
echo '| --- | --- | --- | --- | --- |'
failures=0
for choice; do
  target=${choice%%=*}
  runs=2000000 length=512
  case $target in
    words | segment-text) runs=10000000 length=128 ;;
  esac
  [ "$choice" = "$target" ] || runs=${choice#*=}
  mkdir -p "$out/$target"
  start=$(date +%s)
  found=no
  nice -n 19 "$programs/fuzz-$target" -runs="$runs" -max_len="$length" -timeout=60 -rss_limit_mb=2048 \
    -print_final_stats=1 -artifact_prefix="$out/$target-" \
    "$out/$target" "fuzz/corpus/$target" >"$out/$target.log" 2>&1 || { found=yes; failures=1; }
  seconds=$(($(date +%s) - start))
  executed=$(sed -n 's/^stat::number_of_executed_units: *//p' "$out/$target.log")
  echo "| $target | ${executed:-0} | $seconds | $((${executed:-0} / (seconds > 0 ? seconds : 1))) | $found |"
done
exit $failures
