#!/bin/sh
# Stands in for ssh: runs the command here, as the host's shell would.
host=$1
shift
echo "$host" >>"$SSH_LOG"
exec sh -c "$*"
