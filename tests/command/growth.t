More maps, paths and partitions than the arrays hold that nrmpio offers first.

  $ letter() { printf "\\x$(printf %x $((97 + $1)))"; }
  $ {
  >   for map in $(seq 40); do
  >     printf '[[lun]]\nalias = "map%d"\nwwid = "3%015d"\npaths = ["sd%s%s"]\n' \
  >       $map $map $(letter $((map / 26))) $(letter $((map % 26)))
  >   done
  >   printf '[[lun]]\nalias = "wide"\nwwid = "3600000000000000f"\npaths = ['
  >   for path in $(seq 0 10); do printf '"sd%s", ' $(letter $path); done
  >   printf "]\ntable = '''\nlabel: gpt\n"
  >   for partition in $(seq 20); do echo "start=$((2048 * partition)), size=2048"; done
  >   echo "'''"
  > } > large.toml
  $ nrmpio() { nrmpio-sim --scenario large.toml -- nrmpio "$@"; }

All of them are listed, none twice:

  $ nrmpio --trace list > maps 2> trace
  $ wc -l < maps
  41
  $ sort -u maps | wc -l
  41
  $ nrmpio paths /dev/mapper/wide | sort | tr -d '\n'
  /dev/sda/dev/sdb/dev/sdc/dev/sdd/dev/sde/dev/sdf/dev/sdg/dev/sdh/dev/sdi/dev/sdj/dev/sdk (no-eol)
  $ nrmpio partitions /dev/mapper/wide | sed '2,17d'
  NUMBER START SECTORS MAJ:MIN NODE
      17 34816    2048  253:57 /dev/mapper/wide17
      18 36864    2048  253:58 /dev/mapper/wide18
      19 38912    2048  253:59 /dev/mapper/wide19
      20 40960    2048  253:60 /dev/mapper/wide20

Two attempts are enough, and one where all fits at once:

  $ grep -c 'multipath -d' trace
  2
  $ nrmpio-sim -- nrmpio --trace list 2>&1 >/dev/null | grep -c 'multipath -d'
  1
