Partition mappings that are missing, and partition tables that are better not read.

  $ world() { nrmpio-sim -- bash -c "$1; echo \"status \$?\"" 2>&1; }

Without a mapping a partition is listed all the same; with --kpartx it gets one, and keeps it:

  $ world 'dmsetup remove mpatha2; nrmpio partitions mpatha; nrmpio partitions --kpartx --dry-run mpatha
  > nrmpio partitions --kpartx mpatha; dmsetup ls | grep -c "^mpatha[1-3]"'
  NUMBER START SECTORS MAJ:MIN NODE
       1  2048   16384   253:3 /dev/mapper/mpatha1
       2     -       -       - -
       3 34816   32768   253:5 /dev/mapper/mpatha3
  nrmpio: kpartx -a creates the partition mappings of mpatha that are missing
  kpartx -a /dev/mapper/mpatha
  nrmpio: kpartx -a creates the partition mappings of mpatha that are missing
  NUMBER START SECTORS MAJ:MIN NODE
       1  2048   16384   253:3 /dev/mapper/mpatha1
       2 18432   16384   253:4 /dev/mapper/mpatha2
       3 34816   32768   253:5 /dev/mapper/mpatha3
  3
  status 0

Mappings that a distribution's rules made would get another name, even one in use: that is told, and asked.

  $ auto='for i in 1 2 3; do dmsetup rename mpatha$i mpatha-part$i; done; sleep 60 < /dev/mapper/mpatha-part2 & '
  $ after='; kill %1; dmsetup ls | cut -f1 | grep ^mpatha | xargs'
  $ world "$auto nrmpio partitions --kpartx mpatha$after"
  nrmpio: kpartx -a creates the partition mappings of mpatha that are missing, and renames mpatha-part1 to mpatha1, mpatha-part2 to mpatha2 (in use), mpatha-part3 to mpatha3
  nrmpio: there is no terminal to ask on: confirm with --yes, or look with --dry-run first
  mpatha mpatha-part1 mpatha-part2 mpatha-part3
  status 0
  $ world "$auto nrmpio partitions --kpartx --dry-run --json mpatha$after"
  nrmpio: kpartx -a creates the partition mappings of mpatha that are missing, and renames mpatha-part1 to mpatha1, mpatha-part2 to mpatha2 (in use), mpatha-part3 to mpatha3
  {
    "device": "/dev/mapper/mpatha",
    "dryRun": true,
    "commands": [
      {
        "command": "kpartx -a /dev/mapper/mpatha",
        "status": null
      }
    ],
    "removed": []
  }
  mpatha mpatha-part1 mpatha-part2 mpatha-part3
  status 0
  $ world "$auto $TESTDIR/on_terminal --answer no nrmpio partitions --kpartx mpatha; echo status \$? $after"
  nrmpio: kpartx -a creates the partition mappings of mpatha that are missing, and renames mpatha-part1 to mpatha1, mpatha-part2 to mpatha2 (in use), mpatha-part3 to mpatha3
  Rename mappings of map mpatha? [y/N] no
  nrmpio: nothing was changed
  status 1
  mpatha mpatha-part1 mpatha-part2 mpatha-part3
  status 0
  $ world "$auto $TESTDIR/on_terminal --answer yes nrmpio partitions --kpartx mpatha $after"
  nrmpio: kpartx -a creates the partition mappings of mpatha that are missing, and renames mpatha-part1 to mpatha1, mpatha-part2 to mpatha2 (in use), mpatha-part3 to mpatha3
  Rename mappings of map mpatha? [y/N] yes
  NUMBER START SECTORS MAJ:MIN NODE
       1  2048   16384   253:3 /dev/mapper/mpatha1
       2 18432   16384   253:4 /dev/mapper/mpatha2
       3 34816   32768   253:5 /dev/mapper/mpatha3
  mpatha mpatha1 mpatha2 mpatha3
  status 0
  $ world "$auto nrmpio partitions --kpartx --yes mpatha > /dev/null $after"
  nrmpio: kpartx -a creates the partition mappings of mpatha that are missing, and renames mpatha-part1 to mpatha1, mpatha-part2 to mpatha2 (in use), mpatha-part3 to mpatha3
  mpatha mpatha1 mpatha2 mpatha3
  status 0

A mapping whose node is absent does not make a question change anything:

  $ printf '[[lun]]\ntable = "label: gpt\\nstart=2048, size=4096\\n"\n[[device]]\nname = "mpatha1"\nnode = "late"\n' > late.toml
  $ nrmpio-sim -s late.toml -- bash -c 'nrmpio partitions mpatha; ls /dev/mapper; nrmpio partitions --kpartx mpatha' 2>&1
  NUMBER START SECTORS MAJ:MIN NODE
       1     -       -       - -
  control
  mpatha
  nrmpio: kpartx -a creates the partition mappings of mpatha that are missing
  NUMBER START SECTORS MAJ:MIN NODE
       1  2048    4096   253:1 /dev/mapper/mpatha1

The table of a map that could let the reader wait for ever is not read:

  $ world 'simctl path sdd lost; nrmpio partitions mpatha | wc -l; simctl path sdf offline; timeout 10 nrmpio partitions mpatha'
  4
  nrmpio: the partition table of mpatha is not read: the map has no usable path, so that the read could wait for ever; see nrmpio show
  status 2
  $ world 'dmsetup message mpatha 0 queue_if_no_path; simctl path all offline; timeout 10 nrmpio partitions mpatha'
  nrmpio: the partition table of mpatha is not read: the map has no usable path, so that the read could wait for ever; see nrmpio show
  status 2
  $ world 'dmsetup suspend mpatha; timeout 10 nrmpio partitions --kpartx mpatha; status=$?; dmsetup resume mpatha; (exit $status)'
  nrmpio: the partition table of mpatha is not read: the map is suspended, so that the read could wait for ever; see nrmpio show
  status 2
