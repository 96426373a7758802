# shellcheck shell=bash
# Completion of tqfetch for bash.
_tqfetch() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} choice words
    # bash takes an option, = and what follows for three words.
    if [[ $before == = ]]; then before=${COMP_WORDS[COMP_CWORD - 2]}; fi
    if [[ $word == = ]]; then
        before=${COMP_WORDS[COMP_CWORD - 1]}
        word=
    fi
    COMPREPLY=()
    case $before in
        -m | --mode) words='octet netascii' ;;
        -o | --output)
            while IFS= read -r choice; do COMPREPLY+=("$choice"); done < <(compgen -f -- "$word")
            return
            ;;
        -t | --timeout | -T | --deadline) return ;;
        *)
            if [[ $word == -* ]]; then
                words='--mode --output --timeout --deadline --quiet --help --version'
            else
                while IFS= read -r choice; do COMPREPLY+=("$choice"); done \
                    < <(compgen -A hostname -- "$word")
                return
            fi
            ;;
    esac
    while IFS= read -r choice; do COMPREPLY+=("$choice"); done < <(compgen -W "$words" -- "$word")
}
complete -F _tqfetch -o filenames tqfetch
