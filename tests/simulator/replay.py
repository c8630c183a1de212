#!/usr/bin/env python3
"""Replays recorded commands in a simulated world and compares status, standard output and standard error.

Usage: replay.py SET        starts nrmpio-sim (on PATH) with a world equal to that of recordings/SET.jsonl
       replay.py --left-out  lists what is never replayed; fails when a reason stands for no command
Exit status: 0 when all that is not left out agrees.
"""
import fnmatch, json, os, re, subprocess, sys, tempfile, time

RECORDINGS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "recordings")

# ---- the worlds

# The disks of each set: the paths of mpatha, mpathb and mpathc, and the disk that is no path.
DISKS = {
    "full": "sdd sdf, sdc sde, sda sdg, sdb",
    "none": "sdd sdf, sdc sde, sda sdg, sdb",
    "nodm": "sdd sdf, sdc sde, sda sdg, sdb",
    "daemon": "sdd sdg, sdc sdf, sdb sde, sda",
    "auto": "sdc sdg, sdb sde, sda sdd, sdf",
    "autodaemon": "sdc sdg, sdb sdf, sda sde, sdd",
    "stuck": "sdd sdg, sdb sdf, sdc sde, sda",
    "stuckdaemon": "sdd sdg, sdb sdf, sdc sde, sda",
}
UNITS = [
    ("mpatha", "350000000000000a1", 'queue_if_no_path = true\ntable = """label: gpt\nstart=2048, size=16384\n'
     'start=18432, size=16384\nstart=34816, size=32768\n"""'),
    ("mpathb", "350000000000000b2", 'grouping = "multibus"'),
    ("mpathc", "350000000000000c3", 'table = """label: dos\nstart=2048, size=16384, type=83\n'
     'start=18432, size=65536, type=5\nstart=20480, size=16384, type=83\nstart=40960, size=16384, type=83\n"""'),
]
LINEAR = """
[[linear]]
name = "lin0"
device = "vda"
start = 65536
length = 32768
[[linear]]
name = "lin1"
device = "lin0"
start = 4096
length = 8192
"""
VDA_TABLE = 'table = """label: dos\nstart=2048, size=16384\nstart=18432, size=16384\n"""\n'


def scenario(name):
    """The world of a set, as a scenario."""
    bare = name in ("none", "nodm", "host")
    keys = {"daemon = true\nrestore_after = 2": "daemon" in name, "udev_partitions = true": name.startswith("auto"),
            "device_mapper = false": name in ("nodm", "host"),
            'missing_tools = ["multipath", "kpartx"]': name == "host"}
    text = "".join(key + "\n" for key, holds in keys.items() if holds)
    if name == "host":
        return text
    *paths, plain = DISKS[name].split(", ")
    for (alias, wwid, rest), disks in zip(UNITS, paths):
        text += f'[[lun]]\nalias = "{alias}"\nwwid = "{wwid}"\npaths = {json.dumps(disks.split())}\n{rest}\n'
        text += "mapped = false\n" if bare else ""
    text += f'[[disk]]\nname = "{plain}"\n[[disk]]\nname = "vda"\n'
    return text if bare else text + VDA_TABLE + LINEAR


# ---- what is done to a world between commands

TWO = "label: dos\\nstart=2048,size=16384\\nstart=18432,size=16384\\n"
TWELVE = "(echo label: gpt; for i in $(seq 12); do echo start=$((i*2048)),size=2048; done)"
STEPS_AT_STATE = [
    ("mpathb given 2 part", [f"printf '{TWO}' | sfdisk -q /dev/mapper/mpathb", "dmsetup rename mpathb data1"]),
    ("more than 9 part", [f"{TWELVE} | sfdisk -q /dev/mapper/mpathb"]),
    ("mpatha2 held", ["hold mpatha2"]),
    ("mpathb held", ["hold mpathb"]),
    ("a mounted part", ["simctl mount mpatha3 /mnt"]),
    ("queueing, all", ["dmsetup message mpatha 0 queue_if_no_path", "simctl path sdd offline",
                       "simctl path sdg offline", "read mpatha"]),
]
STEPS_BEFORE = {
    "dm_remove_part": ["release"], "mp_f_ok": ["release"], "kpartx_a_after_umount": ["simctl unmount mpatha3"],
    "q_back": ["release", "simctl path sdd running", "simctl path sdg running"],
}
STEPS_BEFORE_WITH_DAEMON = {
    "q_ll_after": ["sleep 2"],  # the daemon has restored the policy meanwhile
    "q_f_after": ["hold mpatha"],  # as the stuck kpartx did, which nobody could kill
}

# Parts of recorded commands that a world has another way for, or no need of.
REWRITTEN = [
    (r"udevadm settle;? *", ""),
    (r"echo (offline|running) > /sys/block/(\w+)/device/state", r"simctl path \2 \1"),
    (r"echo 1 > /sys/block/(\w+)/device/delete", r"simctl path \1 lost"),
    (r"for h in /sys/class/scsi_host.*?done; sleep 1;", "simctl path all running;"),
    (r"setpriv --reuid=\S+ --regid=\S+ --clear-groups", "NRMPIO_SIM_UNPRIVILEGED=1"),
    (r"timeout 10 kpartx", "timeout 2 kpartx"),
    (r"; sleep \d;", ";"),
    (r"/proc/\d+/", "/proc/$READER/"),
    (r"/tmp/dd.out", "$READER_OUTPUT"),
    (r'fail_if_no_path"; ', 'fail_if_no_path"; sleep 1; '),
]


