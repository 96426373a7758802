#!/bin/bash
# completes.sh SOURCE PROGRAM
#
# The completions SOURCE.bash, .zsh and .fish know each long option that PROGRAM's help names, and no
# other; bash completes with them.
source=$1
program=$2
name=$(basename "$source")
failed=0

fail() {
    echo "$1"
    failed=1
}

options=$("$program" --help | grep -oE -- '--[a-z]+' | sort -u)
for option in $options; do
    grep -qE -- "$option([ '\"]|$)" "$source.bash" || fail "bash: no $option"
    grep -qE -- "${option}[=}]" "$source.zsh" || fail "zsh: no $option"
    grep -qE -- "-l ${option#--} " "$source.fish" || fail "fish: no $option"
done
for option in $(cat "$source".{bash,zsh} | grep -oE -- '--[a-z]{2,}'; sed -n 's/.* -l \([a-z]*\) .*/--\1/p' \
    "$source.fish"); do
    grep -qxF -- "$option" <<<"$options" || fail "$name has no $option"
done

# complete_line WORD...: what bash offers in place of the last word.
complete_line() {
    COMP_WORDS=("$name" "$@")
    COMP_CWORD=$#
    "_$name"
    printf '%s ' "${COMPREPLY[@]}"
}

# shellcheck source=/dev/null
. "$source.bash"
[ "$(complete_line --v)" = '--version ' ] || fail "bash: --v gives $(complete_line --v)"
[ "$(complete_line -- | tr ' ' '\n' | grep . | sort)" = "$options" ] ||
    fail "bash: -- gives $(complete_line --)"
case $name in
    tqfetch) lines=('-m n=netascii' '--mode = o=octet' '--mode ==octet netascii' '-t 1=') ;;
    tqitems) lines=('-t n=number' '--types = string,bo=string,boolean' '--j=--json') ;;
esac
for line in "${lines[@]}"; do
    read -ra words <<<"${line%=*}"
    offered=$(complete_line "${words[@]}")
    [ "${offered% }" = "${line##*=}" ] || fail "bash: ${line%=*} gives $offered"
done

for shell in bash zsh fish; do
    ! command -v $shell >/dev/null || $shell -n "$source.$shell" || fail "$shell: syntax"
done
exit $failed
