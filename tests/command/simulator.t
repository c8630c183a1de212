What the simulated tools print, byte for byte what the real ones print: multipath 0.9.4, dmsetup 1.02.185
on Linux 6.1. Lines on standard error are led by "!", statuses other than 0 stand in brackets; the uptime
that leads multipath's lines is written as "T".

  $ cat > each << 'END'
  > # Runs each line of standard input in one shell.
  > while read -r line; do
  >   echo "--- $line"
  >   eval "$line" 2> err; status=$?
  >   sed -E 's/^[0-9]+\.[0-9]{6} \|/T |/; s/^/! /' err
  >   [ $status = 0 ] || echo "[$status]"
  > done
  > END
  $ world() { nrmpio-sim "$@" -- bash ./each; }

The built-in world, and the ways to name a device:

  $ world << 'END'
  > multipath -d  -v1 -l
  > multipath -ll
  > dmsetup table
  > dmsetup table mpatha | cat -A
  > dmsetup table /dev/mapper/mpatha1
  > dmsetup table /dev/dm-10
  > dmsetup table -j 253 -m 11
  > dmsetup deps | cat -A
  > dmsetup deps mpatha
  > dmsetup deps -j 253 -m 3
  > dmsetup info -c --noheadings -o name -j 253 -m 0
  > dmsetup info -c --noheadings -o name /dev/mapper/mpatha2
  > dmsetup info -c -o name,major,minor,open,uuid mpatha1
  > dmsetup ls --target multipath | cat -A
  > dmsetup status mpatha
  > dmsetup table | grep 'linear 253:1[^0-9]' | cut -d: -f1
  > dmsetup deps | grep '(253, 2)$' | cut -d ':' -f1
  > kpartx -l /dev/mapper/mpathc
  > kpartx -l /dev/mapper/mpathb
  > multipath -v1 -l /dev/sdd
  > END
  --- multipath -d  -v1 -l
  mpatha
  mpathb
  mpathc
  --- multipath -ll
  mpatha (350000000000000a1) dm-0 RIG,LUN
  size=64M features='0' hwhandler='0' wp=rw
  |-+- policy='service-time 0' prio=1 status=active
  | `- 0:0:0:1 sdd 8:48 active ready running
  `-+- policy='service-time 0' prio=1 status=enabled
    `- 1:0:0:1 sdf 8:80 active ready running
  mpathb (350000000000000b2) dm-1 RIG,LUN
  size=64M features='0' hwhandler='0' wp=rw
  `-+- policy='service-time 0' prio=1 status=enabled
    |- 0:0:0:2 sdc 8:32  active ready running
    |- 1:0:0:2 sde 8:64  active ready running
    |- 2:0:0:2 sdh 8:112 active ready running
    `- 3:0:0:2 sdi 8:128 active ready running
  mpathc (350000000000000c3) dm-2 RIG,LUN
  size=64M features='0' hwhandler='0' wp=rw
  |-+- policy='service-time 0' prio=1 status=active
  | `- 0:0:0:3 sda 8:0  active ready running
  `-+- policy='service-time 0' prio=1 status=enabled
    `- 1:0:0:3 sdg 8:96 active ready running
  ! T | Warning: multipath devices exist, but multipathd service is not running
  --- dmsetup table
  lin0: 0 32768 linear 254:0 65536
  lin1: 0 8192 linear 253:10 4096
  mpatha: 0 131072 multipath 0 0 2 1 service-time 0 1 2 8:48 1 1 service-time 0 1 2 8:80 1 1 
  mpatha1: 0 16384 linear 253:0 2048
  mpatha2: 0 16384 linear 253:0 18432
  mpatha3: 0 32768 linear 253:0 34816
  mpathb: 0 131072 multipath 0 0 1 1 service-time 0 4 2 8:32 1 1 8:64 1 1 8:112 1 1 8:128 1 1 
  mpathc: 0 131072 multipath 0 0 2 1 service-time 0 1 2 8:0 1 1 service-time 0 1 2 8:96 1 1 
  mpathc1: 0 16384 linear 253:2 2048
  mpathc2: 0 2 linear 253:2 18432
  mpathc5: 0 16384 linear 253:2 20480
  mpathc6: 0 16384 linear 253:2 40960
  --- dmsetup table mpatha | cat -A
  0 131072 multipath 0 0 2 1 service-time 0 1 2 8:48 1 1 service-time 0 1 2 8:80 1 1 $
  --- dmsetup table /dev/mapper/mpatha1
  0 16384 linear 253:0 2048
  --- dmsetup table /dev/dm-10
  0 32768 linear 254:0 65536
  --- dmsetup table -j 253 -m 11
  0 8192 linear 253:10 4096
  --- dmsetup deps | cat -A
  lin0: 1 dependencies^I: (254, 0)$
  lin1: 1 dependencies^I: (253, 10)$
  mpatha: 2 dependencies^I: (8, 80) (8, 48)$
  mpatha1: 1 dependencies^I: (253, 0)$
  mpatha2: 1 dependencies^I: (253, 0)$
  mpatha3: 1 dependencies^I: (253, 0)$
  mpathb: 4 dependencies^I: (8, 128) (8, 112) (8, 64) (8, 32)$
  mpathc: 2 dependencies^I: (8, 96) (8, 0)$
  mpathc1: 1 dependencies^I: (253, 2)$
  mpathc2: 1 dependencies^I: (253, 2)$
  mpathc5: 1 dependencies^I: (253, 2)$
  mpathc6: 1 dependencies^I: (253, 2)$
  --- dmsetup deps mpatha
  2 dependencies\t: (8, 80) (8, 48) (esc)
  --- dmsetup deps -j 253 -m 3
  1 dependencies\t: (253, 0) (esc)
  --- dmsetup info -c --noheadings -o name -j 253 -m 0
  mpatha
  --- dmsetup info -c --noheadings -o name /dev/mapper/mpatha2
  mpatha2
  --- dmsetup info -c -o name,major,minor,open,uuid mpatha1
  Name             Maj Min Open UUID                            
  mpatha1          253   3    0 part1-mpath-350000000000000a1   
  --- dmsetup ls --target multipath | cat -A
  mpatha^I(253, 0)$
  mpathb^I(253, 1)$
  mpathc^I(253, 2)$
  --- dmsetup status mpatha
  0 131072 multipath 2 0 0 0 2 1 A 0 1 2 8:48 A 0 0 1 E 0 1 2 8:80 A 0 0 1 
  --- dmsetup table | grep 'linear 253:1[^0-9]' | cut -d: -f1
  --- dmsetup deps | grep '(253, 2)$' | cut -d ':' -f1
  mpathc1
  mpathc2
  mpathc5
  mpathc6
  --- kpartx -l /dev/mapper/mpathc
  mpathc1 : 0 16384 /dev/mapper/mpathc 2048
  mpathc2 : 0 2 /dev/mapper/mpathc 18432
  mpathc5 : 0 16384 /dev/dm-1 2048
  mpathc6 : 0 16384 /dev/dm-1 22528
  --- kpartx -l /dev/mapper/mpathb
  --- multipath -v1 -l /dev/sdd
  mpatha

