#!/usr/bin/env bash
# A sweep of failures in parts, with GNU parallel: on the cores of this machine, or on others over
# ssh. Run again after a stop, it goes on with the parts that are not complete.
set -euo pipefail
# shellcheck source-path=SCRIPTDIR source=arguments.sh
source "$(dirname "$0")/arguments.sh"

usage() {
    cat >&2 <<'END'
usage: parallel.sh PLAN FOLDER PARTS [OPTION OF tarnex fail...]

Leaves part1.jsonl, part2.jsonl... in FOLDER and prints what `tarnex merge` makes of them.

TARNEX  the program (default: tarnex, found in PATH; on every machine at the same place)
HOSTS   machines to work on, as GNU parallel's --sshlogin has them: "4/alpha,8/beta"; 4 and 8 are the
        numbers of parts at a time (default: this machine, a part per core)
FORM    --json, --jsonl or --csv (default: tables)
END
    exit 2
}

[ $# -ge 3 ] || usage
bring "$@"

# On another machine a part is done in a folder of its own, which comes with the files it needs and
# goes when the part has come back.
where=()
if [ -n "${HOSTS:-}" ]; then
    where=(--sshlogin "$HOSTS" --workdir ... --return "part{}.jsonl" --cleanup)
    for file in "${brought[@]}"; do
        where+=(--transferfile "$file")
    done
fi

# The program ends with 1 when LSPs were lost, which is a result; anything else is tried again.
part="$fail --shard {}/$parts --save part{}.jsonl --resume > /dev/null || [ \$? -eq 1 ]"
# Parts that are there have to be of this sweep.
for ((number = 1; number <= parts; ++number)); do
    [ ! -e "part$number.jsonl" ] || bash -c "${part//\{\}/$number}" || exit 2
done
for ((number = 1; number <= parts; ++number)); do
    [ -e "part$number.jsonl" ] || echo "$number"
done | parallel --retries 3 "${where[@]}" "$part"

all=()
for ((number = 1; number <= parts; ++number)); do
    all+=("part$number.jsonl")
done
exec "$tarnex" merge plan.json "${all[@]}" ${FORM:+"$FORM"}
