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
  > nrmpio fail-if-no-path --yes /dev/mapper/mpatha
  > dmsetup table mpatha | cut -d' ' -f3-6
  > END
  multipath 1 queue_if_no_path 0
  multipath 0 0 2

Where the daemon restores what its configuration asks for, the command looks on and says so; it does not
look where no daemon runs, nor when it is told not to:

  $ cat > daemon.toml << 'END'
  > daemon = true
  > restore_after = 1
  > [[lun]]
  > queue_if_no_path = true
  > END
  $ nrmpio-sim --scenario daemon.toml -- bash -c 'nrmpio fail-if-no-path --yes mpatha; echo "status $?"
  > nrmpio fail-if-no-path --yes --recheck 0 mpatha; echo "status $?"' 2>&1
  nrmpio: mpatha queues I/O again: the daemon's configuration asks for that and has restored it; change no_path_retry there
  status 2
  status 0

The partition mappings of one map go, and only those:

  $ world 'nrmpio delete-partitions --yes mpatha'
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

  $ world 'nrmpio delete --yes /dev/mapper/mpatha'
  status 0
  lin0: 0 32768 linear
  lin1: 0 8192 linear
  mpathb: 0 131072 multipath
  mpathc: 0 131072 multipath
  mpathc1: 0 16384 linear
  mpathc2: 0 2 linear
  mpathc5: 0 16384 linear
  mpathc6: 0 16384 linear
  $ world 'nrmpio delete --yes /dev/mapper/mpathc5'
  nrmpio: mpathc5 is a partition mapping on mpathc: the whole map goes
  status 0
  lin0: 0 32768 linear
  lin1: 0 8192 linear
  mpatha: 0 131072 multipath
  mpatha1: 0 16384 linear
  mpatha2: 0 16384 linear
  mpatha3: 0 32768 linear
  mpathb: 0 131072 multipath
  $ world 'nrmpio delete --yes mpathb'
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

A command that is about a map takes no partition mapping for it, nor for a map what lies on a partition:

  $ nrmpio-sim -- bash << 'END' 2>&1
  > dmsetup create upper --table '0 8 linear /dev/mapper/mpatha1 0'
  > for command in fail-if-no-path delete-partitions; do nrmpio $command --yes mpatha1; done
  > nrmpio delete --yes /dev/mapper/upper
  > nrmpio delete --yes lin1
  > nrmpio delete --yes /dev/sdb
  > dmsetup table | wc -l
  > END
  nrmpio: mpatha1 is a partition mapping; name its map, mpatha
  nrmpio: mpatha1 is a partition mapping; name its map, mpatha
  nrmpio: /dev/mapper/upper is not a multipath device (code -6)
  nrmpio: /dev/mapper/lin1 is not a multipath device (code -6)
  nrmpio: /dev/sdb is not a multipath device (code -6)
  13

A node in another place than /dev/mapper will do, too:

  $ nrmpio-sim -- bash -c 'nrmpio delete --yes /dev/dm-4; echo "status $?"; nrmpio list' 2>&1
  nrmpio: mpatha2 is a partition mapping on mpatha: the whole map goes
  status 0
  /dev/mapper/mpathb
  /dev/mapper/mpathc

What was done, as JSON:

  $ world 'nrmpio delete-partitions --json --yes mpathc' | sed -n '1,/^status/p'
  {
    "device": "/dev/mapper/mpathc",
    "dryRun": false,
    "commands": [
      {
        "command": "dmsetup remove mpathc1",
        "status": 0
      },
      {
        "command": "dmsetup remove mpathc2",
        "status": 0
      },
      {
        "command": "dmsetup remove mpathc5",
        "status": 0
      },
      {
        "command": "dmsetup remove mpathc6",
        "status": 0
      }
    ],
    "removed": [
      "mpathc1",
      "mpathc2",
      "mpathc5",
      "mpathc6"
    ]
  }
  status 0
