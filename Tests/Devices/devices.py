"""Servers and renderers of others against the library: devices.py ROOT FOLDER, in a network namespace."""

import json
import os
import re
import signal
import subprocess
import sys
import time
from collections import Counter
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path
from typing import Any

import controlpoint
import didl
import gupnp
import media
import upnp

ROOT, FOLDER = Path(sys.argv[1]), Path(sys.argv[2])
PROGRAMS = {  # by what they are called on the network
    "minidlna": f"minidlnad -S -i dev0 -f {FOLDER}/minidlna.conf -P {FOLDER}/minidlna.pid",
    "gerbera": f"gerbera -e dev0 -c {FOLDER}/gerbera.xml --add {FOLDER}/media",
    "rygel": "dbus-run-session rygel -n dev0 -d Playbin",
    "playbin": "dbus-run-session rygel -n dev0 -d MediaExport",
    "gmediarender": "gmediarender -f gmediarender -I dev0 --gstout-audiopipe 'fakesink sync=true' "
                    "--gstout-videopipe 'fakesink sync=true'",
}
GERBERA, RYGEL, GMEDIARENDER = "gerbera 1.1.0", "Rygel 0.42.1", "gmediarender 0.1"
CONVERTED = f"{RYGEL} offers a converted resource that does not play"  # the original has to play
CRASHED = f"{RYGEL} crashes or hangs, and plays the same once it is started again"
FAULTS = {  # that are known, and what is said then: who does it, and for a renderer also what it plays of whom
    f"{GERBERA} refuses Search": rf"{GERBERA}: Search: 501 Action Failed$",
    f"{GMEDIARENDER} ends a picture at once": rf"{GMEDIARENDER} plays .*:image/.*: (Play: 501 |.* not begin|.* is not '')",
    CONVERTED: rf".* plays of {RYGEL}: .*DLNA.ORG_CI=1",
    CRASHED: rf"{RYGEL} plays of ",
}
LEAST = {"objects": 3000, "fields": 30000, "texts written": 3000, "plays": 60, "uploads": 3, "descriptions": 6}
FILTERS = ["dc:title", "dc:title,upnp:albumArtURI,res,res@duration,res@size,@childCount"]
SEARCHES = ['upnp:class derivedfrom "object.item.audioItem"', 'dc:title contains "&"',
            'upnp:class derivedfrom "object.item.videoItem" and @refID exists false']
AGENTS = [  # of clients whom servers answer in ways of their own
    "", "DLNADOC/1.50 SEC_HHP_[TV]UE40D7000/1.0", "Xbox/2.0.4552.0 UPnP/1.0 Xbox/2.0.4552.0",
    "PLAYSTATION 3 UPnP/1.0 DLNADOC/1.50", "Panasonic MIL DLNA CP UPnP/1.0 DLNADOC/1.50",
    "Microsoft-Windows/6.1 UPnP/1.0 Windows-Media-Player/12.0", "FDSSDP LGE_DLNA_SDK/1.6.0 DLNADOC/1.50",
]
UPLOADS = {"a.mp3": ("audioItem.musicTrack", "audio/mpeg"), "v.mp4": ("videoItem", "video/mp4"),
           "p.jpg": ("imageItem.photo", "image/jpeg")}
CLIENTS = [  # of descriptions, and devices
    ("ContentDirectory", ""), ("ContentDirectory", "--user-agent=Xbox/2.0.4552.0"),
    ("ContentDirectory", "--feature=Search --feature=Upload --feature=UpdateObject --feature=GetFeatureList "
                         "--feature=MSRegistrar"),
    ("AVTransport", ""), ("AVTransport", "--feature=NoSetNextURI"),
    ("AVTransport", "--feature=TimeSeek --feature=ByteSeek --property=PlayModeList=SHUFFLE,REPEAT_ALL"),
]

counts, faults, model = Counter[str](), Counter[str](), didl.Model()
processes: dict[str, subprocess.Popen[bytes]] = {}


