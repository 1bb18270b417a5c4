# stages.bash: the timed stages that tools/test and tools/gallery go through. Sourced by them, after
# terminal.bash.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
stage_times=()

stage() { # stage NAME COMMAND…: runs the command and notes how long it took.
    local name=$1 start=$EPOCHREALTIME status=0
    shift
    say "$name"
    "$@" || status=$?
    stage_times+=("$(awk -v a="$start" -v b="$EPOCHREALTIME" -v name="$name" \
        'BEGIN { printf "%7.1f s  %s", b - a, name }')")
    return "$status"
}

print_stage_times() {
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
