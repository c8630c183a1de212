Without the multipath tools on PATH, "no" is not the truth. (Where the real ones are installed, they
would answer: the library also looks in /usr/sbin and /sbin.)

  $ [ -x /usr/sbin/multipath ] || [ -x /sbin/multipath ] && exit 80
  [1]
  $ without_tools() { nrmpio-sim -- bash -c 'PATH=/nonexistent exec "$@"' - "$(type -P nrmpio)" "$@"; }
  $ without_tools check
  nrmpio: the multipath tools cannot list the maps (code 127): sh: 1: multipath: not found
  [2]
  $ without_tools list
  nrmpio: the multipath tools cannot list the maps (code 127): sh: 1: multipath: not found
  [2]
  $ without_tools show
  nrmpio: the multipath tools cannot list the maps (code 127): sh: 1: multipath: not found
  [2]
  $ without_tools is-multipath /dev/mapper/mpatha
  nrmpio: the multipath tools cannot list the maps (code 127): sh: 1: multipath: not found
  [2]
  $ without_tools is-partition /dev/mapper/mpatha1
  nrmpio: the multipath tools cannot list the maps (code 127): sh: 1: multipath: not found
  [2]
  $ without_tools paths /dev/mapper/mpatha
  nrmpio: the multipath tools cannot list the maps (code 127): sh: 1: multipath: not found
  [2]
  $ without_tools refresh
  nrmpio: cannot refresh the maps (code 127): sh: 1: multipath: not found
  [2]
  $ without_tools delete /dev/mapper/mpatha
  nrmpio: the multipath tools cannot list the maps (code 127): sh: 1: multipath: not found
  [2]
