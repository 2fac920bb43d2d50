# bash completion for quillet
_quillet()
{
    local word=${COMP_WORDS[COMP_CWORD]}
    COMPREPLY=()
    case ${COMP_WORDS[COMP_CWORD-1]} in
        --language) COMPREPLY=($(compgen -W 'en de' -- "$word")); return ;;
    esac
    if [[ $word == -* ]]; then
        COMPREPLY=($(compgen -W '-w --wait -n --new-window -t --new-tab -d --diff --language -h --help -v --version' -- "$word"))
    else
        compopt -o default
    fi
}
complete -F _quillet quillet
