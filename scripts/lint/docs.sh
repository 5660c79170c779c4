#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# What README, CONTRIBUTING and docs/ name exists: files and folders, links, classes, tests, presets,
# options of the build. That every command and option of the program is true is a test of its own,
# because the program itself is asked.
# usage: scripts/lint/docs.sh
set -eu
cd "$(dirname "$0")/../.."

work=build/lint/docs
mkdir -p "$work"
git ls-files -co --exclude-standard -- '*.md' | grep -v '^CHANGELOG' >"$work/pages"
status=0
complain()
{
    echo "$*"
    status=1
}

# Every text in backticks, one a line: "PAGE TEXT". Blocks between ``` count line by line.
# shellcheck disable=SC2016 # awk expands it
xargs awk '
FNR == 1 { block = 0 }
/^ *```/ { block = !block; next }
block { next }
{
    count = split($0, part, "`")
    for (i = 2; i <= count; i += 2)
        print FILENAME "\t" part[i]
}' <"$work/pages" | sort -u >"$work/quoted"
[ "$(wc -l <"$work/quoted")" -gt 200 ] || complain "Too few names found in the docs"

{
    # Files and folders of the repository.
    git ls-files -co --exclude-standard >"$work/files"
    grep -P '\t(videooverlay|platform|host|tests|data|docs|scripts|bench|fuzz|cmake|\.ci)/[^ <>]*$' "$work/quoted" \
        | while read -r page name; do
            case $name in
            *NAME* | *\** | *\{*) continue ;;
            esac
            path=${name#./}
            grep -qE "^$(printf '%s' "${path%/}" | sed 's/[.+]/\\&/g')(/|$|\.h$)" "$work/files" \
                || echo "$page: there is no $name"
        done

    # Links to files.
    while read -r page; do
        grep -oE '\]\([^)#]+' "$page" | sed 's/^](//' | while read -r target; do
            case $target in
            *://* | mailto:*) continue ;;
            esac
            [ -e "$(dirname "$page")/$target" ] || echo "$page: the link $target leads nowhere"
        done
    done <"$work/pages"

    # Classes, also with a member: Name, Name::member, Namespace::Name. Those of Qt and GStreamer are
    # somebody else's.
    grep -P '\t[A-Z][A-Za-z0-9]+(::[A-Za-z_][A-Za-z0-9_]*)*(\(\))?$' "$work/quoted" \
        | while read -r page name; do
            plain=${name%()}
            for part in $(echo "$plain" | sed 's/::/ /g'); do
                case $part in
                Q[A-Z]* | Qt | Gst* | [A-Z]) continue ;;
                esac
                git grep -qwF "$part" -- platform videooverlay host tests bench fuzz cmake CMakeLists.txt data \
                    || echo "$page: nothing is called $name"
            done
        done

    # Tests.
    grep -P '\ttst_[A-Za-z_]+$' "$work/quoted" | while read -r page name; do
        grep -q "/$name\.cpp$" "$work/files" || echo "$page: there is no test $name"
    done

    # Presets and options of the build: those that are named exist, and CONTRIBUTING names all.
    presets=$(sed -n '/"buildPresets"/,/\]/s/.*"name": "\([a-z0-9]*\)".*/\1/p' CMakePresets.json)
    for preset in $presets; do
        grep -q "^| \`$preset\` |" CONTRIBUTING.md || echo "CONTRIBUTING.md: the preset $preset is missing"
    done
    xargs grep -noE -- '--preset [a-z0-9]+' <"$work/pages" | while IFS=: read -r page line text; do
        name=${text#--preset }
        echo "$presets" | grep -qx "$name" || echo "$page:$line: there is no preset $name"
    done
    options=$(sed -n 's/^option(\([A-Z_]*\).*/\1/p; s/^set(\([A-Z_]*\) .* CACHE .*/\1/p' CMakeLists.txt)
    for option in $options; do
        grep -q "^| \`$option\` |" CONTRIBUTING.md || echo "CONTRIBUTING.md: the option $option is missing"
    done
    xargs grep -noE '\bXQ_[A-Z_]+\b' <"$work/pages" | while IFS=: read -r page line name; do
        git grep -qw "$name" -- CMakeLists.txt cmake host tests bench fuzz scripts run test \
            || echo "$page:$line: nothing is called $name"
    done
} >"$work/missing"

if [ -s "$work/missing" ]; then
    sort -u "$work/missing"
    status=1
fi
exit $status
