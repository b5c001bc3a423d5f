#compdef quilletctl
# Completion of quilletctl for zsh. The program tells what can stand at the cursor.

_quilletctl() {
    local more word description
    local -a whole wholeShown begun begunShown
    {
        IFS= read -r more
        while IFS=$'\t' read -r word description; do
            description=$word${description:+  -- $description}
            if [[ $word == *= ]]; then
                begun+=("$word") begunShown+=("$description")
            else
                whole+=("$word") wholeShown+=("$description")
            fi
        done
        # Without a place for it, no trace is written: that of the last command stays.
    } < <(Temp=/dev/null ${(Q)words[1]/#\~/$HOME} complete --within=500 "--current=${(Q)PREFIX}" "${(@Q)words[2,CURRENT-1]}" 2>/dev/null)
    (( ${#whole} )) && compadd -l -d wholeShown -- "${whole[@]}"
    # Behind "SETTING=" the value comes next.
    (( ${#begun} )) && compadd -S '' -l -d begunShown -- "${begun[@]}"
    if [[ $more == files ]]; then
        [[ $PREFIX == --*=* ]] && compset -P '*='
        _files
    fi
}

if [[ ${funcstack[1]-} == _quilletctl ]]; then
    _quilletctl "$@"
else
    compdef _quilletctl quilletctl
fi
