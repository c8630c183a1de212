Paths that stop answering, go and come back; simctl does to a world what happens to hardware.

  $ cat > san.toml << 'END'
  > [[lun]]
  > queue_if_no_path = true
  > table = "label: gpt\nstart=2048, size=4096\n"
  > END
  $ world() { nrmpio-sim --scenario san.toml -- bash -c "$1" 2>&1 | sed -E 's/^[0-9]+\.[0-9]{6} \|/T |/; s/ copied, .*/ copied/'; }

Without any path a map fails, and what lies on it; lost paths stay dependencies:

  $ world 'simctl path all lost; dmsetup deps mpatha; [ -e /dev/sda ] || echo gone
  > for node in mpatha mpatha1; do dd if=/dev/mapper/$node of=/dev/null count=1; done
  > simctl path all running; dmsetup message mpatha 0 "reinstate_path 8:0"; dd if=/dev/mapper/mpatha1 of=/dev/null count=1'
  2 dependencies\t: (8, 16) (8, 0) (esc)
  gone
  dd: error reading '/dev/mapper/mpatha': Input/output error
  0+0 records in
  0+0 records out
  0 bytes copied
  dd: error reading '/dev/mapper/mpatha1': Input/output error
  0+0 records in
  0+0 records out
  0 bytes copied
  1+0 records in
  1+0 records out
  512 bytes copied

A map that queues lets readers wait, those of its partitions too, until the message releases them:

  $ world 'dmsetup message mpatha 0 queue_if_no_path; simctl path all offline
  > (dd if=/dev/mapper/mpatha1 of=/dev/null count=1; echo released) & sleep 0.5
  > timeout 0.3 kpartx -l /dev/mapper/mpatha; echo $?
  > dmsetup remove mpatha1; echo waiting
  > dmsetup message mpatha 0 fail_if_no_path; wait'
  124
  device-mapper: remove ioctl on mpatha1  failed: Device or resource busy
  Command failed.
  waiting
  dd: error reading '/dev/mapper/mpatha1': Input/output error
  0+0 records in
  0+0 records out
  0 bytes copied
  released

A suspended map lets them wait as well:

  $ world 'dmsetup suspend mpatha; dmsetup info -c --noheadings -o attr mpatha
  > timeout 0.3 head -c 1 /dev/mapper/mpatha; echo $?; dmsetup resume mpatha; head -c 1 /dev/mapper/mpatha | wc -c'
  L-sw
  124
  1

One lost path hurts nobody, and the other group takes over; wrong names are refused:

  $ world 'simctl path sda lost; dd if=/dev/mapper/mpatha of=/dev/null count=1 status=none && multipath -ll mpatha
  > dmsetup message mpatha 0 "fail_path 8:99"; simctl path sdz lost; simctl hold nosuch'
  T | get_udev_device: failed to look up 8:0 with type 1
  T | mpatha: discarding non-existing path 8:0
  T | mpatha: removing empty pathgroup 0
  T | Warning: multipath devices exist, but multipathd service is not running
  mpatha (35000000000000001) dm-0 RIG,LUN
  size=64M features='0' hwhandler='0' wp=rw
  `-+- policy='service-time 0' prio=1 status=enabled
    `- 1:0:0:1 sdb 8:16 active ready running
  device-mapper: message ioctl on mpatha  failed: Invalid argument
  Command failed.
  simctl: there is no path sdz; see multipath -ll
  simctl: there is no mapping nosuch; see dmsetup ls

The daemon restores the queueing that a map is configured with, after some seconds:

  $ printf 'daemon = true\nrestore_after = 1\n' | cat - san.toml > daemon.toml
  $ nrmpio-sim -s daemon.toml -- bash -c 'policy() { dmsetup table mpatha | cut -d" " -f4-5; }; policy
  > dmsetup message mpatha 0 fail_if_no_path; policy; sleep 1.1; policy; dmsetup message mpatha 0 fail_if_no_path; policy
  > sleep 1.1; dmsetup status mpatha > /dev/null; cut -d" " -f4-5 $NRMPIO_SIM_WORLD/block/dm-0/dm/table'
  1 queue_if_no_path
  0 0
  1 queue_if_no_path
  0 0
  1 queue_if_no_path
