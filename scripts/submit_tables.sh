#!/bin/bash
# scripts/submit_tables.sh - hands the making of endgame tables to Slurm, one job for each table.
#
# usage: scripts/submit_tables.sh DIR ENDING... | --pieces N
#
# DIR is on a file system that all nodes share. A job starts when the tables that it needs are made;
# if one of them fails, those that wait for it are cancelled. Tables that DIR has are left out, so
# after a failure the script is simply run again. Log out at will: Slurm keeps the whole graph.
#
# TBGEN (default: build/vatro-tbgen of this clone) is the program, which the nodes must see too,
# THREADS (1) the processors of each job, SBATCH (sbatch) the command, with options if need be.
set -euo pipefail
if [ $# -lt 2 ]; then
    sed -n '4s/^# //p' "$0" >&2
    exit 2
fi
directory=$1
shift
tbgen=${TBGEN:-$(cd "$(dirname "$0")/.." && pwd)/build/vatro-tbgen}
threads=${THREADS:-1}
mkdir -p "$directory"
directory=$(cd "$directory" && pwd)

plan=$("$tbgen" --list "$@")
declare -A job  # the number of the job that makes a table
submitted=0
while read -r name _ megabytes needs; do
    [ -s "$directory/$name.gtb.cp4" ] && continue
    after=""
    for needed in $needs; do
        [ -n "${job[$needed]:-}" ] && after="$after:${job[$needed]}"
    done
    job[$name]=$(${SBATCH:-sbatch} --parsable --job-name="$name" --ntasks=1 \
        --cpus-per-task="$threads" --mem="$megabytes" --output="$directory/$name.log" \
        ${after:+--dependency="afterok$after" --kill-on-invalid-dep=yes} \
        --wrap="$(printf '%q ' "$tbgen" --only "$name" --threads "$threads" --out "$directory")" |
        cut -d ';' -f 1)
    submitted=$((submitted + 1))
done <<< "$plan"
echo "$submitted jobs submitted; squeue shows them, and $directory/NAME.log what they print"
