On a terminal: colours where something is wrong, and a bar where it takes long.

  $ on_terminal() { "$TESTDIR/on_terminal" "$@" | cat -v; }
  $ export TERM=xterm LC_ALL=C; unset NO_COLOR
  $ cat > show.sh << 'END'
  > simctl path sdf lost; simctl path sdd offline
  > "$@" nrmpio show --output NAME,STATE mpatha
  > END
  $ show() { on_terminal nrmpio-sim -- bash show.sh "$@"; }
  $ show
  nrmpio: the partition table of mpatha is not read: it has no usable path
  NAME      STATE
  mpatha    ^[[31mfailing^[[0m
  |-sdd     ^[[33moffline^[[0m
  |-8:80    ^[[31mlost^[[0m
  |-mpatha1 active
  |-mpatha2 active
  `-mpatha3 active
  $ show env NO_COLOR= | grep -c '\^\['
  3
  $ for setting in NO_COLOR=1 NO_COLOR=0 TERM=dumb TERM=; do show env $setting | grep '\^\['; done
  [1]
  $ nrmpio-sim -- bash show.sh 2>&1 | grep -c $'\33'
  0
  [1]

Nothing is cut off where the terminal is too narrow:

  $ nrmpio-sim -- "$TESTDIR/on_terminal" --columns 20 nrmpio show mpathc | tail -n 1
  `-mpathc6 part   253:9   8M active /dev/mapper/mpathc6

After a second a bar shows how far it is, and it is gone in the end; not so where nobody would see it:

  $ printf '[[lun]]\n[[lun]]\n[[lun]]\n[[fault]]\ncommand = "dmsetup deps mpath*"\ndelay = 0.8\n' > slow.toml
  $ slow() { nrmpio-sim --scenario slow.toml -- "$@"; }
  $ slow "$TESTDIR/on_terminal" nrmpio show --jobs 1 -no NAME > received
  $ tr '\r' '\n' < received | grep -cE '^\[#+ +\] [12] of 3 maps$' | grep -c '[12]'
  1
  $ slow nrmpio show --jobs 1 -no NAME > printed 2>&1; sed 's/.*\r//' received | cmp - printed; grep -c of printed
  0
  [1]
  $ slow "$TESTDIR/on_terminal" env LC_ALL=C.UTF-8 nrmpio show --jobs 1 -no NAME | grep -c $'\xe2\x96\x88.* of 3'
  1
  $ slow "$TESTDIR/on_terminal" bash -c 'nrmpio show --jobs 1 -no NAME 2> /dev/null' | cmp - printed
  $ slow "$TESTDIR/on_terminal" --columns 12 nrmpio show --jobs 1 -no NAME | tr '\r' '\n' | grep ' of' | sed 's/^[12]/N/' | sort -u
  N of 3 maps
