Tools that fail: what came back is told, "no" is not taken for the truth, and nothing is changed.

  $ cat > san.toml << 'END'
  > [[lun]]
  > alias = "mpatha"
  > wwid = "350000000000000a1"
  > paths = ["sda", "sdb"]
  > table = '''
  > label: gpt
  > start=2048, size=16384
  > start=18432, size=16384
  > '''
  > [[disk]]
  > name = "sdc"
  > END
  $ fault() { printf '[[fault]]\ncommand = "%s"\nstatus = %s\nstderr = "%s"\nstdout = "%s"\n' "$@"; }

Runs nrmpio with each line of standard input in a new world with these faults, and compares the nodes
before and after:

  $ try() {
  >   { cat san.toml; echo "$1"; } > faulty.toml
  >   while read -r line; do
  >     nrmpio-sim --scenario faulty.toml -- bash -c '
  >       nodes() { for node in /dev/mapper/mpatha{,1,2}; do stat -c "%n %t:%T" $node; done; }
  >       before=$(nodes)
  >       echo "--- $0"; nrmpio $0; echo "status $?"
  >       [ "$(nodes)" = "$before" ] || echo "CHANGED"' "$line" 2>&1 < /dev/null
  >   done
  > }

Without rights, multipath cannot list:

  $ try "$(fault 'multipath -d*' 1 'need to be root\n' '')" << 'END'
  > check
  > list
  > show
  > is-multipath /dev/sdc
  > is-partition /dev/sdc
  > paths /dev/sdc
  > delete --yes /dev/sdc
  > END
  --- check
  nrmpio: this needs root: multipath and device-mapper refuse ordinary users
  status 2
  --- list
  nrmpio: this needs root: multipath and device-mapper refuse ordinary users
  status 2
  --- show
  nrmpio: this needs root: multipath and device-mapper refuse ordinary users
  status 2
  --- is-multipath /dev/sdc
  nrmpio: this needs root: multipath and device-mapper refuse ordinary users
  status 2
  --- is-partition /dev/sdc
  nrmpio: this needs root: multipath and device-mapper refuse ordinary users
  status 2
  --- paths /dev/sdc
  nrmpio: this needs root: multipath and device-mapper refuse ordinary users
  status 2
  --- delete --yes /dev/sdc
  nrmpio: this needs root: multipath and device-mapper refuse ordinary users
  status 2

Without dmsetup nothing is recognised:

  $ try "$(fault 'dmsetup*' 127 'sh: 1: dmsetup: not found\n' '')" << 'END'
  > check
  > show
  > is-multipath /dev/mapper/mpatha
  > is-partition /dev/mapper/mpatha1
  > paths /dev/mapper/mpatha
  > partitions /dev/mapper/mpatha
  > fail-if-no-path --yes /dev/mapper/mpatha
  > delete-partitions --yes /dev/mapper/mpatha
  > delete --yes /dev/mapper/mpatha
  > END
  --- check
  Norvane: Linux Native MPIO
  status 0
  --- show
  nrmpio: no multipath tools here: dmsetup is not installed (package dmsetup on Debian)
  status 2
  --- is-multipath /dev/mapper/mpatha
  nrmpio: no multipath tools here: dmsetup is not installed (package dmsetup on Debian)
  status 2
  --- is-partition /dev/mapper/mpatha1
  nrmpio: no multipath tools here: dmsetup is not installed (package dmsetup on Debian)
  status 2
  --- paths /dev/mapper/mpatha
  nrmpio: no multipath tools here: dmsetup is not installed (package dmsetup on Debian)
  status 2
  --- partitions /dev/mapper/mpatha
  nrmpio: no multipath tools here: dmsetup is not installed (package dmsetup on Debian)
  status 2
  --- fail-if-no-path --yes /dev/mapper/mpatha
  nrmpio: no multipath tools here: dmsetup is not installed (package dmsetup on Debian)
  status 2
  --- delete-partitions --yes /dev/mapper/mpatha
  nrmpio: no multipath tools here: dmsetup is not installed (package dmsetup on Debian)
  status 2
  --- delete --yes /dev/mapper/mpatha
  nrmpio: no multipath tools here: dmsetup is not installed (package dmsetup on Debian)
  status 2

A single command fails; status 6 of a command is not taken for "not a multipath device":

  $ try "$(fault 'dmsetup deps mpatha' 6 'two\nlines\twith a tab\n' '')" <<< 'paths /dev/mapper/mpatha'
  --- paths /dev/mapper/mpatha
  nrmpio: cannot list the paths of /dev/mapper/mpatha (code 6): two; lines\x09with a tab
  status 2
  $ try "$(fault 'multipath' 3 'no memory\n' '')" <<< 'refresh'
  --- refresh
  nrmpio: cannot refresh the maps (code 3): no memory
  status 2
  $ try "$(fault 'dmsetup message*' 1 'Command failed.\n' '')" <<< 'fail-if-no-path --yes /dev/mapper/mpatha'
  --- fail-if-no-path --yes /dev/mapper/mpatha
  nrmpio: cannot switch /dev/mapper/mpatha to fail I/O without paths (code 1): Command failed.
  status 2

