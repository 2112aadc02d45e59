#!/bin/bash
# try/knights.sh [FOLDER]: Knights plays a game against the installed Vatro.
. "$(dirname "$(readlink -f "$0")")/common.sh"
begin knights python3
record_vatro
run_client dbus-run-session -- knights
main=$(window '^Knights$')
sleep 4
cat $HOME/.config/knightsrc
xdotool windowfocus $main key ctrl+n
sleep 3
picture x
xdotool search --name . getwindowname %@
fail stop
