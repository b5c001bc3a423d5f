# Completion of quilletctl for fish. The program tells what can stand at the cursor.

function __quilletctl_complete
    set -l words (commandline -opc)
    set -l current (commandline -ct)
    set -l plain (string unescape -- $current)
    test -n "$plain"; or set plain $current
    # Without a place for it, no trace is written: that of the last command stays.
    set -l answer (Temp=/dev/null $words[1] complete --within=500 "--current=$plain" $words[2..-1] 2>/dev/null)
    test (count $answer) -gt 1; and printf '%s\n' $answer[2..-1]
    if test "$answer[1]" = files
        set -l option (string match -r -- '^--[^=]*=' $plain)
        for file in (__fish_complete_path (string replace -- "$option" '' $plain))
            printf '%s%s\n' "$option" $file
        end
    end
end

complete -c quilletctl -f -a '(__quilletctl_complete)'
