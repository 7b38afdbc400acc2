#!/usr/bin/env -S fish --no-config
# Prints what fish offers at the end of a command line: offers.fish FOLDER LINE
source $argv[1]/zserial.fish
set -g __zserial_dev dev
complete -C $argv[2] | string replace -r '\t.*' ''; or true