What is no device, or not the right one:

  $ world << 'END'
  > dmsetup table -j 8 -m 16
  > dmsetup table -j 0 -m 0
  > dmsetup table nosuch
  > dmsetup table /dev/mapper/nosuch
  > dmsetup table /dev/sdd
  > dmsetup deps nosuch
  > dmsetup info -c --noheadings -o name -j 253 -m 200
  > dmsetup info -c --noheadings -o name nosuch
  > dmsetup info -c --noheadings -o name /dev/mapper/nosuch
  > dmsetup message lin0 0 "fail_if_no_path"
  > dmsetup message -j 253 -m 10 0 "fail_if_no_path"
  > dmsetup message mpatha 0 no_such_message
  > dmsetup message nosuch 0 "fail_if_no_path"
  > dmsetup remove
  > dmsetup remove nosuch
  > dmsetup remove -j 253 -m 200
  > multipath -ll nosuch
  > multipath -v1 -l /dev/sdb
  > multipath -f
  > multipath -f nosuch
  > multipath -f lin0
  > kpartx -a /dev/mapper/nosuch
  > END
  --- dmsetup table -j 8 -m 16
  ! device-mapper: table ioctl on  (8:16) failed: No such device or address
  ! Command failed.
  [1]
  --- dmsetup table -j 0 -m 0
  ! Missing major number for persistent device.
  ! Couldn't create ioctl argument.
  ! Command failed.
  [1]
  --- dmsetup table nosuch
  ! device-mapper: table ioctl on nosuch  failed: No such device or address
  ! Command failed.
  [1]
  --- dmsetup table /dev/mapper/nosuch
  ! Device /dev/mapper/nosuch not found
  ! Command failed.
  [1]
  --- dmsetup table /dev/sdd
  ! Device sdd not found
  ! Command failed.
  [1]
  --- dmsetup deps nosuch
  ! device-mapper: deps ioctl on nosuch  failed: No such device or address
  ! Command failed.
  [1]
  --- dmsetup info -c --noheadings -o name -j 253 -m 200
  ! Device does not exist.
  ! Command failed.
  [1]
  --- dmsetup info -c --noheadings -o name nosuch
  ! Device does not exist.
  ! Command failed.
  [1]
  --- dmsetup info -c --noheadings -o name /dev/mapper/nosuch
  ! Device /dev/mapper/nosuch not found
  ! Command failed.
  [1]
  --- dmsetup message lin0 0 "fail_if_no_path"
  ! device-mapper: message ioctl on lin0  failed: Invalid argument
  ! Command failed.
  [1]
  --- dmsetup message -j 253 -m 10 0 "fail_if_no_path"
  ! device-mapper: message ioctl on  (253:10) failed: Invalid argument
  ! Command failed.
  [1]
  --- dmsetup message mpatha 0 no_such_message
  ! device-mapper: message ioctl on mpatha  failed: Invalid argument
  ! Command failed.
  [1]
  --- dmsetup message nosuch 0 "fail_if_no_path"
  ! device-mapper: message ioctl on nosuch  failed: No such device or address
  ! Command failed.
  [1]
  --- dmsetup remove
  ! No device specified.
  ! Command failed.
  [1]
  --- dmsetup remove nosuch
  ! device-mapper: remove ioctl on nosuch  failed: No such device or address
  ! Command failed.
  [1]
  --- dmsetup remove -j 253 -m 200
  ! device-mapper: remove ioctl on  (253:200) failed: No such device or address
  ! Command failed.
  [1]
  --- multipath -ll nosuch
  --- multipath -v1 -l /dev/sdb
  [1]
  --- multipath -f
  ! T | the -f option requires a map name to remove
  [1]
  --- multipath -f nosuch
  ! T | libdevmapper: ioctl/libdm-iface.c(1980): device-mapper: table ioctl on nosuch  failed: No such device or address
  ! T | nosuch is not a multipath device
  [1]
  --- multipath -f lin0
  ! T | lin0 is not a multipath device
  [1]
  --- kpartx -a /dev/mapper/nosuch
  failed to stat() /dev/mapper/nosuch
  [1]

