What show prints: a tree, a list, pairs, JSON and a picture, of the built-in worlds.

  $ nrmpio-sim -- nrmpio show
  NAME      TYPE MAJ:MIN SIZE STATE  NODE
  mpatha    map    253:0  64M active /dev/mapper/mpatha
  |-sdf     path    8:80  64M active /dev/sdf
  |-sdd     path    8:48  64M active /dev/sdd
  |-mpatha1 part   253:3   8M active /dev/mapper/mpatha1
  |-mpatha2 part   253:4   8M active /dev/mapper/mpatha2
  `-mpatha3 part   253:5  16M active /dev/mapper/mpatha3
  mpathb    map    253:1  64M active /dev/mapper/mpathb
  |-sdi     path   8:128  64M active /dev/sdi
  |-sdh     path   8:112  64M active /dev/sdh
  |-sde     path    8:64  64M active /dev/sde
  `-sdc     path    8:32  64M active /dev/sdc
  mpathc    map    253:2  64M active /dev/mapper/mpathc
  |-sdg     path    8:96  64M active /dev/sdg
  |-sda     path     8:0  64M active /dev/sda
  |-mpathc1 part   253:6   8M active /dev/mapper/mpathc1
  |-mpathc2 part   253:7   1K active /dev/mapper/mpathc2
  |-mpathc5 part   253:8   8M active /dev/mapper/mpathc5
  `-mpathc6 part   253:9   8M active /dev/mapper/mpathc6
  $ nrmpio-sim -- bash -c 'LC_ALL=C.UTF-8 nrmpio show mpathb'
  NAME   TYPE MAJ:MIN SIZE STATE  NODE
  mpathb map    253:1  64M active /dev/mapper/mpathb
  \xe2\x94\x9c\xe2\x94\x80sdi  path   8:128  64M active /dev/sdi (esc)
  \xe2\x94\x9c\xe2\x94\x80sdh  path   8:112  64M active /dev/sdh (esc)
  \xe2\x94\x9c\xe2\x94\x80sde  path    8:64  64M active /dev/sde (esc)
  \xe2\x94\x94\xe2\x94\x80sdc  path    8:32  64M active /dev/sdc (esc)

Of a device that is a partition mapping its map is shown, and each map once:

  $ nrmpio-sim -- nrmpio show --list --noheadings --output NAME,TYPE,PARTN,START,SECTORS,OPEN,QUEUE /dev/mapper/mpatha2
  mpatha  map                         3 no
  sdf     path
  sdd     path
  mpatha1 part     1  2048   16384    0
  mpatha2 part     2 18432   16384    0
  mpatha3 part     3 34816   32768    0
  $ nrmpio-sim -- nrmpio show --list --output node,size /dev/dm-1
  NODE               SIZE
  /dev/mapper/mpathb  64M
  /dev/sdi            64M
  /dev/sdh            64M
  /dev/sde            64M
  /dev/sdc            64M

As a shell reads it:

  $ nrmpio-sim -- bash -c 'nrmpio show --pairs --bytes mpathc | while read -r line; do eval "$line"; echo "$NAME,$TYPE,$MAJ_MIN,$SIZE,$STATE,$NODE"; done'
  mpathc,map,253:2,67108864,active,/dev/mapper/mpathc
  sdg,path,8:96,67108864,active,/dev/sdg
  sda,path,8:0,67108864,active,/dev/sda
  mpathc1,part,253:6,8388608,active,/dev/mapper/mpathc1
  mpathc2,part,253:7,1024,active,/dev/mapper/mpathc2
  mpathc5,part,253:8,8388608,active,/dev/mapper/mpathc5
  mpathc6,part,253:9,8388608,active,/dev/mapper/mpathc6

In JSON all chosen columns are there, numbers as numbers where they are in bytes:

  $ json() { python3 -c 'import json, sys
  > def walk(device, depth):
  >     print("  " * depth, {key: value for key, value in device.items() if key != "children"})
  >     for child in device.get("children", []):
  >         walk(child, depth + 1)
  > document = json.load(sys.stdin)
  > print(list(document))
  > for device in document["maps"]: walk(device, 0)'; }
  $ nrmpio-sim -- nrmpio show --json mpatha | json
  ['maps']
   {'name': 'mpatha', 'type': 'map', 'maj:min': '253:0', 'size': '64M', 'state': 'active', 'node': '/dev/mapper/mpatha'}
     {'name': 'sdf', 'type': 'path', 'maj:min': '8:80', 'size': '64M', 'state': 'active', 'node': '/dev/sdf'}
     {'name': 'sdd', 'type': 'path', 'maj:min': '8:48', 'size': '64M', 'state': 'active', 'node': '/dev/sdd'}
     {'name': 'mpatha1', 'type': 'part', 'maj:min': '253:3', 'size': '8M', 'state': 'active', 'node': '/dev/mapper/mpatha1'}
     {'name': 'mpatha2', 'type': 'part', 'maj:min': '253:4', 'size': '8M', 'state': 'active', 'node': '/dev/mapper/mpatha2'}
     {'name': 'mpatha3', 'type': 'part', 'maj:min': '253:5', 'size': '16M', 'state': 'active', 'node': '/dev/mapper/mpatha3'}
  $ nrmpio-sim -- nrmpio show --json --bytes --output size,queue,partn,state mpatha | json
  ['maps']
   {'size': 67108864, 'queue': False, 'partn': None, 'state': 'active'}
     {'size': 67108864, 'queue': None, 'partn': None, 'state': 'active'}
     {'size': 67108864, 'queue': None, 'partn': None, 'state': 'active'}
     {'size': 8388608, 'queue': None, 'partn': 1, 'state': 'active'}
     {'size': 8388608, 'queue': None, 'partn': 2, 'state': 'active'}
     {'size': 16777216, 'queue': None, 'partn': 3, 'state': 'active'}
  $ printf '[[disk]]\nname = "sda"\n' > empty.toml
  $ nrmpio-sim --scenario empty.toml -- nrmpio show --json | json
  ['maps']
  $ nrmpio-sim --scenario empty.toml -- nrmpio show --dot
  digraph maps {
    rankdir=LR;
    node [shape=box];
  }
  $ nrmpio-sim --scenario empty.toml -- nrmpio show

A picture leads from the disks over the map to its partitions:

  $ nrmpio-sim -- nrmpio show --dot mpatha
  digraph maps {
    rankdir=LR;
    node [shape=box];
    n0 [label="mpatha\n64M\nactive"];
    n1 [label="sdf\n64M\nactive"];
    n1 -> n0;
    n2 [label="sdd\n64M\nactive"];
    n2 -> n0;
    n3 [label="mpatha1\n8M\nactive"];
    n0 -> n3;
    n4 [label="mpatha2\n8M\nactive"];
    n0 -> n4;
    n5 [label="mpatha3\n16M\nactive"];
    n0 -> n5;
  }
  $ nrmpio-sim -- nrmpio show --dot --output NAME,MAJ:MIN,QUEUE mpathb | grep label
    n0 [label="mpathb\n253:1\nno"];
    n1 [label="sdi\n8:128"];
    n2 [label="sdh\n8:112"];
    n3 [label="sde\n8:64"];
    n4 [label="sdc\n8:32"];

A messy world. What cannot be read is told, what device-mapper knows is shown all the same:

  $ nrmpio-sim -s messy -- nrmpio show
  nrmpio: the partition table of dead is not read: it has no usable path
  nrmpio: the partition table of my data is not read: its name cannot be passed on safely
  NAME          TYPE MAJ:MIN SIZE STATE    NODE
  data1         map    253:0  64M active   /dev/mapper/data1
  |-sdc         path    8:32  64M offline  /dev/sdc
  |-sda         path     8:0  64M active   /dev/sda
  |-data1p1     part   253:5   2M active   /dev/mapper/data1p1
  |-data1p2     part   253:6   2M active   /dev/mapper/data1p2
  |-partition 3 part              unmapped
  |-partition 4 part              unmapped
  |-data1p5     part   253:9   2M active   /dev/mapper/data1p5
  |-data1p6     part  253:10   2M active   /dev/mapper/data1p6
  |-data1p7     part  253:11   2M active   /dev/mapper/data1p7
  |-data1p8     part  253:12   2M active   /dev/mapper/data1p8
  |-data1p9     part  253:13   2M active   /dev/mapper/data1p9
  |-data1p10    part  253:14   2M active   /dev/mapper/data1p10
  |-data1p11    part  253:15   2M active   /dev/mapper/data1p11
  |-data1p3     part   253:7   2M active   /dev/dm-7
  `-data1p4     part   253:8   2M active   /dev/dm-8
  data10        map    253:4  64M active   /dev/mapper/data10
  |-sdn         path   8:208  64M active   /dev/sdn
  `-data1-top   part  253:20   1M active   /dev/mapper/data1-top
  dead          map    253:1  64M failing  /dev/mapper/dead
  |-8:48        path    8:48      lost
  `-8:64        path    8:64      lost
  fresh         map    253:3  64M active   /dev/mapper/fresh
  |-sdk         path   8:160  64M active   /dev/sdk
  |-sdj         path   8:144  64M active   /dev/sdj
  `-partition 1 part              unmapped
  my data       map    253:2  64M active   /dev/mapper/my\x20data
  |-sdf         path    8:80  64M active   /dev/sdf
  |-sdg         path    8:96  64M active   /dev/sdg
  |-sdh         path   8:112  64M active   /dev/sdh
  |-sdi         path   8:128  64M active   /dev/sdi
  |-my data1    part  253:16   8M active   /dev/mapper/my\x20data1
  |-my data2    part  253:17   1K active   /dev/mapper/my\x20data2
  `-my data5    part  253:18   8M active   /dev/mapper/my\x20data5
  [2]
  $ for format in tree json pairs dot; do
  >   nrmpio-sim -s messy -- nrmpio show --${format/tree/noheadings} > messy.$format 2> /dev/null; echo "$format $?"
  > done
  tree 2
  json 2
  pairs 2
  dot 2
  $ json < messy.json | grep -E "'(my data5|dead|partition 3|8:48)'"
     {'name': 'partition 3', 'type': 'part', 'maj:min': None, 'size': None, 'state': 'unmapped', 'node': None}
   {'name': 'dead', 'type': 'map', 'maj:min': '253:1', 'size': '64M', 'state': 'failing', 'node': '/dev/mapper/dead'}
     {'name': '8:48', 'type': 'path', 'maj:min': '8:48', 'size': None, 'state': 'lost', 'node': None}
     {'name': 'my data5', 'type': 'part', 'maj:min': '253:18', 'size': '8M', 'state': 'active', 'node': '/dev/mapper/my\\x20data5'}
  $ grep -E '"(my data5|dead|partition 3|8:48)"' messy.pairs
  NAME="partition 3" TYPE="part" MAJ_MIN="" SIZE="" STATE="unmapped" NODE=""
  NAME="dead" TYPE="map" MAJ_MIN="253:1" SIZE="64M" STATE="failing" NODE="/dev/mapper/dead"
  NAME="8:48" TYPE="path" MAJ_MIN="8:48" SIZE="" STATE="lost" NODE=""
  NAME="my data5" TYPE="part" MAJ_MIN="253:18" SIZE="8M" STATE="active" NODE="/dev/mapper/my\x5cx20data5"
  $ if type dot > dot.path 2>&1; then dot -Tsvg messy.dot | grep -c '<g id="node'; else echo 37; fi
  34

