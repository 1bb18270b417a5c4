# terminal.bash: how the tools in this folder speak. Sourced by them; all of it goes to stderr.
#
# log, when set, names the file with the details of what is being run.

tool=$(basename "$0")
log=

say() { printf '%s: %s\n' "$tool" "$*" >&2; }

die() {
    if [[ -n $log && -s $log ]]; then
        say "error: $* (details: $log)"
    else
        say "error: $*"
    fi
    exit 1
}

# On a terminal one line that changes; elsewhere a line at each tenth, so that logs stay short.
last_tenth=-1
progress() { # progress DONE TOTAL WHAT
    local percent=$(($1 * 100 / ($2 > 0 ? $2 : 1)))
    if [[ -t 2 ]]; then
        printf '\r%s: [%d/%d] %d%% %-50.50s' "$tool" "$1" "$2" "$percent" "$3" >&2
        [[ $1 -lt $2 ]] || printf '\n' >&2
    elif ((percent / 10 != last_tenth)); then
        say "[$1/$2] $percent% $3"
    fi
    last_tenth=$((percent / 10))
}

# Turns ninja's "[1/20] …" lines on stdin into progress; what else it says is passed on.
ninja_progress() {
    local line
    while IFS= read -r line; do
        if [[ $line =~ ^\[([0-9]+)/([0-9]+)\]\ (.*) ]]; then
            progress "${BASH_REMATCH[1]}" "${BASH_REMATCH[2]}" "${BASH_REMATCH[3]##*/}"
        else
            printf '%s\n' "$line" >&2
        fi
    done
}

require_tools() { # require_tools PROGRAM…
    local program missing=()
    for program in "$@"; do
        command -v "$program" >/dev/null || missing+=("$program")
    done
    ((${#missing[@]} == 0)) ||
        die "missing programs: ${missing[*]} (tools/install-packages installs them)"
}
