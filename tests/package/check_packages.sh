#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# The installer of Debian packages: silent where nothing is missing, clear where it cannot help.
# usage: check_packages.sh SOURCE_DIR
set -eu
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/scripts" "$work/bin"
cp "$1/scripts/packages.sh" "$work/scripts"
fail()
{
    echo "packages.sh: $1"
    cat "$work/out"
    exit 1
}

printf '# list\n[run]\ndpkg # always there\n\n[test]\ncoreutils\n' >"$work/packages.txt"
sh "$work/scripts/packages.sh" run test >"$work/out" 2>&1 || fail "refuses what is installed"
[ ! -s "$work/out" ] || fail "talks although nothing is missing"

if sh "$work/scripts/packages.sh" nothing >"$work/out" 2>&1; then
    fail "accepts a section that does not exist"
fi

# The same machine without apt-get: nothing of it can be installed.
printf '[run]\ndpkg\nxq-no-such-package\n[test]\nxq-neither-this\n' >"$work/packages.txt"
for tool in sh sed awk tr dpkg-query dirname id; do
    ln -s "$(command -v "$tool")" "$work/bin/$tool"
done
status=0
PATH="$work/bin" sh "$work/scripts/packages.sh" run >"$work/out" 2>&1 || status=$?
[ "$status" -eq 1 ] || fail "exits with $status where a package is missing"
grep -qx 'These Debian packages are missing: xq-no-such-package' "$work/out" \
    || fail "does not name what is missing"
grep -q 'there is no apt-get' "$work/out" || fail "does not say why"
grep -q 'apt-get install --no-install-recommends xq-no-such-package$' "$work/out" \
    || fail "does not say how to install it"

# No Debian at all.
rm "$work/bin/dpkg-query"
status=0
PATH="$work/bin" sh "$work/scripts/packages.sh" run test >"$work/out" 2>&1 || status=$?
[ "$status" -eq 1 ] || fail "exits with $status on another system"
grep -qx 'These Debian packages are missing: dpkg xq-no-such-package xq-neither-this' "$work/out" \
    || fail "does not name all packages"
