#!/usr/bin/env bash
# A sweep of failures as a Slurm array job, a part per task, and a job that waits for all of them and
# puts the parts together. Submitted again after a failure, it goes on with what is not complete.
set -euo pipefail
# shellcheck source-path=SCRIPTDIR source=../arguments.sh
source "$(dirname "$0")/../arguments.sh"

usage() {
    cat >&2 <<'END'
usage: sweep.sh PLAN FOLDER PARTS [OPTION OF tarnex fail...]

FOLDER must be seen by all nodes; it gets the plan, the parts, their logs and, at the end, failures.txt
(with FORM=--json: failures.json). Prints the number of the merging job.

TARNEX  the program (default: tarnex, found in PATH; on every node at the same place)
FORM    --json for a JSON document (default: tables)
SBATCH  options for all jobs, as "--partition=long --time=60"
END
    exit 2
}

[ $# -ge 3 ] || usage
bring "$@"
result=failures.txt
[ "${FORM:-}" != --json ] || result=failures.json
read -ra options <<<"${SBATCH:-}"

# The program ends with 1 when LSPs were lost, which is a result.
part="$fail --shard \$SLURM_ARRAY_TASK_ID/$parts --save part\$SLURM_ARRAY_TASK_ID.jsonl --resume"
printf -v merge '%q ' "$tarnex" merge plan.json ${FORM:+"$FORM"}
files=$(seq -f 'part%g.jsonl' -s ' ' "$parts")

array=$(sbatch --parsable "${options[@]}" --job-name tarnex-part --array "1-$parts" --requeue \
    --output 'part%a.log' --open-mode append --wrap "$part || [ \$? -eq 1 ]")
sbatch --parsable "${options[@]}" --job-name tarnex-merge --dependency "afterok:$array" \
    --kill-on-invalid-dep yes --output merge.log --wrap "$merge $files > $result || [ \$? -eq 1 ]"
