# bash completion for bscan

_bscan_files() {
    local IFS=$'\n'
    compopt -o filenames 2>/dev/null
    COMPREPLY=($(compgen -d -- "$1"; compgen -f -X '!*.@(bsd|bsdl|BSD|BSDL)' -- "$1"))
}

_bscan() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local command=${COMP_WORDS[1]} options=
    COMPREPLY=()
    if ((COMP_CWORD == 1)); then
        COMPREPLY=($(compgen -W 'show drive observe check format identify diff draw svf openocd live simulate netlist board test --help --version' -- "$current"))
        return
    fi
    case $previous in
        --format)
            local formats='table csv json'
            case $command in
                check) formats='table csv json sarif' ;;
                test) formats='table json junit' ;;
            esac
            COMPREPLY=($(compgen -W "$formats" -- "$current"))
            return ;;
        --capture-file | --chain | --steps | --adapter | --svf | --captures | --save-captures | --output | -o)
            compopt -o filenames 2>/dev/null
            COMPREPLY=($(compgen -f -- "$current"))
            return ;;
        --capture | --rule | --no-rule | --explain | --package | --jobs | -j | --do | --frequency | --from-sample)
            return ;;
    esac
    case $command in
        show) options='--pins --cells --instructions --all --package --lines --format --json --help' ;;
        drive) options='--capture --capture-file --force --package --lines --format --json --help' ;;
        diff) options='--package --lines --format --json --help' ;;
        observe) options='--capture --capture-file --force --package --lines --format --json --help' ;;
        draw) options='--package --lines --help' ;;
        check) options='--rule --no-rule --explain --strict --lines --jobs --format --json --help' ;;
        format) options='--output --package --check --help' ;;
        identify) options='--jobs --format --json --help' ;;
        svf) options='--chain --do --steps --output --frequency --from-sample --no-idcode --help' ;;
        openocd) options='--chain --output --help' ;;
        live) options='--chain --openocd --adapter --hold --every --count --vcd --library --help' ;;
        netlist) options='--format --json --help' ;;
        board) options='--devices --format --json --help' ;;
        test) options='--openocd --adapter --svf --frequency --captures --save-captures --format
            --json --help' ;;
        simulate) options='--chain --net --level --pull --float --open --stuck --short --log
            --adapter-file --port --once --help' ;;
    esac
    if [[ $current == -* ]]; then
        COMPREPLY=($(compgen -W "$options" -- "$current"))
    elif [[ $command == @(netlist|board|test) ]]; then
        compopt -o filenames 2>/dev/null
        COMPREPLY=($(compgen -f -- "$current"))
    else
        _bscan_files "$current"
    fi
}

shopt -s extglob
complete -F _bscan bscan
