The manual pages and the completions name every command, option and column that a help names.

  $ root=${NRMPIO_SOURCE_DIR:-$TESTDIR/../..}
  $ commands=$(nrmpio --help | sed -nE '/^(Look|Change):/,/^$/s/^  ([a-z-]+).*/\1/p')
  $ options() { "$@" --help | sed -nE 's/^  (-[^ ]+( --[a-z]+)?).*/\1/p' | tr -s ', ' '\n\n'; }
  $ columns() { nrmpio show --help | sed -nE '/^Columns/,/^$/s/^ [ *] ([A-Z:]+) .*/\1/p'; }
  $ words() { echo "$commands"; options nrmpio; for command in $commands; do options nrmpio $command; done; }

Names those words on standard input that are missing in a text:

  $ missing() { while IFS= read -r word; do grep -qE -e "(^|[^a-z-])$word([^a-z-]|$)" "$1" || echo "$word"; done; }

The pages:

  $ command -v mandoc > /dev/null || exit 80
  $ for page in nrmpio.8 nrmpio-sim.1; do
  >   mandoc -T lint -W warning "$root/docs/man/$page"
  >   mandoc -T ascii "$root/docs/man/$page" | sed 's/.\x08//g' > $page
  > done
  $ [ $(words | wc -l) -gt 60 ] || words
  $ { words; columns; } | sort -u | missing nrmpio.8
  $ options nrmpio-sim | missing nrmpio-sim.1
  $ printf '%s\n' teleport --bogus | missing nrmpio.8
  teleport
  --bogus

The completion for zsh, which holds them in its own words:

  $ words | sort -u | missing "$root/completions/_nrmpio"
  $ ! command -v zsh > /dev/null || zsh -n "$root/completions/_nrmpio"

That for bash, in a world with a map that has an odd name:

  $ cat > complete << 'END'
  > . "$1/completions/nrmpio.bash"
  > . "$1/completions/nrmpio-sim.bash"
  > complete_words() {
  >   COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
  >   "_${1//-/_}"
  >   printf '%s ' "$* ->" "${COMPREPLY[@]}"; echo
  > }
  > dmsetup rename mpathb 'b$(touch canary)'
  > complete_words nrmpio i
  > complete_words nrmpio --trace delete
  > complete_words nrmpio --timeout 5 del
  > complete_words nrmpio show mpath
  > complete_words nrmpio delete --yes /dev/mapper/mpathc
  > complete_words nrmpio paths b
  > complete_words nrmpio list m
  > complete_words nrmpio show -o S
  > complete_words nrmpio show --output NAME,SIZE,S
  > complete_words nrmpio show --no
  > complete_words nrmpio --log s
  > complete_words nrmpio --pl
  > complete_words nrmpio-sim --s
  > complete_words nrmpio-sim -s m
  > ls canary
  > END
  $ nrmpio-sim -- bash complete "$root" 2>&1
  nrmpio i -> is-multipath is-partition 
  nrmpio --trace delete -> delete-partitions delete 
  nrmpio --timeout 5 del -> delete-partitions delete 
  nrmpio show mpath -> mpatha mpathc 
  nrmpio delete --yes /dev/mapper/mpathc -> /dev/mapper/mpathc 
  nrmpio paths b -> 
  nrmpio list m -> 
  nrmpio show -o S -> SIZE STATE START SECTORS 
  nrmpio show --output NAME,SIZE,S -> NAME,SIZE,SIZE NAME,SIZE,STATE NAME,SIZE,START NAME,SIZE,SECTORS 
  nrmpio show --no -> --noheadings 
  nrmpio --log s -> stderr syslog 
  nrmpio --pl -> --plugin 
  nrmpio-sim --s -> --scenario --state 
  nrmpio-sim -s m -> messy 
  ls: cannot access 'canary': No such file or directory
  [2]

Each option of each command, and nodes where nrmpio cannot list:

  $ cat > complete-options << 'END'
  > . "$1/completions/nrmpio.bash"; shift
  > for command; do
  >   COMP_WORDS=(nrmpio "$command" -) COMP_CWORD=2; _nrmpio; printf '%s\n' "${COMPREPLY[@]}" | sort -u > completed
  >   { nrmpio --help; nrmpio $command --help; } | grep -oE '^  -[^ ]+' | tr -d ' ' | tr ',' '\n' | sort -u | diff - completed
  > done
  > COMP_WORDS=(nrmpio paths /dev/mapper/mpa) NRMPIO_SIM_UNPRIVILEGED=1; export NRMPIO_SIM_UNPRIVILEGED
  > _nrmpio; echo "${COMPREPLY[@]}"
  > END
  $ nrmpio-sim -- bash complete-options "$root" $commands 2>&1
  /dev/mapper/mpatha /dev/mapper/mpatha1 /dev/mapper/mpatha2 /dev/mapper/mpatha3 /dev/mapper/mpathb /dev/mapper/mpathc /dev/mapper/mpathc1 /dev/mapper/mpathc2 /dev/mapper/mpathc5 /dev/mapper/mpathc6
