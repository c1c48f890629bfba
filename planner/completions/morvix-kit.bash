# Completion of morvix-kit for bash.
_morvix_kit() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local systems='WinXP32 WinXP64 WinXP32E WinSrv2K332 WinSrv2K364 WinSrv2K332E WinVista32 WinVista32E WinSrv2K832
        WinSrv2K832E WinSrv2K864 Win732 Win732E WinSrv2K8R232E WinSrv2K8R264 Win832 Win832E'
    local common='--system --family --scan-all --setup-dir --map --reader --output --quiet --help'
    local -A options=(
        [plan]="$common --require-driver --json --ndjson --trace --findings"
        [explain]="$common --why-not"
        [diff]="$common --json"
        [report]="$common --old"
        [check]='--system --reader --setup-dir --map --format --baseline --write-baseline --fail-on --output --quiet --help'
        [rules]='--markdown --output --quiet --help'
    )
    COMPREPLY=()
    case $previous in
        --system)
            [[ ${COMP_WORDS[1]} != check ]] || systems+=' all'
            mapfile -t COMPREPLY < <(compgen -W "$systems" -- "$current")
            ;;
        --reader)
            local readers='windows wine'
            [[ ${COMP_WORDS[1]} != check ]] || readers+=' both'
            mapfile -t COMPREPLY < <(compgen -W "$readers" -- "$current")
            ;;
        --format) mapfile -t COMPREPLY < <(compgen -W 'text json sarif' -- "$current") ;;
        --fail-on) mapfile -t COMPREPLY < <(compgen -W 'error warning note' -- "$current") ;;
        --family)
            local IFS=$'\n'
            mapfile -t COMPREPLY < <(compgen -W $'Windows\\ Vista\nWindows\\ Whistler\nWindows\\ 2000\nWindows\\ 98\nWindows\\ Millenium' -- "$current")
            ;;
        --setup-dir | --map | --why-not) ;;
        *)
            if ((COMP_CWORD == 1)); then
                mapfile -t COMPREPLY < <(compgen -W 'plan explain diff report check rules --help --version' -- "$current")
            elif [[ $current == -* ]]; then
                mapfile -t COMPREPLY < <(compgen -W "${options[${COMP_WORDS[1]}]-}" -- "$current")
            else
                compopt -o filenames 2>/dev/null
                mapfile -t COMPREPLY < <(compgen -f -- "$current")
            fi
            ;;
    esac
}
complete -F _morvix_kit morvix-kit
