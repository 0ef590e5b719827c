# Functions shared by ./run, ./test and .ci/run: whatever is missing gets installed, what is there is left alone.
# Sourced by bash 3.2 or newer with the repository's root as the working folder.

say() { printf '==> %s\n' "$*"; }
fail() { printf '%s\n' "$*" >&2; exit 1; }
on_mac() { [ "$(uname -s)" = Darwin ]; }

packages_of() { # group...
    local list=scripts/packages.debian
    on_mac && list=scripts/packages.homebrew
    local group
    for group in "$@"; do awk -v group="$group" '$1 == group { print $2 }' "$list"; done
}

as_root() {
    if [ "$(id -u)" = 0 ]; then "$@"
    elif command -v sudo >/dev/null; then sudo "$@"
    else fail "Installing packages needs root: run as root, or install sudo."
    fi
}

ensure_packages() { # group...
    local missing=() name
    if on_mac; then
        command -v brew >/dev/null || fail "Homebrew is needed to install: $(packages_of "$@" | tr '\n' ' ')"
        for name in $(packages_of "$@"); do brew list --versions "$name" >/dev/null 2>&1 || missing+=("$name"); done
        [ ${#missing[@]} = 0 ] && return
        say "Installing with Homebrew: ${missing[*]}"
        brew install "${missing[@]}"
        return
    fi
    command -v apt-get >/dev/null || fail "This set-up knows Debian and macOS. Needed here: $(packages_of "$@" | tr '\n' ' ')"
    for name in $(packages_of "$@"); do
        case "$(dpkg-query -W -f='${Status}' "$name" 2>/dev/null)" in
            *' installed') ;;
            *) missing+=("$name") ;;
        esac
    done
    [ ${#missing[@]} = 0 ] && return
    say "Installing packages: ${missing[*]}"
    as_root env DEBIAN_FRONTEND=noninteractive sh -c '
        apt-get update -q && apt-get install -y -q --no-install-recommends "$@"' install "${missing[@]}"
}

# Where a window can be opened: "mac", "wayland", "x11" or "none". Needs the packages of the group "run".
find_display() {
    if on_mac; then echo mac; else scripts/find-display; fi
}

# An interpreter to build environments from: one of the versions that the program looks for.
base_python() {
    local candidate
    for candidate in /usr/bin/python3 python3.12 python3.11 python3.10 python3; do
        candidate=$(command -v "$candidate" 2>/dev/null) || continue
        if "$candidate" -c 'import sys, venv, ensurepip; sys.exit(not (3, 10) <= sys.version_info[:2] <= (3, 12))' 2>/dev/null; then
            printf '%s\n' "$candidate"
            return
        fi
    done
    fail "No Python 3.10 to 3.12 with the venv module was found."
}

# Installs requirement files into a virtual environment, made when it is missing. Costs nothing when they have not changed.
ensure_environment() { # folder requirements-file...
    local folder=$1
    shift
    local wanted
    wanted=$(cat "$@" | cksum)
    [ "$(cat "$folder/.zorel-requirements" 2>/dev/null)" = "$wanted" ] && [ -x "$folder/bin/python3" ] && return
    say "Preparing Python in $folder"
    [ -x "$folder/bin/python3" ] || "$(base_python)" -m venv "$folder"
    local options=() file
    for file in "$@"; do options+=(-r "$file"); done
    "$folder/bin/python3" -m pip install --quiet --disable-pip-version-check "${options[@]}"
    printf '%s\n' "$wanted" > "$folder/.zorel-requirements"
}

# The interpreter that the program finds: a virtual environment where it looks first below the home folder.
ensure_runtime_python() {
    local minor folder
    for minor in 12 11 10; do
        folder="$HOME/Library/Python/3.$minor"
        if [ -x "$folder/bin/python3" ]; then
            ensure_environment "$folder" sidecar/requirements.txt
            RUNTIME_PYTHON="$folder/bin/python3"
            return
        fi
    done
    minor=$("$(base_python)" -c 'import sys; print(sys.version_info[1])')
    folder="$HOME/Library/Python/3.$minor"
    ensure_environment "$folder" sidecar/requirements.txt
    RUNTIME_PYTHON="$folder/bin/python3"
}

build_preset() { # preset [cmake option...]
    local preset=$1
    shift
    local prefix=()
    on_mac && prefix=("-DCMAKE_PREFIX_PATH=$(brew --prefix qt)")
    if ! cmake --preset "$preset" ${prefix[@]+"${prefix[@]}"} "$@" > "build/$preset-configure.log" 2>&1; then
        cat "build/$preset-configure.log" >&2
        fail "Configuring the build failed."
    fi
    cmake --build --preset "$preset"
}
