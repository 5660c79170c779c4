#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# A day's work in minutes: two million values, 1,000 profile switches, 1,000 projects, elements made and
# deleted, the display going and coming. Objects, timers, open files, threads, files and memory must not
# grow; otherwise the exit status is 1. ./test runs some rounds of it.
# usage: scripts/soak.sh [ROUNDS]    250 rounds are a day
set -eu
cd "$(dirname "$0")/.."

rounds=${1:-250}
case $rounds in
'' | *[!0-9]* | 0)
    sed -n 's/^# \(usage:.*\)/\1/p' "$0" >&2
    exit 2
    ;;
esac

sh scripts/packages.sh run test
. scripts/build.sh
configure release -DXQ_BUILD_TESTS=ON
build release xq_soak
say "Working for $rounds rounds"
exec build/release/tests/soak/xq_soak "$rounds"
