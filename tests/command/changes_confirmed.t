What changes something asks first, on a terminal, and needs --yes elsewhere.

  $ PATH=$PATH:$TESTDIR
  $ state() { dmsetup table; dmsetup info -c --noheadings; }
  $ export -f state

Only y and yes are a yes; another answer, none, and the end of the input leave all as it is:

  $ nrmpio-sim -- bash << 'END'
  > before=$(state)
  > for answer in n '' yesterday ^D; do
  >   on_terminal --answer "$answer" nrmpio delete mpatha; echo "status $?"
  > done
  > [ "$(state)" = "$before" ] || echo CHANGED
  > on_terminal --answer y nrmpio fail-if-no-path mpatha
  > on_terminal --answer yes nrmpio delete-partitions mpatha
  > on_terminal --answer Y nrmpio delete mpatha
  > on_terminal nrmpio delete-partitions mpathb
  > nrmpio list
  > END
  Remove map mpatha (64M) with mpatha1, mpatha2, mpatha3? [y/N] n
  nrmpio: nothing was changed
  status 1
  Remove map mpatha (64M) with mpatha1, mpatha2, mpatha3? [y/N] 
  nrmpio: nothing was changed
  status 1
  Remove map mpatha (64M) with mpatha1, mpatha2, mpatha3? [y/N] yesterday
  nrmpio: nothing was changed
  status 1
  Remove map mpatha (64M) with mpatha1, mpatha2, mpatha3? [y/N] 
  nrmpio: nothing was changed
  status 1
  Have map mpatha (64M) fail I/O while it has no path, not queue it? [y/N] y
  Remove mpatha1, mpatha2, mpatha3 from map mpatha (64M)? [y/N] yes
  Remove map mpatha (64M)? [y/N] Y
  nrmpio: mpathb has no partition mapping
  /dev/mapper/mpathb
  /dev/mapper/mpathc

Without a terminal nothing is run at all:

  $ nrmpio-sim -- bash -c 'for command in fail-if-no-path delete-partitions delete; do
  > yes | nrmpio --trace $command mpatha; echo "status $?"; done' 2>&1
  nrmpio: there is no terminal to ask on: confirm with --yes, or look with --dry-run first
  status 64
  nrmpio: there is no terminal to ask on: confirm with --yes, or look with --dry-run first
  status 64
  nrmpio: there is no terminal to ask on: confirm with --yes, or look with --dry-run first
  status 64

Before the question stands what else goes, and who holds what is to go; in a rehearsal it is told all the same:

  $ cat > held << 'END'
  > dmsetup create upper --table '0 8 linear /dev/mapper/mpatha1 0'
  > simctl mount mpatha2 '/srv/my data'
  > sleep 30 < /dev/mapper/mpatha3 & sleep 30 < /dev/mapper/mpatha &
  > until [ "$(dmsetup info -c --noheadings -o open mpatha) $(dmsetup info -c --noheadings -o open mpatha3)" = '4 1' ]
  > do sleep 0.1; done
  > on_terminal --answer n nrmpio delete mpatha2
  > nrmpio delete --dry-run mpatha 2>&1
  > kill $(jobs -p)
  > END
  $ nrmpio-sim -- bash held | sed -E 's/process [0-9]+/process PID/'
  nrmpio: mpatha2 is a partition mapping on mpatha: the whole map goes
  nrmpio: mapping upper (253:12) lies on mpatha1
  nrmpio: mpatha2 is mounted on /srv/my data
  nrmpio: mpatha3 is open in process PID (sleep)
  nrmpio: mpatha is open in process PID (sleep)
  Remove map mpatha (64M) with mpatha1, mpatha2, mpatha3? [y/N] n
  nrmpio: nothing was changed
  nrmpio: mapping upper (253:12) lies on mpatha1
  nrmpio: mpatha2 is mounted on /srv/my data
  nrmpio: mpatha3 is open in process PID (sleep)
  nrmpio: mpatha is open in process PID (sleep)
  dmsetup message -j 253 -m 0 0 "fail_if_no_path"
  dmsetup remove mpatha1
  dmsetup remove mpatha2
  dmsetup remove mpatha3
  multipath -f mpatha

What lies on a map and is no partition mapping is not removed with it, and keeps it:

  $ nrmpio-sim -- bash -c "dmsetup create data --table '0 8 linear /dev/mapper/mpatha 100'
  > nrmpio delete-partitions --yes mpatha; nrmpio delete --yes mpatha; dmsetup table | grep -c '^mpatha\|^data'" 2>&1
  nrmpio: mapping data (253:12) is no partition mapping, and would go with mpatha; remove that mapping by hand first: dmsetup remove 'data'
  nrmpio: mapping data (253:12) is no partition mapping, and would go with mpatha; remove that mapping by hand first: dmsetup remove 'data'
  5

