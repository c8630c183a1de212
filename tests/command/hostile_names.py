#!/usr/bin/env python3
"""Gives nrmpio names that would do harm if a shell read them; run it within nrmpio-sim.

A name that is refused must be so before anything runs, with status 64 and one line; of one that is
accepted each traced command line must hold it as a shell reads it back. Names that device-mapper
has are met through their nodes dm-N. Every name would leave a file behind if it reached a shell.
"""
import concurrent.futures
import os
import re
import subprocess
import sys
import tempfile

PAYLOADS = [";touch canary", "&touch canary&", "|touch canary", "\ntouch canary\n", "$(touch canary)",
            "`touch canary`", ">canary", ">>canary", "<canary", "${IFS}touch", "&&touch\tcanary", "||touch canary",
            "'\ntouch canary\n'", '";touch canary;"', "\\\ntouch canary", ")touch canary", "(touch canary)",
            "{touch,canary}", "!touch", "$((1))", "$HOME", "$'\\x41'", "#", "*", "?", "[a-z]", "~", "%s%n", "^a", ",",
            "'", '"', "\\", "\\x20", "''", '""', " ", "\t", "\r", "\v", " -F", "$", "$$", "<(touch canary)"]
BYTES = [bytes([byte]) for byte in [*range(1, 32), 127, *range(128, 256, 5)]]
TEXTS = ["ä", "；", "\u2028", "\u202e", "\ufeff", "＄(touch canary)"]
OPTIONS = ["-", "--", "-F", "-f", "-j", "--force", "-a", "--help", "--version", "-C/tmp", "/dev/mapper/-F", "../-rf", "-1"]
LONG = ["a" * 1024, "a" * 4096, "/dev/mapper/" + "a" * 100000, "/a" * 600, "/dev/mapper/" + "../" * 500 + "mpatha"]

ACCEPTED = ["..", "../mpatha", "/dev/mapper/..", "/dev/mapper/../sda", "/dev/mapper/../../etc/passwd", ".", "./mpatha",
            "/dev//mapper/mpatha", "/dev/mapper/./mpatha", "mpatha=1", "a=b", "x@y", "mpatha:", "=", ":", "@", "+", "_",
            "mpatha.", "a-", "x1", "a" * 255, "a" * 1023, "/", "//", "/dev/mapper/", "mpatha/", "/dev/mapper/mpatha/x"]

COMMANDS = [["is-multipath"], ["show"], ["paths"], ["delete", "--dry-run"], ["partitions", "--kpartx", "--dry-run"]]


def hostile():
    bases = [b"/dev/mapper/mpatha", b"mpatha"]
    for payload in PAYLOADS + TEXTS:
        piece = payload.encode()
        yield piece
        for base in bases:
            for position in (len(base) // 2, len(base)):
                yield base[:position] + piece + base[position:]
    for number, byte in enumerate(BYTES):
        base = bases[number % 2]
        yield base[:number % len(base)] + byte + base[number % len(base):]
    yield b""
    yield from (text.encode() for text in OPTIONS + LONG)


def run(arguments):
    return subprocess.run(["nrmpio", *arguments], stdin=subprocess.DEVNULL, capture_output=True, check=False)


def refused(name, commands):
    for command in commands:
        result = run([*command, "--trace", "--", name])
        if result.returncode != 64 or result.stdout or not re.fullmatch(rb"nrmpio: [^\n]*\n", result.stderr):
            yield f"{command} {name!r}: status {result.returncode}: {result.stderr!r}"


def traced(stderr):
    return re.findall(rb"^nrmpio: status \d+ after \d+ ms: (.*)$", stderr, re.MULTILINE)


def readBack(line):
    """The words of a simple command, as a shell reads them."""
    words = subprocess.run(["sh", "-c", b"printf '%s\\0' " + line], capture_output=True, check=True).stdout
    return words.split(b"\0")[:-1]


def accepted(name, _):
    for command in COMMANDS:
        result = run([*command, "--trace", "--", name])
        if result.returncode not in (0, 1, 2):
            yield f"{command} {name!r}: status {result.returncode}: {result.stderr!r}"
        for line in traced(result.stderr):
            if name in line and b"|" not in line and name not in readBack(line.replace(b"\\n", b"")):
                yield f"{command} {name!r}: {line!r} is read differently"


def mapped(name):
    """The commands that could pass on the name of the map with the node /dev/dm-1."""
    with concurrent.futures.ThreadPoolExecutor() as pool:
        commands = (["show"], ["paths", "/dev/dm-1"], ["delete-partitions", "--yes", "/dev/dm-1"])
        for command, result in zip(commands, pool.map(run, commands)):
            if result.returncode not in ((2,) if command[0] == "show" else (0, 2, 64)):
                yield f"{command} with a map {name!r}: status {result.returncode}: {result.stderr!r}"


def renamedMaps(names):
    """One map gets one name after the other."""
    for old, new in zip(["mpathb", *names], [*names, "mpathb"]):
        subprocess.run(["dmsetup", "rename", old, new], check=True)
        if new != "mpathb":
            yield from mapped(new)


def main():
    names = list(dict.fromkeys(hostile()))
    before = subprocess.check_output(["dmsetup", "table"])
    with tempfile.TemporaryDirectory() as directory:
        os.chdir(directory)
        # All commands for some of them; otherwise one after the other.
        cases = [(refused, name, COMMANDS if i % 10 == 0 else [COMMANDS[i % 5]]) for i, name in enumerate(names)]
        cases += [(accepted, name.encode(), None) for name in ACCEPTED]
        with concurrent.futures.ThreadPoolExecutor(max_workers=os.cpu_count()) as pool:
            faults = [fault for found in pool.map(lambda case: list(case[0](*case[1:])), cases) for fault in found]
        # What looks escaped already is no name of its own.
        faults += renamedMaps([payload for payload in PAYLOADS if not any(c in payload for c in "\n\\/")])
        faults += [f"{left} was left behind" for left in os.listdir(directory)]
        os.chdir("/")
    after = subprocess.check_output(["dmsetup", "table"])
    if after != before:
        faults.append(f"the world has changed from {before} to {after}")
    print("\n".join(faults[:40]))
    print(f"{len(names)} hostile and {len(ACCEPTED)} odd names, {len(faults)} faults")
    return 1 if faults or len(names) < 200 else 0


sys.exit(main())
