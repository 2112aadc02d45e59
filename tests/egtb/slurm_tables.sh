#!/bin/bash
# tests/egtb/slurm_tables.sh - makes tables through a Slurm of two nodes on this host, and compares.
#
# usage: tests/egtb/slurm_tables.sh VATRO-TBGEN [PIECES]
#
# Every table must be the same bytes as one made by the program alone. Needs sbatch, slurmctld, slurmd
# and munged, but neither systemd nor control groups; without them there is nothing to test. Not a
# part of ./test.sh: it starts daemons, all of which end with it.
set -euo pipefail
tbgen=$(realpath "$1")
pieces=${2:-3}
PATH=$PATH:/usr/sbin
for program in sbatch slurmctld slurmd munged; do
    command -v "$program" > /dev/null || { echo "skipped: no $program"; exit 0; }
done
scripts=$(cd "$(dirname "$0")/../../scripts" && pwd)
work=$(mktemp -d)
daemons=()
finish() {
    [ ${#daemons[@]} -eq 0 ] || kill "${daemons[@]}" 2> /dev/null || true
    wait
    rm -rf "$work"
}
trap finish EXIT

# Ports that the system's own Slurm does not use.
controller=26817
memory=$(($(sed -n "s/MemAvailable: *\([0-9]*\) kB/\1/p" /proc/meminfo) / 2048))  # MB, half for each node
host=$(hostname -s)
cat > "$work/slurm.conf" << CONF
ClusterName=test
SlurmctldHost=$host
SlurmctldPort=$controller
SlurmUser=$(id -un)
SlurmdUser=$(id -un)
AuthType=auth/munge
AuthInfo=socket=$work/munge.socket
MpiDefault=none
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
JobAcctGatherType=jobacct_gather/none
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
SchedulerParameters=sched_interval=1
ReturnToService=2
StateSaveLocation=$work/state
SlurmdSpoolDir=$work/spool.%n
SlurmctldPidFile=$work/slurmctld.pid
SlurmdPidFile=$work/slurmd.%n.pid
NodeName=node[1-2] NodeHostname=$host Port=[$((controller + 1))-$((controller + 2))] CPUs=1 RealMemory=$memory
PartitionName=all Nodes=ALL Default=YES State=UP
CONF
export SLURM_CONF=$work/slurm.conf
mkdir "$work/state" "$work/spool.node1" "$work/spool.node2"
dd if=/dev/urandom of="$work/munge.key" bs=64 count=1 2> /dev/null
chmod 600 "$work/munge.key"
chmod 755 "$work"

munged --foreground --force --key-file="$work/munge.key" --socket="$work/munge.socket" \
    --pid-file="$work/munge.pid" --seed-file="$work/munge.seed" --log-file="$work/munge.log" &
daemons+=($!)
while [ ! -S "$work/munge.socket" ]; do sleep 0.1; done
slurmctld -D > "$work/slurmctld.log" 2>&1 &
daemons+=($!)
for node in node1 node2; do
    slurmd -D -N "$node" > "$work/$node.log" 2>&1 &
    daemons+=($!)
done

"$tbgen" --pieces "$pieces" --out "$work/alone" > /dev/null
TBGEN=$tbgen "$scripts/submit_tables.sh" "$work/slurm" --pieces "$pieces"
for _ in $(seq 600); do
    [ -n "$(squeue --noheader)" ] || break
    sleep 1
done
if ! diff -r --exclude='*.log' "$work/alone" "$work/slurm"; then
    tail -n 5 "$work"/*.log "$work"/slurm/*.log
    exit 1
fi
echo "$(find "$work/slurm" -name '*.gtb.cp4' | wc -l) tables made by Slurm are the same bytes"
