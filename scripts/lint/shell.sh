#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# Every shell script under shellcheck.
# usage: scripts/lint/shell.sh
set -eu
cd "$(dirname "$0")/../.."

scripts=$(git ls-files -co --exclude-standard | while read -r file; do
    if [ -f "$file" ] && head -n 1 "$file" | grep -qE '^#!.*\b(ba)?sh\b'; then
        echo "$file"
    fi
done)
if [ "$(echo "$scripts" | wc -l)" -lt 10 ]; then
    echo "Too few shell scripts found: $scripts"
    exit 1
fi
# shellcheck disable=SC2086 # one word per script
shellcheck --external-sources $scripts
