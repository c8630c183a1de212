#!/bin/sh
# Builds copies of the sources in two directories of different names and compares what is shipped,
# byte for byte: the plug-in and its libraries or, with "all" as third argument, all that is
# installed, which takes minutes. reproducible.sh SOURCES CMAKE [all]
set -eu

sources=$1 cmake=$2 extent=${3:-libraries}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export SOURCE_DATE_EPOCH=1700000000

# built DIRECTORY: leaves what is compared in DIRECTORY/shipped
built() (
  set -e
  mkdir -p "$1"
  for part in "$sources"/*; do
    [ "$part" = "$sources/build" ] || cp -R "$part" "$1"
  done
  "$cmake" -S "$1" -B "$1/build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DBUILD_TESTING=OFF
  if [ "$extent" = all ]; then
    "$cmake" --build "$1/build" --parallel 1
    DESTDIR=$1/shipped "$cmake" --install "$1/build" --prefix /usr
  else
    "$cmake" --build "$1/build" --parallel 1 --target NrMPIO_Linux
    cp -R "$1/build/bin" "$1/shipped"
  fi
)
one=$work/one another=$work/another/and-deeper
built "$one" >"$work/one.log" 2>&1 &
first=$!
built "$another" >"$work/another.log" 2>&1 &
second=$!
failures=0
wait $first || failures=1
wait $second || failures=1
if [ $failures -ne 0 ]; then
  cat "$work/one.log" "$work/another.log"
  exit 1
fi
diff -r "$one/shipped" "$another/shipped"
plugin=$(find "$one/shipped" -name libNrMPIO_Linux.so)
grep -qF "11/14/23 22:13:20" "$plugin" || { echo "the version stamp does not tell SOURCE_DATE_EPOCH"; exit 1; }
