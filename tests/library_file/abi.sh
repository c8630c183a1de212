#!/bin/sh
# Compares what a host was compiled against with the record: abi.sh LIBRARY HEADERS RECORD
# Symbols, signatures and record layouts count; how they are built does not. Prints what differs,
# exit status 1 if anything does. With "record" as a fourth argument the record is made anew.
set -eu

library=$1 headers=$2 record=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The layout of the C++ library's own types is its business, not the plug-in's.
cat >"$work/not_ours.ini" <<'END'
[suppress_type]
  name_regexp = ^(std::|__gnu_cxx|boost::)
  drop = yes
END
abidw --suppr "$work/not_ours.ini" --headers-dir "$headers" --drop-private-types --drop-undefined-syms \
  --exported-interfaces-only --no-corpus-path --no-show-locs --no-comp-dir-path --no-elf-needed \
  --type-id-style hash "$library" >"$work/found.abi"

if [ "${4:-}" = record ]; then
  cp "$work/found.abi" "$record"
elif ! abidiff --no-show-locs "$record" "$work/found.abi"; then
  echo "The binary interface has changed. Where that is meant, and hosts are told:"
  echo "  cmake --build build/release --target record_abi"
  exit 1
fi
