#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# Makes the reference of the installed headers and of docs/ in build/reference/html. Any warning of
# doxygen is a failure: an undocumented name, a broken link.
# usage: scripts/lint/reference.sh
set -eu
cd "$(dirname "$0")/../.."

mkdir -p build/reference
if ! warnings=$(doxygen docs/Doxyfile 2>&1) || [ -n "$warnings" ]; then
    echo "$warnings"
    exit 1
fi
echo "The reference is in build/reference/html/index.html"
