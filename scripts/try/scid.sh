#!/bin/bash
# try/scid.sh [FOLDER]: Scid analyses a position with the installed Vatro.
. "$(dirname "$(readlink -f "$0")")/common.sh"
begin scid
record_vatro

mkdir -p "$HOME/.scid4.7/config"
cp "$repository/packaging/scid/engines.dat" "$HOME/.scid4.7/config/"
run_client scid
sleep 8; picture y; xdotool search --name . getwindowname %@; tail $work/client.log; exit 1
sleep 1
xdotool windowclose "$tip"
main=$(window '^Scid -')
xdotool windowfocus "$main" key F2
sleep 8
picture x
xdotool search --name . getwindowname %@
tail $work/said
cat $work/heard
sed -n 1,40p $HOME/.scid4.7/config/engines.dat
fail stop
