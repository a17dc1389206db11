# What bash completes after "pavonel".
_pavonel() {
    mapfile -t COMPREPLY < <(compgen -W '--login-status --unregister-login-item --update-now --help --version \
        --status --export-stats --json --follow' \
        -- "${COMP_WORDS[COMP_CWORD]}")
}
complete -F _pavonel pavonel