The listing holds a warning, which is no map, and a map that has just gone:

  $ try "$(fault 'multipath -d*' 0 '' 'mpatha\nsda: no (usable) path\nmpathz\n')" << 'END'
  > list
  > show
  > END
  --- list
  nrmpio: "sda: no (usable) path" stands in the list of maps, but there is no such map
  nrmpio: "mpathz" stands in the list of maps, but there is no such map
  /dev/mapper/mpatha
  status 2
  --- show
  nrmpio: "sda: no (usable) path" stands in the list of maps, but there is no such map
  nrmpio: "mpathz" stands in the list of maps, but there is no such map
  NAME      TYPE MAJ:MIN SIZE STATE  NODE
  mpatha    map    253:0  64M active /dev/mapper/mpatha
  |-sdb     path    8:16  64M active /dev/sdb
  |-sda     path     8:0  64M active /dev/sda
  |-mpatha1 part   253:1   8M active /dev/mapper/mpatha1
  `-mpatha2 part   253:2   8M active /dev/mapper/mpatha2
  status 2

What the library takes for a "no" or for nothing is looked at once more:

  $ try "$(fault 'dmsetup info*' 1 'Command failed.\n' '')" <<< 'is-partition /dev/mapper/mpatha1'
  --- is-partition /dev/mapper/mpatha1
  nrmpio: dmsetup info -c --noheadings -o major,minor,open,attr,name failed (code 1): Command failed.
  status 2
  $ try "$(fault 'dmsetup table -j *' 1 'Command failed.\n' '')" <<< 'is-multipath /dev/mapper/mpatha1'
  --- is-multipath /dev/mapper/mpatha1
  nrmpio: dmsetup tells different things about /dev/mapper/mpatha1: try again, and see what fails with --trace
  status 2
  $ try "$(fault 'dmsetup info -c --noheadings -o name -j*' 1 'Command failed.\n' '')" <<< 'is-partition /dev/mapper/mpatha1'
  --- is-partition /dev/mapper/mpatha1
  nrmpio: dmsetup tells different things about /dev/mapper/mpatha1: try again, and see what fails with --trace
  status 2
  $ try "$(fault 'dmsetup deps*' 1 'Command failed.\n' '')" <<< 'partitions /dev/mapper/mpatha'
  --- partitions /dev/mapper/mpatha
  nrmpio: cannot list the paths of /dev/mapper/mpatha (code 1): Command failed.
  status 2
  $ try "$(fault 'dmsetup table' 1 '' '')" <<< 'delete-partitions --yes /dev/mapper/mpatha'
  --- delete-partitions --yes /dev/mapper/mpatha
  nrmpio: dmsetup table failed (code 1):
  status 2

A removal that fails is told, although the library calls it a success; one that succeeds when it is
tried again, 10 seconds later, is no failure. What could be removed is gone in both cases:

  $ busy=$(fault 'dmsetup remove mpatha1' 1 'Device or resource busy\n' '')
  $ try "$busy"$'\n'"$(fault 'dmsetup table mpatha1' 1 'gone\n' '')" <<< 'delete-partitions --yes /dev/mapper/mpatha'
  --- delete-partitions --yes /dev/mapper/mpatha
  nrmpio: cannot remove all partition mappings of /dev/mapper/mpatha: Device or resource busy
  nrmpio: mpatha1 is still there
  nrmpio: when the reason is gone, run the same command again
  status 2
  stat: cannot statx '/dev/mapper/mpatha2': No such file or directory
  CHANGED
  $ try "${busy/status/times = 1$'\n'status}" <<< 'delete-partitions --yes /dev/mapper/mpatha'
  --- delete-partitions --yes /dev/mapper/mpatha
  nrmpio: mpatha1 is busy (attempt 1 of 6), trying again in 10 s
  status 0
  stat: cannot statx '/dev/mapper/mpatha1': No such file or directory
  stat: cannot statx '/dev/mapper/mpatha2': No such file or directory
  CHANGED

A flush that fails, after the partition mappings have been removed:

  $ try "$(fault 'multipath -f*' 1 'mpatha: map in use\n' '')" <<< 'delete --yes /dev/mapper/mpatha'
  --- delete --yes /dev/mapper/mpatha
  nrmpio: cannot delete /dev/mapper/mpatha (code 1): mpatha: map in use
  nrmpio: mpatha is still there, with no mapping on it
  nrmpio: when the reason is gone, run the same command again
  status 2
  stat: cannot statx '/dev/mapper/mpatha1': No such file or directory
  stat: cannot statx '/dev/mapper/mpatha2': No such file or directory
  CHANGED
