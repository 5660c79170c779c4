#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# Gives an installed library another platform, without building it again: a host chooses the platform
# when it is built, and one that is built already gets it from the loader.
# usage: build_own_platform.sh CMAKE SOURCE_DIR PREFIX BUILD_DIR CXX
set -eu
cmake=$1
source=$2/tests/package
prefix=$3
build=$4
cxx=$5
rm -rf "$build"
mkdir -p "$build"
unset LD_LIBRARY_PATH
fail()
{
    echo "$1"
    exit 1
}
platform() # NAME OPTION...: builds and installs the platform into $build/NAME-prefix
{
    name=$1
    shift
    "$cmake" -S "$source/foreign_platform" -B "$build/$name" -G Ninja "-DCMAKE_CXX_COMPILER=$cxx" \
        "-DCMAKE_INSTALL_PREFIX=$build/$name-prefix" "$@"
    "$cmake" --build "$build/$name" --target install
}
configure_host() # NAME OPTION...
{
    name=$1
    shift
    "$cmake" -S "$source/foreign_host" -B "$build/$name" -G Ninja "-DCMAKE_CXX_COMPILER=$cxx" "$@"
}
runs_on_foreign() # PROGRAM: nothing of the reference platform is in the process
{
    "$1" >"$build/out" 2>"$build/err"
    grep -qx 'foreign 1 VideoOverlayLibrary SpeedUnitsConverter - Units converter not found' \
        "$build/err" || fail "$1: the library does not log to the foreign platform"
    grep -qx / "$build/out" || fail "$1: the host does not ask the foreign platform"
    LD_TRACE_LOADED_OBJECTS=1 "$1" >"$build/loaded"
    [ "$(grep -c VelmarPlatform "$build/loaded")" -eq 1 ] || fail "$1: loads two platforms"
    grep -q "VelmarPlatform.so.1 => $build/own-prefix/" "$build/loaded" \
        || fail "$1: loads the reference platform"
    if grep Qt5Sql "$build/loaded"; then fail "$1: the reference platform was loaded"; fi
}

platform own "-DCMAKE_PREFIX_PATH=$prefix"

configure_host host -DVELMAR_PLATFORM_PACKAGE=ForeignPlatform \
    "-DCMAKE_PREFIX_PATH=$prefix;$build/own-prefix"
"$cmake" --build "$build/host"
runs_on_foreign "$build/host/foreign_host"

# The same host, built as if there were none but the reference platform.
configure_host plain "-DCMAKE_PREFIX_PATH=$prefix"
"$cmake" --build "$build/plain"
"$build/plain/foreign_host" >"$build/out" 2>"$build/err"
if grep foreign "$build/err"; then fail "the reference platform is not the one without a choice"; fi
LD_LIBRARY_PATH=$build/own-prefix/lib
export LD_LIBRARY_PATH
runs_on_foreign "$build/plain/foreign_host"
unset LD_LIBRARY_PATH

# Without CMake.
PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name xqvideooverlay.pc)")
export PKG_CONFIG_PATH
# shellcheck disable=SC2046 # pkg-config prints several words
"$cxx" -std=c++17 -o "$build/by-hand" "$source/foreign_host/main.cpp" "-L$build/own-prefix/lib" \
    "-Wl,-rpath,$build/own-prefix/lib" "-Wl,-rpath,$(dirname "$PKG_CONFIG_PATH")" \
    $(pkg-config --cflags --libs xqvideooverlay)
runs_on_foreign "$build/by-hand"

# A platform under another name would be loaded beside the reference one.
platform other "-DSEAM_DIR=$prefix/include"
if configure_host refused -DVELMAR_PLATFORM_PACKAGE=ForeignPlatform \
    "-DCMAKE_PREFIX_PATH=$prefix;$build/other-prefix" >"$build/out" 2>&1; then
    fail "a platform of another name was accepted"
fi
grep -q 'libVelmarPlatform.so.1' "$build/out" || fail "the name that a platform must have is not told"
