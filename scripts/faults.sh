#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# The fault matrix: each system call with which xqosd touches its files fails once with ENOSPC, EIO
# and EACCES, and at each that changes something the program is killed once. After every fault a
# file is the old or the new one, whole; the exit status is 0 only when what was asked is stored,
# else a message names the file; nothing aborts; what was complete stays, and nothing half is left
# behind; and the next command works. Exit status 1 when one of these rules is broken, or when
# nothing can be traced here.
# usage: scripts/faults.sh [--short] [--program XQOSD] [SCENARIO[:CALL:NUMBER:FAULT]...]
#        --short    one fault at each call that changes something, in turn another one
#        --program  instead of the one of the preset dev, which is built when it is missing
set -eu
root=$(cd "$(dirname "$0")/.." && pwd -P)
scenarios="first edit select clone rename taken remove snapshot record-new record-over record-mp4 \
project"

usage()
{
    sed -n 's/^# \(usage:.*\)/\1/p; s/^#  \( .*\)/ \1/p' "$0" >&2
    echo "scenarios: $scenarios" >&2
    exit 2
}

short=no
program=
while [ $# -gt 0 ]; do
    case $1 in
    --short) short=yes ;;
    --program)
        [ $# -gt 1 ] || usage
        program=$2
        shift
        ;;
    -*) usage ;;
    *) break ;;
    esac
    shift
done
for wanted in "$@"; do
    case " $scenarios " in
    *" ${wanted%%:*} "*) ;;
    *) usage ;;
    esac
done
if [ $# -eq 0 ]; then
    # shellcheck disable=SC2086 # one word per scenario
    set -- $scenarios
fi

if [ -z "$program" ]; then
    program=$root/build/dev/host/xqosd
    # shellcheck source=scripts/build.sh
    [ -x "$program" ] || (cd "$root" && . scripts/build.sh && configure dev && build dev xqosd)
fi
if ! strace -f -o /dev/null true 2>/dev/null; then
    echo "faults.sh: no fault was tried: strace is missing or may not trace here (SYS_PTRACE)" >&2
    exit 1
fi

work=$(cd "$(mktemp -d "${TMPDIR:-/tmp}/xq-faults-XXXXXX")" && pwd -P)
trap 'rm -rf "$work"' EXIT
trap 'exit 1' HUP INT TERM
place=$work/place # where everything happens, so that paths are the same in every run
mkdir "$work/home"
export HOME="$work/home" XDG_CONFIG_HOME="$work/home" XDG_DATA_HOME="$work/home"
# shellcheck disable=SC2031 # the subshell above only builds
export QT_QPA_PLATFORM=offscreen LC_ALL=C.UTF-8 TZ=UTC
# The sanitizer of the preset asan cannot look for leaks under a tracer.
export ASAN_OPTIONS="${ASAN_OPTIONS:+$ASAN_OPTIONS:}detect_leaks=0"

on_set() # COMMAND [OPTION...]
{
    "$program" "$@" --settings-dir "$place/set" </dev/null
}

record() # SECONDS NAME [RUNNER...]
{
    seconds=$1
    name=$2
    shift 2
    "$@" "$program" record --quiet --source test --size 320x240 --fps 10 --duration "$seconds" \
        --encoder x264enc --settings-dir "$place/set" --output "$place/out/$name"
}

# Runs the command of the scenario, through a runner such as strace with its options.
ask() # RUNNER...
{
    case $scenario in
    first) "$@" "$program" profiles --settings-dir "$place/set" ;;
    edit) "$@" "$program" edit --profile Mine --add-text note --settings-dir "$place/set" ;;
    select) "$@" "$program" profiles select Mine --settings-dir "$place/set" ;;
    clone) "$@" "$program" profiles clone Mine Mine --settings-dir "$place/set" ;;
    rename) "$@" "$program" profiles rename Mine Other --settings-dir "$place/set" ;;
    taken) "$@" "$program" profiles rename Mine Lean --settings-dir "$place/set" ;;
    remove) "$@" "$program" profiles remove Mine --settings-dir "$place/set" ;;
    snapshot) "$@" "$program" snapshot --quiet --transparent --size 320x240 \
        --settings-dir "$place/set" --output "$place/out/shot.png" ;;
    record-new) record 2 new.mkv "$@" ;;
    record-over) record 2 old.mkv "$@" ;;
    record-mp4) record 2 new.mp4 "$@" ;;
    project) "$@" "$program" project --create-demo --file "$place/out/demo.xqproject" ;;
    esac </dev/null
}

