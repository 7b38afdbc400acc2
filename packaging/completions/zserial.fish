# fish completion for zserial, zserial-sim, zserial-inspect and zserial-gang. The options of zserial
# stand here; the others are asked for theirs with --help.

# Another folder than /dev is for tests.
function __zserial_ports
    set -q __zserial_dev; or set -l __zserial_dev /dev
    for port in $__zserial_dev/ttyUSB* $__zserial_dev/ttyACM* $__zserial_dev/serial/by-id/*
        echo $port
    end
end

# Versions in the table that --table names, or in ./device.txt.
function __zserial_versions
    set -l table device.txt
    set -l words (commandline -opc)
    if set -l at (contains -i -- --table $words)
        set table $words[(math $at + 1)]
    end
    set -l digit '[0-9A-Fa-f]'
    awk -F '\t+' -v first="^v$digit$digit$digit$digit:\$" \
        '{ sub(/[\t\r]+$/, "") } NF == 25 && $1 ~ first { print substr($1, 2, 4) "\t" $3 }' \
        $table 2>/dev/null
end

function __zserial_images
    __fish_complete_suffix (commandline -ct) .hex
end

function __zserial_files
    __fish_complete_path (commandline -ct)
end

# "--name", the name of its value and its description, for each option in the help of a command.
function __zserial_help
    $argv --help 2>/dev/null | sed -nE 's/^  (--[a-z][a-z-]*)( <([a-z]+)>)?( +(.*)|$)/\1\t\3\t\5/p'
end

# The values of the option $argv[2] of the companion $argv[1].
function __zserial_value
    switch $argv[2]
        case --device --expect --explain
            __zserial_versions
        case --memory --save --check --before
            __zserial_images
        case --entry
            printf '%s\n' probe version silent
        case --echo
            printf '%s\n' apart together
        case --serial-format
            printf '%s\n' little big text
        case --fault
            $argv[1] --help 2>/dev/null | sed -nE \
                '/^Options:/q; s/^  ([a-z-]+:)[A-Z:]+ +(.*)/\1\t\2/p; s/^  ([a-z-]+) +(.*)/\1=\t\2/p'
        case --zserial
            __fish_complete_command
        case --watch --jobs --tries --pause --limit --station --serial-at --serial-size
        case --seed --latency-ms --erase-ms --write-ms
        case '*'
            __zserial_files
    end
end

# zserial, given its own words up to the cursor.
function __zserial_tool
    while set -q argv[1]
        set -l option $argv[1]
        set -e argv[1]
        set -l kinds
        switch $option
            case -s
                set kinds ports
            case -B
                set kinds versions
            case -w -wv -r -v
                set kinds images
            case -W -l
                set kinds none none images
            case -E
                set kinds none none
            case -M
                set kinds none
            case -x
                set kinds files
        end
        if test (count $argv) -lt (count $kinds)
            set -l kind $kinds[(math (count $argv) + 1)]
            test $kind = none; or __zserial_$kind
            return
        end
        for kind in $kinds
            set -e argv[1]
        end
    end
    printf '%s\t%s\n' -s 'serial port' -b 'catch a starting device' -B 'bootloader version' \
        -V 'request the version' -M 'suggest a rate' -h 'half duplex line' \
        -e 'erase all flash' -E 'erase a range' -w 'write an image' \
        -W 'write a range of an image' -wv 'write and verify an image' -r 'read memory' \
        -l 'read a range of memory' -v 'verify an image' -R 'reset at the end' \
        -xe 'exclude encrypted flash' -xu 'exclude unencrypted flash' -x 'log frames'
end

# A companion: $argv[1] completes words that are not options; the rest is the command whose help has
# the options.
function __zserial_companion
    set -l options (__zserial_help $argv[2..-1])
    set -l last (commandline -opc)[-1]
    if string match -qr -- '^-' (commandline -ct)
        printf '%s\n' $options | sed -E 's/\t[^\t]*\t/\t/'
    else if printf '%s\n' $options | string match -qr -- "^$last\t[a-z]"
        __zserial_value $argv[2] $last
    else
        $argv[1]
    end
end

function __zserial_sim
    set -l words (commandline -opc)
    if set -l separator (contains -i -- -- $words)
        set words $words[(math $separator + 1)..-1]
        if not set -q words[1]
            __fish_complete_command
        else if string match -qr '(^|/)zserial$' $words[1]
            __zserial_tool $words[2..-1]
        else
            __zserial_files
        end
    else
        __zserial_companion true $words[1]
    end
end

function __zserial_gang
    set -l words (commandline -opc)
    if set -l separator (contains -i -- -- $words)
        __zserial_tool $words[(math $separator + 1)..-1]
    else if test "$words[2]" = report
        __zserial_companion __zserial_files $words[1] report
    else
        __zserial_companion __zserial_ports $words[1]
        test (count $words) -ne 1; or echo report\t'sum up records'
    end
end

function __zserial_inspect
    set -l words (commandline -opc)
    if test (count $words) -eq 1
        $words[1] --help 2>/dev/null | sed -nE 's/^  (--)?([a-z]+)  +(.*)/\1\2\t\3/p'
    else if set -l separator (contains -i -- -- $words)
        __zserial_tool $words[(math $separator + 1)..-1]
    else if test $words[2] = image
        __zserial_companion __zserial_images $words[1..2]
    else
        __zserial_companion __zserial_files $words[1..2]
    end
end

complete -c zserial -f -k -a '(__zserial_tool (commandline -opc)[2..-1])'
complete -c zserial-sim -f -k -a '(__zserial_sim)'
complete -c zserial-gang -f -k -a '(__zserial_gang)'
complete -c zserial-inspect -f -k -a '(__zserial_inspect)'
