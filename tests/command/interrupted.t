A command that is interrupted takes those with it that it runs, and ends by the same signal.

  $ PATH=$PATH:$TESTDIR
  $ cat > hang.toml << 'END'
  > [[lun]]
  > table = "label: gpt\nstart=2048, size=4096\n"
  > [[fault]]
  > command = "dmsetup remove *"
  > hang = true
  > [[fault]]
  > command = "multipath -d*"
  > hang = true
  > END

Runs nrmpio, sends it a signal when a tool hangs, and looks who is left:

  $ cat > interrupt << 'END'
  > set -m
  > signal=$1; shift
  > hanging() {
  >   for file in $(grep -slzx "NRMPIO_SIM_WORLD=$NRMPIO_SIM_WORLD" /proc/[0-9]*/environ); do
  >     grep -qsxz -e remove -e -d ${file%environ}cmdline && return
  >   done
  >   false
  > }
  > nrmpio "$@" & job=$!
  > until hanging; do sleep 0.05; done
  > kill -$signal $job
  > wait $job
  > echo "status $?"
  > hanging && echo "a tool is left"
  > dmsetup table | cut -d' ' -f1-4
  > END
  $ for signal in INT TERM HUP; do
  >   nrmpio-sim --scenario hang.toml -- bash interrupt $signal delete --yes mpatha 2>&1 | grep -v '^\[\|^interrupt:'
  > done
  nrmpio: interrupted while removing mpatha1: nrmpio show tells what is left
  status 130
  mpatha: 0 131072 multipath
  mpatha1: 0 4096 linear
  nrmpio: interrupted while removing mpatha1: nrmpio show tells what is left
  status 143
  mpatha: 0 131072 multipath
  mpatha1: 0 4096 linear
  nrmpio: interrupted while removing mpatha1: nrmpio show tells what is left
  status 129
  mpatha: 0 131072 multipath
  mpatha1: 0 4096 linear

Where nothing was being changed, it ends without a word, whether a tool or the user is to answer:

  $ nrmpio-sim --scenario hang.toml -- bash interrupt INT list 2>&1 | grep -v '^\[\|^interrupt:'
  status 130
  mpatha: 0 131072 multipath
  mpatha1: 0 4096 linear
  $ nrmpio-sim -- on_terminal --answer ^C nrmpio delete mpatha; echo; echo "status $?"
  Remove map mpatha (64M) with mpatha1, mpatha2, mpatha3? [y/N] ^C
  status 0

A signal that is ignored from the beginning, as nohup has it, interrupts nothing:

  $ cat > ignoring << 'END'
  > (trap '' HUP; exec nrmpio --timeout 0.5 list) & sleep 0.2; kill -HUP $!; wait $!; echo "status $?"
  > END
  $ nrmpio-sim --scenario hang.toml -- bash ignoring 2>&1
  nrmpio: the multipath tools cannot list the maps (code 124): time limit of 500 ms reached: command killed
  status 2

It does not wait for ever for a reader who has stopped reading what it says:

  $ cat > stopped << 'END'
  > mkfifo pipe; exec 3<> pipe; head -c 65536 /dev/zero >&3
  > nrmpio --trace list 2>&3 & job=$!
  > sleep 0.5; kill -TERM $job
  > (sleep 10; kill -KILL $job) & killer=$!
  > wait $job; echo "status $?"; kill $killer
  > END
  $ nrmpio-sim -- bash stopped 2> /dev/null
  status 143
