# Completion of nrmpio-sim(1) for bash.

_nrmpio_sim() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]} i
    COMPREPLY=()
    for ((i = 1; i < COMP_CWORD; ++i)); do
        case ${COMP_WORDS[i]} in
            -s | --scenario | -k | --keep | -t | --state | -c | --check) ((++i)) ;;
            --) ((++i)); break ;;
            -*) ;;
            *) break ;;
        esac
    done
    case $previous in
        -s | --scenario | -c | --check)
            mapfile -t COMPREPLY < <(nrmpio-sim --list 2> /dev/null | cut -d' ' -f1 | grep "^$current"; compgen -f -- "$current") ;;
        -k | --keep | -t | --state)
            mapfile -t COMPREPLY < <(compgen -d -- "$current") ;;
        *)
            if ((i < COMP_CWORD)); then
                # Another command's words.
                declare -F _command_offset > /dev/null && _command_offset "$i"
            elif [[ $current == -* ]]; then
                mapfile -t COMPREPLY < <(compgen -W "$(nrmpio-sim --help | sed -nE 's/^  (-[a-z]), (--[a-z]+).*/\1 \2/p')" -- "$current")
            else
                mapfile -t COMPREPLY < <(compgen -c -- "$current")
            fi ;;
    esac
}

complete -F _nrmpio_sim nrmpio-sim
