#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# Builds the outside project against an installation with CMake and runs its program.
# usage: build_consumer.sh CMAKE CONSUMER_DIR PREFIX BUILD_DIR CXX
set -eu
rm -rf "$4"
"$1" -S "$2" -B "$4" -G Ninja "-DCMAKE_PREFIX_PATH=$3" "-DCMAKE_CXX_COMPILER=$5"
"$1" --build "$4"
"$4/consumer"
