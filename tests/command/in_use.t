What is told when something is in use, before, while and after it is removed.

  $ PATH=$PATH:$TESTDIR
  $ cat > hold << 'END'
  > sleep $1 < /dev/mapper/$2 &
  > until [ $(dmsetup info -c --noheadings -o open $2) = $3 ]; do sleep 0.1; done
  > END

A partition mapping that somebody holds open for some seconds: the removal waits 10 seconds, once.

  $ nrmpio-sim -- bash << 'END' 2>&1 | sed -E 's/process [0-9]+/process PID/; s/after [0-9]+ ms/after N ms/'
  > . ./hold 5 mpatha2 1
  > SECONDS=0
  > nrmpio --trace delete --yes /dev/mapper/mpatha
  > echo "status $?"
  > [ $SECONDS -ge 10 ] || echo "it took $SECONDS seconds only"
  > dmsetup table | cut -d' ' -f1-4
  > END
  nrmpio: status 0 after N ms: dmsetup table -j 253 -m 0
  nrmpio: status 0 after N ms: dmsetup info -c --noheadings -o major,minor,open,attr,name
  nrmpio: status 0 after N ms: dmsetup table
  nrmpio: status 0 after N ms: dmsetup status
  nrmpio: mpatha2 is open in process PID (sleep)
  nrmpio: status 0 after N ms: dmsetup table -j 253 -m 0
  nrmpio: status 0 after N ms: dmsetup message -j 253 -m 0 0 "fail_if_no_path"
  nrmpio: status 0 after N ms: dmsetup table | grep 'linear 253:0[^0-9]' | cut -d: -f1
  nrmpio: status 0 after N ms: dmsetup remove mpatha1
  nrmpio: status 1 after N ms: dmsetup remove mpatha2
  nrmpio: status 0 after N ms: dmsetup table mpatha2
  nrmpio: mpatha2 is busy (attempt 1 of 6), trying again in 10 s
  nrmpio: status 0 after N ms: dmsetup remove mpatha2
  nrmpio: status 0 after N ms: dmsetup remove mpatha3
  nrmpio: status 0 after N ms: dmsetup info -c --noheadings -o name -j 253 -m 0
  nrmpio: status 0 after N ms: multipath -f mpatha\n
  status 0
  lin0: 0 32768 linear
  lin1: 0 8192 linear
  mpathb: 0 131072 multipath
  mpathc: 0 131072 multipath
  mpathc1: 0 16384 linear
  mpathc2: 0 2 linear
  mpathc5: 0 16384 linear
  mpathc6: 0 16384 linear

On a terminal the seconds are counted down in one line. An interruption ends that wait, too:

  $ cat > counted << 'END'
  > . ./hold 9 mpatha2 1
  > on_terminal timeout --foreground --preserve-status -s INT 4 nrmpio delete --yes mpatha | tr '\r' '\n' | grep -v ' [1-8] s'
  > echo "status ${PIPESTATUS[0]}"
  > kill $!
  > END
  $ nrmpio-sim -- bash counted | sed -E 's/process [0-9]+/process PID/'
  nrmpio: mpatha2 is open in process PID (sleep)
  
  nrmpio: mpatha2 is busy (attempt 1 of 6), trying again in 10 s
                                                                
  nrmpio: mpatha2 is busy (attempt 1 of 6), trying again in 9 s
                                                               
  nrmpio: interrupted while removing mpatha2: nrmpio show tells what is left
  status 130

A flush that is refused, since somebody has the map itself open. Its partition mappings have gone by then, and
it fails I/O instead of queueing it:

  $ cat > refused << 'END'
  > dmsetup message mpatha 0 queue_if_no_path
  > . ./hold 9 mpatha 4
  > nrmpio delete --yes mpatha; echo "status $?"
  > kill $!
  > END
  $ nrmpio-sim -- bash refused 2>&1 | sed -E 's/process [0-9]+/process PID/; s/[0-9.]+ \|/T |/'
  nrmpio: mpatha is open in process PID (sleep)
  nrmpio: cannot delete /dev/mapper/mpatha (code 1): T | mpatha: map in use
  nrmpio: mpatha is still there, with no mapping on it
  nrmpio: mpatha queued I/O while it had no path, and fails it now: dmsetup message mpatha 0 queue_if_no_path switches back
  nrmpio: mpatha is open in process PID (sleep)
  nrmpio: end what holds it, and run the same command again
  status 2

A mapping that stays, and that is suspended:

  $ cat > faulty.toml << 'END'
  > [[lun]]
  > table = "label: gpt\nstart=2048, size=4096\nstart=8192, size=4096\n"
  > [[fault]]
  > command = "dmsetup remove mpatha1"
  > status = 1
  > stderr = "Device or resource busy\n"
  > [[fault]]
  > command = "dmsetup table mpatha1"
  > status = 1
  > END
  $ nrmpio-sim --scenario faulty.toml -- bash -c 'dmsetup suspend mpatha1; nrmpio delete-partitions --json --yes mpatha; echo "status $?"' 2>&1
  nrmpio: cannot remove all partition mappings of /dev/mapper/mpatha: Device or resource busy
  nrmpio: mpatha1 is still there
  nrmpio: mpatha1 is suspended, and I/O on it waits: dmsetup resume mpatha1 ends that
  nrmpio: when the reason is gone, run the same command again
  {
    "device": "/dev/mapper/mpatha",
    "dryRun": false,
    "commands": [
      {
        "command": "dmsetup remove mpatha1",
        "status": 1
      },
      {
        "command": "dmsetup remove mpatha2",
        "status": 0
      }
    ],
    "removed": [
      "mpatha2"
    ]
  }
  status 2
