#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# Every source file names its licence within its first lines and is formatted as .clang-format says.
# What is said of projects agrees with the files that the touch screens look for.
# usage: scripts/lint/form.sh
set -eu
cd "$(dirname "$0")/../.."
clang_format=clang-format-14
status=0

folders="videooverlay platform host tests data cmake scripts .ci"
for folder in bench fuzz tools; do
    if [ -d "$folder" ]; then folders="$folders $folder"; fi
done

# shellcheck disable=SC2086 # one word per folder
licensed=$(find $folders CMakeLists.txt run test packages.txt -type f \( \
    -name '*.cpp' -o -name '*.h' -o -name '*.qml' -o -name '*.py' -o -name '*.sh' \
    -o -name '*.cmake' -o -name '*.in' -o -name '*.map' -o -name '*.supp' -o -name 'CMakeLists.txt' \
    -o -name run -o -name test -o -name packages.txt \))
for file in $licensed; do
    if ! head -n 3 "$file" | grep -q 'SPDX-License-Identifier: Apache-2.0$'; then
        echo "$file: no SPDX line"
        status=1
    fi
done

# shellcheck disable=SC2086
formatted=$(find $folders -type f \( -name '*.cpp' -o -name '*.h' \))
count=$(echo "$formatted" | wc -l)
if [ "$count" -lt 30 ]; then
    echo "Only $count C++ files found in $PWD"
    status=1
fi
# shellcheck disable=SC2086
if ! "$clang_format" --dry-run --Werror $formatted; then
    echo "Format with: $clang_format -i FILE"
    status=1
fi

if grep -rnE '\.xqpro[j]([^e]|$)' run README.md docs host tests; then
    echo "Projects end in .xqproject"
    status=1
fi
exit $status
