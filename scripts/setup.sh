# Sourced by run.sh, test.sh, .ci/run and the scripts beside it: packages, configuring, building. Prints what it does.
# shellcheck shell=bash disable=SC2034

KV_ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"

# Needed to configure and build, and to show something.
KV_BUILD_PACKAGES=(
    cmake ninja-build g++ ccache pkg-config
    libgl-dev libopengl-dev libglu1-mesa-dev libglew-dev libegl-dev libx11-dev libxtst-dev
    libeigen3-dev libnanoflann-dev libpng-dev libjpeg62-turbo-dev libwebp-dev libfreetype-dev libfontconfig-dev libzstd-dev libxxhash-dev libassimp-dev libseccomp-dev
    qt6-base-dev qt6-l10n-tools qt6-translations-l10n nlohmann-json3-dev libcli11-dev libgtest-dev libgmock-dev libbenchmark-dev
    libgl1-mesa-dri libglx-mesa0 libegl-mesa0
    fonts-liberation
)
# Needed to run the tests without a display, and the pictures on several drivers (scripts/with_driver.sh).
KV_TEST_PACKAGES=(
    xvfb openbox xdotool locales binutils mesa-vulkan-drivers virgl-server libgtk-3-dev libsdl2-dev
    python3 python3-numpy python3-pyqt6 python3-pip python3-setuptools python3-wheel python3-venv
    python3-dask python3-distributed python3-nbclient python3-nbformat python3-ipykernel mypy
)
# Needed for the fuzz harnesses, the format and lint checks and the include graph.
KV_DEVELOPMENT_PACKAGES=(clang libclang-rt-dev clang-format clang-tidy git python3)
# Needed for scripts/coverage.sh.
KV_COVERAGE_PACKAGES=(gcovr)

say() { printf '==> %s\n' "$*"; }

complain() { printf '%s: %s\n' "$(basename "$0")" "$*" >&2; }

# install_missing PACKAGE...: apt-get runs only when dpkg knows that something is missing.
install_missing() {
    if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
        say "this is not a Debian system: the packages must be there already ($*)"
        return 0
    fi
    local package installed missing=()
    installed="$(dpkg-query -W -f '${Package} ${db:Status-Status}\n' "$@" 2>/dev/null || true)"
    for package in "$@"; do
        grep -qxF "$package installed" <<<"$installed" || missing+=("$package")
    done
    ((${#missing[@]} == 0)) && return 0

    local as_root=()
    if [[ $(id -u) -ne 0 ]]; then
        if ! command -v sudo >/dev/null; then
            complain "these packages are missing, and there is neither root nor sudo to install them: ${missing[*]}"
            return 1
        fi
        as_root=(sudo)
    fi
    say "installing ${missing[*]}"
    # The list of packages may be old or empty: on a bare machine nothing is found without the update.
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get update -qq
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}"
}

# configure_preset PRESET: into build/PRESET; when a CMake file changes later, ninja configures again.
configure_preset() {
    local folder="$KV_ROOT/build/$1"
    [[ -f "$folder/build.ninja" ]] && return 0
    say "configuring build/$1"
    (cd "$KV_ROOT" && cmake --preset "$1")
}

# build_preset PRESET [TARGET...]
build_preset() {
    local preset="$1" targets=()
    shift
    (($# > 0)) && targets=(--target "$@")
    say "building build/$preset: ${*:-everything}"
    (cd "$KV_ROOT" && cmake --build --preset "$preset" --parallel "$(nproc)" "${targets[@]}")
}
