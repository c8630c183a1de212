Without rights, tools or a device-mapper "no" is not the truth: each command says what is missing. (Where the real tools
are installed, they would answer: the library also looks in /usr/sbin and /sbin.)

  $ [ -x /usr/sbin/multipath ] || [ -x /sbin/multipath ] && exit 80
  [1]
  $ try() {
  >   { echo "$1"; printf '[[lun]]\n[[disk]]\nname = "vda"\n'; } > world.toml
  >   for command in check list show 'show vda' 'is-multipath vda' 'is-partition vda' 'paths vda' 'partitions vda' \
  >       refresh 'fail-if-no-path --yes vda' 'delete-partitions --yes vda' 'delete --yes vda' 'delete --dry-run vda'; do
  >     nrmpio-sim -s world.toml -- nrmpio $command 2>&1; echo "status $?"
  >   done | sort | uniq -c
  > }
  $ try 'privileged = false'
       13 nrmpio: this needs root: multipath and device-mapper refuse ordinary users
       13 status 2
  $ try 'device_mapper = false'
       13 nrmpio: this kernel has no device-mapper (modprobe dm-multipath)
       13 status 2
  $ try 'missing_tools = ["multipath"]'
       13 nrmpio: no multipath tools here: multipath is not installed (package multipath-tools on Debian)
       13 status 2

The listing of partitions is right without kpartx, but not what was asked for:

  $ printf 'missing_tools = ["kpartx"]\n[[lun]]\n' > world.toml; nrmpio-sim -s world.toml -- nrmpio partitions --kpartx mpatha
  nrmpio: kpartx -a creates the partition mappings of mpatha that are missing
  nrmpio: no multipath tools here: kpartx is not installed (package kpartx on Debian)
  [2]
