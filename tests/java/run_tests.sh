#!/bin/bash
# run_tests.sh LIB_DIR WORK_DIR JAVA ARGUMENT...
#
# Runs a virtual machine, with JUnit or the load run, that passes the configuration's uid test and
# finds the phone's files in a folder of its own.
set -eu

lib=$1 work=$2
shift 2
rm -rf "$work"
mkdir -p "$work"/device/{system/etc,proc/net/xt_qtaguid}
export ZOREN_DEVICE_ROOT=$work/device ZOREN_LOG_FILE=$work/log LC_ALL=C.UTF-8
export LD_PRELOAD=libzoren_device_root.so LD_LIBRARY_PATH=$lib
if [[ $(id -u) != 0 ]]; then
    if ! unshare -Ur true 2>/dev/null; then
        echo "The configuration is for uid 0: run the tests as root, or where user namespaces are" >&2
        exit 1
    fi
    set -- unshare -Ur "$@"
fi
# The phone's own log writes to standard error, whatever the variable names.
[[ -f $lib/liblog.so ]] || exec 2>>"$ZOREN_LOG_FILE"
exec "$@"