What comes onto a map between the look and the act is not removed. Here the first look does not show mpatha2:

  $ cat > unseen.toml << 'END'
  > [[lun]]
  > table = "label: gpt\nstart=2048, size=4096\nstart=8192, size=4096\n"
  > [[fault]]
  > command = "dmsetup info -c --noheadings -o major,*"
  > times = 1
  > status = 0
  > stdout = "253:0:1:L--w:mpatha\n253:1:0:L--w:mpatha1\n"
  > END
  $ for command in delete delete-partitions; do
  >   nrmpio-sim --scenario unseen.toml -- bash -c "on_terminal --answer y nrmpio $command mpatha; echo status \$?; nrmpio list"
  >   nrmpio-sim --scenario unseen.toml -- bash -c "nrmpio $command --json --yes mpatha; echo status \$?; dmsetup table" 2>&1 |
  >     grep -v '^ *[]{}["]'
  > done
  Remove map mpatha (64M) with mpatha1? [y/N] y
  nrmpio: mpatha is not any more what was asked about, and nothing was changed: run the same command again
  status 2
  /dev/mapper/mpatha
  nrmpio: mpatha2 is not among what was to be removed, and is left alone; run the same command again
  nrmpio: mpatha with mpatha2 is still there
  nrmpio: when the reason is gone, run the same command again
  status 2
  mpatha: 0 131072 multipath 0 0 2 1 service-time 0 1 2 8:0 1 1 service-time 0 1 2 8:16 1 1 
  mpatha2: 0 4096 linear 253:0 8192
  Remove mpatha1 from map mpatha (64M)? [y/N] y
  nrmpio: mpatha is not any more what was asked about, and nothing was changed: run the same command again
  status 2
  /dev/mapper/mpatha
  nrmpio: mpatha2 is not among what was to be removed, and is left alone; run the same command again
  nrmpio: mpatha2 is still there
  nrmpio: when the reason is gone, run the same command again
  status 2
  mpatha: 0 131072 multipath 0 0 2 1 service-time 0 1 2 8:0 1 1 service-time 0 1 2 8:16 1 1 
  mpatha2: 0 4096 linear 253:0 8192

A dry run changes nothing, and shows exactly what the real one then runs, one command a line. It asks nothing,
and --yes does not make it a real one:

  $ cat > rehearse << 'END'
  > before=$(state)
  > shown=$(nrmpio "$@" --dry-run 2> /dev/null) || echo "status $?"
  > [ "$(state)" = "$before" ] || echo CHANGED
  > ran=$(nrmpio --trace "$@" 2>&1 | grep -E 'ms: (dmsetup (remove|message)|multipath( -f .*)?$)' | sed -E 's/.* ms: //; s/\\n$//')
  > diff <(echo "$shown") <(echo "$ran") && wc -l <<< "$shown"
  > END
  $ nrmpio-sim -- bash rehearse refresh
  1
  $ nrmpio-sim -- bash rehearse fail-if-no-path --yes mpatha
  1
  $ nrmpio-sim -- bash rehearse delete-partitions --yes mpathc
  4
  $ nrmpio-sim -- bash rehearse delete --yes mpatha2
  5
  $ nrmpio-sim -- nrmpio delete --dry-run --json mpathb
  {
    "device": "/dev/mapper/mpathb",
    "dryRun": true,
    "commands": [
      {
        "command": "dmsetup message -j 253 -m 1 0 \"fail_if_no_path\"",
        "status": null
      },
      {
        "command": "multipath -f mpathb",
        "status": null
      }
    ],
    "removed": []
  }

A plug-in whose commands nrmpio does not see cannot be rehearsed:

  $ cp $TESTDIR/libUnwatchedPlugin.so .
  $ nrmpio-sim -- bash -c 'for command in refresh "partitions mpatha --kpartx" "delete mpatha"; do
  > nrmpio --plugin libUnwatchedPlugin.so $command --dry-run 2>&1 | tail -n 1; done; ls changed' 2>&1
  nrmpio: this plug-in does not run its commands by way of nrmpio's process runner: a rehearsal would change what it only should show
  nrmpio: this plug-in does not run its commands by way of nrmpio's process runner: a rehearsal would change what it only should show
  nrmpio: this plug-in does not run its commands by way of nrmpio's process runner: a rehearsal would change what it only should show
  ls: cannot access 'changed': No such file or directory
  [2]