A name of any bytes leaves JSON, UTF-8 and the terminal whole:

  $ nrmpio-sim -- bash -c 'dmsetup rename mpathb "$(printf "a\33[31m\303\251\377\302\205\"\\")"; export LC_ALL=C.UTF-8
  > nrmpio show -no NAME,NODE /dev/dm-1 2> /dev/null | head -n 1; LC_ALL=C nrmpio show -no NAME /dev/dm-1 2>/dev/null | head -n 1
  > nrmpio show --json -o NAME /dev/dm-1 2> /dev/null | python3 -m json.tool | grep x1b
  > nrmpio show --pairs -o NAME /dev/dm-1 2> /dev/null | head -n 1; nrmpio show --dot -o NAME /dev/dm-1 2> /dev/null | grep x1b'
  a\\x1b[31m\xc3\xa9\\xff\\xc2\\x85"\\ /dev/mapper/a\\x1b\\x5b31m\\xc3\\xa9\\xff\\xc2\\x85\\x22\\x5c (esc)
  a\x1b[31m\xc3\xa9\xff\xc2\x85"\
              "name": "a\\x1b[31m\u00e9\\xff\\xc2\\x85\"\\",
  NAME="a\x1b[31m\xc3\xa9\xff\xc2\x85\x22\x5c"
    n0 [label="a\\\\x1b[31m\xc3\xa9\\\\xff\\\\xc2\\\\x85\\"\\\\"]; (esc)

Columns that there are not:

  $ nrmpio show --output NAME,colour
  nrmpio: there is no column colour; the columns are NAME, TYPE, MAJ:MIN, SIZE, STATE, NODE, OPEN, PARTN, START, SECTORS, QUEUE
  [64]
  $ nrmpio show --output name,Name
  nrmpio: the column NAME is chosen twice
  [64]
