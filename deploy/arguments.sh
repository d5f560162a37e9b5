# Sourced by the recipes: what they make of their arguments.
# shellcheck shell=bash disable=SC2034

# Copies a file, unless it is there already.
copy() {
    cmp --silent "$1" "$2" || cp "$1" "$2"
}

# Brings the files among the sets of failures into this folder; their names there are in `sets`.
bring_sets() { # SETS COMES_FROM
    local set file copies=()
    local IFS=,
    for set in $1; do
        case $set in
        links | duplex | nodes | pairs) file= ;;
        /*) file=$set ;;
        *) file=$2/$set ;;
        esac
        if [ -f "$file" ]; then
            set=sets${#brought[@]}
            copy "$file" "$set"
            brought+=("$set")
        fi
        copies+=("$set")
    done
    sets="${copies[*]}"
}

# Brings all that a sweep needs into its folder and goes there. Leaves `tarnex`, the program; `parts`,
# their number; `fail`, the command without its part, fit for a shell; `brought`, the files it needs.
bring() { # PLAN FOLDER PARTS [OPTION OF tarnex fail...]
    local plan from=$PWD options=() sets
    plan=$(realpath "$1")
    parts=$3
    tarnex=${TARNEX:-tarnex}
    mkdir -p "$2"
    cd "$2" || exit
    shift 3
    brought=(plan.json)
    copy "$plan" plan.json
    while [ $# -gt 0 ]; do
        [[ $1 != --set=* ]] || set -- --set "${1#--set=}" "${@:2}"
        options+=("$1")
        shift
        if [ "${options[-1]}" = --set ] && [ $# -gt 0 ]; then
            bring_sets "$1" "$from"
            options+=("$sets")
            shift
        fi
    done
    printf -v fail '%q ' "$tarnex" fail plan.json "${options[@]}"
}