class World:
    """The processes that use devices beside the replayed commands."""

    def __init__(self):
        self.held, self.readers = [], []
        os.environ["READER_OUTPUT"] = os.path.join(tempfile.gettempdir(), f"replay-reader-{os.getpid()}")

    def do(self, steps):
        for step in steps:
            verb, _, rest = step.partition(" ")
            if verb == "hold":
                self.held.append(os.open("/dev/mapper/" + rest, os.O_RDONLY | os.O_CLOEXEC))
            elif verb == "release":
                while self.held:
                    os.close(self.held.pop())
            elif verb == "sleep":
                time.sleep(float(rest))
            elif step.startswith("read "):
                self.read(rest)
            else:
                subprocess.run(step, shell=True, check=True, stdout=subprocess.DEVNULL)

    def read(self, mapping):
        # A child of its own: one that nobody has waited for would still be in /proc.
        script = f"dd if=/dev/mapper/{mapping} of=/dev/null bs=4096 count=1 iflag=direct 2> $READER_OUTPUT & echo $!"
        keeper = subprocess.Popen(["bash", "-c", script + "; wait"], stdout=subprocess.PIPE, text=True)
        os.environ["READER"] = keeper.stdout.readline().strip()
        self.readers.append(keeper)
        time.sleep(0.3)

    def close(self):
        self.do(["release"])
        for reader in self.readers:
            reader.terminate()
        if os.path.exists(os.environ["READER_OUTPUT"]):
            os.remove(os.environ["READER_OUTPUT"])


# ---- comparing

MASKS = [
    (re.compile(r"^\d+\.\d{6} \| ", re.M), "UPTIME | "),
    (re.compile(r"\b[A-Z][a-z]{2} [ \d]\d \d\d:\d\d\b"), "DATE"),
    (re.compile(r"copied, \S+ s, .*"), "copied"),
    (re.compile(r"/proc/\d+/"), "/proc/PID/"),
    (re.compile(r"State:\t.*"), "State: still there"),  # a kernel can make a process wait harder than we can
]
DISK_LINE = re.compile(r"^ +\d+ +\d+ +\d+ \S+\n", re.M)


def masked(text):
    for pattern, name in MASKS:
        text = pattern.sub(name, text)
    lines = DISK_LINE.findall(text)  # of /proc/partitions: the kernel lists disks as it finds them
    return DISK_LINE.sub("", text) + "".join(sorted(lines))


def run(command):
    for pattern, new in REWRITTEN:
        command = re.sub(pattern, new, command)
    done = subprocess.run(["sh", "-c", command], stdin=subprocess.DEVNULL, capture_output=True, timeout=60)
    return done.returncode, masked(done.stdout.decode("latin1")), masked(done.stderr.decode("latin1"))


def left_out():
    with open(os.path.join(RECORDINGS, "left_out.txt")) as file:
        return [line.rstrip("\n").split(": ", 1) for line in file if line.strip() and not line.startswith("#")]


def recorded(name):
    with open(os.path.join(RECORDINGS, name + ".jsonl")) as file:
        return [json.loads(line) for line in file]


def list_left_out():
    """True when every reason stands for a recorded command."""
    names = [f"{name}/{record['name']}" for name in [*DISKS, "host"] for record in recorded(name) if "name" in record]
    stale = False
    for pattern, reason in left_out():
        matches = fnmatch.filter(names, pattern)
        stale |= not matches
        print(f"{reason}:\n    {', '.join(matches) or pattern + ' IS NO RECORDED COMMAND'}")
    return not stale


def show(kind, wanted, got):
    print(f"    {kind}, wanted:\n{wanted}\n    {kind}, got:\n{got}")


def replay(name):
    """Runs inside the world. True when everything agrees."""
    records = recorded(name)
    reasons, world, same, out, wrong = left_out(), World(), 0, 0, 0
    for record in records:
        if "state" in record:
            world.do(["release"])
            for state, steps in STEPS_AT_STATE:
                world.do(steps if record["state"].startswith(state) else [])
            continue
        reason = next((why for pattern, why in reasons if fnmatch.fnmatch(f"{name}/{record['name']}", pattern)), None)
        if reason:
            print(f"left out: {record['name']}: {reason}")
            out += 1
            continue
        world.do(STEPS_BEFORE.get(record["name"], []))
        world.do(STEPS_BEFORE_WITH_DAEMON.get(record["name"], []) if "daemon" in name else [])
        got = run(record["command"])
        wanted = (record["status"], masked(record["stdout"]), masked(record["stderr"]))
        same += got == wanted
        if got != wanted:
            wrong += 1
            print(f"DIFFERS: {record['name']}: {record['command']}")
            for kind, a, b in zip(("status", "standard output", "standard error"), wanted, got):
                if a != b:
                    show(kind, a, b)
    world.close()
    print(f"{name}: {same} the same, {out} left out, {wrong} different")
    return wrong == 0 and same > 0


def main():
    if sys.argv[1] == "--left-out":
        return 0 if list_left_out() else 1
    if sys.argv[1] == "--in-world":
        return 0 if replay(sys.argv[2]) else 1
    with tempfile.NamedTemporaryFile("w", suffix=".toml") as file:
        file.write(scenario(sys.argv[1]))
        file.flush()
        return subprocess.run(["nrmpio-sim", "--scenario", file.name, "--", sys.executable, os.path.abspath(__file__),
                               "--in-world", sys.argv[1]]).returncode


if __name__ == "__main__":
    sys.exit(main())
