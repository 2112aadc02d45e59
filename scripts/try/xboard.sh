#!/bin/bash
# try/xboard.sh [FOLDER]: XBoard lists the installed Vatro and plays a game with it, and a tournament of
# four games.
. "$(dirname "$(readlink -f "$0")")/common.sh"
begin xboard hoichess

# XBoard takes the home folder from the password file, so it is told where its settings are.
settings=$work/xboardrc
xboard() {
    run_client xboard -settingsFile "$settings" -saveSettingsFile "$settings" \
        -saveSettingsOnExit true -size large "$@"
}
games=$work/games.pgn
finished() { [ "$(grep -c '^\[Result "[^*]' "$games")" = "$1" ]; }

# A new user's XBoard lists the engines that have plugin files: Engine / Load New 1st Engine.
xboard -ncp
main=$(window xboard)
sleep 2
xdotool windowfocus "$main" key alt+n
sleep 1
xdotool key Down Return
sleep 2
picture xboard-list
xdotool key Escape
sleep 1
xdotool windowfocus "$main" key ctrl+q
wait_for 20 grep -qx 'vatro' "$settings"

# The game, by the name in that list.
xboard -fe vatro -scp hoichess -mg 1 -tc 0:20 -mps 40 -sgf "$games" -showThinking true
wait_for 300 finished 1
picture xboard
grep -q '^\[White "Vatro 0' "$games" || fail "White was not Vatro"

# The tournament, each against each, twice with either colour.
rm "$games"
cat > "$work/tourney.trn" <<END
-participants {vatro
hoichess
}
-tourneyType 0
-tourneyCycles 4
-defaultMatchGames 1
-timeControl "0:10"
-movesPerSession 40
-timeIncrement -1
-saveGameFile "$games"
-results ""
END
sed -i 's/^vatro$/&\nhoichess/' "$settings"  # hoichess has no plugin file
xboard -tf "$work/tourney.trn" -mm -matchPause 1000
wait_for 600 finished 4
sleep 2
picture xboard-tournament
grep -q '^-results "[-+=]\{4\}"' "$work/tourney.trn" || fail "the tournament has no four results"
cat "$games"
