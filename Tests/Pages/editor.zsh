# For complete-zsh, in an interactive shell: completes the lines, notes the candidates, ends.
fpath=($COMPLETION_FOLDER $fpath)
autoload -Uz compinit
compinit -u -D
unsetopt auto_list auto_menu

compadd() {
    local -a offered options=("${@[1,(i)(-|--)]}")
    # Calls that store matches, rather than offer them, are helpers' own.
    if (( ! ${options[(I)-(O|A|D)*]} )); then
        builtin compadd -A offered "$@"
        [[ $#offered = 0 ]] || print -rl -- $offered >>$COMPLETION_OUT
    fi
    builtin compadd "$@"
}

zle-line-init() {
    local line
    for line in "${(@f)COMPLETION_LINES}"; do
        BUFFER=$line
        CURSOR=$#BUFFER
        zle complete-word
        print -r -- % >>$COMPLETION_OUT
    done
    exit 0
}
zle -N zle-line-init
