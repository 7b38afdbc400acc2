#!/usr/bin/env -S fish --no-config
# Prints the completions that fish offers at the end of LINE: offers.fish FOLDER LINE
source $argv[1]/zserial.fish
set -g __zserial_dev dev
complete -C $argv[2] | string replace -r '\t.*' ''; or true
