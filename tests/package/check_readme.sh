#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# Builds and runs the host of the README exactly as the README prints it.
# usage: check_readme.sh SOURCE_DIR CMAKE PREFIX LIB_FOLDER BUILD_DIR CXX
set -eu
rm -rf "$5"
mkdir -p "$5"
block() # KIND: the only code block of that kind, which must be there
{
    awk -v "start=\`\`\`$1" '$0 == start { on = 1; next } /^```/ { on = 0 } on' "$readme"
}
readme=$1/README.md
block cpp >"$5/main.cpp"
block cmake >"$5/CMakeLists.txt"
grep -q 'int main' "$5/main.cpp"
"$2" -S "$5" -B "$5/build" -G Ninja "-DCMAKE_PREFIX_PATH=$3" "-DCMAKE_CXX_COMPILER=$6"
"$2" --build "$5/build"
cd "$5"
./build/host
test -s overlay.png
rm overlay.png

command=$(grep -o 'c++ -std=c++17 .*pkg-config.*' "$readme")
test -n "$command"
PKG_CONFIG_PATH="$3/$4/pkgconfig"
export PKG_CONFIG_PATH
sh -ec "$command"
LD_LIBRARY_PATH="$3/$4" ./host
test -s overlay.png