# What there is before the command, also kept aside in "old".
prepare()
{
    rm -rf "$place" "$work/old"
    mkdir -p "$place/set" "$place/out"
    if [ "$scenario" != first ]; then
        on_set profiles clone Lean Mine
        on_set profiles select Lean
    fi >/dev/null
    case $scenario in
    first) rmdir "$place/set" ;;
    rename) on_set profiles select Mine ;;
    snapshot) echo "an older picture" >"$place/out/shot.png" ;;
    record-over) record 1 old.mkv env ;;
    esac
    cp -a "$place" "$work/old"
}

restore()
{
    rm -rf "$place"
    cp -a "$work/old" "$place"
}

# The frames of a movie that can be played, its length, and whether the player had nothing to say.
describe_movie() # FILE
{
    ffprobe -v error -count_frames -select_streams v:0 -of csv=p=0 \
        -show_entries stream=nb_read_frames:format=duration "$1" 2>"$work/remarks" \
        | tr '\n' ' '
    [ -s "$work/remarks" ] && echo damaged || echo whole
}

# One line for each file that a user sees, content and name: a movie is what can be played of it, a
# project is what it lists, and all others are their bytes. The default profile is put back when it
# cannot be read, with what was there kept aside.
state()
(
    cd "$place"
    find . -type f ! -name '.*' ! -name '*.lock' ! -name '*-journal' ! -name 'Halvo*.damaged*' \
        ! -path './out/*' -exec cksum {} +
    find ./out -type f ! -name '.*' ! -name '*-journal' 2>/dev/null | while read -r file; do
        case $file in
        *.mkv | *.mp4 | *.part) echo "$(describe_movie "$file") $file" ;;
        *.xqproject) echo "$("$program" project --file "$file" 2>&1 | cksum) $file" ;;
        *) cksum "$file" ;;
        esac
    done
)

names() # of lines of state
{
    sed 's,^.* \./,./,'
}

# The file-related calls of a trace, one a line: name, number among those of that name in its thread
# (as strace counts), "changes" or "reads", and the arguments.
calls()
{
    awk -v place="$place" -v data="$root/data/" '
        BEGIN {
            changing = "^(p?writev?|pwrite64|fsync|fdatasync|rename.*|f?chmod.*|[fl]?chown.*" \
                "|f?truncate|mkdir.*|unlink.*|rmdir|link|linkat|symlink.*|fallocate" \
                "|copy_file_range|sendfile|flock|utimensat|ioctl|lseek)$"
        }
        {
            line = $0
            thread = line ~ /^[0-9]+ / ? $1 : 0
            sub(/^[0-9]+ +/, "", line)
            bracket = index(line, "(")
            call = substr(line, 1, bracket - 1)
            if (call !~ /^[a-z0-9_]+$/)
                next
            number = ++count[thread, call]
            changes = call ~ changing
            if (call ~ /^(open|openat|creat)$/) {
                changes = line ~ /O_(WRONLY|RDWR|CREAT)/
                if (match(line, / = [0-9]+</))
                    writes[substr(line, RSTART + 3) + 0] = changes
            } else if (call == "close") {
                changes = writes[substr(line, bracket + 1) + 0]
            }
            if (call !~ /^(execve|mmap|fadvise64|getcwd)$/ && !seen[call, number]++ \
                && (index(line, place) || index(line, data "profiles") || index(line, data "Osd")))
                print call, number, changes ? "changes" : "reads", substr(line, bracket)
        }'
}

