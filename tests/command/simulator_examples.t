The worked examples of docs/simulator.md, word by word.

  $ clock() { sed -E 's/^[0-9]+\.[0-9]{6} \|/1234.567890 |/'; }

See a map: its paths, what it is made of, what lies on it.

  $ nrmpio-sim -- sh -c 'multipath -l mpathb; dmsetup deps mpatha; dmsetup table | grep "linear 253:0 "' 2>&1 | clock
  1234.567890 | Warning: multipath devices exist, but multipathd service is not running
  mpathb (350000000000000b2) dm-1 RIG,LUN
  size=64M features='0' hwhandler='0' wp=rw
  `-+- policy='service-time 0' prio=0 status=enabled
    |- 0:0:0:2 sdc 8:32  active undef running
    |- 1:0:0:2 sde 8:64  active undef running
    |- 2:0:0:2 sdh 8:112 active undef running
    `- 3:0:0:2 sdi 8:128 active undef running
  2 dependencies\t: (8, 80) (8, 48) (esc)
  mpatha1: 0 16384 linear 253:0 2048
  mpatha2: 0 16384 linear 253:0 18432
  mpatha3: 0 32768 linear 253:0 34816

Watch a busy removal retried: somebody has the partition open for a second.

  $ cat > retry.sh << 'END'
  > sleep 1 < /dev/mapper/mpatha2 &
  > sleep 0.3
  > until dmsetup remove mpatha2; do
  >   dmsetup info -c --noheadings -o name,open mpatha2
  >   sleep 1
  > done
  > dmsetup table mpatha2
  > END
  $ nrmpio-sim -- sh retry.sh
  device-mapper: remove ioctl on mpatha2  failed: Device or resource busy
  Command failed.
  mpatha2:1
  device-mapper: table ioctl on mpatha2  failed: No such device or address
  Command failed.
  [1]

Reproduce a failing flush: a scenario in which the first two fail, and one in which a partition is in use.

  $ cat > flush.toml << 'END'
  > [[lun]]
  > [[fault]]
  > command = "multipath -f *"
  > times = 2
  > status = 1
  > stderr = "1234.567890 | mpatha: map in use\n"
  > END
  $ nrmpio-sim --scenario flush.toml -- sh -c 'for try in 1 2 3; do multipath -f mpatha; echo status $?; done'
  1234.567890 | mpatha: map in use
  status 1
  1234.567890 | mpatha: map in use
  status 1
  status 0
  $ nrmpio-sim -- sh -c 'simctl hold mpatha2; multipath -f mpatha; simctl release mpatha2; multipath -f mpatha; dmsetup ls' 2>&1 | clock
  1234.567890 | mpatha2: map in use
  lin0\t(253:10) (esc)
  lin1\t(253:11) (esc)
  mpathb\t(253:1) (esc)
  mpathc\t(253:2) (esc)
  mpathc1\t(253:6) (esc)
  mpathc2\t(253:7) (esc)
  mpathc5\t(253:8) (esc)
  mpathc6\t(253:9) (esc)
