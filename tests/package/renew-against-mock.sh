#!/bin/sh
# Starts the installed varnel-mock-commerce on a free port, runs the renewal
# example against it, stops the server and exits with the example's status.
# Arguments: PREFIX WORK_DIR GUEST_FILE
prefix=$1
work=$2
guest=$3
"$prefix/bin/varnel-mock-commerce" --quiet --guest "$guest" > "$work/mock.out" &
mock=$!
tries=0
while [ $tries -lt 600 ] && ! grep -q '^listening on ' "$work/mock.out"; do
  tries=$((tries + 1))
  sleep 0.1
done
"$work/renewal/renewal" "$(sed -n 's/^listening on //p' "$work/mock.out")" "$guest"
status=$?
kill "$mock"
wait "$mock"
exit $status
