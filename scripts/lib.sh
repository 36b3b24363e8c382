# Shared by the commands of this folder and by ./run and ./check; sourced, never run.
# The caller has set `root` to the top of the checkout, and `wine_folder` where it wants another Wine
# prefix than that of the tests.

build=$root/build
# Never the caller's own WINEPREFIX: ./check ends every Windows program of the prefix it used. Not
# that of ./run either.
export WINEPREFIX="${TOOLBOX_WINEPREFIX:-$build/${wine_folder:-wine}}"
export WINEDEBUG="${WINEDEBUG:--all}"

say() { printf '%s\n' "$*" >&2; }

die() {
    say "$(basename -- "$0"): $*"
    exit 1
}

# step LOG COMMAND...: runs quietly; on failure shows the end of the log and ends with one line.
step() {
    step_log=$1
    shift
    if ! "$@" >"$step_log" 2>&1 </dev/null; then
        tail -n 30 "$step_log" >&2
        die "failed: $* (whole output in $step_log)"
    fi
}

# configure PRESET [-DNAME=VALUE...]: only when something has to change.
configure() {
    configure_preset=$1
    shift
    set -- -DTOOLBOX_UNITY=ON "$@"
    configure_needed=
    [ -f "$build/$configure_preset/build.ninja" ] || configure_needed=yes
    for definition in "$@"; do
        grep -qsF -- "$(printf '%s' "${definition#-D}" | sed 's/=/:BOOL=/')" \
            "$build/$configure_preset/CMakeCache.txt" || configure_needed=yes
    done
    [ -n "$configure_needed" ] || return 0
    step "$build/configure-$configure_preset.log" \
        cmake -S "$root" --preset "$configure_preset" "$@"
}

# compile PRESET [TARGET...]: brings the build up to date; callers that come together do so one after
# the other.
compile() {
    compile_preset=$1
    shift
    flock -F "$build/$compile_preset.lock" ninja -C "$build/$compile_preset" "$@"
}
