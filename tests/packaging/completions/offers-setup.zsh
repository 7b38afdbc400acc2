autoload -Uz compinit
compinit -D -u
exec 9>$pipe
compadd()
{
    # With these options, compadd fills arrays and adds no candidates.
    if [[ ${@[1,(i)(-|--)]} == *-(O|A|D)\ * ]]; then
        builtin compadd "$@"
        return
    fi
    local -a hits
    builtin compadd -A hits "$@"
    ((!$#hits)) || print -rlu 9 -- $hits
    builtin compadd "$@"
}
finish()
{
    exec 9>&-
}
comppostfuncs=(finish)
