#!/bin/bash
# scripts/try/common.sh - what the trials of clients share; sourced by them.
#
# A trial starts one client on a screen of its own, with a home folder of its own, lets it play with
# the installed Vatro, takes a picture and fails when the game does not come to its end. Its argument
# is the folder for the picture.
set -euo pipefail
export LC_ALL=C.UTF-8
client=$(basename "$0" .sh)
pictures=$(mkdir -p "${1:-build-pictures}" && realpath "${1:-build-pictures}")
cd "$(dirname "$(readlink -f "$0")")/../.."
repository=$PWD
. scripts/packages.sh

# need_vatro: the installed program; when there is none, it is packaged and installed.
need_vatro() {
    has_program vatro > /dev/null && return 0
    scripts/build_packages.sh build-packages >&2
    apt-get -qy install --no-install-recommends "$PWD"/build-packages/vatro_*.deb < /dev/null >&2
}

# begin PACKAGE...: installs the client's packages, and opens the screen.
begin() {
    local package
    for package in xvfb xdotool x11-utils imagemagick procps dbus-x11 "$@"; do
        need "$package" is_installed "$package"
    done
    install_missing
    need_vatro
    work=$(mktemp -d)
    trap finish EXIT
    export HOME=$work/home XDG_RUNTIME_DIR=$work/run GDK_BACKEND=x11 QT_QPA_PLATFORM=xcb
    export XDG_CONFIG_HOME=$HOME/.config XDG_DATA_HOME=$HOME/.local/share
    mkdir -p "$XDG_CONFIG_HOME" "$XDG_DATA_HOME"
    mkdir -m 700 "$XDG_RUNTIME_DIR"
    cd "$work"
    # Xvfb itself finds a display that is free.
    Xvfb -displayfd 3 -screen 0 1280x960x24 -nolisten tcp 3> "$work/display" 2> "$work/xvfb.log" &
    screen=$!
    wait_for 20 test -s "$work/display"
    DISPLAY=:$(cat "$work/display")
    export DISPLAY
}

is_installed() { [ "$(dpkg-query -W -f '${db:Status-Status}' "$1")" = installed ]; }

# wait_for SECONDS COMMAND...: until it succeeds.
wait_for() {
    local end=$((SECONDS + $1))
    shift
    until "$@" > /dev/null 2>&1; do
        [ $SECONDS -lt $end ] || fail "gave up waiting for: $*"
        sleep 0.5
    done
}

# run_client COMMAND...: in the background, in a process group of its own.
run_client() {
    PATH="${client_path:-$PATH}" setsid "$@" > "$work/client.log" 2>&1 < /dev/null &
    client_pid=$!
}

# record_vatro: from here on, "vatro" writes what it hears and says into the files heard and said.
record_vatro() {
    local program
    program=$(command -v vatro)
    mkdir "$work/bin"
    cat > "$work/bin/vatro" <<END
#!/bin/bash
tee -a "$work/heard" | "$program" "\$@" | tee -a "$work/said"
END
    chmod +x "$work/bin/vatro"
    touch "$work/said"
    client_path=$work/bin:$PATH
}

# window NAME: waits for the window whose title has the name, and prints its number.
window() {
    wait_for 60 xdotool search --onlyvisible --name "$1"
    xdotool search --onlyvisible --name "$1" | tail -n 1
}

# click X Y: on the screen.
click() { xdotool mousemove "$1" "$2" sleep 0.2 click 1; }

# picture NAME: of the whole screen.
picture() { import -window root "$pictures/$1.png"; }

fail() {
    picture "$client-failed" || true
    tail -n 20 "$work/client.log" >&2 || true
    echo "$client: $*" >&2
    exit 1
}

finish() {
    if [ -n "${client_pid:-}" ]; then kill -- "-$client_pid" 2> /dev/null || true; fi
    if [ -n "${screen:-}" ]; then kill "$screen" 2> /dev/null || true; fi
    wait 2> /dev/null || true
    rm -rf "$work"
}
