#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# Builds and runs the benchmarks and prints their tables. Arguments are passed on to the program,
# for instance --benchmark_filter=burn.
# usage: scripts/bench.sh [OPTION...]
set -eu
cd "$(dirname "$0")/.."
sh scripts/packages.sh run test
. scripts/build.sh
configure release -DXQ_BUILD_TESTS=OFF -DXQ_BUILD_BENCH=ON
build release xq_bench
exec build/release/bench/xq_bench "$@"
