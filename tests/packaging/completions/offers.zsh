#!/usr/bin/env -S zsh -f
# Prints what zsh offers at the end of a command line: offers.zsh FOLDER-OF-_zserial LINE
# The line is typed into an interactive zsh, in which the command that adds candidates writes them
# to a pipe instead.
zmodload zsh/zpty
pipe=$(mktemp -u)
mkfifo $pipe
zpty shell zsh -f -i
zpty -w shell "fpath=(${(q)1} \$fpath) _zserial_dev=dev pipe=${(q)pipe}; source ${(q)0:a:h}/offers-setup.zsh"
zpty -w -n shell "$2"$'\t'
cat $pipe
rm $pipe
zpty -d shell
