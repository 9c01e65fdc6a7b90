# What the scripts share: a word on what is being done, and the installation of what is missing.

say() { printf '== %s\n' "$*"; }

stop() {
    printf 'stopped: %s\n' "$*" >&2
    exit 1
}

have() { command -v "$1" >/dev/null 2>&1; }

# What builds the component natively, and what else the tests want: how to see that it is there, and the
# Debian package that brings it.
build_tools=(
    'have g++|g++'
    'have cmake|cmake'
    'have ninja|ninja-build'
)
test_tools=(
    'test -e /usr/include/gtest/gtest.h|libgtest-dev'
    'have clang++|clang'
    'compgen -G "/usr/lib/llvm-*/lib/clang/*/lib/linux/libclang_rt.asan-*.a"|libclang-rt-14-dev'
)
style_tools=(
    'have clang-format|clang-format'
    'have clang-tidy|clang-tidy'
)

# missing_packages ENTRY...: the packages of the entries that aren't there, one a line.
missing_packages() {
    local entry
    for entry in "$@"; do
        eval "${entry%|*}" >/dev/null 2>&1 || printf '%s\n' "${entry##*|}"
    done
}

# install ENTRY...: installs what is missing; fails, with a word on why, where it can't.
install() {
    local packages
    mapfile -t packages < <(missing_packages "$@")
    [ "${#packages[@]}" -gt 0 ] || return 0
    local by_hand="install them by hand; on Debian, as root: apt-get install ${packages[*]}"
    if ! have apt-get; then
        printf 'missing: %s. This system has no apt-get; %s\n' "${packages[*]}" "$by_hand" >&2
        return 1
    fi
    if [ "$(id -u)" -ne 0 ]; then
        printf 'missing: %s. Only root can install packages; %s\n' "${packages[*]}" "$by_hand" >&2
        return 1
    fi
    say "installing ${packages[*]}"
    export DEBIAN_FRONTEND=noninteractive
    # An index that can't be read is no reason to stop: the others may suffice.
    apt-get update -qq >/dev/null 2>&1 || true
    apt-get install -y -qq --no-install-recommends "${packages[@]}" >/dev/null && return 0
    printf 'apt-get could not install %s; %s\n' "${packages[*]}" "$by_hand" >&2
    return 1
}

# build PRESET [TARGET...]: configures and builds; shows what went wrong, and nothing else.
build() {
    local preset=$1
    shift
    local log=build/$preset.log
    mkdir -p build
    say "building build/$preset"
    if ! { cmake --preset "$preset" && cmake --build --preset "$preset" ${1:+--target "$@"}; } >"$log" 2>&1; then
        grep -vE '^\[[0-9]+/[0-9]+\]|^-- ' "$log" >&2
        return 1
    fi
}
