# Completion of quilletctl for bash. The program tells what can stand at the cursor, quoted for the line as it is.

_quilletctl() {
    local more
    COMPREPLY=()
    {
        IFS= read -r more
        mapfile -t COMPREPLY
        # Without a place for it, no trace is written: that of the last command stays.
    } < <(Temp=/dev/null "${1/#\~/$HOME}" complete --within=500 "--breaks=$COMP_WORDBREAKS" "--line=${COMP_LINE:0:COMP_POINT}" 2>/dev/null)
    if [ "$more" = files ] && [ ${#COMPREPLY[@]} -eq 0 ]; then
        compopt -o default 2>/dev/null
    fi
    # Behind "SETTING=" the value comes next.
    if [[ ${COMPREPLY[0]-} == *= ]]; then
        compopt -o nospace 2>/dev/null
    fi
}

complete -F _quilletctl quilletctl
