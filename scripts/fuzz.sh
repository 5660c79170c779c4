#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# Builds the fuzz targets and runs each for some seconds, from its seeds and from what earlier runs
# found. Exit status 1 if one finds something; the input is then in build/fuzz/findings.
# usage: scripts/fuzz.sh [SECONDS]    10 unless told
set -eu
cd "$(dirname "$0")/.."
seconds=${1:-10}

cmake --preset fuzz >/dev/null
cmake --build --preset fuzz --target fuzzers

mkdir -p build/fuzz/findings
status=0
while read -r target corpus; do
    found=build/fuzz/found/$target
    mkdir -p "$found"
    echo "$target: $seconds s"
    # Qt keeps its own global objects: leaks are looked for by the tests.
    if ! QT_QPA_PLATFORM=offscreen LC_ALL=C.UTF-8 \
        ASAN_OPTIONS=detect_leaks=0 UBSAN_OPTIONS=print_stacktrace=1 \
        "build/fuzz/fuzz/$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
        -artifact_prefix="build/fuzz/findings/$target-" -print_final_stats=1 \
        "$found" "fuzz/corpus/$corpus" >"build/fuzz/$target.log" 2>&1 </dev/null; then
        tail -n 60 "build/fuzz/$target.log"
        status=1
    fi
    grep 'number_of_executed_units' "build/fuzz/$target.log" || status=1
done <build/fuzz/fuzz/fuzzers.txt
exit $status
