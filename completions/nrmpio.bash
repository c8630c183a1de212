# Completion of nrmpio(8) for bash.

# The lines of standard input that begin with $1, each with $2 before it.
_nrmpio_offer() {
    local word
    while IFS= read -r word; do
        [[ $word == "$1"* ]] && COMPREPLY+=("$2$word")
    done
}

# The options that a help lists.
_nrmpio_options() {
    nrmpio "$@" --help 2> /dev/null | sed -nE 's/^  (-[^ ]+).*/\1/p' | tr ',' '\n'
}

_nrmpio_commands() {
    nrmpio --help 2> /dev/null | sed -nE '/^(Look|Change):/,/^$/s/^  ([a-z-]+).*/\1/p'
}

_nrmpio_columns() {
    nrmpio show --help 2> /dev/null | sed -nE '/^Columns/,/^$/s/^ [ *] ([A-Z:]+) .*/\1/p'
}

_nrmpio_devices() {
    # An ordinary user cannot list the maps, but see their nodes. Other names nrmpio refuses.
    { nrmpio list 2> /dev/null || ls -d /dev/mapper/* 2> /dev/null; } | grep -E '^[A-Za-z0-9+.:=@_/-]+$' | grep -v '/control$' | sort -u
}

_nrmpio() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]} command= chosen= i
    COMPREPLY=()
    for ((i = 1; i < COMP_CWORD; ++i)); do
        case ${COMP_WORDS[i]} in
            --plugin | --timeout | --log | --debug-level | --recheck | --output | -o | --jobs | -j) ((++i)) ;;
            -*) ;;
            *) command=${COMP_WORDS[i]}; break ;;
        esac
    done
    case $previous in
        --plugin | --log)
            compopt -o filenames 2> /dev/null
            _nrmpio_offer "$current" '' < <(compgen -f -- "$current"; [ "$previous" = --plugin ] || printf 'stderr\nsyslog\n')
            return ;;
        --output | -o)
            # After the last comma; the names before it stay.
            [[ $current != *,* ]] || chosen=${current%,*},
            compopt -o nospace 2> /dev/null
            _nrmpio_offer "${current##*,}" "$chosen" < <(_nrmpio_columns)
            return ;;
        --timeout | --debug-level | --recheck | --jobs | -j)
            return ;;
    esac
    if [[ $current == -* ]]; then
        _nrmpio_offer "$current" '' < <(_nrmpio_options; [ -z "$command" ] || _nrmpio_options "$command")
    elif [ -z "$command" ]; then
        _nrmpio_offer "$current" '' < <(_nrmpio_commands)
    elif nrmpio "$command" --help 2> /dev/null | grep -q '^  DEVICE'; then
        # A bare name is completed, too.
        _nrmpio_offer "$current" '' < <(_nrmpio_devices | if [[ $current == */* ]]; then cat; else sed 's|^/dev/mapper/||'; fi)
    fi
}

complete -F _nrmpio nrmpio