def check(what: str, expected: Any, actual: Any) -> None:
    for difference in didl.differences(expected, actual):
        counts["unexplained differences"] += 1
        print(f"WRONG: {what}: {difference}"[:1000], flush=True)


def explain(what: str) -> str:
    """Counts and returns the known fault of a device that was noticed; any other is wrong."""
    fault = next((fault for fault, pattern in FAULTS.items() if re.match(pattern, what)), "unknown")
    check(what, True, fault != "unknown")
    faults[fault] += 1
    return fault


def run(*arguments: str, file: bytes = b"") -> str:
    done = subprocess.run(["build/run/bin/upnputil", *arguments], cwd=ROOT, input=file, capture_output=True)
    check(f"upnputil {arguments[0]}: {done.stderr!r}", True, done.returncode in (0, 1))
    return done.stdout.decode()


def run_for_each(file: bytes, *arguments: str) -> list[didl.Object]:
    return [json.loads(line) for line in run(*arguments, "-", "--json-lines", file=file).splitlines()]


def start(name: str) -> None:
    processes[name] = subprocess.Popen(f"{PROGRAMS[name]} </dev/null >/dev/null 2>&1", shell=True, start_new_session=True)


def ask(server: upnp.Device, of: str, agent: str = "", filter: str = "*", **how: str) -> bytes:
    """Browses the children of a container, all of them, or browses and searches as the arguments in how say."""
    how = how or {"BrowseFlag": "BrowseDirectChildren"}
    action = "Search" if "SearchCriteria" in how else "Browse"
    is_container = action == "Search" or (server.model == RYGEL and "Xbox" in agent)  # as clients do
    how["ContainerID" if is_container else "ObjectID"] = of
    return upnp.call(server.service("ContentDirectory"), action, agent, **how, Filter=filter, SortCriteria="",
                     StartingIndex=0, RequestedCount=0)


def walk(server: upnp.Device, agent: str, limit: int) -> list[tuple[str, bytes, list[Any]]]:
    """The first containers, breadth first, each with the answer that lists its children, and the children."""
    waiting, answers = ["0"], []
    for container in waiting:
        answer = ask(server, container, agent)
        answers.append((container, answer, controlpoint.read(answer)))
        waiting += [each.id for each in answers[-1][2] if each.is_container][:limit - len(waiting)]
    return answers


def find_servers() -> list[upnp.Device]:
    """The servers, once they have indexed the folder of many, and no number of children changes any more."""
    servers, sizes, before = list[upnp.Device](), list[list[int]](), list[list[int]]()
    while len(servers) < 3 or sizes != before or any(max(each) < media.MANY for each in sizes):
        servers = upnp.discover(upnp.SERVER)
        before, sizes = sizes, [[len(found) for _, _, found in walk(server, "", 40)] for server in servers]
    return servers


def find_renderer(name: str) -> upnp.Device:
    """The renderer of that name, once it answers."""
    while True:
        for each in upnp.discover(upnp.RENDERER):
            if each.name == name:
                return each


def check_server(server: upnp.Device) -> None:
    """Checks what the server answers to each client."""
    for agent in AGENTS:
        for container, answer, found in walk(server, agent, 6 if agent else 12):
            check_answer(server, f"{agent[:20]!r}: children of {container}", answer)
            for filter in FILTERS if not agent else []:
                check_answer(server, f"{filter} of {container}", ask(server, container, filter=filter))
            for each in found[:6] if not agent else []:
                check_answer(server, f"metadata of {each.id}", ask(server, each.id, BrowseFlag="BrowseMetadata"))
    for criteria in SEARCHES:
        try:
            check_answer(server, criteria, ask(server, "0", SearchCriteria=criteria))
        except upnp.DeviceError as error:
            explain(f"{server.model}: {error}")


