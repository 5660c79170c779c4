#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# What the library file says about itself: name, needed libraries, offered and imported symbols.
# usage: check_elf.sh LIBRARY READELF NM
set -eu
library=$1
readelf=$2
nm=$3
status=0
fail()
{
    echo "$library: $1"
    status=1
}

dynamic=$("$readelf" -d "$library")
soname=$(echo "$dynamic" | sed -n 's/.*(SONAME).*\[\(.*\)\]$/\1/p')
[ "$soname" = libXqVideoOverlay.so.1 ] || fail "SONAME is '$soname'"

needed=$(echo "$dynamic" | sed -n 's/.*(NEEDED).*\[\(.*\)\]$/\1/p')
for name in $needed; do
    case $name in
    libQt5Core.so.5 | libQt5Gui.so.5 | libQt5Xml.so.5 | libQt5Qml.so.5 | libVelmarPlatform.so.1) ;;
    libstdc++.so.6 | libgcc_s.so.1 | libc.so.6 | libm.so.6 | ld-linux*) ;;
    *) fail "needs $name" ;;
    esac
done
for name in libQt5Core.so.5 libQt5Gui.so.5 libVelmarPlatform.so.1; do
    echo "$needed" | grep -qx "$name" || fail "does not need $name"
done

# A line of nm: address, kind, demangled name.
offered=$("$nm" -DC --defined-only "$library" | sed 's/^[0-9a-f]* *[A-Za-z] //')
echo "$offered" | grep -q '^Velmar::VideoOverlay::CVideoOverlayText::setText(' \
    || fail "does not offer CVideoOverlayText::setText"
echo "$offered" | grep -qx 'vtable for Velmar::VideoOverlay::CVideoOverlayElement' \
    || fail "does not offer the element's vtable"
foreign=$(echo "$offered" | grep -vE \
    '^((vtable|typeinfo|typeinfo name) for |(non-)?virtual thunk to )?Velmar::VideoOverlay::' || true)
[ -z "$foreign" ] || fail "offers more than its namespace:
$foreign"

imported=$("$nm" -DC --undefined-only "$library")
echo "$imported" | grep -q ' U Velmar::Logging::CLogger::logMessage(' \
    || fail "does not import the platform's logger"
exit $status
