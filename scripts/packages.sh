#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# Sees to it that the Debian packages of the named sections of packages.txt are installed. Where it
# cannot install them itself it says which are missing and how to get them, and exits with 1.
# usage: scripts/packages.sh SECTION...
set -eu
list=$(dirname "$0")/../packages.txt

wanted=
for section in "$@"; do
    names=$(sed -e 's/#.*//' -e 's/[[:space:]]*$//' "$list" \
        | awk -v "section=[$section]" '/^\[/ { on = $0 == section; next } on && NF')
    if [ -z "$names" ]; then
        echo "packages.txt has no section [$section]" >&2
        exit 2
    fi
    wanted="$wanted $names"
done

# What is not installed, or is not even known, on one line.
missing_of() # PACKAGE...
{
    present=" $(dpkg-query -W -f '${db:Status-Status}:${Package}\n' "$@" 2>/dev/null \
        | sed -n 's/^installed://p' | tr '\n' ' ') "
    for name in "$@"; do
        case $present in
        *" $name "*) ;;
        *) printf '%s ' "$name" ;;
        esac
    done
}

give_up() # REASON
{
    {
        echo "These Debian packages are missing: $missing"
        echo "They cannot be installed from here: $1"
        echo "Install them as root and start again:"
        echo "    apt-get update && apt-get install --no-install-recommends $missing"
    } >&2
    exit 1
}

if ! command -v dpkg-query >/dev/null 2>&1; then
    # shellcheck disable=SC2086 # one word per package
    set -- $wanted
    missing=$*
    give_up "this is not a Debian system (there is no dpkg-query)."
fi

# shellcheck disable=SC2086 # one word per package
missing=$(missing_of $wanted)
missing=${missing% }
[ -n "$missing" ] || exit 0

command -v apt-get >/dev/null 2>&1 || give_up "there is no apt-get."
as_root=
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null 2>&1 || give_up "this is not root, and there is no sudo."
    # Without a terminal nobody can answer when sudo asks for a password.
    as_root=sudo
    [ -t 0 ] || as_root="sudo -n"
    $as_root true || give_up "sudo does not let this user in."
fi

echo "Installing Debian packages: $missing"
apt()
{
    $as_root env DEBIAN_FRONTEND=noninteractive apt-get -q \
        -o DPkg::Lock::Timeout=300 -o Acquire::Retries=3 "$@"
}
apt update || give_up "apt-get update failed (see above)."
# shellcheck disable=SC2086
apt install -y --no-install-recommends $missing || give_up "apt-get install failed (see above)."

# shellcheck disable=SC2086
missing=$(missing_of $wanted)
[ -z "$missing" ] || give_up "apt-get install left them out."
