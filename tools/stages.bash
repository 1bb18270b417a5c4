# stages.bash: the timed stages that tools/test and tools/gallery go through. Sourced by them, after
# terminal.bash.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
stage_times=()
running=
started=

stage() { # stage NAME COMMAND…: runs the command and notes how long it took.
    local status=0
    running=$1
    started=$EPOCHREALTIME
    shift
    say "$running"
    "$@" || status=$?
    note_stage ""
    return "$status"
}

note_stage() { # note_stage REMARK
    stage_times+=("$(awk -v a="$started" -v b="$EPOCHREALTIME" -v name="$running$1" \
        'BEGIN { printf "%7.1f s  %s", b - a, name }')")
    running=
}

# Also of the stage that the script is being ended in, if there is one.
print_stage_times() {
    [[ -z $running ]] || note_stage " (broken off)"
    ((${#stage_times[@]} == 0)) || printf '%s\n' "${stage_times[@]}" >&2
}

configure() { # configure PRESET
    log=$root/build/$1.log
    mkdir -p "$root/build"
    (cd "$root" && cmake --preset "$1") >"$log" 2>&1 || {
        tail -n 20 "$log" >&2
        die "cmake could not configure the preset $1"
    }
    log=
}

build() { # build PRESET [TARGET…]
    local preset=$1
    shift
    (cd "$root" && NINJA_STATUS='[%f/%t] ' ninja -C "build/$preset" "$@" 2>&1 | ninja_progress) ||
        die "the preset $preset could not be built"
}

prepare_machine() { # prepare_machine [OPTION…]: the options are those of install-packages.
    stage "install packages" "$root/tools/install-packages" "$@"
    stage "provide Skia" "$root/tools/build-skia" >/dev/null
}
