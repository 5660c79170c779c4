#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# Looks at the sources without running them. Wants the packages of the sections [run] and [test].
# usage: scripts/lint.sh [STEP...]    form, layers, shell, docs and reference; or those that are named:
#                                     tidy and qml as well, which have remarks still
set -eu
cd "$(dirname "$0")/.."
. scripts/build.sh

all="form layers shell docs reference"
known="$all tidy qml"
for step in "$@"; do
    case " $known " in
    *" $step "*) ;;
    *)
        sed -n '/^# usage:/,/^set/s/^# //p' "$0" >&2
        exit 2
        ;;
    esac
done
# shellcheck disable=SC2086 # one word per step
[ $# -gt 0 ] || set -- $all

status=0
for step in "$@"; do
    say "Lint: $step"
    start=$(date +%s)
    if sh "scripts/lint/$step.sh"; then
        result=passed
    else
        result=FAILED
        status=1
    fi
    say "Lint: $step $result after $(($(date +%s) - start)) s"
done
exit $status
