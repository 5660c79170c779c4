#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# Builds the library on a platform that is not the bundled one, from another CMake package, and runs
# the outside project on the result: it must reach the foreign platform through our package alone.
# usage: build_foreign_platform.sh CMAKE SOURCE_DIR BUILD_DIR CXX
set -eu
cmake=$1
source=$2
build=$3
cxx=$4
rm -rf "$build"

"$cmake" -S "$source/tests/package/foreign_platform" -B "$build/platform" -G Ninja \
    "-DCMAKE_CXX_COMPILER=$cxx" "-DSEAM_DIR=$source" "-DCMAKE_INSTALL_PREFIX=$build/platform-prefix"
"$cmake" --build "$build/platform" --target install

"$cmake" -S "$source" -B "$build/library" -G Ninja "-DCMAKE_CXX_COMPILER=$cxx" \
    -DCMAKE_BUILD_TYPE=Debug -DXQ_BUILD_TESTS=OFF -DVELMAR_PLATFORM_PACKAGE=ForeignPlatform \
    "-DCMAKE_PREFIX_PATH=$build/platform-prefix" "-DCMAKE_INSTALL_PREFIX=$build/prefix"
"$cmake" --build "$build/library" --target install
if find "$build" -name '*VelmarPlatform*' | grep .; then
    echo "The bundled platform was built all the same"
    exit 1
fi
readelf -d "$build/prefix"/lib*/libXqVideoOverlay.so.1 2>/dev/null \
    | grep -q 'NEEDED.*libForeignPlatform.so'

"$cmake" -S "$source/tests/consumer" -B "$build/consumer" -G Ninja "-DCMAKE_CXX_COMPILER=$cxx" \
    "-DCMAKE_PREFIX_PATH=$build/prefix;$build/platform-prefix"
"$cmake" --build "$build/consumer" --target consumer
LD_LIBRARY_PATH="$build/platform-prefix/lib" "$build/consumer/consumer"
