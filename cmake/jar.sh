#!/bin/sh
# jar.sh JAR DATE -cf|-cfm FILE [MANIFEST] WHAT...: runs the JDK's jar as CMake's add_jar calls it,
# with one date for all entries, which its short options have no room for.
set -eu
jar=$1 date=$2 mode=$3 file=$4
shift 4
case $mode in
    -cf) exec "$jar" --create --date="$date" --file="$file" "$@" ;;
    -cfm) exec "$jar" --create --date="$date" --file="$file" --manifest="$@" ;;
    *) echo "jar.sh: $mode is none of -cf and -cfm" >&2; exit 2 ;;
esac
