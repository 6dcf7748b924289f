#!/bin/bash
# launcher_test.sh LAUNCHER WORK_DIR
#
# The launcher through a link, from another folder, with blanks in both names.
set -eux

rm -rf "$2"
mkdir -p "$2/my phone/proc/net/xt_qtaguid"
cd "$2"
ln -s "$1" "a link"
echo "2 lo 0x0 7 0 1 2 3 4" >"my phone/proc/net/xt_qtaguid/stats"
[[ $("./a link" traffic lo 7 --device-root "my phone" --counter tx-bytes) == 3 ]]
[[ $("./a link" traffic lo 7 --device-root="my phone" --counter rx-bytes) == 1 ]]
[[ $("./a link" traffic lo >&2 || echo $?) == 2 ]]
for command in blur gray cast config traffic seal generate-completion; do
    [[ $("./a link" $command --help) == *"Usage: zoren $command"*"Exit codes:"* ]]
done
echo "10 checks passed, 0 failed"
