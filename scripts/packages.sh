# Sourced by the other scripts: what they need from Debian, and how it is installed and built.

run_packages=(cmake ninja-build clang libhwy-dev libssl-dev openjdk-17-jdk-headless
    libpicocli-java libjackson2-core-java libmetadata-extractor-java libxmpcore-java
    libtwelvemonkeys-java)
test_packages=(libgtest-dev libclang-rt-14-dev junit5 libxml2-utils pkg-config)
package_packages=(help2man dpkg-dev lintian)
docs_packages=(help2man pandoc doxygen mandoc linkchecker)
check_packages=(clang-format clang-tidy cppcheck g++)
arm64_packages=(qemu-user-static g++-aarch64-linux-gnu
    libssl-dev:arm64 libgtest-dev:arm64 openjdk-17-jre-headless:arm64)
device_packages=(blueprint-tools
    android-liblog-dev android-libnativehelper-dev android-libboringssl-dev
    android-liblog:arm64 android-libnativehelper:arm64 android-libboringssl:arm64)
bench_packages=(libbenchmark-dev python3-matplotlib python3-jinja2)
peer_packages=(libopencv-imgproc-dev libyuv-dev python3-dev python3-pil pkg-config)
model_packages=(llvm-19 qemu-user g++-aarch64-linux-gnu
    libssl-dev:arm64 libopencv-imgproc-dev:arm64 libyuv-dev:arm64)

# Runs a command as root: directly, or through sudo for a plain user.
as_root() {
    if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

# Installs the given packages that are missing; silent when none is.
install_missing() {
    local missing=() package native installed
    native=$(dpkg --print-architecture)
    # One line a package and architecture that it is known for.
    installed=$(dpkg-query -W -f='${Package}:${Architecture} ${db:Status-Status}\n' "${@%:*}" \
        2>/dev/null | sed -n 's/ installed$//p') || true
    for package in "$@"; do
        case $'\n'$installed$'\n' in
            *$'\n'"${package%:*}:all"$'\n'*) [[ $package != *:* ]] || missing+=("$package") ;;
            *$'\n'"$package"$'\n'* | *$'\n'"$package:$native"$'\n'*) ;;
            *) missing+=("$package") ;;
        esac
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    if [ "$(id -u)" -ne 0 ] && ! command -v sudo >/dev/null; then
        echo "Packages are missing, and there is no sudo. As root:" >&2
        echo "    apt-get update && apt-get install ${missing[*]}" >&2
        return 1
    fi
    echo "Installing ${missing[*]} (some minutes) ..."
    quietly update_lists
    quietly as_root env DEBIAN_FRONTEND=noninteractive apt-get -o DPkg::Lock::Timeout=600 \
        install -y --no-install-recommends "${missing[@]}"
}

# apt waits for another one's lock when it installs, but not when it updates its lists: ten minutes.
update_lists() {
    local log tries
    for ((tries = 0; tries < 300; ++tries)); do
        if log=$(as_root env LC_ALL=C apt-get update 2>&1); then return 0; fi
        if [[ $log != *"Could not get lock"* ]]; then break; fi
        sleep 2
    done
    echo "$log" >&2
    return 1
}

# Makes arm64 a foreign architecture of this machine, with what the builds for it need.
add_arm64() {
    dpkg --print-foreign-architectures | grep -qx arm64 || as_root dpkg --add-architecture arm64
    install_missing "${arm64_packages[@]}" "${device_packages[@]}"
}

# Runs a command and shows what it printed only when it fails.
quietly() {
    local log status
    log=$(mktemp)
    if "$@" >"$log" 2>&1; then status=0; else status=$?; cat "$log" >&2; fi
    rm -f "$log"
    return "$status"
}

# Whether the last whole build of a preset began after every change of a file in $root, or of a
# folder: that is what a file that goes leaves behind. Takes some hundredths of a second.
current() {
    local built=$root/build/$1/built made newer
    for made in "$built" "${built%/*}"/{bin/zoren,lib/libzoren_runtime.so,lib/zoren-cli.jar}; do
        [ -f "$made" ] || return 1
    done
    newer=$(find "$root" -mindepth 1 \
        \( -path "$root/build" -o -path "$root/out" -o -path "$root/.git" \) -prune -o \
        -newer "$built" -print -quit) && [ -z "$newer" ]
}

# build PRESET [--target NAME]: configures and builds a preset in $root; silent but for one line the
# first time. Others that build it meanwhile wait.
build() {
    local folder=$root/build/$1
    if [ ! -w "$root" ] || { [ -e "$folder" ] && [ ! -w "$folder" ]; }; then
        if [ -f "$folder/built" ]; then
            echo "build/$1 is older than the sources, and $(id -un) cannot write in $root:" \
                "its owner must build it again, or build in a clone of your own" >&2
        else
            echo "$root cannot be written by $(id -un): build in a clone of your own" >&2
        fi
        return 1
    fi
    mkdir -p "$root/build" && (flock 9 && locked_build "$@") 9>"$folder.lock"
}

locked_build() {
    if [ "${only_if_stale-}" ] && current "$1"; then return; fi
    [ -f "$folder/build.ninja" ] || echo "Building build/$1 ..."
    touch "$folder.begun"  # what changes while it is built is newer
    cd "$root" && quietly cmake --preset "$1" 9>&- && quietly cmake --build --preset "$@" 9>&- &&
        if [ $# -eq 1 ]; then mv "$folder.begun" "$folder/built"; fi
}

# The same, when it is not current.
build_if_stale() {
    current "$1" || only_if_stale=yes build "$1"
}