def check_answer(server: upnp.Device, what: str, answer: bytes) -> None:
    """Every field of every object as lxml reads it, and what is written of each for a renderer that plays all."""
    expected = model.objects(upnp.unescape(upnp.values(answer, "Result")[0]))
    shown = run_for_each(answer, "show")
    selected = run_for_each(answer, "select", "--sink", "http-get:*:*:*")
    check(f"{server.name}: {what}: numbers of objects", [len(expected)] * 2, [len(shown), len(selected)])
    for one, other, choice in zip(expected, shown, selected):
        name = f'{server.name}: {what}: {one["id"]}'
        check(name, one, other)
        assert didl.differences(one, other | {"title": "other"}), "a difference is not seen"
        if text := choice.get("didlLite"):
            check(f"{name} written", model.written(one, choice.get("uri")), didl.fields(text))
            check(f"{name} written, read by gupnp-av", *gupnp.read(text))
    counts.update({"answers": 1, "objects": len(shown), f"objects of {server.model}": len(shown),
                   "fields": len(didl.flat(expected)), "texts written": sum("didlLite" in each for each in selected)})


def playable(server: upnp.Device) -> list[Any]:
    """Of each type two objects, and one whose title cannot be sent as it is; none that ends at once."""
    kinds: dict[tuple[str, bool], dict[str, Any]] = {}
    for each in (each for _, _, found in walk(server, "", 40) for each in found):
        is_broken = bool(re.search("[\0-\x1f\ufffd-\uffff]", each.title))
        if any(one.duration or one.resolution for one in each.resources):
            kinds.setdefault((each.resources[0].mime_type, is_broken), {})[each.title] = each
    return [each for (_, is_broken), titles in kinds.items() for each in list(titles.values())[:2 - is_broken]]


def check_renderer(name: str, items: list[tuple[upnp.Device, Any]]) -> None:
    """Plays items of servers; one more attempt after a known fault, with the original, and a player that works."""
    renderer = find_renderer(name)
    for server, found in items:
        for attempt in range(3):
            fault = play(renderer, server, found.id, attempt > 0)
            if fault == CRASHED:
                os.killpg(processes[name].pid, signal.SIGKILL)
                start(name)
                renderer = find_renderer(name)
            elif fault != CONVERTED:
                break
        else:
            check(f"{name}: {server.name}: {found.title!r}, three attempts", "", fault)


def play(renderer: upnp.Device, server: upnp.Device, object_id: str, prefers_originals: bool) -> str:
    """Plays an object as the example does, and asks the renderer what it plays; returns the fault that prevents it."""
    what = f"{renderer.model} plays of {server.model}"
    try:
        found = controlpoint.fetch(server, object_id)
        choice = found.choose(controlpoint.sink(renderer), prefer_originals=prefers_originals)
        assert choice
        uri, text = choice.resource.uri, found.metadata(choice.resource)
        what += f": {choice.resource.protocol_info}"
        controlpoint.start(renderer, uri, text)
        patience = 2 if GMEDIARENDER in what and ":image/" in what else 20
        next(now for now in controlpoint.watch(renderer, 0.1, patience) if now.state == "PLAYING")
        for action, place in (("GetMediaInfo", "CurrentURI"), ("GetPositionInfo", "TrackURI")):
            answer = controlpoint.control(renderer, action)
            if (actual := upnp.text(answer, place)) != uri:
                raise upnp.DeviceError(f"{uri} is not {actual!r}")
            check_metadata(renderer.model, text, upnp.text(answer, place.replace("TrackURI", "Track") + "MetaData"))
        controlpoint.control(renderer, "Stop")
    except upnp.DeviceError as error:
        return explain(f"{what}: {error}")
    counts.update(["plays", f"plays at {renderer.model}"])
    return ""


def check_metadata(renderer: str, sent: str, back: str) -> None:
    """The metadata as it was sent, but for what a renderer is known to do to it."""
    if renderer == RYGEL and back == upnp.unescape(sent.encode()).decode() != sent:
        faults[f"{RYGEL} gives metadata with a level of references too few"] += 1
    elif renderer == GMEDIARENDER and back not in ("", sent):
        changed = didl.differences(*(didl.Model().objects(text.encode()) for text in (sent, back)))
        check(renderer, [], [each for each in changed if not re.match("/0/(id|title|creator|album|genre|extras/.*): ", each)])
        faults[f"{GMEDIARENDER} gives metadata with tags of the stream and an ID of its own"] += 1
    else:
        check(renderer, sent, back)


