#!/bin/bash
# tests/engine/dying_engine.sh - the engine, but it fails at a chosen command.
#
# Reads from the environment:
#   VATRO_ENGINE   the engine itself
#   VATRO_COMMAND  the line at which it fails, or the first word of that line; without it, never
#   VATRO_FAULT    deaf: it obeys nothing more until its input ends; else it is killed
#   VATRO_LOG      a file to which each line is added

# Runs beside the engine, which takes over this process: so its end is this program's end.
pass_on() {
    local line
    while IFS= read -r line || [ -n "$line" ]; do
        [ -z "$VATRO_LOG" ] || printf '%s\n' "$line" >> "$VATRO_LOG"
        if [ -n "$VATRO_COMMAND" ] && [[ $line == "$VATRO_COMMAND" || ${line%% *} == "$VATRO_COMMAND" ]]; then
            if [ "$VATRO_FAULT" = deaf ]; then
                cat > /dev/null
                echo quit
            else
                sleep 0.05  # the commands before this one are obeyed
                kill -KILL "$engine"
            fi
            return
        fi
        printf '%s\n' "$line"
    done
}

engine=$$
exec 3<&0
exec "$VATRO_ENGINE" "$@" < <(pass_on <&3 2> /dev/null) 3<&-
