# What the benchmarks of films share. Sourced, after `work` names an empty folder and `root` the source tree.
# shellcheck shell=bash
export LC_ALL=C
program=${OMBREL_RECORD:-$root/build/release/OmbrelRecord/Entry/ombrel-record}

# need TOOL… ends the script when one is missing.
need() {
    local tool
    for tool in "$@"; do
        command -v "$tool" >/dev/null || {
            echo "$tool is missing; Scripts/demo builds the program, Scripts/bootstrap measure installs the others" >&2
            exit 1
        }
    done
}

# timed NAME COMMAND… runs it and adds a line of what it and its children took to NAME.times.
timed() {
    local name=$1
    shift
    /usr/bin/time -a -o "$work/$name.times" -f '%U %S %e %M' "$@" >"$work/$name.log" 2>&1 </dev/null || {
        tail -5 "$work/$name.log" >&2
        exit 1
    }
}

# taken NAME prints the medians of its runs: CPU seconds, wall seconds, MB of memory at most.
taken() {
    local column
    for column in '$1 + $2' '$3' '$4 / 1024'; do
        awk "{ print $column }" "$work/$1.times" | sort -g |
            awk '{ v[NR] = $1 } END { print (v[int((NR + 1) / 2)] + v[int(NR / 2) + 1]) / 2 }'
    done | paste -sd' '
}

probe() { ffprobe -v error -select_streams v:0 -show_entries "stream=$2" -of csv=p=0 "$1"; }

# machine prints what all figures depend on.
machine() {
    echo "$(sed -n 's/^model name[^:]*: //p' /proc/cpuinfo | head -1), $(nproc) cores," \
        "load $(cut -d' ' -f1 /proc/loadavg) at the end;" "$(ffmpeg -version | sed -n '1s/ Copyright.*//p')"
}