# What is right: what there is after the command when nothing fails.
learn()
{
    prepare
    state | sort >"$work/before"
    ask env >/dev/null 2>&1 || : # what is kept elsewhere, such as caches, is there from now on
    restore
    status=0
    ask strace -f -qq -y -s 0 -o "$work/trace" -e trace=%file,%desc >/dev/null 2>&1 || status=$?
    refused=no
    [ "$scenario" != taken ] || refused=yes
    if [ "$status" -ge 2 ] || { [ "$status" -eq 0 ] && [ $refused = yes ]; } \
        || { [ "$status" -ne 0 ] && [ $refused = no ]; }; then
        echo "faults.sh: $scenario: exit status $status without any fault" >&2
        exit 1
    fi
    state | sort >"$work/after"
    sort -u "$work/before" "$work/after" >"$work/either"
    # Whole, too: nothing has been selected yet; a movie that cannot tell its length.
    case $scenario in
    first) echo "$(cksum <"$root/data/OsdSettings.xml") ./set/OsdSettings.xml" ;;
    record*) sed -n 's,^\([0-9]*\) [0-9.]* whole,\1 N/A whole,p' "$work/after" ;;
    esac >>"$work/either"
    calls <"$work/trace" >"$work/calls"
    # Files that are equal to these are readable, too.
    [ ! -d "$place/set/osd" ] || "$program" check "$place/set/osd" || exit 1
    [ ! -d "$work/old/set/osd" ] || "$program" check "$work/old/set/osd" || exit 1
}

# What the command is there for: not what comes along with it, such as the profile to start with. A
# movie whose file cannot be wound back is written as for a stream, and cannot tell its length.
asked()
{
    case $scenario,$call in
    first,* | edit,* | clone,* | remove,*) grep -v '/OsdSettings.xml$' || : ;;
    record*,lseek) sed 's, [^ ]* whole, whole,' ;;
    *) cat ;;
    esac
}

broken() # RULE
{
    echo "BROKEN $scenario:$call:$number:$fault $rest"
    echo "       $1"
    is_broken=yes
}

# What is left of a recording that was broken off plays, unless hardly anything was written. Just
# before the end of an MP4 file mp4mux takes the list of its first part out of force ("hoov"), and
# only then writes the one of the whole file: in between nothing plays.
is_rest_of_movie() # LINE
{
    file=$(echo "$1" | names)
    case $file in
    *.mkv | *.mp4 | *.part) ;;
    *) return 1 ;;
    esac
    ! names <"$work/before" | grep -qxF "$file" || return 1
    [ "$(stat -c %b "$place/$file")" -lt 64 ] || echo "$1" | grep -q '^[1-9][0-9]* [^ ]* [dw]' \
        || { [ "${file%.mp4}" != "$file" ] && grep -qa hoov "$place/$file"; }
}

check_files()
{
    state | sort >"$work/now"
    grep -vxFf "$work/either" "$work/now" >"$work/others" || :
    while read -r line; do
        is_rest_of_movie "$line" || broken "neither the old file nor the new one: $line"
    done <"$work/others"
    names <"$work/now" | sort >"$work/names"
    for list in before after; do names <"$work/$list"; done | sort | uniq -d \
        | comm -23 - "$work/names" >"$work/lost"
    [ ! -s "$work/lost" ] || broken "lost: $(tr '\n' ' ' <"$work/lost")"
    least=$(for list in before after; do wc -l <"$work/$list"; done | sort -n | head -n 1)
    [ "$(wc -l <"$work/now")" -ge "$least" ] || broken "a file is lost"
    # Files that take another one's place are hidden until then, with eight digits at the end.
    find "$place" -type f -name '.*.*' | grep -E '\.[0-9a-f]{8}(-journal)?$' >"$work/left" || :
    [ "$fault" = KILL ] || [ "${call#unlink}" != "$call" ] || [ ! -s "$work/left" ] \
        || broken "left behind: $(cat "$work/left")"
}

check_answer()
{
    if grep -qE 'Sanitizer|terminate called|ASSERT' "$work/err"; then
        broken "aborts: $(head -n 1 "$work/err")"
    elif [ "$fault" = KILL ]; then
        [ "$status" -eq 137 ] || broken "is not killed: exit status $status"
    elif [ "$status" -eq 124 ]; then
        broken "hangs"
    elif [ "$status" -gt 2 ]; then
        broken "exit status $status: $(head -n 1 "$work/err")"
    elif [ "$status" -eq 0 ]; then
        asked <"$work/after" >"$work/wanted"
        asked <"$work/now" | cmp -s "$work/wanted" - \
            || broken "exit status 0, but what was asked is not stored"
    elif [ $refused = no ] \
        && ! grep -qF -e "$place/" -e "$root/data/" -e '"Mine" cannot' "$work/err"; then
        broken "exit status $status, and no message names a file: $(tail -n 1 "$work/err")"
    fi
}

