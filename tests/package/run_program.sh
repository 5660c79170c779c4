#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# The installed program finds its libraries without help and works on the installed data.
# usage: run_program.sh PROGRAM VERSION DEMO_DIR WORK_DIR
set -eu
unset LD_LIBRARY_PATH
[ "$("$1" --version)" = "xqosd $2" ]
mkdir -p "$4"
rm -rf "$4/overlay.png" "$4/profile.png" "$4/settings" "$4/demo.xqproject"
"$1" snapshot --telemetry "$3/telemetry.csv" --picture "$3/picture.png" \
    --watermark "$3/watermark.png" --size 1280x720 --settings-dir "$4/settings" \
    --output "$4/overlay.png"
test -s "$4/overlay.png"
for catalog in ENG-GB DEU-DE FRE-CH; do
    test -s "$3/../catalogs/EN13508-2-$catalog.json"
done
test -s "$3/../schema/osd-profile.rng"

# Profiles, the settings template, the demonstration project, catalogs and translations are found.
"$1" profiles --settings-dir "$4/settings" | grep -q '^\* read-only Halvo push camera system - default'
"$1" check "$4/settings/osd" "$3/../profiles"
"$1" project --file "$4/demo.xqproject" --create-demo | grep -q '4711-4712'
"$1" snapshot --settings-dir "$4/settings" --profile "Sewer inspection" --project "$4/demo.xqproject" \
    --telemetry "$3/telemetry.csv" --observations --at 3 --size 1280x720 --language de \
    --output "$4/profile.png"
test -s "$4/profile.png"
"$1" values --language de | grep -q 'Kameraneigung'
