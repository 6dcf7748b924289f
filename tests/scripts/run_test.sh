#!/usr/bin/env bash
# run_test.sh: the scripts in a copy that is no repository, on a machine whose programs are those
# below: no git; a cmake that cannot run twice at a time; an apt whose lists are locked at first.
set -euo pipefail
root=$(cd "$(dirname "$(readlink -f "$0")")/../.." && pwd)
source "$root/tests/checks.sh"
work=$(mktemp -d)
trap 'chmod -R u+w "$work"; rm -rf "$work"' EXIT
chmod 755 "$work"

tree=$work/tree
mkdir "$tree" "$work/bin" "$work/made"
tar -C "$root" -c --exclude=./build --exclude=./out --exclude=./.git . | tar -C "$tree" -x
program() { { echo '#!/bin/bash'; cat; } >"$work/bin/$1" && chmod 755 "$work/bin/$1"; }
program git <<<'exit 127'
program cmake <<END
mkdir "$work/busy" || exit 1
echo "\$@" >>"$work/cmake.log"
sleep 0.2
if [ "\$1" = --build ]; then
    cd "build/\$3" && mkdir -p bin lib && touch build.ninja lib/libzoren_runtime.so lib/zoren-cli.jar
    for name in zoren zoren_tests zoren_msan_test; do
        echo 'echo "ran \$*"' >bin/\$name && chmod 755 bin/\$name
    done
else
    mkdir -p "build/\$2"
fi
rmdir "$work/busy"
END
program dpkg-query <<END
shift 2
for package; do [ -f "$work/lacking" ] || echo "\$package:all installed"; done
END
program apt-get <<END
echo "\$@" >>"$work/apt.log"
[[ \$1 == update && ! -f $work/unlocked ]] || exit 0
touch "$work/unlocked"
echo 'E: Could not get lock /var/lib/apt/lists/lock. It is held by process 7 (apt-get)'
exit 100
END
program sudo <<<'exec "$@"'
program clang-format <<<'printf "%s\n" "$@"'
for name in ctest clang-tidy; do program "$name" <<<"echo \"$name \$*\" >>$work/made/log"; done
program cppcheck <<<''
export PATH=$work/bin:$PATH
builds() { grep -c -- --build "$work/cmake.log"; }

# Many at once where nothing is built, and where a source, or only a folder, is newer: one builds.
for change in '' 'echo >>blur/blur_request.cpp' 'rm fuzz/targets.h'; do
    (cd "$tree" && eval "$change")
    for i in {1..12}; do "$tree/scripts/run" a b >"$work/out$i" 2>&1 & done
    wait
    equal "parallel after '$change'" "12 $((${n-0} + 1))" \
        "$(cat "$work"/out* | grep -cx 'ran a b') $(builds)"
    n=$(builds)
done

# A tree that nobody may write, for one who does not own it.
chmod -R a-w "$tree"
as_other=()
[ "$(id -u)" -ne 0 ] || as_other=(setpriv --reuid=65534 --regid=65534 --clear-groups)
other() { (cd / && HOME=/ "${as_other[@]}" "$tree/scripts/run" "$@" 2>&1 || true); }
equal 'a built tree that cannot be written' 'ran gray' "$(other gray)"
touch -d '1 minute' "$tree/CMakeLists.txt"
equal 'a stale tree that cannot be written' 'build/release is older than the sources' \
    "$(other gray | sed 's/,.*//')"
chmod -R u+w "$tree"

touch "$work/lacking"
"$tree/scripts/run" >/dev/null 2>&1 || true
equal 'apt waits' 'update update -o DPkg::Lock::Timeout=600 install' \
    "$(cut -d ' ' -f 1-3 "$work/apt.log" | xargs)"
rm "$work/lacking"

# No git: every source is laid out and checked, but nothing that was built.
sources() { (cd "$tree" && find "$@" -name '*.cpp' | wc -l); }
mkdir -p "$tree/build/x" && touch "$tree/build/x/made.cpp"
equal 'format' "$(sources analysis bench blur config device examples fuzz jni net platform tests)" \
    "$("$tree/scripts/format" | grep -c '\.cpp$')"
# Two files are for 64-bit ARM alone.
equal 'check' "$(($(sources jni blur analysis config net platform device) - 2))" \
    "$("$tree/scripts/check" >"$work/check.log" 2>&1 || cat "$work/check.log"
        grep -o '[^ ]*\.cpp' "$work/made/log" | sort -u | wc -l)"
echo "$checks checks passed, 0 failed"
