The states of maps and paths, and what is not read because the read might wait for ever.

  $ cat > san.toml << 'END'
  > daemon = true
  > [[lun]]
  > alias = "data"
  > paths = ["sda", "sdb"]
  > queue_if_no_path = true
  > table = "label: gpt\nstart=2048, size=4096\nstart=8192, size=4096\n"
  > [[lun]]
  > alias = "log"
  > paths = ["sdc", "sdd"]
  > table = "label: gpt\nstart=2048, size=4096\n"
  > END
  $ show() { timeout 10 nrmpio show --output NAME,STATE,SIZE,OPEN,QUEUE,PARTN,START "$@"; echo "status $?"; }
  $ world() { nrmpio-sim --scenario san.toml -- bash -c "$(declare -f show); $1" 2>&1; }

A path that does not answer, one that the kernel has given up, one that is gone:

  $ world 'simctl path sda offline; dmsetup message log 0 "fail_path 8:32"; show; simctl path sda lost; show data'
  NAME    STATE   SIZE OPEN QUEUE PARTN START
  data    active   64M    2 yes
  |-sdb   active   64M
  |-sda   offline  64M
  |-data1 active    2M    0           1  2048
  `-data2 active    2M    0           2  8192
  log     active   64M    1 no
  |-sdd   active   64M
  |-sdc   failed   64M
  `-log1  active    2M    0           1  2048
  status 0
  NAME    STATE  SIZE OPEN QUEUE PARTN START
  data    active  64M    2 yes
  |-sdb   active  64M
  |-data1 active   2M    0           1  2048
  `-data2 active   2M    0           2  8192
  status 0

No path is left. One map queues, the other fails; suspended ones wait, too:

  $ world 'for disk in sda sdb sdc sdd; do simctl path $disk offline; done; show'
  nrmpio: the partition table of data is not read: it has no usable path
  nrmpio: the partition table of log is not read: it has no usable path
  NAME    STATE    SIZE OPEN QUEUE PARTN START
  data    queueing  64M    2 yes
  |-sdb   offline   64M
  |-sda   offline   64M
  |-data1 active     2M    0              2048
  `-data2 active     2M    0              8192
  log     failing   64M    1 no
  |-sdd   offline   64M
  |-sdc   offline   64M
  `-log1  active     2M    0              2048
  status 2
  $ world 'for disk in 8:0 8:16; do dmsetup message data 0 "fail_path $disk"; done; dmsetup suspend log; dmsetup suspend data2; show'
  nrmpio: the partition table of data is not read: it has no usable path
  nrmpio: the partition table of log is not read: it is suspended
  NAME    STATE     SIZE OPEN QUEUE PARTN START
  data    queueing   64M    2 yes
  |-sdb   failed     64M
  |-sda   failed     64M
  |-data1 active      2M    0              2048
  `-data2 suspended   2M    0              8192
  log     suspended  64M    1 no
  |-sdd   active     64M
  |-sdc   active     64M
  `-log1  active      2M    0              2048
  status 2

The time is short in which no read of a queueing map could end:

  $ world 'simctl path sda offline; simctl path sdb offline; timeout 1 dd if=/dev/mapper/data of=/dev/null count=1 status=none; echo "read: $?"
  > timeout 3 nrmpio show --json data > /dev/null; echo "show: $?"'
  read: 124
  nrmpio: the partition table of data is not read: it has no usable path
  show: 2

Without an answer of dmsetup about states the rest is shown:

  $ fault() { { cat san.toml; printf '[[fault]]\ncommand = "%s"\nstatus = %s\nstderr = "%s"\n' "$@"; } > faulty.toml; }
  $ fault 'dmsetup status' 1 'no memory\n'
  $ nrmpio-sim --scenario faulty.toml -- bash -c "$(declare -f show); show data1"
  nrmpio: states and open counts are not shown: dmsetup status failed (code 1): no memory
  NAME    STATE SIZE OPEN QUEUE PARTN START
  data           64M
  |-sdb          64M
  |-sda          64M
  |-data1         2M                1  2048
  `-data2         2M                2  8192
  status 2
  $ fault 'dmsetup deps data' 5 'no memory\n'
  $ nrmpio-sim --scenario faulty.toml -- bash -c "$(declare -f show); show"
  nrmpio: cannot list the paths of /dev/mapper/data (code 5): no memory
  NAME    STATE  SIZE OPEN QUEUE PARTN START
  data    active  64M    2 yes
  |-sda   active  64M
  |-sdb   active  64M
  |-data1 active   2M    0           1  2048
  `-data2 active   2M    0           2  8192
  log     active  64M    1 no
  |-sdd   active  64M
  |-sdc   active  64M
  `-log1  active   2M    0           1  2048
  status 2

Names that are listed, but are no maps:

  $ { cat san.toml; printf '[[fault]]\ncommand = "multipath -d*"\nstatus = 0\nstdout = "sda: no (usable) path\\n\\nlog\\ndata1\\ngone\\n\\u001b[31m\\n"\n'; } > warned.toml
  $ nrmpio-sim --scenario warned.toml -- nrmpio show --list --output NAME
  nrmpio: "sda: no (usable) path" stands in the list of maps, but there is no such map
  nrmpio: "data1" stands in the list of maps, but there is no such map
  nrmpio: "gone" stands in the list of maps, but there is no such map
  nrmpio: "\x1b[31m" stands in the list of maps, but there is no such map
  NAME
  log
  sdd
  sdc
  log1
  [2]

Devices that are no maps do not keep others from being shown:

  $ world 'nrmpio show --list --output NAME nosuch log /dev/sda log1; echo "status $?"'
  nrmpio: there is no device nosuch
  nrmpio: /dev/sda is not a multipath device (code -6)
  NAME
  log
  sdd
  sdc
  log1
  status 2

Many at a time give the same output and messages as one after the other, in the same order:

  $ sed 's/^daemon.*//; s/^alias.*//; s/^paths.*/paths = 2/' san.toml > many.toml
  $ for lun in $(seq 30); do printf '[[lun]]\n'; done >> many.toml
  $ nrmpio-sim --scenario many.toml -- bash -c 'for map in mpath{c,f,m,x,z}; do dmsetup suspend $map; done
  > for jobs in 1 8; do nrmpio show --jobs $jobs > $jobs.out 2> $jobs.err; echo "status $?"; done'
  status 2
  status 2
  $ cmp 1.out 8.out && cmp 1.err 8.err && wc -l < 1.out && cut -d' ' -f2-6 1.err
  100
  the partition table of mpathc
  the partition table of mpathf
  the partition table of mpathm
  the partition table of mpathx
  the partition table of mpathz
