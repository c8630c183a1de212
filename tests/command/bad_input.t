What cannot be done is told in one line, with the right status, and changes nothing.

  $ cat > try << 'END'
  > #!/bin/bash
  > # Runs nrmpio with each line of standard input and compares the world before and after.
  > before=$(dmsetup table)
  > while read -r line; do
  >   echo "--- $line"
  >   eval "nrmpio $line" > out 2> err; status=$?
  >   cat out err
  >   echo "status $status"
  >   [ "$(wc -l < err)" = 1 ] || echo "NOT ONE LINE"
  >   [ "$(dmsetup table)" = "$before" ] || echo "CHANGED"
  > done
  > END
  $ chmod +x try

Wrong usage, and names that never reach the library:

  $ nrmpio-sim -- ./try << 'END'
  > 
  > teleport
  > shwo
  > --bogus list
  > --plugin
  > --plugin '' list
  > --timeout 0 list
  > --timeout 1e9 list
  > --debug-level 10 list
  > --log /nonexistent/log list
  > paths
  > paths -x
  > paths /dev/mapper/mpatha /dev/mapper/mpathb
  > list --kpartx
  > show --json --dot
  > show --output NAME,,SIZE
  > show --jobs 0
  > show mpatha '[mpathb,mpathc]'
  > delete --force /dev/mapper/mpatha
  > scsi-name 8
  > scsi-name 8 x
  > scsi-name -8 0
  > scsi-name 8 4294967296
  > delete /dev/mapper/mpatha
  > delete ''
  > delete $'/dev/mapper/mpatha\n'
  > delete '/dev/mapper/mpatha;touch${IFS}pwned'
  > delete '/dev/mapper/$(touch pwned)'
  > is-multipath '/dev/mapper/mp*tha'
  > is-multipath '/dev/mapper/mpath\a'
  > is-multipath $'/dev/mapper/mpath\xe4'
  > delete -- -F
  > delete --yes /dev/mapper/-F
  > END
  --- 
  nrmpio: a command is required; nrmpio --help tells more
  status 64
  --- teleport
  nrmpio: teleport is no command; nrmpio --help tells more
  status 64
  --- shwo
  nrmpio: shwo is no command; did you mean show?
  status 64
  --- --bogus list
  nrmpio: nrmpio list has no option --bogus; nrmpio list --help tells more
  status 64
  --- --plugin
  nrmpio: --plugin: 1 required PATH missing; nrmpio --help tells more
  status 64
  --- --plugin '' list
  nrmpio: --plugin is empty
  status 64
  --- --timeout 0 list
  nrmpio: --timeout 0 is no number of seconds above 0 and up to 86400
  status 64
  --- --timeout 1e9 list
  nrmpio: --timeout 1e9 is no number of seconds above 0 and up to 86400
  status 64
  --- --debug-level 10 list
  nrmpio: --debug-level 10 is no decimal number from 0 to 9
  status 64
  --- --log /nonexistent/log list
  nrmpio: cannot write the log /nonexistent/log: No such file or directory
  status 2
  --- paths
  nrmpio: DEVICE is required; nrmpio paths --help tells more
  status 64
  --- paths -x
  nrmpio: nrmpio paths has no option -x; nrmpio paths --help tells more
  status 64
  --- paths /dev/mapper/mpatha /dev/mapper/mpathb
  nrmpio: /dev/mapper/mpathb is one word too many; nrmpio paths --help tells more
  status 64
  --- list --kpartx
  nrmpio: nrmpio list has no option --kpartx; nrmpio list --help tells more
  status 64
  --- show --json --dot
  nrmpio: --json, --list, --pairs and --dot exclude one another
  status 64
  --- show --output NAME,,SIZE
  nrmpio: --output needs the names of columns with commas between them
  status 64
  --- show --jobs 0
  nrmpio: --jobs 0 is no decimal number from 1 to 256
  status 64
  --- show mpatha '[mpathb,mpathc]'
  nrmpio: a device name cannot contain [
  status 64
  --- delete --force /dev/mapper/mpatha
  nrmpio: nrmpio delete has no option --force; nrmpio delete --help tells more
  status 64
  --- scsi-name 8
  nrmpio: MINOR is required; nrmpio scsi-name --help tells more
  status 64
  --- scsi-name 8 x
  nrmpio: the minor number x is no decimal number from 0 to 2147483647
  status 64
  --- scsi-name -8 0
  nrmpio: the major number -8 is no decimal number from 0 to 2147483647
  status 64
  --- scsi-name 8 4294967296
  nrmpio: the minor number 4294967296 is no decimal number from 0 to 2147483647
  status 64
  --- delete /dev/mapper/mpatha
  nrmpio: there is no terminal to ask on: confirm with --yes, or look with --dry-run first
  status 64
  --- delete ''
  nrmpio: the device name is empty
  status 64
  --- delete $'/dev/mapper/mpatha\n'
  nrmpio: a device name cannot contain the byte 0x0a
  status 64
  --- delete '/dev/mapper/mpatha;touch${IFS}pwned'
  nrmpio: a device name cannot contain ;
  status 64
  --- delete '/dev/mapper/$(touch pwned)'
  nrmpio: a device name cannot contain $
  status 64
  --- is-multipath '/dev/mapper/mp*tha'
  nrmpio: a device name cannot contain *
  status 64
  --- is-multipath '/dev/mapper/mpath\a'
  nrmpio: a device name cannot contain \, which a shell reads differently
  status 64
  --- is-multipath $'/dev/mapper/mpath\xe4'
  nrmpio: a device name cannot contain the byte 0xe4
  status 64
  --- delete -- -F
  nrmpio: no part of a device name can begin with -: the multipath tools would take it for an option
  status 64
  --- delete --yes /dev/mapper/-F
  nrmpio: no part of a device name can begin with -: the multipath tools would take it for an option
  status 64
  $ ls pwned
  ls: cannot access 'pwned': No such file or directory
  [2]

Devices that do not exist:

  $ nrmpio-sim -- ./try << 'END'
  > is-multipath /dev/mapper/nosuch
  > is-partition nosuch
  > paths /dev/mapper/nosuch
  > paths list
  > is-multipath try
  > delete --yes /dev/null
  > partitions /dev/mapper/nosuch
  > fail-if-no-path --yes nosuch
  > delete-partitions --yes /dev/mapper/nosuch
  > delete --yes /dev/mapper/nosuch
  > END
  --- is-multipath /dev/mapper/nosuch
  nrmpio: there is no device /dev/mapper/nosuch
  status 2
  --- is-partition nosuch
  nrmpio: there is no device nosuch
  status 2
  --- paths /dev/mapper/nosuch
  nrmpio: there is no device /dev/mapper/nosuch
  status 2
  --- paths list
  nrmpio: there is no device list
  status 2
  --- is-multipath try
  nrmpio: try is not a block device
  status 2
  --- delete --yes /dev/null
  nrmpio: /dev/null is not a block device
  status 2
  --- partitions /dev/mapper/nosuch
  nrmpio: there is no device /dev/mapper/nosuch
  status 2
  --- fail-if-no-path --yes nosuch
  nrmpio: there is no device nosuch
  status 2
  --- delete-partitions --yes /dev/mapper/nosuch
  nrmpio: there is no device /dev/mapper/nosuch
  status 2
  --- delete --yes /dev/mapper/nosuch
  nrmpio: there is no device /dev/mapper/nosuch
  status 2

Devices that are no multipath device, with linear devices on them:

  $ nrmpio-sim -- ./try << 'END'
  > paths /dev/vda
  > partitions /dev/mapper/lin0
  > fail-if-no-path --yes /dev/vda
  > delete-partitions --yes /dev/vda
  > delete --yes /dev/vda
  > delete --yes /dev/mapper/lin0
  > END
  --- paths /dev/vda
  nrmpio: /dev/vda is not a multipath device (code -6)
  status 2
  --- partitions /dev/mapper/lin0
  nrmpio: /dev/mapper/lin0 is not a multipath device (code -6)
  status 2
  --- fail-if-no-path --yes /dev/vda
  nrmpio: /dev/vda is not a multipath device (code -6)
  status 2
  --- delete-partitions --yes /dev/vda
  nrmpio: /dev/vda is not a multipath device (code -6)
  status 2
  --- delete --yes /dev/vda
  nrmpio: /dev/vda is not a multipath device (code -6)
  status 2
  --- delete --yes /dev/mapper/lin0
  nrmpio: /dev/mapper/lin0 is not a multipath device (code -6)
  status 2

Devices that do for other commands only:

  $ nrmpio-sim -- ./try << 'END'
  > partitions /dev/mapper/mpatha1
  > fail-if-no-path --yes /dev/mapper/mpatha1
  > END
  --- partitions /dev/mapper/mpatha1
  nrmpio: cannot list the partitions of /dev/mapper/mpatha1 (code -1): GetPartitions called on partition device /dev/mapper/mpatha1 part of mpatha
  status 2
  --- fail-if-no-path --yes /dev/mapper/mpatha1
  nrmpio: mpatha1 is a partition mapping; name its map, mpatha
  status 2

A plug-in that is missing, is none, or lacks an entry point:

  $ cp $TESTDIR/libIncompletePlugin.so .
  $ touch empty.so
  $ nrmpio-sim -- ./try << 'END'
  > --plugin ./nosuch.so delete /dev/mapper/mpatha
  > --plugin nosuch.so list
  > --plugin empty.so list
  > --plugin libIncompletePlugin.so delete /dev/mapper/mpatha
  > END
  --- --plugin ./nosuch.so delete /dev/mapper/mpatha
  nrmpio: there is no plug-in ./nosuch.so
  status 2
  --- --plugin nosuch.so list
  nrmpio: there is no plug-in nosuch.so
  status 2
  --- --plugin empty.so list
  nrmpio: cannot load the plug-in empty.so: /*/empty.so: file too short (glob)
  status 2
  --- --plugin libIncompletePlugin.so delete /dev/mapper/mpatha
  nrmpio: the plug-in libIncompletePlugin.so lacks the entry point init (symbol init)
  status 2

No plug-in beside nrmpio nor in the installed place:

  $ mkdir bin && cp "$(type -P nrmpio)" "$(dirname "$(type -P nrmpio)")"/lib{KoUtils,NrLib}.so bin
  $ bin/nrmpio list
  nrmpio: there is no plug-in at /*/bin/libNrMPIO_Linux.so or at /*/nrmpio/libNrMPIO_Linux.so; name one with --plugin (glob)
  [2]
