#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# Holds the includes of library and host to layers.txt: who includes whom, no private header of the
# library outside it, every include written from the root of the repository.
# usage: scripts/lint/layers.sh
set -eu
cd "$(dirname "$0")/../.."

git ls-files -co --exclude-standard -- 'platform/*' 'videooverlay/*' 'host/*' \
    | grep -E '\.(cpp|h)$' | xargs grep -nE '^ *# *include +["<](platform|videooverlay|host)/|^ *# *include +"' \
    | awk -v table=scripts/lint/layers.txt '
function folder_of(path)
{
    sub(/\/[^\/]*$/, "", path)
    return path
}
# The folders of layers.txt are two levels deep at most; what is below one belongs to it.
function room_of(path,    parts, count)
{
    count = split(folder_of(path), parts, "/")
    return count > 1 && parts[1] != "platform" ? parts[1] "/" parts[2] : parts[1]
}
function complain(text)
{
    print place ": " text
    failed = 1
}
BEGIN {
    while ((getline line < table) > 0) {
        if (line ~ /^#/ || line !~ /:/)
            continue
        colon = index(line, ":")
        room = substr(line, 1, colon - 1)
        may[room] = " " substr(line, colon + 1) " "
    }
    if (!("host" in may)) {
        print table ": cannot be read"
        failed = 1
    }
}
{
    seen++
    split($0, at, ":")
    file = at[1]
    place = at[1] ":" at[2]
    include = $0
    sub(/^[^"<]*["<]/, "", include)
    sub(/[">].*$/, "", include)
    if (include !~ /\//) {
        complain("\"" include "\" is not written from the root of the repository")
        next
    }
    from = room_of(file)
    to = room_of(include)
    if (from !~ /^videooverlay/ && include ~ /^videooverlay\/.*_p\.h$/)
        complain(include " is private to the library")
    if (from == to || include ~ /_export\.h$/)
        next
    rule = from
    if (file ~ /\.h$/ && file !~ /_p\.h$/ && (from " headers") in may)
        rule = from " headers"
    if (!(rule in may)) {
        complain("layers.txt has no line for " rule)
        next
    }
    if (index(may[rule], " " to " "))
        next
    if (to ~ /^videooverlay\// && index(may[rule], " OVERLAY "))
        next
    complain(rule " may not include " include)
}
END {
    if (seen < 300) {
        print "Only " seen " includes found"
        failed = 1
    }
    exit failed
}'
