#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# The installed program finds its libraries without help and works on the installed data.
# usage: run_program.sh PROGRAM VERSION DEMO_DIR WORK_DIR
set -eu
unset LD_LIBRARY_PATH
[ "$("$1" --version)" = "xqosd $2" ]
mkdir -p "$4"
rm -f "$4/overlay.png"
"$1" snapshot --telemetry "$3/telemetry.csv" --picture "$3/picture.png" \
    --watermark "$3/watermark.png" --size 1280x720 --output "$4/overlay.png"
test -s "$4/overlay.png"
for catalog in ENG-GB DEU-DE FRE-CH; do
    test -s "$3/../catalogs/EN13508-2-$catalog.json"
done
