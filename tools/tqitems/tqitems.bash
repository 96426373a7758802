# shellcheck shell=bash
# Completion of tqitems for bash.
_tqitems() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} choice words list
    # bash takes an option, = and what follows for three words.
    if [[ $before == = ]]; then before=${COMP_WORDS[COMP_CWORD - 2]}; fi
    if [[ $word == = ]]; then
        before=${COMP_WORDS[COMP_CWORD - 1]}
        word=
    fi
    COMPREPLY=()
    case $before in
        -t | --types)
            # What stands before the last comma stays.
            list=${word%"${word##*,}"}
            words='string number counter boolean float buffer'
            while IFS= read -r choice; do COMPREPLY+=("$list$choice"); done \
                < <(compgen -W "$words" -- "${word##*,}")
            return
            ;;
    esac
    if [[ $word == -* ]]; then
        words='--encode --types --json --help --version'
        while IFS= read -r choice; do COMPREPLY+=("$choice"); done \
            < <(compgen -W "$words" -- "$word")
    else
        while IFS= read -r choice; do COMPREPLY+=("$choice"); done < <(compgen -f -- "$word")
    fi
}
complete -F _tqitems -o filenames tqitems
