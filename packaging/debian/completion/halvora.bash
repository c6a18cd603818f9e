# What bash offers behind "halvora". Paths are offered by its own completion.
_halvora() {
    local word=${COMP_WORDS[COMP_CWORD]} command= i
    COMPREPLY=()
    for ((i = 1; i < COMP_CWORD; ++i)); do
        case ${COMP_WORDS[i]} in
        --profile) ((++i)) ;;
        -*) ;;
        *) command=${COMP_WORDS[i]}; break ;;
        esac
    done
    local words
    case $command in
    '') words='authorize publish history status settings account --profile --help --version' ;;
    publish) words='--recursive --files-from --null --dry-run --again --unknown --keep-trying --set --porcelain --quiet --verbose
        --allow-small --profile --help' ;;
    history) words='--count --json --refresh --profile --help' ;;
    settings)
        words=$(halvora settings 2>/dev/null </dev/null | sed -n 's/=.*/=/p')
        [[ $words != *"$word"* ]] || compopt -o nospace
        ;;
    account) words='--refresh --set-token --profile --help' ;;
    *) words='--profile --help' ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}
complete -o bashdefault -o default -F _halvora halvora
