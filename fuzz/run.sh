#!/bin/sh
# Runs each fuzz program for a while: run.sh BUILD [TARGET...]. FUZZ_SECONDS is the time for each, 60 by default.
# Starts from fuzz/corpus/TARGET and from what earlier runs left in BUILD/corpus/TARGET. Ends with 1 on any finding.
set -eu
build=$1
shift
here=$(dirname "$0")
[ $# -gt 0 ] || set -- record envelopes roundtrip gate eventstream hostconfig
seconds=${FUZZ_SECONDS:-60}
failed=0
mkdir -p "$build/findings"
for target; do
    mkdir -p "$build/corpus/$target"
    log=$build/findings/$target.log
    if "$build/bin/fuzz_$target" -max_total_time="$seconds" -max_len=16384 -timeout=10 -rss_limit_mb=1024 \
        -dict="$here/words.dict" -artifact_prefix="$build/findings/$target-" -print_final_stats=1 \
        "$build/corpus/$target" "$here/corpus/$target" >"$log" 2>&1; then
        runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
        edges=$(sed -n 's/.* cov: \([0-9]*\) .*/\1/p' "$log" | tail -n 1)
        printf '%-12s no finding in %s s: %s inputs, %s edges\n' "$target" "$seconds" "$runs" "$edges"
    else
        failed=1
        printf '%-12s FOUND a fault, see %s\n' "$target" "$log"
        grep -E 'what\(\)|SUMMARY|Test unit written' "$log" || tail -n 5 "$log"
    fi
done
exit $failed
