#!/usr/bin/env python3
"""Checks what upnputil takes for large Browse answers, made of real servers' objects: tool.py TOOL REPOSITORY SECONDS.

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
SELECT = ["--sink-file", ROOT / "Tests/Data/sinks/handmade-dlna-tv.txt"]


def usage(parts, repetitions, command, *options):
    """Runs the tool over a start, objects again and again, and an end; returns their size and the resources it took."""
    start, objects, end = [part.encode() for part in parts]
    with tempfile.NamedTemporaryFile() as file:
        file.write(start)
        for _ in range(repetitions or SIZE // len(objects)):  # a large text would count as memory of the tool
            file.write(objects)
        file.write(end)
        file.flush()
        with subprocess.Popen([TOOL, command, file.name, *options], stdout=subprocess.DEVNULL) as process:
            _, status, used = os.wait4(process.pid, 0)
            process.returncode = os.waitstatus_to_exitcode(status)
        assert process.returncode == 0, command
        return os.path.getsize(file.name), used


documents = sorted((ROOT / "Tests/Data/didl-multi").glob("*.xml"))
assert documents
for document in documents:
    result = re.fullmatch("(.*?<DIDL-Lite.*?>)(.*)(</DIDL-Lite>.*)", document.read_text(), re.S).groups()
    start, objects, end = map(html.escape, result)
    response = "<BrowseResponse><Result>" + start, objects, end + "</Result></BrowseResponse>"
    for parts in result, response:
        for command in ["show", "--json"], ["select", *SELECT]:
            size, used = usage(parts, 0, *command)
            print(f"{document.name} {command[0]}: {(used.ru_maxrss * 1024 - PROGRAM) / size:.1f} times {size} bytes")
            assert used.ru_maxrss * 1024 <= PROGRAM + 5 * size
    repetitions = 1000 // len(re.findall("<item", result[1]))
    seconds = min(usage(response, repetitions, "select", *SELECT)[1].ru_utime for _ in range(3))
    print(f"{document.name}: {seconds} s for 1,000 objects")
    assert seconds <= SECONDS
