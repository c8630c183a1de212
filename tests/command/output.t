Output that cannot be written is a failure.

  $ nrmpio-sim -- nrmpio list > /dev/full
  nrmpio: cannot write the output: No space left on device
  [2]
  $ nrmpio-sim -- nrmpio list >&-
  nrmpio: cannot write the output: Bad file descriptor
  [2]
  $ nrmpio --help > /dev/full
  nrmpio: cannot write the output: No space left on device
  [2]
  $ nrmpio --version >&-
  nrmpio: cannot write the output: Bad file descriptor
  [2]

Where standard error is closed, no file takes its place:

  $ nrmpio-sim -- nrmpio paths nosuch 2>&-
  [2]

A reader that has enough is no failure, and nothing is told, even where SIGPIPE was ignored:

  $ trap '' PIPE; nrmpio-sim -- bash -c '{ nrmpio list; echo "status $?" >&2; } | true'
  status 141
