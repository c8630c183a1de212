Worlds: the built-in ones, several at once, kept and gone on with, shared by many tools.

  $ export TMPDIR=$(mktemp -d -p /dev/shm 2> /dev/null || mktemp -d); trap 'rm -rf $TMPDIR' EXIT

  $ nrmpio-sim --list | cut -d' ' -f1
  big
  default
  messy
  $ nrmpio-sim --check messy
  messy: no mistake; 6 units, 2 other disks, 2 linear devices, 6 faults.
  $ nrmpio-sim -s messy -- bash -c 'multipath -f data1 2>&1 | cut -d"|" -f2; multipath -d -v1 -l; dmsetup deps dead; multipath > made 2>&1
  > grep -ao "create: new" made; dmsetup info -c --noheadings -o name,minor,open data1; dmsetup table | grep "linear 253:0 " | wc -l'
   data1p2: map in use
  data1
  data10
  dead
  fresh
  my data
  2 dependencies\t: (8, 64) (8, 48) (esc)
  create: new
  data1:0:11
  11
  $ nrmpio-sim -s big -- bash -c 'multipath -v1 -l | wc -l; dmsetup deps -j 253 -m 1999'
  2000
  4 dependencies\t: (*, *) (*, *) (*, *) (*, *) (glob)

An earlier world goes on, with what was done in it:

  $ nrmpio-sim --keep kept -- multipath -f mpathb
  $ nrmpio-sim --state kept -- bash -c 'dmsetup ls --target multipath; multipath > /dev/null 2>&1; simctl path sdd lost'
  mpatha\t(253, 0) (esc)
  mpathc\t(253, 2) (esc)
  $ nrmpio-sim --state kept -- bash -c 'dmsetup ls --target multipath; [ -e /dev/sdd ] || echo lost'
  mpatha\t(253, 0) (esc)
  mpathb\t(253, 1) (esc)
  mpathc\t(253, 2) (esc)
  lost
  $ nrmpio-sim --state $TMPDIR -- true
  nrmpio-sim: */tmp.*: no world of nrmpio-sim; make one with --keep (glob)
  [71]
  $ nrmpio-sim --state kept --scenario messy -- true 2> /dev/null
  [64]

Sixteen tools at once leave a world in which everything fits together:

  $ nrmpio-sim --keep busy -- bash -c '
  > turn() { for i in 1 2 3; do
  >   case $(( ($1 + i) % 4 )) in
  >     0) multipath -f mpatha; multipath;;
  >     1) kpartx -a /dev/mapper/mpatha;;
  >     2) kpartx -d /dev/mapper/mpatha;;
  >     3) dmsetup create lin$1-$i --table "0 8 linear 254:0 $1";;
  >   esac; done; }
  > for n in $(seq 16); do turn $n & done > /dev/null 2>&1; wait; multipath > /dev/null 2>&1; kpartx -a /dev/mapper/mpatha
  > dmsetup ls | grep -c "^lin[0-9]*-"; dmsetup table | grep -c "^mpatha[0-9]:"'
  12
  3
  $ cd busy; for device in block/dm-*; do
  >   [ $(readlink names/$(cat $device/dm/name)) = ../$device ] || echo name: $device
  >   [ $(readlink sys/dev/block/$(cat $device/dev)) = ../../$device ] || echo number: $device
  >   [ -e dev/$(basename $device) ] || echo node: $device
  >   for slave in $device/slaves/*; do
  >     [ ! -h $slave ] || [ -e $slave/holders/$(basename $device) ] || echo holder: $slave
  >   done
  > done; ls names | wc -l > ../names; ls -d block/dm-* | wc -l > ../devices; grep -c ' dm-' proc/partitions > ../lines; cd ..
  $ cmp names devices && cmp names lines; find busy -name '*.new' -o -name draft

Several worlds live side by side:

  $ nrmpio-sim -- bash -c 'multipath -f mpatha; sleep 1; dmsetup ls | grep -c mpatha' & nrmpio-sim -- bash -c 'sleep 0.5; dmsetup ls | grep -c mpatha'; wait
  4
  0

A shell says where it is:

  $ printf 'dmsetup ls --target multipath\nexit\n' | PROMPT_COMMAND= HOME=/nonexistent script -qec 'nrmpio-sim -- bash' /dev/null | grep -aoE 'simulated multipath world|Try: .*,|\(simulated\)|mpathb.*\)' | sort -u
  (simulated)
  Try: multipath -ll, dmsetup table,
  mpathb\t(253, 1) (esc)
  simulated multipath world

A signal while a world is made takes it away at once:

  $ nrmpio-sim -s big -- true & sleep 0.3; kill -TERM $!; wait $!
  [143]
  $ ls $TMPDIR
