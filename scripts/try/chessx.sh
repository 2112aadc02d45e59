#!/bin/bash
# try/chessx.sh [FOLDER]: ChessX plays a game against the installed Vatro.
. "$(dirname "$(readlink -f "$0")")/common.sh"
begin chessx python3
record_vatro
run_client chessx
sleep 10
picture y
xdotool search --name . getwindowname %@
find $HOME -type f | head -20
cat $(find $HOME -type f -name "*chessx*" | head -1)
cat $work/client.log | tail -5
fail stop
