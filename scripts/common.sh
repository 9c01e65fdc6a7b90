# What the scripts share: a word on what is being done, and the installation of what is missing.

repository=$(realpath "$(dirname "${BASH_SOURCE[0]}")/..")

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
    'test -e /usr/include/gtest/gtest.h|libgtest-dev'
    'test -e /usr/include/CLI/CLI.hpp|libcli11-dev'
    'test -e /usr/include/nlohmann/json.hpp|nlohmann-json3-dev'
)
test_tools=(
    'have clang++|clang'
    'have pkg-config|pkg-config'
    'compgen -G "$(clang++ -print-resource-dir)/lib/*/libclang_rt.asan-*.a"|libclang-rt-dev'
)
# The linters of another version judge otherwise.
linter_version=14
style_tools=(
    'have clang-format|clang-format'
    'have clang-tidy|clang-tidy'
)
document_tools=(
    'have python3|python3'
    'have pandoc|pandoc'
)
# The Windows build and its package.
windows_tools=(
    'have i686-w64-mingw32-g++-win32|g++-mingw-w64-i686-win32'
    'test -e /usr/src/googletest/CMakeLists.txt|googletest'
    'have i686-w64-mingw32-widl|mingw-w64-tools'
    'test -e /usr/include/wine/wine/windows/oaidl.idl|libwine-dev'
    'test -e /usr/lib/x86_64-linux-gnu/wine/x86_64-windows/stdole2.tlb|libwine'
    'have faketime|faketime'
    'have pandoc|pandoc'
    'have zip|zip'
    'have makensis|nsis'
)
# What runs there, and the tests of the package.
wine_tools=(
    'have x86_64-w64-mingw32-g++-win32|g++-mingw-w64-x86-64-win32'
    'have wine|wine'
    'test -e /usr/lib/i386-linux-gnu/wine/i386-windows/ntdll.dll|wine32:i386'
    'test -e /usr/lib/x86_64-linux-gnu/wine/x86_64-windows/ntdll.dll|wine64'
    'test -e /usr/share/wine/fonts/tahoma.ttf|fonts-wine'
    'have Xvfb|xvfb'
    'have unzip|unzip'
)
# The signed package, and its test.
sign_tools=(
    'have osslsigncode|osslsigncode'
    'have openssl|openssl'
)
coverage_tools=(
    'have llvm-cov|llvm'
)
bench_tools=(
    'test -e /usr/include/benchmark/benchmark.h|libbenchmark-dev'
)
picture_tools=(
    'have xdotool|xdotool'
    'have import|imagemagick'
    'have pango-view|pango1.0-tools'
    'test -e /usr/share/fonts/truetype/dejavu/DejaVuSansMono.ttf|fonts-dejavu-core'
    'have chromium|chromium'
    'have unzip|unzip'
)

# missing_packages ENTRY...: the packages of the entries that aren't there, one a line.
missing_packages() {
    local entry
    for entry in "$@"; do
        eval "${entry%|*}" >/dev/null 2>&1 || printf '%s\n' "${entry##*|}"
    done
}

apt_options=()

# install_missing ENTRY...: installs what is missing; fails, with a word on why, if it can't.
install_missing() {
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
    apt-get "${apt_options[@]}" update -qq >/dev/null 2>&1 || true
    apt-get "${apt_options[@]}" install -y -qq --no-install-recommends --no-remove "${packages[@]}" \
        </dev/null >/dev/null && return 0
    printf 'apt-get could not install %s; %s\n' "${packages[*]}" "$by_hand" >&2
    return 1
}

# install_wine: the same for wine_tools, whose 32-bit Wine belongs to another architecture. Its packages must be of
# the very versions of the machine's own. If one of several suites can't be read for i386, they aren't: then all
# that matters is taken from the main suite, older versions included.
install_wine() {
    [ -n "$(missing_packages "${wine_tools[@]}")" ] || return 0
    if have dpkg && [ "$(id -u)" -eq 0 ]; then
        dpkg --add-architecture i386
    fi
    install_missing "${wine_tools[@]}" && return 0
    have apt-get && [ "$(id -u)" -eq 0 ] || return 1

    say 'trying again from the main suite alone'
    local folder codename status=0
    folder=$(mktemp -d)
    chmod 755 "$folder"
    mkdir -p "$folder/lists/partial"
    codename=$(. /etc/os-release && printf '%s' "${VERSION_CODENAME:-stable}")
    # shellcheck disable=SC2016 # apt-get fills these in
    apt-get indextargets --format '$(REPO_URI) $(RELEASE) $(CODENAME) $(COMPONENT) $(ORIGIN)' \
        'Created-By: Packages' 2>/dev/null |
        awk -v wanted="$codename" '$3 == wanted && $4 == "main" && $5 == "Debian" { print $1, $2; exit }' \
            >"$folder/suite"
    printf 'deb [arch=%s,i386 signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] %s main\n' \
        "$(dpkg --print-architecture)" "$(cat "$folder/suite")" >"$folder/sources.list"
    printf 'Package: *\nPin: release o=Debian\nPin-Priority: 1001\n' >"$folder/preferences"
    local apt_options=( # install_missing sees them: bash's locals reach the functions called
        --allow-downgrades
        -o Dir::Etc::SourceList="$folder/sources.list" -o Dir::Etc::SourceParts=/dev/null
        -o Dir::Etc::Preferences="$folder/preferences" -o Dir::Etc::PreferencesParts=/dev/null
        -o Dir::State::Lists="$folder/lists" -o Dir::Cache::pkgcache= -o Dir::Cache::srcpkgcache=
    )
    install_missing "${wine_tools[@]}" || status=$?
    rm -rf "$folder"
    return "$status"
}

