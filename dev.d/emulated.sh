# shellcheck shell=bash disable=SC2034 # 'dev' uses the variables
# What './dev test --arm64' does on an x86-64 Debian: arm64 packages of Debian's, unpacked into a folder
# that stands for such a machine's file system, and an emulator. Nothing foreign is installed.

arm64_root=build/arm64-root

# Where './dev' keeps what apt knows of that machine.
arm64_apt=build/arm64-apt

# LLVM's needs are left out: nothing of it is run, and its archives are linked.
arm64_packages() {
    local v
    v=$(llvm_version)
    echo libgnustep-base1.28 "libobjc-$(gcc_version)-dev" "libstdc++-$(gcc_version)-dev" libffi-dev libicu-dev \
        libedit-dev libmd4c-dev libmd4c-html0-dev libcli11-dev nlohmann-json3-dev libgtest-dev libgmock-dev libbenchmark-dev \
        libzstd1 zlib1g
    echo libgnustep-base-dev "llvm-$v-dev"
}

# As apt on that machine, with this one's sources.
arm64_apt_get() { APT_CONFIG=$arm64_apt/apt.conf apt-get "$@"; }

# Each step only after the one before: 'set -e' does not hold where failure is asked for.
fetch_arm64_packages() {
    local whole alone
    { read -r whole && read -r alone; } < <(arm64_packages) || return
    rm -rf "$arm64_apt"
    mkdir -p "$arm64_apt"/{lists,cache/archives}/partial "$arm64_apt/state"
    : >"$arm64_apt/status"
    cat >"$arm64_apt/apt.conf" <<CONF
APT::Architecture "arm64";
APT::Architectures { "arm64"; };
APT::Install-Recommends "false";
APT::Sandbox::User "root";
Dir::State "$PWD/$arm64_apt/state";
Dir::State::Lists "$PWD/$arm64_apt/lists";
Dir::State::status "$PWD/$arm64_apt/status";
Dir::Cache "$PWD/$arm64_apt/cache";
CONF
    arm64_apt_get update -q || return
    # shellcheck disable=SC2086 # names, one a word
    arm64_apt_get install -y -q --download-only $whole || return
    # shellcheck disable=SC2086
    (cd "$arm64_apt/cache/archives" && APT_CONFIG=$OLDPWD/$arm64_apt/apt.conf apt-get download -q $alone)
}

# Packages, and the emulated host in place of this machine's; where that is arm64, it is the one.
need_arm64() {
    if [ "$(uname -m)" = aarch64 ]; then
        need_packages
        return
    fi
    need_packages qemu-user-static
    host=linux-arm64
    local wanted
    wanted=$(arm64_packages)
    [ "$(cat $arm64_root/.unpacked 2>/dev/null)" != "$wanted" ] || return 0
    echo "Fetching Debian's packages for arm64 (100 MB) into $arm64_root" >&2
    mkdir -p build
    if ! fetch_arm64_packages >build/arm64-packages.log 2>&1; then
        tail -20 build/arm64-packages.log >&2
        fail "fetching packages failed; the whole log is build/arm64-packages.log"
    fi
    rm -rf $arm64_root
    mkdir -p $arm64_root
    local package
    for package in "$arm64_apt"/cache/archives/*.deb; do
        dpkg -x "$package" $arm64_root || fail "$package cannot be unpacked"
    done
    rm -rf $arm64_apt
    echo "$wanted" >$arm64_root/.unpacked
}
