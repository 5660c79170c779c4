#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# What the library writes and what is shipped is valid as the schema of profiles says, and typing
# errors are not.
# usage: check_schema.sh SOURCE_DIR XMLLINT
set -eu
cd "$1"
xmllint=$2
schema=data/schema/osd-profile.rng
status=0

valid()
{
    "$xmllint" --nonet --relaxng "$schema" --noout "$@" 2>&1
}

files=$(find tests/data/profiles data/profiles -name '*.xml' 2>/dev/null | sort)
count=$(echo "$files" | wc -l)
if [ "$count" -lt 10 ]; then
    echo "Only $count profiles found in $PWD"
    status=1
fi
while read -r file; do
    valid "$file" >/dev/null || { valid "$file" || status=1; }
done <<END
$files
END

while read -r wrong; do
    if echo "<PROFILE>$wrong</PROFILE>" | valid - >/dev/null; then
        echo "Valid, but should not be: $wrong"
        status=1
    fi
done <<'END'
<STATICTXT/>
<STATICTEXT><ROWS>1</ROWS></STATICTEXT>
<STATICTEXT><ROW>one</ROW></STATICTEXT>
<STATICTEXT><ROW>1</ROW><ROW>2</ROW></STATICTEXT>
<STATICTEXT><FGCOLOR>#12345</FGCOLOR></STATICTEXT>
<STATICTEXT><VISIBLE>yes</VISIBLE></STATICTEXT>
<STATICTEXT><UNIT>1</UNIT></STATICTEXT>
<SYSTEMTEXT><ALIGN>MIDDLE</ALIGN></SYSTEMTEXT>
<IMAGE><SCALE>half</SCALE></IMAGE>
<PROFILE/>
END
exit $status
