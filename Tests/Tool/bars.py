#!/usr/bin/env python3
"""Checks what upnputil takes for large Browse answers, made of real servers' objects: bars.py TOOL REPOSITORY SECONDS.

At most 5 times their text of memory, and SECONDS of processor time for select among 1,000 objects.
"""
import html
import os
import pathlib
import re
import subprocess
import sys
import tempfile

TOOL, ROOT, SECONDS = sys.argv[1], pathlib.Path(sys.argv[2]), float(sys.argv[3])
SIZE = 10_000_000
PROGRAM = 6_000_000  # bytes that the program takes without a document
SINKS = ROOT / "Tests/Data/sinks/handmade-dlna-tv.txt"


def usage(*arguments):
    """Runs the tool; returns the resources it took."""
    with subprocess.Popen([TOOL, *map(str, arguments)], stdout=subprocess.DEVNULL) as process:
        _, status, used = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
    assert process.returncode == 0, arguments
    return used


def write(file, parts, wrap, repetitions):
    """Writes an answer with the objects of a document again and again; returns its size."""
    if wrap:
        parts = [html.escape(part) for part in parts]
        parts[0], parts[2] = "<BrowseResponse><Result>" + parts[0], parts[2] + "</Result></BrowseResponse>"
    start, objects, end = [part.encode() for part in parts]
    file.write(start)
    for _ in range(repetitions or SIZE // len(objects)):
        file.write(objects)
    file.write(end)
    file.flush()
    return os.path.getsize(file.name)


def main():
    """Checks each document, as a Result and in the answer around it."""
    documents = sorted((ROOT / "Tests/Data/didl-multi").glob("*.xml"))
    assert documents
    for document in documents:
        parts = re.fullmatch("(.*?<DIDL-Lite.*?>)(.*)(</DIDL-Lite>.*)", document.read_text(), re.S).groups()
        for wrap in False, True:
            with tempfile.NamedTemporaryFile(suffix=".xml") as file:
                size = write(file, parts, wrap, 0)
                for command in ["show", file.name, "--json"], ["select", file.name, "--sink-file", SINKS]:
                    memory = usage(*command).ru_maxrss * 1024
                    print(f"{document.name} {command[0]}: {(memory - PROGRAM) / size:.1f} times {size} bytes")
                    assert memory <= PROGRAM + 5 * size
        with tempfile.NamedTemporaryFile(suffix=".xml") as file:
            write(file, parts, True, 1000 // len(re.findall("<item", parts[1])))
            seconds = min(usage("select", file.name, "--sink-file", SINKS).ru_utime for _ in range(3))
            print(f"{document.name}: {seconds} s for 1,000 objects")
            assert seconds <= SECONDS


main()
