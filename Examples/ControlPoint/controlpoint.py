#!/usr/bin/env python3
"""Finds the media servers and renderers of the network, and plays what is on the one on the other.

  controlpoint.py                              lists servers and renderers
  controlpoint.py SERVER [ID]                  lists what is in a container
  controlpoint.py SERVER ID RENDERER           plays an object, or the objects of a container one after the other
  controlpoint.py SERVER ID RENDERER --choose  says what would be played, and plays nothing

SERVER and RENDERER are names as listed, or how they begin. Ctrl-C stops the renderer.
"""

import argparse
import os
import sys
import time
from collections.abc import Iterator
from typing import NamedTuple

import upnp

sys.path.insert(0, os.path.join(os.path.dirname(os.path.realpath(__file__)), "..", "Python"))
try:
    import upnputilities
except OSError as error:
    sys.exit(f"{sys.argv[0]}: the library is missing; README.md says how to build and name it: {error}")


class Position(NamedTuple):
    state: str
    seconds: float
    duration: float  # 0 when it is not known


def read(answer: bytes) -> list[upnputilities.MediaObject]:
    """The objects of an answer to Browse or Search."""
    try:
        return list(upnputilities.browse(upnp.unescape(upnp.values(answer, "Result")[0])))
    except (upnputilities.DIDLError, IndexError) as error:
        raise upnp.DeviceError(f"the server's answer cannot be read: {error}") from error


def number(answer: bytes, name: str) -> int:
    """A number in an answer; 0 when it is not one."""
    return int(digits) if (digits := upnp.text(answer, name)).isdecimal() and len(digits) <= 10 else 0


def browse(server: upnp.Device, container: str) -> Iterator[upnputilities.MediaObject]:
    """The objects in a container, page by page."""
    start, total = 0, 1
    while start < total:
        answer = upnp.call(server.service("ContentDirectory"), "Browse", ObjectID=container, Filter="*", SortCriteria="",
                           BrowseFlag="BrowseDirectChildren", StartingIndex=start, RequestedCount=200)
        objects = read(answer)
        yield from objects
        returned = max(len(objects), number(answer, "NumberReturned"))  # which counts invalid objects, too
        start, total = start + returned, number(answer, "TotalMatches") if returned else 0


def fetch(server: upnp.Device, object_id: str) -> upnputilities.MediaObject:
    """One object with all that the server knows of it."""
    answer = upnp.call(server.service("ContentDirectory"), "Browse", ObjectID=object_id, Filter="*", SortCriteria="",
                       BrowseFlag="BrowseMetadata", StartingIndex=0, RequestedCount=0)
    if objects := read(answer):
        return objects[0]
    raise upnp.DeviceError(f"{server.name} has no object {object_id}")


def sink(renderer: upnp.Device) -> str:
    """What the renderer plays: its protocol infos, separated by commas."""
    return upnp.text(upnp.call(renderer.service("ConnectionManager"), "GetProtocolInfo"), "Sink")


def control(renderer: upnp.Device, action: str, **arguments: str) -> bytes:
    return upnp.call(renderer.service("AVTransport"), action, InstanceID=0, **arguments)


def start(renderer: upnp.Device, uri: str, metadata: str) -> None:
    control(renderer, "SetAVTransportURI", CurrentURI=uri, CurrentURIMetaData=metadata)
    control(renderer, "Play", Speed="1")


def position(renderer: upnp.Device) -> Position:
    state, answer = control(renderer, "GetTransportInfo"), control(renderer, "GetPositionInfo")
    return Position(upnp.text(state, "CurrentTransportState"), seconds(upnp.text(answer, "RelTime")),
                    seconds(upnp.text(answer, "TrackDuration")))


def watch(renderer: upnp.Device, pause: float = 0.25, patience: float = 10) -> Iterator[Position]:
    """Positions until the renderer has stopped; gives up when it has not begun after some seconds of patience."""
    has_begun, end = False, time.monotonic() + patience
    while True:
        now = position(renderer)
        has_begun = has_begun or now.state == "PLAYING"
        yield now
        if has_begun and now.state in ("STOPPED", "NO_MEDIA_PRESENT"):
            return
        if not has_begun and time.monotonic() > end:
            raise upnp.DeviceError(f"{renderer.name} does not begin to play; its state is {now.state or 'unknown'}")
        time.sleep(pause)


def seconds(time_text: str) -> float:
    """The seconds of a time such as 0:03:35.500; 0 when it is not one, such as NOT_IMPLEMENTED."""
    try:
        hours, minutes, rest = time_text.split(":")
        return int(hours) * 3600 + int(minutes) * 60 + float(rest)
    except (OverflowError, ValueError):
        return 0


def find(target: str, name: str) -> upnp.Device:
    """The device of that name, or the only one whose name begins so."""
    devices = upnp.discover(target)
    found = ([device for device in devices if device.name == name]
             or [device for device in devices if device.name.lower().startswith(name.lower())])
    if len(found) == 1:
        return found[0]
    names = ", ".join(device.name for device in found or devices) or "none"
    raise upnp.DeviceError(f'{"several are" if found else "nothing is"} called "{name}"; there are: {names}')


def shown(text: str) -> str:
    """A text of a device without what would do something to a terminal: control and direction characters."""
    return "".join(character if character.isprintable() else f"\\u{ord(character):04x}" for character in text)


def play(renderer: upnp.Device, found: upnputilities.MediaObject, only_choose: bool) -> None:
    """Plays one object, with a line of progress; says so when the renderer plays none of its resources."""
    if (choice := found.choose(sink(renderer), renderer.address)) is None:
        print(shown(f"{found.title}: {renderer.name} plays none of its {len(found.resources)} resources"))
        return
    resource = choice.resource
    print(shown(f"{found.title}: {resource.mime_type} ({choice.confidence.name}), {resource.uri}"))
    if only_choose:
        return
    start(renderer, resource.uri, found.metadata(resource))
    try:
        for now in watch(renderer):
            if sys.stdout.isatty():
                print(f"\r  {shown(now.state.lower()):14} {now.seconds:6.1f} of {now.duration:.1f} s ", end="", flush=True)
        print("\r  played to the end\033[K" if sys.stdout.isatty() else "  played to the end")
    except KeyboardInterrupt:
        control(renderer, "Stop")
        raise


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("server", nargs="?", metavar="SERVER")
    parser.add_argument("id", nargs="?", default="0", metavar="ID")
    parser.add_argument("renderer", nargs="?", metavar="RENDERER")
    parser.add_argument("--choose", action="store_true")
    options = parser.parse_args()
    if options.server is None:
        for title, target in (("Servers", upnp.SERVER), ("Renderers", upnp.RENDERER)):
            print(f"{title}:", *(shown(f"  {device.name} ({device.model})") for device in upnp.discover(target)), sep="\n")
        return
    server = find(upnp.SERVER, options.server)
    if options.renderer is None:
        for each in browse(server, options.id):
            kind = "folder" if each.is_container else each.media_class.split(".")[-1]
            print(shown(f"{kind:12} {each.id:20} {each.title}"))
        return
    renderer = find(upnp.RENDERER, options.renderer)
    found = fetch(server, options.id)
    for each in browse(server, found.id) if found.is_container else [found]:
        if not each.is_container:
            play(renderer, each, options.choose)


if __name__ == "__main__":
    try:
        main()
    except (KeyboardInterrupt, BrokenPipeError):
        os._exit(130)  # nobody reads what would still be printed
    except (upnp.DeviceError, OSError) as error:
        sys.exit(shown(f"{sys.argv[0]}: {error}"))
