# Sourced by the other scripts: what they need from Debian, and how it is installed and built.

run_packages=(cmake ninja-build clang libhwy-dev libssl-dev openjdk-17-jdk-headless
    libpicocli-java libjackson2-core-java libmetadata-extractor-java libxmpcore-java)
test_packages=(libgtest-dev libclang-rt-14-dev junit5 libxml2-utils)
check_packages=(clang-format clang-tidy cppcheck g++)
arm64_packages=(qemu-user-static g++-aarch64-linux-gnu
    libssl-dev:arm64 libgtest-dev:arm64 openjdk-17-jre-headless:arm64)
bench_packages=(libbenchmark-dev python3-matplotlib)
peer_packages=(libopencv-imgproc-dev libyuv-dev python3-dev python3-pil pkg-config)
model_packages=(llvm-19)

# Runs a command as root: directly, or through sudo for a plain user.
as_root() {
    if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

# Installs the given packages that are missing; silent when none is.
install_missing() {
    local missing=() package native
    native=$(dpkg --print-architecture)
    for package in "$@"; do
        # One line an architecture that the package is known for.
        dpkg-query -W -f='${Architecture} ${db:Status-Status}\n' "${package%:*}" 2>/dev/null |
            case $package in
                *:*) grep -qx "${package#*:} installed" ;;
                *) grep -qxE "($native|all) installed" ;;
            esac || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    if [ "$(id -u)" -ne 0 ] && ! command -v sudo >/dev/null; then
        echo "Packages are missing, and there is no sudo. As root:" >&2
        echo "    apt-get update && apt-get install ${missing[*]}" >&2
        return 1
    fi
    echo "Installing ${missing[*]} (a minute or two) ..."
    quietly as_root apt-get update
    quietly as_root env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y --no-install-recommends "${missing[@]}"
}

# Runs a command and shows what it printed only when it fails.
quietly() {
    local log status
    log=$(mktemp)
    if "$@" >"$log" 2>&1; then status=0; else status=$?; cat "$log" >&2; fi
    rm -f "$log"
    return "$status"
}

# Configures and builds one preset in $root; silent but for one line the first time.
build() {
    if [ ! -w "$root" ]; then
        echo "$root cannot be written by $(id -un): build in a clone of your own" >&2
        return 1
    fi
    [ -f "$root/build/$1/build.ninja" ] || echo "Building build/$1 ..."
    (cd "$root" && quietly cmake --preset "$1" && quietly cmake --build --preset "$1")
}