check_next()
{
    if [ -d "$place/set" ]; then
        on_set profiles >/dev/null 2>"$work/err" \
            || broken "then the list fails: $(head -n 1 "$work/err")"
    fi
    # What is done cannot be asked again.
    case $scenario in
    rename | remove) [ -f "$place/set/osd/Mine.xml" ] || return 0 ;;
    edit | clone | project)
        asked <"$work/after" >"$work/wanted"
        ! asked <"$work/now" | cmp -s "$work/wanted" - || return 0
        ;;
    esac
    status=0
    ask env >/dev/null 2>"$work/err" || status=$?
    [ "$status" -eq 0 ] || [ $refused = yes ] \
        || broken "then the same command fails: $(head -n 1 "$work/err")"
    state | sort >"$work/now"
    cmp -s "$work/now" "$work/after" \
        || broken "then the same command does not help: $(diff "$work/after" "$work/now" | tail -n 1)"
}

# Whether the fault met a call that touches our files: the trace of that call alone.
has_hit()
{
    if [ "$fault" = KILL ]; then
        grep -F "$call(" "$work/injected" | tail -n 1
    else
        grep -F '(INJECTED)' "$work/injected"
    fi | grep -qF -e "$place" -e "$root/data/"
}

try() # with call, number, fault, rest
{
    case $fault in
    KILL) what=signal=SIGKILL ;;
    *) what=error=$fault ;;
    esac
    is_broken=no
    for attempt in 1 2 3; do # threads do not always do the same
        restore
        status=0
        ask timeout 60 strace -f -qq -y -s 0 -o "$work/injected" -e "trace=$call" \
            -e "inject=$call:$what:when=$number" >/dev/null 2>"$work/err" || status=$?
        ! has_hit || break
        [ "$attempt" -lt 3 ] || broken "the fault met no file"
    done
    check_files
    check_answer
    check_next
    tried=$((tried + 1))
    [ "$is_broken" = no ] || broken_here=$((broken_here + 1))
}

# The calls at which faults are tried; for the short form some, from the first to the last.
chosen_calls()
{
    if [ $short = no ]; then
        cat "$work/calls"
    else
        grep '^[a-z0-9_]* [0-9]* changes' "$work/calls" >"$work/changing"
        awk -v all="$(wc -l <"$work/changing")" -v some=6 \
            'NR == 1 || int(NR * some / all) != int((NR - 1) * some / all)' "$work/changing"
    fi
}

# The faults of one call, the next one in turn for the short form.
faults_of() # KIND INDEX
{
    case $1,$short in
    changes,no) echo ENOSPC EIO EACCES KILL ;;
    changes,yes) echo ENOSPC KILL EIO EACCES KILL | cut -d ' ' -f $(($2 % 5 + 1)) ;;
    reads,no) echo EIO EACCES ;;
    esac
}

table=
total_broken=0
for wanted in "$@"; do
    scenario=${wanted%%:*}
    learn
    tried=0
    broken_here=0
    index=0
    if [ "$wanted" = "$scenario" ]; then
        chosen_calls >"$work/chosen"
        while read -r call number kind rest; do
            index=$((index + 1))
            for fault in $(faults_of "$kind" $index); do
                try
            done
        done <"$work/chosen"
    else
        IFS=: read -r scenario call number fault <<EOF
$wanted
EOF
        rest=$(grep "^$call $number " "$work/calls" | cut -d ' ' -f 4-) || usage
        try
    fi
    table="$table$(printf '%-12s %6d %6d %6d' "$scenario" "$(wc -l <"$work/calls")" $tried \
        $broken_here)
"
    total_broken=$((total_broken + broken_here))
done
printf '%-12s %6s %6s %6s\n%s' scenario calls faults broken "$table"
[ $total_broken -eq 0 ]
