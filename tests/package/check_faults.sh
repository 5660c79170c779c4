#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# The fault matrix does not pass where it cannot try a single fault.
# usage: check_faults.sh SOURCE_DIR
set -eu
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/bin"
for tool in sh sed dirname true; do
    ln -s "$(command -v "$tool")" "$work/bin/$tool"
done
fail()
{
    echo "faults.sh: $1"
    cat "$work/out"
    exit 1
}

# Without strace, and with one that is not let.
refuses() # SOURCE_DIR WHERE
{
    status=0
    PATH="$work/bin" sh "$1/scripts/faults.sh" --program "$work/bin/true" >"$work/out" 2>&1 \
        || status=$?
    [ "$status" -eq 1 ] || fail "exits with $status $2"
    [ "$(wc -l <"$work/out")" -eq 1 ] || fail "does not say it in one line $2"
    grep -q 'no fault was tried' "$work/out" || fail "does not say why $2"
}
refuses "$1" "where there is no strace"
printf '#!/bin/sh\necho "strace: Operation not permitted" >&2\nexit 1\n' >"$work/bin/strace"
chmod +x "$work/bin/strace"
refuses "$1" "where nothing may be traced"

status=0
sh "$1/scripts/faults.sh" no-such-scenario >"$work/out" 2>&1 || status=$?
[ "$status" -eq 2 ] || fail "exits with $status for an unknown scenario"
