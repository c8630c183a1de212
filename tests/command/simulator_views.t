What a world shows beside its tools, in /sys and /proc, and names that hold characters of the shell.

  $ cat > san.toml << 'END'
  > [[lun]]
  > table = "label: gpt\nstart=2048, size=4096\nstart=8192, size=4096\n"
  > [[disk]]
  > name = "vda"
  > [[disk]]
  > name = "sdx"
  > [[device]]
  > name = "mpatha1"
  > mounted = "/srv/my data"
  > END
  $ world() { nrmpio-sim --scenario san.toml -- bash -c "$1" 2>&1 | sed -E 's/^[0-9]+\.[0-9]{6} \|/T |/'; }

The devices in /sys, by name and by number, and nothing of the machine:

  $ world 'ls /sys/block | xargs; ls /sys/dev/block | xargs; cd /; for d in 253:0 253:1 8:0 254:0; do
  >   b=/sys/dev/block/$d; echo $(cat $b/dev $b/size) holders: $(ls $b/holders) slaves: $(ls $b/slaves) $(cat $b/{dm/name,dm/suspended,device/state} 2> /dev/null); done
  > dmsetup suspend mpatha; cat /sys/block/dm-0/dm/suspended; dmsetup resume mpatha; cat /sys/block/dm-0/dm/suspended
  > simctl path sda offline; cat /sys/block/{sda,sdb,sdx}/device/state; simctl path sda lost; ls /sys/dev/block | grep -c ^8:
  > dmsetup remove mpatha2; ls /sys/block/dm-0/holders; [ -e /sys/dev/block/253:2 ] || echo gone; readlink -f /sys/dev/block/253:0'
  dm-0 dm-1 dm-2 sda sdb sdx vda
  253:0 253:1 253:2 254:0 65:112 8:0 8:16
  253:0 131072 holders: dm-1 dm-2 slaves: sda sdb mpatha 0
  253:1 4096 holders: slaves: dm-0 mpatha1 0
  8:0 131072 holders: dm-0 slaves: running
  254:0 131072 holders: slaves:
  1
  0
  offline
  running
  running
  1
  dm-1
  gone
  /sys/block/dm-0

Who has a device open shows in /proc, a path and its map apart:

  $ world 'sleep 9 < /dev/mapper/mpatha2 & sleep 9 < /dev/sda & sleep 9 < /dev/sdb & sleep 0.3; for pid in $(jobs -p); do
  >   fd=/proc/$pid/fd/0; echo $(cat /proc/$pid/comm) $(readlink $fd) $(stat -Lc %F,%t:%T $fd); done; kill $(jobs -p)'
  sleep /dev/dm-2 block special file,fd:2
  sleep /dev/sda block special file,8:0
  sleep /dev/sdb block special file,8:10

A mapping that is mounted is in use, and a line of the tables of mounts:

  $ world 'tail -n 1 /proc/self/mountinfo; tail -n 1 /proc/mounts; [ $(grep -c . /proc/mounts) -gt 1 ] && echo and more; cat /proc/swaps
  > dmsetup info -c --noheadings -o name,open; dmsetup remove mpatha1; multipath -f mpatha
  > simctl unmount mpatha1; grep -c mpatha /proc/self/mountinfo; simctl mount mpatha /mnt; tail -n 1 /proc/self/mounts; multipath -f mpatha
  > simctl mount mpatha /opt; simctl mount mpatha2 opt; simctl unmount mpatha2; simctl unmount mpatha; multipath -f mpatha && echo flushed'
  1000001 1 253:1 / /srv/my\040data rw,relatime - ext4 /dev/mapper/mpatha1 rw
  /dev/mapper/mpatha1 /srv/my\040data ext4 rw,relatime 0 0
  and more
  Filename\t\t\t\tType\t\tSize\t\tUsed\t\tPriority (esc)
  mpatha:2
  mpatha1:1
  mpatha2:0
  device-mapper: remove ioctl on mpatha1  failed: Device or resource busy
  Command failed.
  T | mpatha1: map in use
  0
  /dev/mapper/mpatha /mnt ext4 rw,relatime 0 0
  T | mpatha: map in use
  simctl: mpatha is mounted on /mnt; simctl unmount it first
  simctl: opt is no path of a directory from "/" on
  simctl: mpatha2 is not mounted
  flushed
  $ printf '[[lun]]\n[[device]]\nname = "mpatha"\nmounted = "srv"\n' > bad.toml; nrmpio-sim --check bad.toml
  nrmpio-sim: bad.toml:4: device.mounted must be the path of a directory, from "/" on.
  [65]

The kernel, and so /sys and /dev/mapper, knows a name with other characters than letters, digits and #+-.:=@_ by
an escaped one; the tools print it as it was given and understand both:

  $ cat > odd.toml << 'END'
  > [[lun]]
  > alias = "a;b"
  > table = "label: gpt\nstart=2048, size=4096\n"
  > [[linear]]
  > name = "evil$(touch owned)"
  > device = "a;b"
  > length = 8
  > [[device]]
  > name = "a;b1"
  > mounted = "/mnt"
  > END
  $ nrmpio-sim --scenario odd.toml -- bash -c 'dmsetup ls; ls /dev/mapper; cat /sys/block/dm-*/dm/name; tail -n 1 /proc/mounts
  > dmsetup deps "a\x3bb1"; dmsetup table /dev/mapper/evil\\x24\\x28touch\\x20owned\\x29; multipath -v1 -l; kpartx -l /dev/mapper/a\\x3bb
  > simctl unmount "a;b1"; dmsetup remove "evil\$(touch owned)"; dmsetup rename "a;b1" "|c"; ls /dev/mapper; kpartx -a /dev/mapper/a\\x3bb
  > multipath -f "a;b"; ls /dev/mapper; dmsetup create "\`d\`" --table "0 8 linear /dev/sda 0"; dmsetup ls; ls /dev/mapper'
  a;b\t(253:0) (esc)
  a;b1\t(253:1) (esc)
  evil$(touch owned)\t(253:2) (esc)
  a\x3bb
  a\x3bb1
  control
  evil\x24\x28touch\x20owned\x29
  a\x3bb
  a\x3bb1
  evil\x24\x28touch\x20owned\x29
  /dev/mapper/a\134x3bb1 /mnt ext4 rw,relatime 0 0
  1 dependencies\t: (253, 0) (esc)
  0 8 linear 253:0 0
  a;b
  a;b1 : 0 4096 /dev/mapper/a\x3bb 2048
  \x7cc
  a\x3bb
  control
  control
  `d`\t(253:0) (esc)
  \x60d\x60
  control
  $ ls owned
  ls: cannot access 'owned': No such file or directory
  [2]

What cannot be printed is told:

  $ nrmpio-sim --help > /dev/full
  nrmpio-sim: cannot write to standard output: No space left on device
  [74]
