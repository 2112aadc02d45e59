#!/bin/bash
# try/polyglot.sh [FOLDER]: XBoard plays a timed game with the installed Vatro as a UCI engine, through
# the adapter Polyglot.
. "$(dirname "$(readlink -f "$0")")/common.sh"
begin xboard polyglot hoichess
record_vatro

games=$work/games.pgn
run_client xboard -settingsFile "$work/xboardrc" -saveSettingsFile "$work/xboardrc" -size large \
    -fcp vatro -fUCI -scp hoichess -mg 1 -tc 0:20 -mps 40 -sgf "$games" -showThinking true
wait_for 300 grep -q '^\[Result "[^*]' "$games"
picture polyglot
grep -qx uci "$work/heard" || fail "Vatro was not asked for UCI"
grep -q '^bestmove ' "$work/said"
cat "$games"
