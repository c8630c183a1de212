#!/bin/sh
# Reads the library file: library_file.sh LIBRARY SANITIZERS STRING_ABI
# Says what is not as it is shipped to be; exit status 1 if anything is.
library=$1 sanitizers=$2 string_abi=$3
failures=0
export LC_ALL=C

# same WHAT EXPECTED ACTUAL
same() {
  [ "$2" = "$3" ] && return
  failures=1
  printf '%s\n  expected: %s\n  found:    %s\n' "$1" "$(echo "$2" | tr '\n' ' ')" "$(echo "$3" | tr '\n' ' ')"
}

tagged=_Z14getScsiDevNameB5cxx11ii
[ "$string_abi" = 0 ] && tagged=
expected=$(printf '%s T\n' deleteMPIODevice getMPIODevices getPartitionDevices getUnderlyingDevices \
  getVendorName init isMPIODevice isPartitionDevice refreshMPIO setFailIfNoPathDevice \
  _Z14getScsiDevNameii _Z26deleteMPIODevicePartitionsPKcPiPc $tagged; echo _VendorName D)
same "exported symbols" "$(echo "$expected" | sort)" \
  "$(nm -D --defined-only "$library" | awk '{print $3, $2}' | sort)"

sections=$(readelf -SW "$library" | sed 's/^ *\[ *[0-9]*\] *//')
same "flags of section NrVersion" "0" "$(echo "$sections" | awk '$1 == "NrVersion" {print $7}')"
work=$(mktemp -d) || exit 1
trap 'rm -rf "$work"' EXIT
line=$work/NrVersion
objcopy --dump-section NrVersion="$line" "$library" "$work/copy"
same "lines and bytes after them in section NrVersion" "1 0" \
  "$(wc -l <"$line" | tr -d ' ') $(tail -c 1 "$line" | tr -d '\n' | wc -c | tr -d ' ')"
same "version, date and time in section NrVersion" "" "$(grep -Evx \
  '([0-9]+\.){3}[0-9]+ [01][0-9]/[0-3][0-9]/[0-9]{2} [0-2][0-9](:[0-5][0-9]){2}' "$line")"

dynamic=$(readelf -dW "$library")
# shellcheck disable=SC2016 # the loader's variable, not the shell's
same "DT_RPATH" '[$ORIGIN]' "$(echo "$dynamic" | awk '$2 == "(RPATH)" {print $5}')"
same "DT_RUNPATH" "" "$(echo "$dynamic" | grep '(RUNPATH)')"
same "text relocations" "" "$(echo "$dynamic" | grep 'TEXTREL')"
same "binding at load" "(BIND_NOW)" "$(echo "$dynamic" | awk '$2 == "(BIND_NOW)" {print $2}')"

runtime='libstdc[+][+]\.so\.6|libgcc_s\.so\.1|libm\.so\.6|libc\.so\.6|ld-linux.*'
[ -n "$sanitizers" ] && runtime="$runtime|lib(asan|ubsan|tsan)\.so\..*"
needed=$(echo "$dynamic" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p')
same "libraries beside the runtime" "$(printf '%s\n' libKoUtils.so libNrLib.so libkpartx.so)" \
  "$(echo "$needed" | grep -Evx "$runtime" | sort)"

segments=$(readelf -lW "$library")
same "flags of GNU_STACK" "RW" "$(echo "$segments" | awk '$1 == "GNU_STACK" {print $7}')"
same "segments GNU_RELRO" "1" "$(echo "$segments" | grep -c GNU_RELRO)"
exit $failures
