# shellcheck shell=bash disable=SC2034 # 'dev' uses the variables
# What './dev' does on a Mac: Xcode's command line tools, Homebrew's packages, and the host for macOS,
# with the bundle alone. dev.d/debian.sh says the same for Debian.
#
# The host is for this machine's processor, and runs the bundle's slice for it.

host=macos-host # the preset of the reference host, and the folder of its build
images=(build/macos/NSProcessInfoZKT.bundle)
lint_build=build/lint

processors() { getconf _NPROCESSORS_ONLN; }

need_tools() {
    xcode-select -p >/dev/null 2>&1 || fail "needs Xcode's command line tools: xcode-select --install"
    command -v brew >/dev/null || fail "needs Homebrew, which https://brew.sh installs"
}

# brewed FORMULAE...: installs those that are missing.
brewed() {
    local formula missing=
    for formula in "$@"; do
        [ -d "$(brew --prefix "$formula")" ] || missing="$missing $formula"
    done
    [ -n "$missing" ] || return 0
    echo "Installing:$missing" >&2
    # shellcheck disable=SC2086 # names, one a word
    brew install --quiet $missing >&2 || fail "installing packages failed; see above"
}

# sources FORMULAE...: unpacks what Homebrew builds them from into build/sources.
sources() {
    local formula folder
    for formula in "$@"; do
        folder=build/sources/$formula
        [ ! -f "$folder/.unpacked" ] || continue
        echo "Fetching the sources of $formula" >&2
        brew fetch --quiet --build-from-source "$formula" >&2 ||
            fail "fetching the sources of $formula failed; see above"
        rm -rf "$folder"
        mkdir -p "$folder"
        tar -xf "$(brew --cache --build-from-source "$formula")" -C "$folder" --strip-components 1
        touch "$folder/.unpacked"
    done
}

need_packages() {
    need_tools
    brewed cmake ninja cli11 nlohmann-json icu4c
    sources google-benchmark googletest md4c
}

need_lint_packages() {
    need_packages
    brewed llvm shellcheck
}

need_format_packages() {
    need_tools
    brewed llvm
}

# tool NAME: the path of one of LLVM's programs.
tool() { printf '%s\n' "$(brew --prefix llvm)/bin/$1"; }

# The SDK that bundle and host are built against, where nobody names one.
make_sdk() { real_folder "$(xcrun --sdk macosx --show-sdk-path)"; }

# configure_slice PROCESSOR SDK. A compiler that is newer than ours may find more to warn of.
configure_slice() { configure "macos-$1" "-DCMAKE_OSX_SYSROOT:PATH=$2" -DWARNINGS_AS_ERRORS=OFF; }

# The program that joins slices.
lipo() { xcrun --find lipo; }

# mac_host OPTIONS...
mac_host() {
    configure "$host" "$@" "-DCMAKE_OSX_ARCHITECTURES=$(uname -m)" "-DCMAKE_OSX_SYSROOT:PATH=$(make_sdk)" -DWARNINGS_AS_ERRORS=OFF \
        -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        "-DCMAKE_PREFIX_PATH=$(brew --prefix);$(brew --prefix icu4c)"
}

configure_host() { [ -f "build/$host/build.ninja" ] || mac_host; }

build_for_elsewhere() { :; }

# Precompiled headers of Apple's compiler are none of Homebrew's clang-tidy's.
configure_lint() {
    [ -f "$lint_build/build.ninja" ] ||
        mac_host -B "$lint_build" -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON
}
