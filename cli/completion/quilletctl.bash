# Completion of quilletctl for bash. Written by scripts/quilletctl-documents; a test compares.
# Nothing is run while it works: names of adapters and teams are not completed, for a machine would be asked.

_quilletctl() {
    local nouns="adapter setting profile power wol team linksec vlan diag boot iscsi config dsc warnings trace transaction version help"
    local names="adapter setting profile power wol team linksec vlan diag boot iscsi config dsc warnings trace transaction version help add apply capabilities check create delete diff export get identify import-pac inspect list modes modify pac-delete pac-show pmk ports primary read reapply remove run schema set set-auth set-keys show stats stop switch-test test try validate verify what-if write"
    local everywhere="--machine --port --auth --user --password-fd --credentials --ca --insecure --plain-http --simulate --state --json --journal --yes --no-color --help --version"
    local optional="--simulate"
    local repeatable="--type --type"
    local -A verbs=(
        ["adapter"]="list show capabilities ports identify"
        ["setting"]="list get set"
        ["profile"]="list"
        ["power"]="show set reapply"
        ["wol"]="show set"
        ["team"]="list show modes create add remove modify delete primary switch-test"
        ["linksec"]="show set-keys set-auth import-pac pac-show pac-delete pmk stats"
        ["vlan"]="list check add modify remove"
        ["diag"]="list run stop"
        ["boot"]="show read inspect verify write"
        ["iscsi"]="list show set"
        ["config"]="show validate diff apply schema"
        ["dsc"]="get set test what-if export schema"
        ["transaction"]="try"
    )
    # Options, whether one takes a value and of what kind, and what the value may be, by the command.
    local -A options=(
        ["adapter identify"]="--seconds"
        ["setting list"]="--of --vmq"
        ["setting get"]="--of"
        ["setting set"]="--all-adapters --of"
        ["power set"]="--mode --auto-power-save --reduce-speed --smart-power-down --aspm --battery-connection --battery-speed --system-idle"
        ["wol set"]="--power-off --link --magic-packet --directed-packet --pattern"
        ["team modes"]="--team"
        ["team create"]="--mode --profile --prefix --mfo --link-security --force"
        ["team modify"]="--name --mode"
        ["team primary"]="--secondary --none"
        ["team switch-test"]="--timeout"
        ["linksec set-keys"]="--tx-number1 --tx-number2 --tx-sci --include-sci --rx-number1 --rx-number2 --rx-sci --encryption --keys --reload --secret-fd"
        ["linksec set-auth"]="--outer --inner --user --password --changed-credentials --machine-credentials --windows-credentials --auto-pac --pac-authority --key-type --random-mac --reload --secret-fd"
        ["linksec import-pac"]="--no-password --reload --secret-fd"
        ["linksec pmk"]="--set --remove --random-mac --reload --secret-fd"
        ["vlan check"]="--through"
        ["vlan add"]="--through"
        ["vlan modify"]="--name --id"
        ["diag run"]="--interval"
        ["boot verify"]="--type"
        ["boot write"]="--type"
        ["config show"]="--changed --by --like"
        ["config apply"]="--no-rollback --confirm"
        ["trace"]="--lines"
    )
    local -A takes=(
        ["--machine"]="HOST"
        ["--port"]="NUMBER"
        ["--auth"]="SCHEME"
        ["--user"]="NAME"
        ["--password-fd"]="NUMBER"
        ["--credentials"]="FILE"
        ["--ca"]="FILE"
        ["--simulate"]="FILE"
        ["--state"]="FILE"
        ["adapter identify --seconds"]="NUMBER"
        ["setting list --of"]="adapter|team|vlan|boot-agent"
        ["setting get --of"]="adapter|team|vlan|boot-agent"
        ["setting set --of"]="adapter|team|vlan|boot-agent"
        ["power set --mode"]="0|1|2"
        ["power set --auto-power-save"]="on|off"
        ["power set --reduce-speed"]="on|off"
        ["power set --smart-power-down"]="on|off"
        ["power set --aspm"]="on|off"
        ["power set --battery-connection"]="on|off"
        ["power set --battery-speed"]="on|off"
        ["power set --system-idle"]="on|off"
        ["wol set --power-off"]="on|off"
        ["wol set --link"]="on|off"
        ["wol set --magic-packet"]="on|off"
        ["wol set --directed-packet"]="on|off"
        ["wol set --pattern"]="on|off"
        ["team modes --team"]="TEAM"
        ["team create --mode"]="MODE"
        ["team create --profile"]="NUMBER"
        ["team modify --name"]="NAME"
        ["team modify --mode"]="MODE"
        ["team switch-test --timeout"]="NUMBER"
        ["linksec set-keys --tx-number1"]="NUMBER"
        ["linksec set-keys --tx-number2"]="NUMBER"
        ["linksec set-keys --tx-sci"]="TEXT"
        ["linksec set-keys --include-sci"]="on|off"
        ["linksec set-keys --rx-number1"]="NUMBER"
        ["linksec set-keys --rx-number2"]="NUMBER"
        ["linksec set-keys --rx-sci"]="TEXT"
        ["linksec set-keys --encryption"]="on|off"
        ["linksec set-keys --keys"]="both|tx|rx|none"
        ["linksec set-keys --secret-fd"]="NUMBER"
        ["linksec set-auth --outer"]="NUMBER"
        ["linksec set-auth --inner"]="NUMBER"
        ["linksec set-auth --user"]="NAME"
        ["linksec set-auth --changed-credentials"]="NUMBER"
        ["linksec set-auth --machine-credentials"]="on|off"
        ["linksec set-auth --windows-credentials"]="NUMBER"
        ["linksec set-auth --auto-pac"]="on|off"
        ["linksec set-auth --pac-authority"]="TEXT"
        ["linksec set-auth --key-type"]="NUMBER"
        ["linksec set-auth --random-mac"]="on|off"
        ["linksec set-auth --secret-fd"]="NUMBER"
        ["linksec import-pac --secret-fd"]="NUMBER"
        ["linksec pmk --random-mac"]="on|off"
        ["linksec pmk --secret-fd"]="NUMBER"
        ["vlan check --through"]="ID"
        ["vlan add --through"]="ID"
        ["vlan modify --name"]="NAME"
        ["vlan modify --id"]="ID"
        ["diag run --interval"]="NUMBER"
        ["boot verify --type"]="TYPE"
        ["boot write --type"]="TYPE"
        ["config show --by"]="name|slot|mac"
        ["config show --like"]="FILE"
        ["config apply --confirm"]="NUMBER"
        ["trace  --lines"]="NUMBER"
    )
    local -A values=(
        ["setting list --of"]="adapter team vlan boot-agent"
        ["setting get --of"]="adapter team vlan boot-agent"
        ["setting set --of"]="adapter team vlan boot-agent"
        ["power set --mode"]="0 1 2"
        ["power set --auto-power-save"]="on off"
        ["power set --reduce-speed"]="on off"
        ["power set --smart-power-down"]="on off"
        ["power set --aspm"]="on off"
        ["power set --battery-connection"]="on off"
        ["power set --battery-speed"]="on off"
        ["power set --system-idle"]="on off"
        ["wol set --power-off"]="on off"
        ["wol set --link"]="on off"
        ["wol set --magic-packet"]="on off"
        ["wol set --directed-packet"]="on off"
        ["wol set --pattern"]="on off"
        ["team create --mode"]="0 1 2 3 4 5 6"
        ["team modify --mode"]="0 1 2 3 4 5 6"
        ["linksec set-keys --include-sci"]="on off"
        ["linksec set-keys --encryption"]="on off"
        ["linksec set-keys --keys"]="both tx rx none"
        ["linksec set-auth --machine-credentials"]="on off"
        ["linksec set-auth --auto-pac"]="on off"
        ["linksec set-auth --random-mac"]="on off"
        ["linksec pmk --random-mac"]="on off"
        ["config show --by"]="name slot mac"
    )
    # What the words behind noun and verb may be, by their place.
    local -A words=(
        ["iscsi set 1"]="off primary secondary"
    )
    local -A arguments=(
        ["linksec import-pac 1"]="file"
        ["boot read 1"]="file"
        ["boot inspect 1"]="file"
        ["boot verify 1"]="file"
        ["boot write 1"]="file"
        ["config validate 0"]="file"
        ["config diff 0"]="file"
        ["config apply 0"]="file"
    )

    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    # "--of=team" may be one word or three, as COMP_WORDBREAKS has it.
    local option='' glued=''
    if [ "$current" = = ] && [[ $previous == --* ]]; then
        option=$previous current=''
    elif [ "$previous" = = ] && [ "$COMP_CWORD" -ge 2 ] && [[ ${COMP_WORDS[COMP_CWORD - 2]} == --* ]]; then
        option=${COMP_WORDS[COMP_CWORD - 2]}
    elif [[ $current == --*=* ]]; then
        option=${current%%=*} glued=$option= current=${current#*=}
    fi

    # What stands before the cursor: noun, verb, the number of further words, and options given.
    local noun='' verb='' word open=1 ended='' i given=' '
    local -i count=0
    local -a path=()
    for ((i = 1; i < COMP_CWORD; i++)); do
        word=${COMP_WORDS[i]}
        if [ -n "$ended" ] || [[ $word != -* ]]; then
            if [ "$word" = = ]; then
                i+=1
            elif [ -z "$noun" ]; then
                noun=$word
            elif [ -z "$verb" ] && [ -n "${verbs[$noun]-}" ]; then
                verb=$word
            else
                count+=1
                path+=("$word")
            fi
            continue
        fi
        if [ "$word" = -- ]; then
            ended=1
            continue
        fi
        given+="${word%%=*} "
        [[ $word == *=* ]] && continue
        # The value of an option is no word of the command; one that may be left out is none where a name of a
        # command stands.
        if [ -n "${takes[$noun $verb $word]-${takes[$word]-}}" ]; then
            if [ "${COMP_WORDS[i + 1]-}" = = ]; then
                ((i += 1))
            elif [[ " $optional " == *" $word "* ]] &&
                { [[ ${COMP_WORDS[i + 1]-} == -* ]] || [[ " $names " == *" ${COMP_WORDS[i + 1]-} "* ]]; }; then
                continue
            fi
            ((i += 1))
            [ "$i" -eq "$COMP_CWORD" ] && option=$word
        fi
    done
    local command=$noun${verb:+ $verb}

    local proposals='' files=''
    if [ -n "$option" ]; then
        word="$noun $verb $option"
        proposals=${values[$word]-}
        [ "${takes[$word]-${takes[$option]-}}" = FILE ] && files=1
    fi
    if [ -n "$option" ] && [[ " $optional " == *" $option "* ]] && [ -z "$glued" ] && [ "$previous" != = ]; then
        # It may stand alone: the next word may be the file or the command.
        open=1
    elif [ -n "$option" ]; then
        open=''
    fi
    if [ -n "$open" ]; then
        if [ -z "$ended" ] && [[ $current == -* ]]; then
            files=''
            for word in ${options[${command:-none}]-} $everywhere; do
                [[ $given == *" $word "* && " $repeatable " != *" $word "* ]] || proposals+=" $word"
            done
        elif [ -z "$noun" ]; then
            proposals+=" $nouns"
        elif [ -z "$verb" ] && [ -n "${verbs[$noun]-}" ]; then
            proposals+=" ${verbs[$noun]}"
        elif [ "$noun" = help ]; then
            case $count in
            0) proposals+=" $nouns" ;;
            1) proposals+=" ${verbs[${path[0]:-none}]-}" ;;
            esac
        else
            proposals+=" ${words[$command $count]-}"
            [ "${arguments[$command $count]-}" = file ] && files=1
        fi
    fi

    mapfile -t COMPREPLY < <(compgen -P "$glued" -W "$proposals" -- "$current")
    if [ -n "$files" ]; then
        # Names with blanks are quoted by readline itself.
        compopt -o filenames 2>/dev/null
        mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -P "$glued" -f -- "$current")
    fi
}

complete -F _quilletctl quilletctl
