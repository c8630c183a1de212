Names that device-mapper allows and a shell or the plug-in would read differently never leave nrmpio.

  $ cat > odd_names << 'END'
  > a;touch owned
  > $(touch owned)
  > `touch owned`
  > x&touch owned
  > x|touch owned
  > x>owned
  > x y
  > c:d
  > *
  > ~
  > #x
  > it's
  > "q"
  > back\slash
  > lin0 lin1
  > END

Such a mapping on a map keeps the map from being torn down, before anything is changed:

  $ cat > mappings << 'END'
  > while IFS= read -r name; do
  >   dmsetup create "$name" --table "0 8 linear /dev/mapper/mpatha 0" || exit
  >   before=$(dmsetup table)
  >   for command in delete delete-partitions "delete --dry-run"; do
  >     text=$(nrmpio --trace $command --yes mpatha 2>&1) && echo "$name: $command went through"
  >     grep -E "(remove|message|-f) " <<< "${text%nrmpio:*}"
  >     grep -qF "remove that mapping by hand first: dmsetup remove" <<< "$text" || echo "$name: $command: $text"
  >   done
  >   [ "$(dmsetup table)" = "$before" ] || echo "$name: CHANGED"
  >   dmsetup remove "$name" || exit
  > done < odd_names
  > tail -n 1 <<< "$text"; nrmpio delete --yes mpatha
  > END
  $ nrmpio-sim -- bash mappings; ls owned
  nrmpio: the name lin0 lin1 would be read differently on its way to dmsetup, and another device might be removed; remove that mapping by hand first: dmsetup remove 'lin0 lin1'
  ls: cannot access 'owned': No such file or directory
  [2]

A name that looks like a line of the listing, or puts another device into it, does not have that one removed:

  $ nrmpio-sim -- bash << 'END' 2>&1
  > dmsetup create 'x linear 253:0 y' --table '0 8 linear /dev/mapper/lin0 0'
  > nrmpio delete --yes mpatha
  > dmsetup remove 'x linear 253:0 y'
  > dmsetup create $'x\nmpathc1' --table '0 8 linear /dev/mapper/mpatha 0'
  > nrmpio delete-partitions --yes mpatha
  > dmsetup table mpathc1
  > END
  nrmpio: the name x linear 253:0 y would be read differently on its way to dmsetup, and another device might be removed; rename that device first: dmsetup rename 'x linear 253:0 y' NEWNAME
  nrmpio: dmsetup table tells no whole table of mpathc1: another device has a line end in its name; rename that one first, with dmsetup rename
  0 16384 linear 253:2 2048

A map with such a name: the plug-in asks for it by number, but puts its name into the next command line.

  $ cat > maps << 'END'
  > before=$(dmsetup table)
  > for command in "delete --yes" "delete-partitions --yes" paths; do
  >   text=$(nrmpio --trace $command /dev/dm-0 2>&1) && echo "$0: $command went through"
  >   grep -E "ms: .*(deps|remove|message|-f) " <<< "$text"
  >   grep -qE "rename (it|that device) first: dmsetup rename" <<< "$text" || echo "$0: $command: $text"
  > done
  > [ "$(dmsetup table)" = "$before" ] || echo "$0: CHANGED"
  > END
  $ while IFS= read -r name; do
  >   printf "[[lun]]\nalias = '''%s'''\n" "$name" > odd.toml
  >   nrmpio-sim --scenario odd.toml -- bash -c "$(cat maps)" "$name"
  > done < <(grep -v : odd_names); ls owned
  ls: cannot access 'owned': No such file or directory
  [2]
  $ printf "[[lun]]\nalias = 'm;touch owned'\n" > odd.toml
  $ nrmpio-sim --scenario odd.toml -- nrmpio --trace paths /dev/dm-0 2>&1 | grep -v 'status 0'; ls owned
  nrmpio: not run: dmsetup deps m;touch owned\n
  nrmpio: the name m;touch owned would not reach the tools as it is: a shell or a tool reads it differently; rename that device first: dmsetup rename 'm;touch owned' NEWNAME
  ls: cannot access 'owned': No such file or directory
  [2]

Whether the daemon takes fail-if-no-path back is looked at for such a map, too:

  $ cat > odd.toml << 'END'
  > daemon = true
  > restore_after = 1
  > [[lun]]
  > alias = "m;touch owned"
  > queue_if_no_path = true
  > END
  $ nrmpio-sim --scenario odd.toml -- nrmpio fail-if-no-path --yes /dev/dm-0; ls owned
  nrmpio: m;touch owned queues I/O again: the daemon's configuration asks for that and has restored it; change no_path_retry there
  ls: cannot access 'owned': No such file or directory
  [2]
