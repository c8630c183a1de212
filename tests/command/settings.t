The trace, the log and the time limit.

  $ nrmpio() { nrmpio-sim -- nrmpio "$@"; }
  $ durations() { sed -E 's/after [0-9]+ ms/after N ms/'; }

The trace tells on standard error what was run; without it nothing is told:

  $ nrmpio paths --trace /dev/mapper/mpatha 2>&1 | durations
  nrmpio: status 0 after N ms: dmsetup table -j 253 -m 0
  nrmpio: status 0 after N ms: dmsetup table -j 253 -m 0
  nrmpio: status 0 after N ms: dmsetup info -c --noheadings -o name -j 253 -m 0
  nrmpio: status 0 after N ms: dmsetup deps mpatha\n
  /dev/sdf
  /dev/sdd
  $ nrmpio paths /dev/mapper/mpatha 2>&1 >/dev/null
  $ nrmpio delete --dry-run --trace mpathb 2>&1 | durations | grep -v ': dmsetup .*table\|: dmsetup info'
  nrmpio: status 0 after N ms: dmsetup status
  nrmpio: status 0 after N ms: multipath -d  -v1 -l
  nrmpio: not run: dmsetup message -j 253 -m 1 0 "fail_if_no_path"
  nrmpio: not run: multipath -f mpathb\n
  dmsetup message -j 253 -m 1 0 "fail_if_no_path"
  multipath -f mpathb

A command that cannot be started is told as well:

  $ nrmpio-sim -- bash -c 'ulimit -n 6; nrmpio --trace list' 2>&1 | durations
  nrmpio: status 127 after N ms: multipath -d  -v1 -l
  nrmpio: the multipath tools cannot list the maps (code 127): cannot create a pipe: Too many open files

Both can be had, and do not touch one another; the log has records from 1 on, commands from 3 on, all of them from 6 on:

  $ nrmpio --trace --log log paths mpatha 2>&1 >/dev/null | wc -l
  4
  $ for level in 0 1 3 5 6 9; do rm -f log; nrmpio --log log --debug-level $level delete --yes mpathb; echo "$level: $(wc -l < log)"; done
  0: 0
  1: 0
  3: 7
  5: 7
  6: 9
  9: 9
  $ sed -E 's/^[0-9TZ:.-]+ \[[0-9]+\] /TIME [ID] /' log | durations | grep -E 'message|multipath -f'
  TIME [ID] NrProcess::system: status 0 after N ms: dmsetup message -j 253 -m 1 0 "fail_if_no_path"
  TIME [ID] NrProcess::system: status 0 after N ms: multipath -f mpathb\n
  $ rm log; nrmpio --log log paths mpatha > /dev/null; wc -l < log
  1
  $ nrmpio --debug-level 5 paths mpatha 2>&1 >/dev/null | grep -c NrProcess::system
  1
  $ nrmpio --log stderr paths mpatha 2>&1 >/dev/null | grep -c NrProcess::system
  1
  $ nrmpio --log . list
  nrmpio: cannot write the log .: Is a directory
  [2]
  $ nrmpio --log /dev/full --trace list 2> trace; grep -c 'multipath -d' trace
  /dev/mapper/mpatha
  /dev/mapper/mpathb
  /dev/mapper/mpathc
  1

A command that hangs is ended:

  $ printf '[[lun]]\n[[fault]]\ncommand = "multipath -d*"\ndelay = 60\n' > slow.toml
  $ SECONDS=0; nrmpio-sim -s slow.toml -- nrmpio --timeout 0.2 list; [ $SECONDS -lt 20 ] || echo "$SECONDS seconds"
  nrmpio: the multipath tools cannot list the maps (code 124): time limit of 200 ms reached: command killed
