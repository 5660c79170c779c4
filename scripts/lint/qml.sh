#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# The screens under qmllint.
# usage: scripts/lint/qml.sh
set -eu
cd "$(dirname "$0")/../.."

screens=host/screens/qml
count=$(find "$screens" -name '*.qml' | wc -l)
if [ "$count" -lt 20 ]; then
    echo "Only $count screens found"
    exit 1
fi
report=$(find "$screens" -name '*.qml' -print0 \
    | xargs -0 qmllint -U -I /usr/lib/*/qt5/qml -I "$screens" 2>&1) || true
if [ -n "$report" ]; then
    echo "$report"
    exit 1
fi
