# The Debian packages this project needs, and how they get onto the machine. Sourced by ./run and ./test.
# shellcheck shell=bash disable=SC2034

build_packages=(
    cmake g++ ninja-build pkg-config git
    qt6-base-dev libqcustomplot-dev zlib1g-dev libgtest-dev libbenchmark-dev mold
)

# A display for machines without one, and what plays the engine's part.
run_packages=(
    xvfb xauth python3
)

test_packages=(
    clang clang-format clang-tidy clang-tools cppcheck shellcheck libclang-rt-14-dev binutils
    direwolf openbox xdotool xclip imagemagick poppler-utils iproute2
    python3-pyatspi python3-sgp4 python3-ephem python3-skyfield python3-astropy python3-icalendar
    appstream at-spi2-core dbus-daemon desktop-file-utils dpkg-dev fakeroot file lintian man-db openssl systemd
    curl jq mosquitto mosquitto-clients
)

# missing_packages PACKAGE... : prints those that are not installed.
missing_packages() {
    local installed
    installed=" $(dpkg-query -W -f '${db:Status-Abbrev}${Package} ' "$@" 2>/dev/null || true)"
    local package
    for package in "$@"; do
        [[ $installed == *"ii $package "* ]] || printf '%s ' "$package"
    done
}

# need_packages PACKAGE... : installs what is missing; says what to install where it cannot.
need_packages() {
    if ! command -v apt-get >/dev/null || ! command -v dpkg-query >/dev/null; then
        local tool absent=()
        for tool in cmake g++ ninja; do
            command -v "$tool" >/dev/null || absent+=("$tool")
        done
        if ((${#absent[@]})); then
            echo "This system has no apt. Please install what these Debian packages hold, then start again:" >&2
            printf '  %s\n' "$*" >&2
            exit 1
        fi
        return
    fi
    local missing
    missing=$(missing_packages "$@")
    [[ -n $missing ]] || return 0
    echo "Installing: $missing"
    local root=()
    if ((EUID != 0)); then
        if ! command -v sudo >/dev/null; then
            echo "These packages are missing, and only root can install them: $missing" >&2
            exit 1
        fi
        root=(sudo)
    fi
    local apt=("${root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get)
    local options=(-o Acquire::Retries=3 -o DPkg::Lock::Timeout=300)
    "${apt[@]}" "${options[@]}" -qq update
    # shellcheck disable=SC2086 # one word a package
    "${apt[@]}" "${options[@]}" -qq install --yes --no-install-recommends $missing </dev/null
}

# Compiled objects are kept between builds where ccache is installed; it is not asked for. It looks at precompiled headers
# only when told that they may be taken for what they are.
use_ccache() {
    if command -v ccache >/dev/null && [[ -z ${CMAKE_CXX_COMPILER_LAUNCHER:-} ]]; then
        export CMAKE_CXX_COMPILER_LAUNCHER=ccache
        export CCACHE_SLOPPINESS=${CCACHE_SLOPPINESS:-pch_defines,time_macros}
    fi
}
