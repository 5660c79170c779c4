#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# Installs a build and then moves the result, so that everything after it proves that an
# installation may be moved.
# usage: install.sh CMAKE BUILD_DIR PREFIX
set -eu
rm -rf "$3" "$3.staged"
"$1" --install "$2" --prefix "$3.staged"
mv "$3.staged" "$3"