Changes, and what they leave behind:

  $ world << 'END'
  > dmsetup message -j 253 -m 0 0 "queue_if_no_path"
  > dmsetup table mpatha
  > dmsetup message /dev/mapper/mpatha 0 "fail_if_no_path"
  > dmsetup table mpatha
  > dmsetup remove mpatha
  > dmsetup remove lin0
  > kpartx -dv /dev/mapper/mpatha
  > kpartx -av /dev/mapper/mpatha
  > multipath -f mpatha
  > ls /dev/mapper
  > multipath
  > dmsetup table mpatha
  > kpartx -a -p -part /dev/mapper/mpatha
  > kpartx -a /dev/mapper/mpatha
  > dmsetup remove -j 253 -m 5
  > ls -m /dev/mapper
  > dmsetup create 'a b:c' --table '0 8 linear /dev/vda 120000'
  > dmsetup create empty --notable
  > printf '0 8 linear /dev/vda 120016\n8 8 linear /dev/vda 120100\n' | dmsetup create two
  > ls -m /dev/mapper
  > dmsetup table | grep -v -E '^(mpath|lin)' | cat -A
  > dmsetup deps empty
  > dmsetup remove 'a b:c'
  > END
  --- dmsetup message -j 253 -m 0 0 "queue_if_no_path"
  --- dmsetup table mpatha
  0 131072 multipath 1 queue_if_no_path 0 2 1 service-time 0 1 2 8:48 1 1 service-time 0 1 2 8:80 1 1 
  --- dmsetup message /dev/mapper/mpatha 0 "fail_if_no_path"
  --- dmsetup table mpatha
  0 131072 multipath 0 0 2 1 service-time 0 1 2 8:48 1 1 service-time 0 1 2 8:80 1 1 
  --- dmsetup remove mpatha
  ! device-mapper: remove ioctl on mpatha  failed: Device or resource busy
  ! Command failed.
  [1]
  --- dmsetup remove lin0
  ! device-mapper: remove ioctl on lin0  failed: Device or resource busy
  ! Command failed.
  [1]
  --- kpartx -dv /dev/mapper/mpatha
  del devmap : mpatha1
  del devmap : mpatha2
  del devmap : mpatha3
  --- kpartx -av /dev/mapper/mpatha
  add map mpatha1 (253:3): 0 16384 linear 253:0 2048
  add map mpatha2 (253:4): 0 16384 linear 253:0 18432
  add map mpatha3 (253:5): 0 32768 linear 253:0 34816
  --- multipath -f mpatha
  --- ls /dev/mapper
  control
  lin0
  lin1
  mpathb
  mpathc
  mpathc1
  mpathc2
  mpathc5
  mpathc6
  --- multipath
  create: mpatha (350000000000000a1) undef RIG,LUN
  size=64M features='0' hwhandler='0' wp=undef
  |-+- policy='service-time 0' prio=1 status=undef
  | `- 0:0:0:1 sdd 8:48 undef ready running
  `-+- policy='service-time 0' prio=1 status=undef
    `- 1:0:0:1 sdf 8:80 undef ready running
  ! T | sdd: setting scsi timeouts is unsupported for protocol scsi:unspec
  ! T | sdf: setting scsi timeouts is unsupported for protocol scsi:unspec
  ! T | mpatha: addmap [0 131072 multipath 1 queue_if_no_path 0 2 1 service-time 0 1 1 8:48 1 service-time 0 1 1 8:80 1]
  ! T | Warning: multipath devices exist, but multipathd service is not running
  --- dmsetup table mpatha
  0 131072 multipath 0 0 2 1 service-time 0 1 2 8:48 1 1 service-time 0 1 2 8:80 1 1 
  --- kpartx -a -p -part /dev/mapper/mpatha
  --- kpartx -a /dev/mapper/mpatha
  --- dmsetup remove -j 253 -m 5
  --- ls -m /dev/mapper
  control, lin0, lin1, mpatha, mpatha1, mpatha2, mpathb, mpathc, mpathc1, mpathc2,
  mpathc5, mpathc6
  --- dmsetup create 'a b:c' --table '0 8 linear /dev/vda 120000'
  --- dmsetup create empty --notable
  --- printf '0 8 linear /dev/vda 120016\n8 8 linear /dev/vda 120100\n' | dmsetup create two
  --- ls -m /dev/mapper
  a\x20b:c, control, lin0, lin1, mpatha, mpatha1, mpatha2, mpathb, mpathc,
  mpathc1, mpathc2, mpathc5, mpathc6, two
  --- dmsetup table | grep -v -E '^(mpath|lin)' | cat -A
  a b:c: 0 8 linear 254:0 120000$
  empty: $
  two: 0 8 linear 254:0 120016$
  two: 8 8 linear 254:0 120100$
  --- dmsetup deps empty
  0 dependencies\t: (esc)
  --- dmsetup remove 'a b:c'

A device that a process holds open cannot go, and neither can what lies beneath it, until the process ends,
in whatever way:

  $ world << 'END'
  > exec 7< /dev/mapper/mpatha2; sleep 60 & exec 7<&-
  > dmsetup remove mpatha2
  > multipath -f mpatha
  > dmsetup info -c --noheadings -o open mpatha2
  > kpartx -d /dev/mapper/mpatha
  > dmsetup table | grep -c mpatha
  > kill -9 $!; wait $! 2> /dev/null; true
  > multipath -f mpatha
  > dmsetup table | grep -c mpatha
  > END
  --- exec 7< /dev/mapper/mpatha2; sleep 60 & exec 7<&-
  --- dmsetup remove mpatha2
  ! device-mapper: remove ioctl on mpatha2  failed: Device or resource busy
  ! Command failed.
  [1]
  --- multipath -f mpatha
  ! T | mpatha2: map in use
  [1]
  --- dmsetup info -c --noheadings -o open mpatha2
  1
  --- kpartx -d /dev/mapper/mpatha
  [1]
  --- dmsetup table | grep -c mpatha
  3
  --- kill -9 $!; wait $! 2> /dev/null; true
  --- multipath -f mpatha
  --- dmsetup table | grep -c mpatha
  0
  [1]

Nodes and mappings are two things: a mapping lives without its node, a node that is something else stays,
and kpartx makes a missing one:

  $ world << 'END'
  > rm /dev/mapper/mpatha1
  > [ -e /dev/mapper/mpatha1 ]
  > dmsetup table mpatha1
  > dmsetup table /dev/dm-3
  > kpartx -a /dev/mapper/mpatha
  > stat -Lc %F:%t:%T /dev/mapper/mpatha1
  > rm /dev/mapper/mpatha2; echo plain > /dev/mapper/mpatha2
  > kpartx -a /dev/mapper/mpatha
  > stat -Lc %F /dev/mapper/mpatha2; cat /dev/mapper/mpatha2
  > END
  --- rm /dev/mapper/mpatha1
  --- [ -e /dev/mapper/mpatha1 ]
  [1]
  --- dmsetup table mpatha1
  0 16384 linear 253:0 2048
  --- dmsetup table /dev/dm-3
  ! Device dm-3 not found
  ! Command failed.
  [1]
  --- kpartx -a /dev/mapper/mpatha
  --- stat -Lc %F:%t:%T /dev/mapper/mpatha1
  block special file:fd:3
  --- rm /dev/mapper/mpatha2; echo plain > /dev/mapper/mpatha2
  --- kpartx -a /dev/mapper/mpatha
  --- stat -Lc %F /dev/mapper/mpatha2; cat /dev/mapper/mpatha2
  regular file
  plain

Disks can be read, written and partitioned; all paths lead to the same content:

  $ world << 'END'
  > printf 'label: gpt\nstart=2048, size=16384\n' | sfdisk -q /dev/mapper/mpathb
  > kpartx -av /dev/mapper/mpathb
  > cmp /dev/mapper/mpathb /dev/sdi
  > echo content > /dev/mapper/mpathb1; head -c 8 /dev/mapper/mpathb1
  > grep -c . /proc/partitions; grep 'dm-12$' /proc/partitions
  > END
  --- printf 'label: gpt\nstart=2048, size=16384\n' | sfdisk -q /dev/mapper/mpathb
  --- kpartx -av /dev/mapper/mpathb
  add map mpathb1 (253:12): 0 16384 linear 253:1 2048
  --- cmp /dev/mapper/mpathb /dev/sdi
  --- echo content > /dev/mapper/mpathb1; head -c 8 /dev/mapper/mpathb1
  content
  --- grep -c . /proc/partitions; grep 'dm-12$' /proc/partitions
  26
   253       12       8192 dm-12

What is not simulated is refused aloud:

  $ world << 'END'
  > dmsetup ls --exec true
  > dmsetup --verbose table
  > multipath -r
  > kpartx -u /dev/mapper/mpatha
  > dmsetup remove --force mpatha1
  > END
  --- dmsetup ls --exec true
  ! not simulated: dmsetup ls --exec true (option --exec)
  [70]
  --- dmsetup --verbose table
  ! not simulated: dmsetup --verbose table (option --verbose)
  [70]
  --- multipath -r
  ! not simulated: multipath -r (option -r)
  [70]
  --- kpartx -u /dev/mapper/mpatha
  ! not simulated: kpartx -u /dev/mapper/mpatha (option -u)
  [70]
  --- dmsetup remove --force mpatha1
  ! not simulated: dmsetup remove --force mpatha1 (option --force)
  [70]

A machine without any map, and one where the daemon runs:

  $ cat > none.toml << 'END'
  > [[lun]]
  > mapped = false
  > END
  $ world --scenario none.toml << 'END'
  > dmsetup table
  > dmsetup deps
  > dmsetup info -c --noheadings -o name
  > multipath -d  -v1 -l
  > multipath
  > END
  --- dmsetup table
  No devices found
  --- dmsetup deps
  No devices found
  --- dmsetup info -c --noheadings -o name
  No devices found
  --- multipath -d  -v1 -l
  --- multipath
  create: mpatha (35000000000000001) undef RIG,LUN
  size=64M features='0' hwhandler='0' wp=undef
  |-+- policy='service-time 0' prio=1 status=undef
  | `- 0:0:0:1 sda 8:0  undef ready running
  `-+- policy='service-time 0' prio=1 status=undef
    `- 1:0:0:1 sdb 8:16 undef ready running
  ! T | sda: setting scsi timeouts is unsupported for protocol scsi:unspec
  ! T | sdb: setting scsi timeouts is unsupported for protocol scsi:unspec
  ! T | mpatha: addmap [0 131072 multipath 0 0 2 1 service-time 0 1 1 8:0 1 service-time 0 1 1 8:16 1]
  ! T | Warning: multipath devices exist, but multipathd service is not running
  $ (echo 'daemon = true'; cat none.toml; echo 'queue_if_no_path = true') > daemon.toml
  $ world --scenario daemon.toml << 'END'
  > multipath
  > dmsetup table
  > END
  --- multipath
  create: mpatha (35000000000000001) undef RIG,LUN
  size=64M features='1 queue_if_no_path' hwhandler='0' wp=undef
  |-+- policy='service-time 0' prio=1 status=undef
  | `- 0:0:0:1 sda 8:0  undef ready running
  `-+- policy='service-time 0' prio=1 status=undef
    `- 1:0:0:1 sdb 8:16 undef ready running
  ! T | sda: setting scsi timeouts is unsupported for protocol scsi:unspec
  ! T | sdb: setting scsi timeouts is unsupported for protocol scsi:unspec
  ! T | mpatha: addmap [0 131072 multipath 1 queue_if_no_path 0 2 1 service-time 0 1 1 8:0 1 service-time 0 1 1 8:16 1]
  --- dmsetup table
  mpatha: 0 131072 multipath 1 queue_if_no_path 0 2 1 service-time 0 1 2 8:0 1 1 service-time 0 1 2 8:16 1 1 

Faults:

  $ cat > faults.toml << 'END'
  > [[lun]]
  > [[fault]]
  > command = "multipath -f *"
  > times = 2
  > status = 1
  > stderr = "0.000001 | mpatha: map in use\n"
  > [[fault]]
  > command = "dmsetup table"
  > hang = true
  > [[fault]]
  > command = "multipath -d -v1 -l"
  > delay = 1.2
  > END
  $ world --scenario faults.toml << 'END'
  > timeout 0.5 dmsetup table
  > multipath -f mpatha
  > multipath -f mpatha
  > SECONDS=0; multipath -d  -v1 -l; [ $SECONDS -ge 1 ]
  > multipath -f mpatha
  > END
  --- timeout 0.5 dmsetup table
  [124]
  --- multipath -f mpatha
  ! T | mpatha: map in use
  [1]
  --- multipath -f mpatha
  ! T | mpatha: map in use
  [1]
  --- SECONDS=0; multipath -d  -v1 -l; [ $SECONDS -ge 1 ]
  mpatha
  --- multipath -f mpatha

Mistakes in a scenario are told with file, line and key:

  $ mistake() { printf '%b' "$1" > bad.toml; nrmpio-sim --scenario bad.toml -- true; }
  $ mistake '[[lun]]\npaths = 0\n'
  nrmpio-sim: bad.toml:2: lun.paths must be from 1 to 64 paths.
  [65]
  $ mistake '[[lun]]\n\nsize = "64"\n'
  nrmpio-sim: bad.toml:3: lun.size must be a size such as "64M", with K, M, G or T, of at most 8T.
  [65]
  $ mistake '[[lun]]\nalias = "a/b"\n'
  nrmpio-sim: bad.toml:2: lun.alias must be a name of 1 to 127 characters without a "/".
  [65]
  $ mistake '[[lun]]\ncolour = "red"\n'
  nrmpio-sim: bad.toml:2: lun.colour is no key that a scenario knows here.
  [65]
  $ mistake '[[lun]]\npaths = ["sda"]\n[[disk]]\nname = "sda"\n'
  nrmpio-sim: bad.toml:2: lun.paths "sda" is there twice.
  [65]
  $ mistake '[[lun]]\nmapped = "yes"\n'
  nrmpio-sim: bad.toml:2: lun.mapped must be true or false.
  [65]
  $ mistake '[[lun]]\ntable = "label: nonsense"\n'
  nrmpio-sim: bad.toml:2: lun.table is no table for this disk: sfdisk: line 1: unsupported command
  [65]
  $ mistake '[[lun\n'
  nrmpio-sim: bad.toml:1: not TOML: Error while parsing table header: expected ']', saw '\n'.
  [65]
  $ mistake '[[linear]]\nname = "lin0"\ndevice = "sdq"\nlength = 8\n'
  nrmpio-sim: bad.toml:3: linear.device "sdq" must be a disk, or a mapping that is there before it.
  [65]
  $ mistake '[[fault]]\ncommand = "dmsetup *"\n'
  nrmpio-sim: bad.toml:2: fault.command needs what shall happen: status, print, delay or hang.
  [65]

The command's end is the simulator's, signals included, and nothing stays behind:

  $ export TMPDIR=$PWD/worlds; mkdir $TMPDIR
  $ nrmpio-sim -- sh -c 'exit 3'
  [3]
  $ nrmpio-sim -- sh -c 'kill -9 $$'
  [137]
  $ nrmpio-sim -- sh -c 'kill -TERM $PPID; while :; do sleep 0.1; done'
  [143]
  $ nrmpio-sim -- nosuchcommand
  nrmpio-sim: nosuchcommand: No such file or directory
  [127]
  $ nrmpio-sim --bogus
  nrmpio-sim: unrecognized option '--bogus'
  nrmpio-sim --help tells how it is used.
  [64]
  $ nrmpio-sim --scenario bad.toml -- true 2> /dev/null
  [65]
  $ nrmpio-sim -- nrmpio-sim -- dmsetup table lin0
  0 32768 linear 254:0 65536
  $ ls $TMPDIR
  $ nrmpio-sim --keep kept -- dmsetup remove mpatha1
  $ nrmpio-sim --keep kept -- true
  nrmpio-sim: kept: not empty; name a new directory to keep the world in
  [71]
  $ cat kept/block/dm-4/dm/name kept/block/dm-4/dev kept/block/dm-4/dm/table; readlink kept/names/mpatha2
  mpatha2
  253:4
  0 16384 linear 253:0 18432
  ../block/dm-4
