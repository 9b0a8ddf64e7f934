# Sourced by run.sh and test.sh: installs the Debian packages that are missing.
# Only what is missing is asked for, so a second run needs neither network nor rights.

# need_packages NAME... : installs what dpkg does not know as installed. A word "command:package"
# counts as present when the command is on the PATH, wherever it came from.
need_packages() {
    missing=
    for word in "$@"; do
        case $word in
            *:*) command -v "${word%%:*}" >/dev/null 2>&1 || missing="$missing ${word#*:}" ;;
            *) dpkg-query -W -f='${Status}' "$word" 2>/dev/null | grep -q '^install ok installed$' ||
                missing="$missing $word" ;;
        esac
    done
    [ -z "$missing" ] && return 0

    if [ "$(id -u)" -eq 0 ]; then
        as_root=
    elif command -v sudo >/dev/null 2>&1 && { [ -t 0 ] || sudo -n true 2>/dev/null; }; then
        as_root=sudo
    else
        echo "$0: cannot install what is missing without root or sudo:$missing" >&2
        exit 1
    fi
    echo "Installing:$missing"
    # shellcheck disable=SC2086 # a list of words
    if ! { $as_root apt-get update -qq &&
        $as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends $missing; } \
        >"${TMPDIR:-/tmp}/quillmarsh-apt.$$" 2>&1; then
        cat "${TMPDIR:-/tmp}/quillmarsh-apt.$$" >&2
        rm -f "${TMPDIR:-/tmp}/quillmarsh-apt.$$"
        echo "$0: could not install:$missing" >&2
        exit 1
    fi
    rm -f "${TMPDIR:-/tmp}/quillmarsh-apt.$$"
}

BUILD_PACKAGES="g++ cmake ninja-build ccache libicu-dev libssl-dev libpugixml-dev nlohmann-json3-dev libgdk-pixbuf-2.0-dev pkg-config"

# build PRESET [TARGET...] : configures when needed and builds; quiet unless something is wrong.
build() {
    preset=$1
    shift
    log=$(mktemp)
    if ! { cmake --preset "$preset" && cmake --build --preset "$preset" ${1:+--target "$@"}; } >"$log" 2>&1; then
        grep -v '^\[[0-9]*/[0-9]*\]' "$log" | tail -n 60 >&2
        rm -f "$log"
        echo "$0: the build ($preset) failed" >&2
        exit 1
    fi
    rm -f "$log"
}
