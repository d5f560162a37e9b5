#!/usr/bin/env bash
# Tries sweep.sh on a Slurm of one node, which it sets up in a scratch folder and takes down at the
# end: what the merging job leaves must be what one run prints, also when parts die on the way. As
# root, with the Debian packages slurm-wlm and munge.
#
#   deploy/slurm/try-on-one-node.sh [PLAN [PARTS]]
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
export TARNEX=${TARNEX:-$here/../../build/tarnex}
examples=$here/../../examples/abilene

scratch=$(mktemp -d)
chmod 755 "$scratch"
daemons=()
finish() {
    status=$?
    [ $status -eq 0 ] || tail -n 5 "$scratch"/*.log >&2
    [ ${#daemons[@]} -eq 0 ] || kill "${daemons[@]}" 2>/dev/null || true
    wait
    rm -rf "$scratch"
}
trap finish EXIT

node=$(hostname -s)
mungekey --create --keyfile="$scratch/munge.key"
cat >"$scratch/slurm.conf" <<END
ClusterName=scratch
SlurmctldHost=$node(127.0.0.1)
SlurmUser=root
AuthInfo=socket=$scratch/munge.socket
StateSaveLocation=$scratch/state
SlurmdSpoolDir=$scratch/spool
SlurmctldPidFile=$scratch/slurmctld.pid
SlurmdPidFile=$scratch/slurmd.pid
SlurmctldPort=26817
SlurmdPort=26818
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
MpiDefault=none
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
KillWait=2
NodeName=$node NodeAddr=127.0.0.1 CPUs=$(nproc) State=UNKNOWN
PartitionName=all Nodes=ALL Default=YES State=UP
END
export SLURM_CONF=$scratch/slurm.conf
mkdir "$scratch/state" "$scratch/spool"
munged --foreground --force --key-file="$scratch/munge.key" --socket="$scratch/munge.socket" \
    --pid-file="$scratch/munged.pid" --seed-file="$scratch/munge.seed" \
    --log-file="$scratch/munged.log" 2>"$scratch/munged.err.log" &
daemons+=($!)
until [ -S "$scratch/munge.socket" ]; do sleep 0.1; done
slurmctld -D -L "$scratch/slurmctld.log" 2>"$scratch/slurmctld.err.log" &
daemons+=($!)
slurmd -D -L "$scratch/slurmd.log" 2>"$scratch/slurmd.err.log" &
daemons+=($!)
until sinfo --noheader --format=%T 2>/dev/null | grep -q idle; do sleep 0.5; done

plan=${1:-$scratch/abilene.json}
parts=${2:-5}
options=(--set links,nodes,pairs --reroute --list lost)
if [ $# -eq 0 ]; then
    "$TARNEX" place "$examples/abilene.network" --demands "$examples/abilene.demands" \
        --protect gold=local --save "$plan" >/dev/null || [ $? -eq 1 ]
fi
"$TARNEX" fail "$plan" "${options[@]}" --json >"$scratch/whole.json" || [ $? -eq 1 ]

merge=$(FORM=--json "$here/sweep.sh" "$plan" "$scratch/sweep" "$parts" "${options[@]}")
echo "parts $parts, merging job $merge"
killed=0
while squeue --noheader --job "$merge" 2>/dev/null | grep -q .; do
    # Parts that are at work are put back into the queue, twice.
    if [ $killed -lt 2 ] && scontrol requeue "$(squeue --noheader --states=RUNNING \
        --name tarnex-part --format=%A | head -n 1)" 2>/dev/null; then
        killed=$((killed + 1))
    fi
    sleep 1
done
cmp "$scratch/whole.json" "$scratch/sweep/failures.json"
echo "the same as in one run, with $killed parts begun again"
