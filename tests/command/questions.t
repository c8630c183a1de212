What nrmpio tells about the built-in world.

  $ nrmpio() { nrmpio-sim -- nrmpio "$@"; }

The tools work, and these are the maps:

  $ nrmpio check
  Norvane: Linux Native MPIO
  $ nrmpio list
  /dev/mapper/mpatha
  /dev/mapper/mpathb
  /dev/mapper/mpathc
  $ nrmpio show
  NAME      TYPE MAJ:MIN SIZE STATE  NODE
  mpatha    map    253:0  64M active /dev/mapper/mpatha
  |-sdf     path    8:80  64M active /dev/sdf
  |-sdd     path    8:48  64M active /dev/sdd
  |-mpatha1 part   253:3   8M active /dev/mapper/mpatha1
  |-mpatha2 part   253:4   8M active /dev/mapper/mpatha2
  `-mpatha3 part   253:5  16M active /dev/mapper/mpatha3
  mpathb    map    253:1  64M active /dev/mapper/mpathb
  |-sdi     path   8:128  64M active /dev/sdi
  |-sdh     path   8:112  64M active /dev/sdh
  |-sde     path    8:64  64M active /dev/sde
  `-sdc     path    8:32  64M active /dev/sdc
  mpathc    map    253:2  64M active /dev/mapper/mpathc
  |-sdg     path    8:96  64M active /dev/sdg
  |-sda     path     8:0  64M active /dev/sda
  |-mpathc1 part   253:6   8M active /dev/mapper/mpathc1
  |-mpathc2 part   253:7   1K active /dev/mapper/mpathc2
  |-mpathc5 part   253:8   8M active /dev/mapper/mpathc5
  `-mpathc6 part   253:9   8M active /dev/mapper/mpathc6
  $ LC_ALL=C.UTF-8 nrmpio show | head -6
  NAME      TYPE MAJ:MIN SIZE STATE  NODE
  mpatha    map    253:0  64M active /dev/mapper/mpatha
  \xe2\x94\x9c\xe2\x94\x80sdf     path    8:80  64M active /dev/sdf (esc)
  \xe2\x94\x9c\xe2\x94\x80sdd     path    8:48  64M active /dev/sdd (esc)
  \xe2\x94\x9c\xe2\x94\x80mpatha1 part   253:3   8M active /dev/mapper/mpatha1 (esc)
  \xe2\x94\x9c\xe2\x94\x80mpatha2 part   253:4   8M active /dev/mapper/mpatha2 (esc)

A map, a mapping on a map, a bare name; a path, a disk, a linear device on a disk and one on that:

  $ for device in /dev/mapper/mpatha /dev/mapper/mpathc5 mpathb /dev/sdd /dev/vda /dev/mapper/lin0 /dev/mapper/lin1; do
  >   for question in is-multipath is-partition; do
  >     answer=$(nrmpio $question $device 2>&1); echo "$question $device: $answer, status $?"
  >   done
  > done
  is-multipath /dev/mapper/mpatha: yes, status 0
  is-partition /dev/mapper/mpatha: no, status 1
  is-multipath /dev/mapper/mpathc5: yes, status 0
  is-partition /dev/mapper/mpathc5: /dev/mapper/mpathc, status 0
  is-multipath mpathb: yes, status 0
  is-partition mpathb: no, status 1
  is-multipath /dev/sdd: no, status 1
  is-partition /dev/sdd: no, status 1
  is-multipath /dev/vda: no, status 1
  is-partition /dev/vda: no, status 1
  is-multipath /dev/mapper/lin0: no, status 1
  is-partition /dev/mapper/lin0: no, status 1
  is-multipath /dev/mapper/lin1: no, status 1
  is-partition /dev/mapper/lin1: /dev/mapper/lin0, status 0

Paths of a map with two, of one with four, of the map below a partition mapping:

  $ nrmpio paths /dev/mapper/mpatha
  /dev/sdf
  /dev/sdd
  $ nrmpio paths mpathb
  /dev/sdi
  /dev/sdh
  /dev/sde
  /dev/sdc
  $ nrmpio paths /dev/mapper/mpatha1
  /dev/sdf
  /dev/sdd

Partitions of a GPT, of no table, of a DOS table with an extended partition:

  $ nrmpio partitions /dev/mapper/mpatha
  NUMBER START SECTORS MAJ:MIN NODE
       1  2048   16384   253:3 /dev/mapper/mpatha1
       2 18432   16384   253:4 /dev/mapper/mpatha2
       3 34816   32768   253:5 /dev/mapper/mpatha3
  $ nrmpio partitions /dev/mapper/mpathb
  $ nrmpio partitions /dev/mapper/mpathc
  NUMBER START SECTORS MAJ:MIN NODE
       1  2048   16384   253:6 /dev/mapper/mpathc1
       2 18432       2   253:7 /dev/mapper/mpathc2
       5 20480   16384   253:8 /dev/mapper/mpathc5
       6 40960   16384   253:9 /dev/mapper/mpathc6

A disk's name from its number:

  $ nrmpio scsi-name 8 16
  sdb
  $ nrmpio scsi-name 8 255
  nrmpio: no SCSI disk has the number 8:255
  [2]

Other names of the same device: that of its number, bare or with its directory, and a path that goes round about:

  $ nrmpio-sim -- bash << 'END'
  > for device in dm-0 /dev/dm-0 /dev//mapper/../dm-0; do nrmpio is-partition --json $device | grep device; done
  > nrmpio paths vda
  > END
    "device": "/dev/mapper/mpatha",
    "device": "/dev/mapper/mpatha",
    "device": "/dev/mapper/mpatha",
  nrmpio: /dev/vda is not a multipath device (code -6)
  [2]

As JSON:

  $ nrmpio check --json
  {
    "vendor": "Norvane: Linux Native MPIO"
  }
  $ nrmpio list --json | tr -d ' \n'
  {"maps":["/dev/mapper/mpatha","/dev/mapper/mpathb","/dev/mapper/mpathc"]} (no-eol)
  $ nrmpio paths --json mpatha
  {
    "device": "/dev/mapper/mpatha",
    "paths": [
      "/dev/sdf",
      "/dev/sdd"
    ]
  }
  $ nrmpio is-multipath --json vda
  {
    "device": "/dev/vda",
    "multipath": false
  }
  [1]
  $ nrmpio is-partition --json mpathc5
  {
    "device": "/dev/mapper/mpathc5",
    "partition": true,
    "parent": "/dev/mapper/mpathc"
  }
  $ nrmpio is-partition --json mpathc
  {
    "device": "/dev/mapper/mpathc",
    "partition": false,
    "parent": null
  }
  [1]
  $ nrmpio scsi-name --json 8 16
  {
    "major": 8,
    "minor": 16,
    "name": "sdb"
  }
  $ nrmpio-sim -- bash -c 'dmsetup remove mpatha2; nrmpio partitions --json mpatha' | tr -d ' \n'
  {"device":"/dev/mapper/mpatha","partitions":[{"number":1,"start":2048,"sectors":16384,"major":253,"minor":3,"node":"/dev/mapper/mpatha1"},{"number":2,"start":null,"sectors":null,"major":null,"minor":null,"node":null},{"number":3,"start":34816,"sectors":32768,"major":253,"minor":5,"node":"/dev/mapper/mpatha3"}]} (no-eol)

A name in the listing that no device can have, and one that no device has, are told:

  $ printf '[[lun]]\n[[fault]]\ncommand = "multipath -d*"\nstatus = 0\nstdout = "mpatha\\nmpathz\\n\\nb\\u00e4\\n"\n' > odd.toml
  $ nrmpio-sim -s odd.toml -- nrmpio list --json
  nrmpio: "mpathz" stands in the list of maps, but there is no such map
  nrmpio: "b\xc3\xa4" stands in the list of maps, but there is no such map
  {
    "maps": [
      "/dev/mapper/mpatha"
    ]
  }
  [2]

A plug-in can be named, also one in the working directory:

  $ cp "$(dirname "$(type -P nrmpio)")"/lib{NrMPIO_Linux,NrLib,KoUtils,kpartx}.so .
  $ nrmpio --plugin libNrMPIO_Linux.so check
  Norvane: Linux Native MPIO

Help and version need no plug-in, and every command's help has an example:

  $ mkdir bare && cp "$(type -P nrmpio)" lib{KoUtils,NrLib}.so bare
  $ bare/nrmpio --version
  nrmpio 0.1.0.0
  $ for command in '' $(bare/nrmpio --help | sed '1,/^Commands:/d; /^$/,$d; s/^  \([a-z-]*\).*/\1/'); do
  >   bare/nrmpio $command --help | grep Example
  > done
  Example: nrmpio show
  Example: nrmpio delete --dry-run /dev/mapper/mpatha

A map in the list that has no node is told, not printed as an empty line:

  $ nrmpio-sim -- bash -c 'rm $NRMPIO_SIM_WORLD/dev/mapper/mpatha $NRMPIO_SIM_WORLD/dev/dm-0; nrmpio list' 2>&1
  nrmpio: the map mpatha has no node in /dev
  /dev/mapper/mpathb
  /dev/mapper/mpathc
  [2]
