# Sourced by ./run, ./test, bench/run and the programs in tools/: installs packages, builds, brings a display.
# Expects $root, the top of the tree.
: "${root:?}"

say() { printf '%s\n' "$*" >&2; }
fail() { say "error: $*"; exit 1; }

# Prints the package names of the given lists, without comments. A line "@NAME" includes that list.
package_names() {
    local list line
    for list in "$@"; do
        while IFS= read -r line; do
            case $line in
            @*) package_names "${line#@}" ;;
            ?*) printf '%s\n' "$line" ;;
            esac
        done < <(sed -e 's/#.*//' -e 's/[[:space:]]*$//' "$root/packaging/packages-$list.txt")
    done | LC_ALL=C sort -u
}

# Prints what is not installed of the given lists.
missing_packages() {
    LC_ALL=C comm -23 <(package_names "$@") <(
        dpkg-query -W -f='${db:Status-Status} ${Package}\n' |
            sed -n 's/^installed //p' | LC_ALL=C sort -u
    )
}

as_root() {
    if [ "$(id -u)" = 0 ]; then
        "$@"
    else
        sudo "$@"
    fi
}

# Installs what is missing of the given lists; says nothing when all is there.
ensure_packages() {
    local missing log
    command -v dpkg-query >/dev/null ||
        fail "this script installs Debian packages; on another system install the equivalents of $(package_names "$@" | tr '\n' ' ')"
    missing=$(missing_packages "$@")
    [ -n "$missing" ] || return 0
    if [ "$(id -u)" != 0 ] && ! command -v sudo >/dev/null; then
        fail "these packages are missing and there is no sudo; as root, run: apt-get install --no-install-recommends $(echo $missing)"
    fi
    say "Installing what the build and the program need: $(echo $missing)"
    log=$(mktemp)
    if ! { as_root apt-get update && as_root env DEBIAN_FRONTEND=noninteractive \
            apt-get install -y --no-install-recommends $missing; } >"$log" 2>&1 </dev/null; then
        tail -n 20 "$log" >&2
        rm -f "$log"
        fail "the packages could not be installed"
    fi
    rm -f "$log"
}

# configure PRESET [-Dname=value…]
configure() {
    local preset=$1 log
    shift
    log=$(mktemp)
    if ! (cd "$root" && cmake --preset "$preset" "$@") >"$log" 2>&1; then
        cat "$log" >&2
        rm -f "$log"
        fail "CMake could not configure the build"
    fi
    rm -f "$log"
}

# build PRESET [-Dname=value…] [target…]: configures when needed and builds with Ninja's own progress.
build() {
    local preset=$1 options=()
    shift
    while [[ ${1:-} == -D* ]]; do
        options+=("$1")
        shift
    done
    # Objects of one clone serve every other.
    export CCACHE_BASEDIR=$root CCACHE_NOHASHDIR=1
    export CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
    configure "$preset" ${options+"${options[@]}"}
    (cd "$root" && cmake --build --preset "$preset" ${1:+--target "$@"}) ||
        fail "the build failed"
}

# Prints the option for a build that has no use for the tests: their packages may be missing, which
# only ./test installs. A build tree that has the tests keeps them, so that no script undoes what
# another one configured.
without_tests() {
    [ -z "$(missing_packages test)" ] || echo -DZELVARO_TESTS=OFF
}

# Processes that this script started; ended in reverse order at exit.
started=()
end_started() {
    local i
    for ((i = ${#started[@]} - 1; i >= 0; i--)); do
        { kill "${started[$i]}" && wait "${started[$i]}"; } 2>/dev/null || true
    done
    started=()
}

# Waits until something is written into the file, ten seconds at most.
wait_for_content() {
    local tries
    for ((tries = 0; tries < 200; tries++)); do
        [ ! -s "$1" ] || return 0
        read -r -t 0.05 <> <(:) || true
    done
    return 1
}

# Starts a virtual display with a window manager (unless window_manager is "none") and sets DISPLAY.
# start_virtual_display WIDTHxHEIGHT
start_virtual_display() {
    local number_file number
    command -v Xvfb >/dev/null && command -v openbox >/dev/null || ensure_packages display
    number_file=$(mktemp)
    setpriv --pdeathsig KILL Xvfb -displayfd 3 -screen 0 "${1}x24" -dpi 96 -nolisten tcp 3>"$number_file" >/dev/null 2>&1 &
    started+=($!)
    wait_for_content "$number_file" || fail "the virtual display did not start"
    number=$(tr -d '[:space:]' <"$number_file")
    export DISPLAY=:$number
    unset WAYLAND_DISPLAY
    : >"$number_file"
    if [ "${window_manager:-}" != none ]; then
        # What it starts as its first program tells that it manages the windows.
        setpriv --pdeathsig KILL openbox --startup "sh -c 'echo >$number_file'" >/dev/null 2>&1 &
        started+=($!)
        wait_for_content "$number_file" || fail "the window manager did not start"
    fi
    rm -f "$number_file"
}

# Brings a display when the user has none.
ensure_display() {
    [ -n "${DISPLAY:-}" ] || start_virtual_display "${1:-1600x1000}"
}
