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
  NAME      TYPE MAJ:MIN SIZE NODE
  mpatha    map    253:0  64M /dev/mapper/mpatha
  |-sdf     path    8:80      /dev/sdf
  |-sdd     path    8:48      /dev/sdd
  |-mpatha1 part   253:3   8M /dev/mapper/mpatha1
  |-mpatha2 part   253:4   8M /dev/mapper/mpatha2
  `-mpatha3 part   253:5  16M /dev/mapper/mpatha3
  mpathb    map    253:1  64M /dev/mapper/mpathb
  |-sdi     path   8:128      /dev/sdi
  |-sdh     path   8:112      /dev/sdh
  |-sde     path    8:64      /dev/sde
  `-sdc     path    8:32      /dev/sdc
  mpathc    map    253:2  64M /dev/mapper/mpathc
  |-sdg     path    8:96      /dev/sdg
  |-sda     path     8:0      /dev/sda
  |-mpathc1 part   253:6   8M /dev/mapper/mpathc1
  |-mpathc2 part   253:7   1K /dev/mapper/mpathc2
  |-mpathc5 part   253:8   8M /dev/mapper/mpathc5
  `-mpathc6 part   253:9   8M /dev/mapper/mpathc6
  $ LC_ALL=C.UTF-8 nrmpio show | head -6
  NAME      TYPE MAJ:MIN SIZE NODE
  mpatha    map    253:0  64M /dev/mapper/mpatha
  \xe2\x94\x9c\xe2\x94\x80sdf     path    8:80      /dev/sdf (esc)
  \xe2\x94\x9c\xe2\x94\x80sdd     path    8:48      /dev/sdd (esc)
  \xe2\x94\x9c\xe2\x94\x80mpatha1 part   253:3   8M /dev/mapper/mpatha1 (esc)
  \xe2\x94\x9c\xe2\x94\x80mpatha2 part   253:4   8M /dev/mapper/mpatha2 (esc)

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

Without a mapping a partition is listed all the same; with --kpartx it gets one, and keeps it:

  $ nrmpio-sim -- bash -e << 'END'
  > dmsetup remove mpatha2
  > nrmpio partitions /dev/mapper/mpatha
  > nrmpio show | head -6
  > nrmpio partitions --kpartx /dev/mapper/mpatha
  > nrmpio partitions /dev/mapper/mpatha
  > END
  NUMBER START SECTORS MAJ:MIN NODE
       1  2048   16384   253:3 /dev/mapper/mpatha1
       2     -       -       - -
       3 34816   32768   253:5 /dev/mapper/mpatha3
  NAME          TYPE     MAJ:MIN SIZE NODE
  mpatha        map        253:0  64M /dev/mapper/mpatha
  |-sdf         path        8:80      /dev/sdf
  |-sdd         path        8:48      /dev/sdd
  |-mpatha1     part       253:3   8M /dev/mapper/mpatha1
  |-partition 2 unmapped              -
  NUMBER START SECTORS MAJ:MIN NODE
       1  2048   16384   253:3 /dev/mapper/mpatha1
       2 18432   16384   253:4 /dev/mapper/mpatha2
       3 34816   32768   253:5 /dev/mapper/mpatha3
  NUMBER START SECTORS MAJ:MIN NODE
       1  2048   16384   253:3 /dev/mapper/mpatha1
       2 18432   16384   253:4 /dev/mapper/mpatha2
       3 34816   32768   253:5 /dev/mapper/mpatha3

A disk's name from its number:

  $ nrmpio scsi-name 8 16
  sdb
  $ nrmpio scsi-name 8 255
  nrmpio: no SCSI disk has the number 8:255
  [2]

The trace tells what the library ran; without it nothing is told:

  $ nrmpio paths --trace /dev/mapper/mpatha 2>&1 | sed -E 's/^.*NrProcess::system: (status [0-9]+) after [0-9]+ ms/\1/'
  status 0: dmsetup table -j 253 -m 0
  status 0: dmsetup table -j 253 -m 0
  status 0: dmsetup info -c --noheadings -o name -j 253 -m 0
  status 0: dmsetup deps mpatha\n
  /dev/sdf
  /dev/sdd
  $ nrmpio paths /dev/mapper/mpatha 2>&1 >/dev/null

A plug-in can be named, also one in the working directory:

  $ cp "$(dirname "$(type -P nrmpio)")"/lib{NrMPIO_Linux,NrLib,KoUtils,kpartx}.so .
  $ nrmpio --plugin libNrMPIO_Linux.so check
  Norvane: Linux Native MPIO

Help and version need no plug-in, and every command's help has an example:

  $ mkdir bare && cp "$(type -P nrmpio)" libKoUtils.so bare
  $ bare/nrmpio --version
  nrmpio 0.1.0.0
  $ for command in '' $(bare/nrmpio --help | sed '1,/^Commands:/d; /^$/,$d; s/^  \([a-z-]*\).*/\1/'); do
  >   bare/nrmpio $command --help | grep Example
  > done
  Example: nrmpio show
  Example: nrmpio check
  Example: nrmpio list
  Example: nrmpio show
  Example: nrmpio is-multipath /dev/mapper/mpatha && echo good
  Example: nrmpio is-partition /dev/mapper/mpatha1
  Example: nrmpio paths /dev/mapper/mpatha
  Example: nrmpio partitions --kpartx /dev/mapper/mpatha
  Example: nrmpio refresh
  Example: nrmpio fail-if-no-path /dev/mapper/mpatha
  Example: nrmpio delete-partitions /dev/mapper/mpatha
  Example: nrmpio delete /dev/mapper/mpatha
  Example: nrmpio scsi-name 8 16
