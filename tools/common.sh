# Sourced by ./run, ./test and bench/run: installs packages, builds, brings a display.
# Expects $root, the top of the tree.

say() { printf '%s\n' "$*" >&2; }
fail() { say "error: $*"; exit 1; }

# Prints the package names of the given lists, without comments.
package_names() {
    local list
    for list in "$@"; do
        sed -e 's/#.*//' -e '/^[[:space:]]*$/d' "$root/packaging/packages-$list.txt"
    done | LC_ALL=C sort -u
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
    missing=$(LC_ALL=C comm -23 <(package_names "$@") \
        <(dpkg-query -W -f='${db:Status-Status} ${Package}\n' | sed -n 's/^installed //p' | LC_ALL=C sort -u))
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

# build PRESET [target…]: configures when needed and builds with Ninja's own progress.
build() {
    local preset=$1 log
    shift
    # Objects of one clone serve every other.
    export CCACHE_BASEDIR=$root CCACHE_NOHASHDIR=1
    export CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
    log=$(mktemp)
    if ! (cd "$root" && cmake --preset "$preset") >"$log" 2>&1; then
        cat "$log" >&2
        rm -f "$log"
        fail "CMake could not configure the build"
    fi
    rm -f "$log"
    (cd "$root" && cmake --build --preset "$preset" ${1:+--target "$@"}) ||
        fail "the build failed"
}

# Processes that this script started; ended in reverse order at exit.
started=()
end_started() {
    local i
    for ((i = ${#started[@]} - 1; i >= 0; i--)); do
        kill "${started[$i]}" 2>/dev/null && wait "${started[$i]}" 2>/dev/null
    done
    started=()
    return 0
}

# Starts a virtual display with a window manager (unless window_manager is "none") and sets DISPLAY.
# start_virtual_display WIDTHxHEIGHT
start_virtual_display() {
    local number_file number tries
    command -v Xvfb >/dev/null && command -v openbox >/dev/null || ensure_packages display
    number_file=$(mktemp)
    Xvfb -displayfd 3 -screen 0 "${1}x24" -dpi 96 -nolisten tcp 3>"$number_file" >/dev/null 2>&1 &
    started+=($!)
    for ((tries = 0; tries < 100; tries++)); do
        [ -s "$number_file" ] && break
        read -r -t 0.1 <> <(:) || true
    done
    number=$(tr -d '[:space:]' <"$number_file")
    rm -f "$number_file"
    [ -n "$number" ] || fail "the virtual display did not start"
    export DISPLAY=:$number
    unset WAYLAND_DISPLAY
    [ "${window_manager:-}" != none ] || return 0
    openbox >/dev/null 2>&1 &
    started+=($!)
}

# Brings a display when the user has none.
ensure_display() {
    [ -n "${DISPLAY:-}" ] || start_virtual_display "${1:-1600x1000}"
}
