A partition mapping that somebody holds open for some seconds: the removal waits 10 seconds, once.

  $ nrmpio-sim -- bash << 'END' 2>&1 | sed -E 's/^[^]]*\] //; s/after [0-9]+ ms/after N ms/'
  > exec 7< /dev/mapper/mpatha2
  > sleep 5 &
  > exec 7<&-
  > SECONDS=0
  > nrmpio --trace delete /dev/mapper/mpatha
  > echo "status $?"
  > [ $SECONDS -ge 10 ] || echo "it took $SECONDS seconds only"
  > dmsetup table | cut -d' ' -f1-4
  > END
  NrProcess::system: status 0 after N ms: dmsetup table -j 253 -m 0
  NrProcess::system: status 0 after N ms: dmsetup table -j 253 -m 0
  NrProcess::system: status 0 after N ms: dmsetup message -j 253 -m 0 0 "fail_if_no_path"
  NrProcess::system: status 0 after N ms: dmsetup table | grep 'linear 253:0[^0-9]' | cut -d: -f1
  NrProcess::system: status 0 after N ms: dmsetup remove mpatha1
  NrProcess::system: status 1 after N ms: dmsetup remove mpatha2
  deleteMPIODevicePartitions: dmsetup remove failed on mpatha2
  deleteMPIODevicePartitions: Error:device-mapper: remove ioctl on mpatha2  failed: Device or resource busy\nCommand failed.\n
  NrProcess::system: status 0 after N ms: dmsetup table mpatha2
  deleteMPIODevicePartitions: Retrying dmsetup remove on mpatha2 in 10 sec.
  NrProcess::system: status 0 after N ms: dmsetup remove mpatha2
  NrProcess::system: status 0 after N ms: dmsetup remove mpatha3
  NrProcess::system: status 0 after N ms: dmsetup info -c --noheadings -o name -j 253 -m 0
  NrProcess::system: status 0 after N ms: multipath -f mpatha\n
  status 0
  lin0: 0 32768 linear
  lin1: 0 8192 linear
  mpathb: 0 131072 multipath
  mpathc: 0 131072 multipath
  mpathc1: 0 16384 linear
  mpathc2: 0 2 linear
  mpathc5: 0 16384 linear
  mpathc6: 0 16384 linear
