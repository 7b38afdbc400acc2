#!/usr/bin/env -S zsh -f
# Prints the completions that zsh offers at the end of LINE: offers.zsh FOLDER-OF-_zserial LINE
# Types the line into an interactive zsh in which compadd, the command that adds candidates, also
# writes them to a pipe.
zmodload zsh/zpty
pipe=$(mktemp -u)
mkfifo $pipe
zpty shell zsh -f -i
zpty -w shell "fpath=(${(q)1} \$fpath) _zserial_dev=dev pipe=${(q)pipe}; source ${(q)0:a:h}/offers-setup.zsh"
zpty -w -n shell "$2"$'\t'
cat $pipe
rm $pipe
zpty -d shell
