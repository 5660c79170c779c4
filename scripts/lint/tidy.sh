#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# clang-tidy over library and host as .clang-tidy says. A source is looked at again only when it, one of
# our headers that it includes, its compiler call or the checks have changed.
# usage: scripts/lint/tidy.sh [analyzer]    with the clang analyzer, which takes four times as long
set -eu
cd "$(dirname "$0")/../.."
. scripts/build.sh

deep=${1-}
# An unset check of the command line comes on top of what .clang-tidy asks for.
checks='-clang-analyzer-*'
[ "$deep" != analyzer ] || checks=''

configure dev -DXQ_BUILD_TESTS=ON
work=build/lint/tidy
mkdir -p "$work/passed"

# One entry for each source of ours: some are compiled twice, for the static library as well.
awk '
/^\{/ { entry = ""; next }
/^  "file"/ {
    file = $0
    sub(/^[^:]*: "/, "", file)
    sub(/".*/, "", file)
    if (index(file, root "/videooverlay/") == 1 || index(file, root "/host/") == 1)
        if (!(file in seen)) {
            seen[file] = 1
            printf "%s{\n%s%s\n}", separator, entry, "  \"file\": \"" file "\""
            separator = ",\n"
        }
    next
}
{ entry = entry $0 "\n" }
BEGIN { print "[" }
END { print "\n]" }
' root="$PWD" build/dev/compile_commands.json >"$work/compile_commands.json"

# Source and what of ours it includes, directly or not: "FILE HEADER HEADER ..."
git ls-files -co --exclude-standard -- 'platform/*' 'videooverlay/*' 'host/*' \
    | grep -E '\.(cpp|h)$' \
    | xargs grep -HE '^ *# *include +["<](platform|videooverlay|host)/' \
    | awk '
{
    split($0, at, ":")
    include = $0
    sub(/^[^"<]*["<]/, "", include)
    sub(/[">].*$/, "", include)
    includes[at[1]] = includes[at[1]] " " include
    if (at[1] ~ /\.cpp$/)
        sources[at[1]] = 1
}
function visit(file,    parts, count, i)
{
    if (file in visited)
        return
    visited[file] = 1
    list = list " " file
    count = split(includes[file], parts, " ")
    for (i = 1; i <= count; i++)
        visit(parts[i])
}
END {
    for (source in sources) {
        split("", visited)
        list = ""
        visit(source)
        print substr(list, 2)
    }
}' | sort >"$work/closures"

settings=$(clang-tidy-14 --version; cat .clang-tidy scripts/lint/tidy.sh; echo "$checks")
waiting="$work/waiting"
: >"$waiting"
while read -r source headers; do
    [ -f "$source" ] || continue
    call=$(grep -F "\"$PWD/$source\"" -B 2 "$work/compile_commands.json" || true)
    if [ -z "$call" ]; then
        continue # not built here
    fi
    # shellcheck disable=SC2086 # one word per header; generated ones are not there
    key=$( (echo "$settings $call"; cat "$source" $headers 2>/dev/null || true) | sha256sum | cut -c 1-40)
    [ -f "$work/passed/$key" ] || echo "$key $source" >>"$waiting"
done <"$work/closures"

total=$(grep -c '"file"' "$work/compile_commands.json")
if [ "$total" -lt 100 ]; then
    echo "Only $total sources found"
    exit 1
fi
echo "$(wc -l <"$waiting") of $total sources to look at"

# shellcheck disable=SC2016 # expanded by the inner shell
xargs -P "$(nproc)" -L 1 sh -c '
    work=$1 checks=$2 key=$3 source=$4
    if clang-tidy-14 -p "$work" --quiet ${checks:+"--checks=$checks"} --warnings-as-errors="*" \
        "$source" >"$work/$key.log" 2>&1; then
        rm "$work/$key.log"
        touch "$work/passed/$key"
    else
        grep -vE "^[0-9]+ warnings? generated|^Suppressed|^Use -header-filter" "$work/$key.log"
        rm "$work/$key.log"
        exit 1
    fi' sh "$work" "$checks" <"$waiting"