# need ENTRY...: ends a check as skipped if a tool of these isn't there; with CI=true, as failed.
need() {
    local packages
    mapfile -t packages < <(missing_packages "$@")
    [ "${#packages[@]}" -gt 0 ] || return 0
    [ "${CI:-}" != true ] || stop "missing: ${packages[*]}"
    skip "missing: ${packages[*]}"
}

# skip REASON: ends a check as skipped.
skip() {
    printf 'skipped: %s\n' "$*" >&2
    exit 77
}

# start_wine [win64]: an empty Wine, of 32-bit Windows or of 64-bit, and a display, for this script alone. They
# go with the script.
start_wine() {
    need "${wine_tools[@]}"
    say 'starting Wine'
    wine_folder=$(mktemp -d) || return 1
    wine_display=
    trap stop_wine EXIT
    export WINEPREFIX=$wine_folder/prefix WINEARCH=${1:-win32} WINEDEBUG=-all
    # Neither its browser nor its debugger, which would wait for somebody after a crash.
    export WINEDLLOVERRIDES='mscoree=;mshtml=;winedbg.exe='

    Xvfb -displayfd 3 -screen 0 1024x768x24 -dpi 96 -nolisten tcp -noreset \
        3>"$wine_folder/display" >"$wine_folder/log" 2>&1 </dev/null &
    wine_display=$!
    local try
    for try in {1..100}; do
        [ -s "$wine_folder/display" ] && break
        sleep 0.1
    done
    [ -s "$wine_folder/display" ] || return 1
    DISPLAY=:$(cat "$wine_folder/display")
    export DISPLAY

    # A copy of an empty Wine, which takes much longer to make.
    local empty=$repository/build/$WINEARCH
    mkdir -p "$repository/build"
    (
        flock 9
        [ -d "$empty" ] || make_wine "$empty" 9>&-
    ) 9>"$empty.lock" || return 1
    cp -a "$empty" "$WINEPREFIX" || return 1
    # Its server, and the services that the first program starts, stay for the whole script. wineboot would start
    # every service a second time, and neither would answer.
    wineserver -p </dev/null >"$wine_folder/log" 2>&1
}

# make_wine FOLDER
make_wine() {
    # Debian's Wine doesn't find its own fonts, Tahoma among them.
    mkdir -p "$WINEPREFIX/drive_c/windows/Fonts"
    cp /usr/share/wine/fonts/*.ttf "$WINEPREFIX/drive_c/windows/Fonts" || return 1
    wineserver -p </dev/null >"$wine_folder/log" 2>&1 || return 1
    # There is no window manager to wait for: Wine draws the frames itself.
    on_wine reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d N /f >/dev/null || return 1
    wineserver -k && wineserver -w && mv "$WINEPREFIX" "$1"
}

stop_wine() {
    timeout -k 5 20 wineserver -k || true
    timeout -k 5 20 wineserver -w || true
    if [ -n "$wine_display" ]; then
        kill "$wine_display" 2>/dev/null || true
        wait "$wine_display" 2>/dev/null || true
    fi
    rm -rf "$wine_folder"
}

# on_wine PROGRAM...: runs it and shows its output. It goes by a file, as Wine's server, which may be started
# by any program, would hold a pipe open.
on_wine() {
    local status=0
    LC_ALL=C.UTF-8 timeout -k 5 120 wine "$@" </dev/null >"$wine_folder/output" 2>&1 || status=$?
    tr -d '\r' <"$wine_folder/output"
    return "$status"
}

# build PRESET [TARGET...]: configures and builds; shows what went wrong, and nothing else.
build() {
    local preset=$1
    shift
    local log=build/$preset.log
    mkdir -p build
    say "building build/$preset"
    if ! { cmake --preset "$preset" && cmake --build --preset "$preset" ${1:+--target "$@"}; } >"$log" 2>&1; then
        grep -vE '^\[[0-9]+/[0-9]+\]|^-- ' "$log" >&2 || true
        return 1
    fi
}
