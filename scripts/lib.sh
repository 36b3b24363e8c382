# Shared by the commands of this folder and by ./run and ./check; sourced, never run.
# The caller has set `root` to the top of the checkout, and `wine_folder` where it wants another Wine
# prefix than that of the tests.

build=$root/build
# Never the caller's own WINEPREFIX: ./check ends every Windows program of the prefix it used. Not
# that of ./run either.
export WINEPREFIX="${TOOLBOX_WINEPREFIX:-$build/${wine_folder:-wine}}"
export WINEDEBUG="${WINEDEBUG:--all}"
# Wine looks for its server in the temporary folder: two callers with folders of their own would get
# two servers for one prefix.
temporary=${TMPDIR:-/tmp}
unset TMPDIR

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

# configure PRESET: one caller after the other.
configure() {
    exec 8>"$build/$1.lock" && flock 8
    step "$build/configure-$1.log" cmake -S "$root" --preset "$1" 8>&-
    exec 8>&-
}

# compile PRESET [TARGET...]: brings the build up to date, one caller after the other.
compile() {
    compile_preset=$1
    shift
    flock -F "$build/$compile_preset.lock" ninja -C "$build/$compile_preset" "$@"
}

# npm_packages FOLDER TOOLS: what the folder's lock file names stands in TOOLS. npm trusts whom the
# system trusts.
npm_packages() {
    cmp -s "$1/package-lock.json" "$2/installed" && return
    mkdir -p "$2" || die "cannot write to $2"
    cp "$1/package.json" "$1/package-lock.json" "$2/" || exit 1
    NODE_EXTRA_CA_CERTS=${NODE_EXTRA_CA_CERTS:-/etc/ssl/certs/ca-certificates.crt}
    export NODE_EXTRA_CA_CERTS
    step "$2/npm.log" npm ci --prefix "$2" --ignore-scripts --no-audit --no-fund
    cp "$2/package-lock.json" "$2/installed"
}