def check_upload(server: upnp.Device, file: str, kind: str, mime: str) -> None:
    """Creates an item, uploads a file to where the server says, and finds and fetches it there."""
    content, title, container = (FOLDER / "bases" / file).read_bytes(), f'Up & <"{file}"> ü 日本', "DLNA.ORG_AnyContainer"
    elements = run("create", "item", "--parent", container, "--title", title, "--class", f"object.item.{kind}",
                   "--protocol-info", f"http-get:*:{mime}:*", "--length", str(len(content)))
    check("Elements, read by gupnp-av", *gupnp.read(elements))
    answer = upnp.call(server.service("ContentDirectory"), "CreateObject", ContainerID=container, Elements=elements)
    check_answer(server, "CreateObject", answer)
    [created] = run_for_each(answer, "show")
    check(f"{server.name}: CreateObject", title, created["title"])
    targets = [each["importUri"] for each in created["resources"] if "importUri" in each]
    upnp.fetch("POST", targets[0], content, {"Content-Type": mime})
    for _ in range(40):
        found = controlpoint.fetch(server, created["id"])
        uris = [each.uri for each in found.resources if each.size == len(content) and each.uri]
        if uris and upnp.fetch("GET", uris[0]) == (200, content):
            counts["uploads"] += 1
            return
        time.sleep(0.5)


def describe(template: str, *options: str) -> str:
    """The description that is made of a template of the examples with the parts that their page names."""
    page = (ROOT / "Examples/README.md").read_text()
    parts = re.findall(r"--part (\S+)", page.split(f"Examples/{template}/template.xml")[1].split("```")[0])
    return run("describe", f"Examples/{template}/template.xml", *(f"--part={part}" for part in parts), *options)


def check_description(template: str, *options: str) -> None:
    """What describe writes for a device and a client is served, and gupnp finds a state variable for each argument."""
    folder = FOLDER / f'description{counts["descriptions"]}'
    folder.mkdir()
    device, written = describe("MediaServer", "--device", *options), describe(template, *options)
    (folder / "description.xml").write_text(device.replace("ContentDirectory", template))
    (folder / f"{template}.xml").write_text(written)
    expected = {action.findtext("{*}name"): {each.findtext("{*}name"): each.findtext("{*}relatedStateVariable")
                                             for each in action.iter("{*}argument")}
                for action in didl.parse(written).iter("{*}action")}
    seen = gupnp.introspect(folder, f"urn:schemas-upnp-org:service:{template}:1", 8300 + counts["descriptions"])
    check(f"{template} {options}, read by gupnp", expected, seen)
    counts.update({"arguments of actions": sum(map(len, seen.values())), "descriptions": 1})


def main() -> int:
    began = time.monotonic()
    print(f"{media.make(FOLDER)} files of media", flush=True)
    for name in PROGRAMS:
        start(name)
    servers = find_servers()
    for server in servers:
        check_server(server)
    items = [(server, found) for server in servers for found in playable(server)]
    with ThreadPoolExecutor() as pool:
        list(pool.map(check_renderer, ("gmediarender", "playbin"), (items, items)))
    for file, (kind, mime) in UPLOADS.items():
        check_upload(servers[-1], file, kind, mime)
    for template, options in CLIENTS:
        check_description(template, *options.split())
    for name, least in LEAST.items():
        check(f"{counts[name]} {name}", True, counts[name] >= least)
    for title, made in (("Counts", counts), ("What the library changes", model.rules), ("Known faults of devices", faults)):
        print(f"{title}:", *(f"  {count:7}  {name}" for name, count in sorted(made.items()) if count), sep="\n")
    print(f'{time.monotonic() - began:.0f} s, {counts["unexplained differences"]} unexplained differences')
    return 1 if counts["unexplained differences"] else 0


if __name__ == "__main__":
    sys.exit(main())
