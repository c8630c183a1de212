What nrmpio changes, and that it changes nothing else. Each world is a new one.

  $ world() { nrmpio-sim -- bash -c "$1; echo \"status \$?\"; dmsetup table | cut -d' ' -f1-4"; }

Maps that are missing come with a refresh:

  $ world 'multipath -f mpathb; nrmpio list; nrmpio refresh; nrmpio list'
  /dev/mapper/mpatha
  /dev/mapper/mpathc
  /dev/mapper/mpatha
  /dev/mapper/mpathb
  /dev/mapper/mpathc
  status 0
  lin0: 0 32768 linear
  lin1: 0 8192 linear
  mpatha: 0 131072 multipath
  mpatha1: 0 16384 linear
  mpatha2: 0 16384 linear
  mpatha3: 0 32768 linear
  mpathb: 0 131072 multipath
  mpathc: 0 131072 multipath
  mpathc1: 0 16384 linear
  mpathc2: 0 2 linear
  mpathc5: 0 16384 linear
  mpathc6: 0 16384 linear

A map is switched from queueing to failing:

  $ nrmpio-sim -- bash << 'END'
  > dmsetup message mpatha 0 queue_if_no_path
  > dmsetup table mpatha | cut -d' ' -f3-6
  > nrmpio fail-if-no-path /dev/mapper/mpatha
  > dmsetup table mpatha | cut -d' ' -f3-6
  > END
  multipath 1 queue_if_no_path 0
  multipath 0 0 2

The partition mappings of one map go, and only those:

  $ world 'nrmpio delete-partitions mpatha'
  status 0
  lin0: 0 32768 linear
  lin1: 0 8192 linear
  mpatha: 0 131072 multipath
  mpathb: 0 131072 multipath
  mpathc: 0 131072 multipath
  mpathc1: 0 16384 linear
  mpathc2: 0 2 linear
  mpathc5: 0 16384 linear
  mpathc6: 0 16384 linear

A map goes with its partition mappings; of a partition mapping, the whole map goes:

  $ world 'nrmpio delete /dev/mapper/mpatha'
  status 0
  lin0: 0 32768 linear
  lin1: 0 8192 linear
  mpathb: 0 131072 multipath
  mpathc: 0 131072 multipath
  mpathc1: 0 16384 linear
  mpathc2: 0 2 linear
  mpathc5: 0 16384 linear
  mpathc6: 0 16384 linear
  $ world 'nrmpio delete /dev/mapper/mpathc5'
  status 0
  lin0: 0 32768 linear
  lin1: 0 8192 linear
  mpatha: 0 131072 multipath
  mpatha1: 0 16384 linear
  mpatha2: 0 16384 linear
  mpatha3: 0 32768 linear
  mpathb: 0 131072 multipath
  $ world 'nrmpio delete mpathb'
  status 0
  lin0: 0 32768 linear
  lin1: 0 8192 linear
  mpatha: 0 131072 multipath
  mpatha1: 0 16384 linear
  mpatha2: 0 16384 linear
  mpatha3: 0 32768 linear
  mpathc: 0 131072 multipath
  mpathc1: 0 16384 linear
  mpathc2: 0 2 linear
  mpathc5: 0 16384 linear
  mpathc6: 0 16384 linear
