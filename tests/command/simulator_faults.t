Faults of commands: what a tool prints instead, and a tool that is missing.

  $ cat > faults.toml << 'END'
  > missing_tools = ["kpartx"]
  > [[lun]]
  > [[fault]]
  > command = "dmsetup table"
  > print = "garbage"
  > times = 1
  > [[fault]]
  > command = "dmsetup table"
  > print = "nothing"
  > times = 1
  > [[fault]]
  > command = "dmsetup table"
  > print = "megabyte"
  > stdout = "mpatha: 0 8 linear 8:0 0\n"
  > status = 5
  > END
  $ nrmpio-sim -s faults.toml -- bash -c 'for i in 1 2 3; do dmsetup table > out; echo $? $(wc -c < out); done; head -1 out
  > dmsetup deps; kpartx -l /dev/mapper/mpatha 2> /dev/null; echo $?'
  0 4096
  0 0
  5 1048600
  mpatha: 0 8 linear 8:0 0
  mpatha: 2 dependencies\t: (8, 16) (8, 0) (esc)
  127

Faults of devices: a node that is absent, that kpartx makes, that is a file; a mapping that is held.

  $ cat > devices.toml << 'END'
  > [[lun]]
  > table = "label: gpt\nstart=2048, size=4096\nstart=8192, size=4096\nstart=16384, size=4096\nstart=24576, size=4096\n"
  > [[device]]
  > name = "mpatha1"
  > node = "absent"
  > [[device]]
  > name = "mpatha2"
  > node = "late"
  > [[device]]
  > name = "mpatha3"
  > node = "file"
  > [[device]]
  > name = "mpatha4"
  > held = true
  > [[device]]
  > name = "sdb"
  > state = "lost"
  > END
  $ nrmpio-sim -s devices.toml -- bash -c 'kinds() { for i in 1 2 3 4; do stat -Lc %F /dev/mapper/mpatha$i 2>&1 | sed "s/.*: //"; done; }
  > kinds; kpartx -a /dev/mapper/mpatha; kinds; dmsetup remove mpatha4; dmsetup info -c --noheadings -o name,open mpatha4
  > [ -e /dev/sdb ] || echo lost; simctl release mpatha4; dmsetup remove mpatha4; echo $?'
  No such file or directory
  No such file or directory
  regular file
  block special file
  No such file or directory
  block special file
  regular file
  block special file
  device-mapper: remove ioctl on mpatha4  failed: Device or resource busy
  Command failed.
  mpatha4:1
  lost
  0

Machines where the tools do not get far:

  $ printf 'privileged = false\n[[disk]]\nname = "vda"\n' > plain.toml; echo 'device_mapper = false' > nodm.toml
  $ nrmpio-sim -s plain.toml -- bash -c 'multipath -ll; dmsetup ls; kpartx -a /dev/vda; head -c 1 /dev/vda'
  need to be root
  /dev/mapper/control: open failed: Permission denied
  Failure to communicate with kernel device-mapper driver.
  Incompatible libdevmapper 1.02.185 (2022-05-18) and kernel driver (unknown version).
  Command failed.
  /dev/mapper/control: open failed: Permission denied
  Failure to communicate with kernel device-mapper driver.
  Incompatible libdevmapper 1.02.185 (2022-05-18) and kernel driver (unknown version).
  /dev/vda: Permission denied
  head: cannot open '/dev/vda' for reading: Permission denied
  [1]
  $ nrmpio-sim -s nodm.toml -- dmsetup version
  Library version:   1.02.185 (2022-05-18)
  /dev/mapper/control: open failed: No such device
  Failure to communicate with kernel device-mapper driver.
  Check that device-mapper is available in the kernel.
  Incompatible libdevmapper 1.02.185 (2022-05-18) and kernel driver (unknown version).
  Command failed.
  [1]

What can't be is refused with a sentence, by --check too:

  $ check() { printf '%b' "$1" > bad.toml; nrmpio-sim --check bad.toml; }
  $ check '[[lun]]\n'
  bad.toml: no mistake; 1 unit, 0 other disks, 0 linear devices, 0 faults.
  $ check '[[lun]]\nalias = "control"\n'
  nrmpio-sim: bad.toml:2: lun.alias must be a name of 1 to 127 characters without a "/".
  [65]
  $ check '[[lun]]\nsize = "9T"\n'
  nrmpio-sim: bad.toml:2: lun.size must be a size such as "64M", with K, M, G or T, of at most 8T.
  [65]
  $ check '[[lun]]\npaths = ["hda"]\n'
  nrmpio-sim: bad.toml:2: lun.paths "hda" must be a disk's name such as "sda" or "vda".
  [65]
  $ check '[[lun]]\npaths = -1\n'
  nrmpio-sim: bad.toml:2: lun.paths must be from 0 to 64.
  [65]
  $ check '[[lun]]\ncount = 2\nalias = "x"\n'
  nrmpio-sim: bad.toml:3: lun.alias cannot be given to several units.
  [65]
  $ check '[[lun]]\nsize = "1M"\ntable = "label: gpt\\nstart=99999, size=8\\n"\n'
  nrmpio-sim: bad.toml:3: lun.table is no table for this disk: sfdisk: * (glob)
  [65]
  $ check '[[lun]]\n[[linear]]\nname = "l"\ndevice = "mpatha"\nstart = 131071\nlength = 2\n'
  nrmpio-sim: bad.toml:4: linear.device "mpatha" ends before start + length.
  [65]
  $ check '[[device]]\nname = "nosuch"\n'
  nrmpio-sim: bad.toml:2: device.name "nosuch" must be a path, or a mapping that is there.
  [65]
  $ check '[[lun]]\n[[device]]\nname = "mpatha"\nnode = "odd"\n'
  nrmpio-sim: bad.toml:4: device.node must be "present", "absent", "late" or "file".
  [65]
  $ check 'missing_tools = ["ls"]\n'
  nrmpio-sim: bad.toml:1: missing_tools must name multipath, dmsetup or kpartx.
  [65]
