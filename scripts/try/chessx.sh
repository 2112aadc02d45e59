#!/bin/bash
# try/chessx.sh [FOLDER]: ChessX lets the installed Vatro play a game against a weak engine, to mate, and
# shows what it thinks.
. "$(dirname "$(readlink -f "$0")")/common.sh"
begin chessx
program=$(command -v vatro)
record_vatro

# The other engine: Vatro, but it looks only one ply far.
cat > "$work/bin/weak" <<END
#!/bin/bash
sed -u 's/^go .*/go depth 1/' | "$program"
END
chmod +x "$work/bin/weak"
mkdir -p "$XDG_CONFIG_HOME/chessx"
cat "$repository/packaging/chessx/chessx.ini" - > "$XDG_CONFIG_HOME/chessx/chessx.ini" <<'END'
1\Command=weak
1\Logging=false
1\Name=Weak
1\OptionValues=@ByteArray(\0\0\0\0)
1\Protocol=UCI

[Analysis]
Engine=Vatro

[Analysis2]
Engine=Weak

[Match]
Mode=0
TotalTime=1000

[%General]
BuiltinDbInstalled=true
END
run_client chessx
window ChessX > /dev/null
sleep 6
click 150 10   # Game / Engine Match
sleep 1
click 200 314
sleep 3
click 213 363  # "OK"

# Whether Vatro's last move ends the game.
is_mate() {
    { echo force && sed -n 's/^position fen/setboard/p' "$work/heard" | tail -n 1 &&
        sed -n 's/^bestmove \([^ ]*\).*/\1/p' "$work/said" | tail -n 1; } |
        "$program" | grep '^1-0 '
}
wait_for 300 is_mate
sleep 3
is_mate
picture chessx
grep -q '^info depth .* pv ' "$work/said"
