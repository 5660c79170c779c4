#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# Builds the outside program against an installation with pkg-config alone and runs it.
# usage: build_pkgconfig.sh CONSUMER_DIR LIB_DIR BUILD_DIR CXX
set -eu
mkdir -p "$3"
export PKG_CONFIG_PATH="$2/pkgconfig"
# shellcheck disable=SC2046 # pkg-config prints several words
"$4" -std=c++17 -o "$3/consumer" "$1/main.cpp" $(pkg-config --cflags --libs xqvideooverlay)
LD_LIBRARY_PATH="$2" "$3/consumer"
