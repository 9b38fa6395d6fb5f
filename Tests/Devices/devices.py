"""Servers and renderers of others against the library: devices.py ROOT FOLDER, in a network namespace."""

import contextlib
import json
import re
import subprocess
import sys
import threading
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
SERVERS, RENDERERS = ("minidlna", "gerbera", "rygel"), ("gmediarender", "playbin")
PROGRAMS = {  # by what they are called on the network
    "minidlna": f"minidlnad -S -i dev0 -f {FOLDER}/minidlna.conf -P {FOLDER}/minidlna.pid",
    "gerbera": f"gerbera -e dev0 -c {FOLDER}/gerbera.xml --add {FOLDER}/media",
    "rygel": "dbus-run-session rygel -n dev0 -d Playbin",
    "playbin": "dbus-run-session rygel -n dev0 -d MediaExport",
    "gmediarender": "gmediarender -f gmediarender -I dev0 --gstout-audiopipe 'fakesink sync=true' "
                    "--gstout-videopipe 'fakesink sync=true'",
}
GERBERA, RYGEL, GMEDIARENDER = "gerbera 1.1.0", "Rygel 0.42.1", "gmediarender 0.1"
CRASHED = "{} crashes or does not answer"  # but does what it was asked once it is started again
STUCK = "{} does not begin to play, or ends too soon"  # but plays the same once it is started again
FAULTS = {  # that are known, of whom, and what is said then
    CRASHED: r".*\bhttp://\S+: ",
    "{} refuses Search": rf"{GERBERA}: Search: 501 Action Failed$",
    "{} ends a picture at once": rf"{GMEDIARENDER}: plays .*:image/.*: (Play: 501 |.* not begin|.* is not '')",
    f"{RYGEL} offers a converted resource that does not play": rf".*: plays of {RYGEL}: .*DLNA.ORG_CI=1",
    STUCK: r".*: plays .*: (SetAVTransportURI: 716 |Play: 701 |.* not begin|.* is not '')",
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


def check(what: str, expected: Any, actual: Any) -> None:
    for difference in didl.differences(expected, actual):
        counts["unexplained differences"] += 1
        print(f"WRONG: {what}: {difference}"[:1000], flush=True)


class Program:
    """A device of others. Whoever notices first that it crashes or hangs starts it again."""

    def __init__(self, name: str) -> None:
        self.name, self.is_server, self.starts, self.lock = name, name in SERVERS, iter(range(10)), threading.Lock()
        self.device = self.start()

    def start(self) -> upnp.Device:
        """Starts it, again when it is not found."""
        for _ in self.starts:
            command = f"{PROGRAMS[self.name]} </dev/null >/dev/null 2>&1"
            self.process = subprocess.Popen(command, shell=True, start_new_session=True)
            if device := self.find():
                return device
            self.kill()
        sys.exit(f"{self.name} crashes or hangs too often")

    def kill(self) -> None:
        subprocess.run(f"kill -s KILL -- -{self.process.pid} 2>/dev/null", shell=True)  # with its children
        self.process.wait()

    def find(self) -> upnp.Device | None:
        """The device once it answers, and for a server has indexed the folder of many, and nothing changes any more."""
        sizes, before, end = [media.MANY], [0], time.monotonic() + 300
        while self.process.poll() is None and time.monotonic() < end:
            with contextlib.suppress(upnp.DeviceError):
                device = controlpoint.find(upnp.SERVER if self.is_server else upnp.RENDERER, self.name)
                if not self.is_server or (max(sizes) >= media.MANY and sizes == before):
                    return device
                before, sizes = sizes, [len(found) for _, _, found in walk(device, "", 40)]
        return None

    def do(self, action: Any, *arguments: Any, **named: str) -> Any:
        """What an action returns, for which the device has three attempts; any other fault is counted and raised."""
        for _ in range(3):
            device = self.device
            try:
                return action(device, *arguments, **named)
            except upnp.DeviceError as error:
                what = f"{device.model}: {error}"
                fault = next((fault for fault, pattern in FAULTS.items() if re.match(pattern, what)), "unknown")
                faults[fault.format(device.model)] += 1
                check(what, True, fault != "unknown")
                if fault not in (CRASHED, STUCK):
                    raise
            with self.lock:
                if self.device is device:
                    self.kill()
                    self.device = self.start()
        check(f"{device.model}: {action.__name__} {arguments}", "done in three attempts", "")
        raise upnp.DeviceError("crashes or hangs")


def run(*arguments: str, file: bytes = b"") -> str:
    done = subprocess.run(["build/run/bin/upnputil", *arguments], cwd=ROOT, input=file, capture_output=True)
    check(f"upnputil {arguments[0]}: {done.stderr!r}", True, done.returncode in (0, 1))
    return done.stdout.decode()


def run_for_each(file: bytes, *arguments: str) -> list[didl.Object]:
    return [json.loads(line) for line in run(*arguments, "-", "--json-lines", file=file).splitlines()]


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


def check_server(server: Program) -> None:
    """Checks what the server answers to each client."""
    for agent in AGENTS:
        for container, answer, found in server.do(walk, agent, 6 if agent else 12):
            check_answer(server.device, f"{agent[:20]!r}: children of {container}", answer)
            for filter in FILTERS if not agent else []:
                check_answer(server.device, f"{filter} of {container}", server.do(ask, container, filter=filter))
            for each in found[:6] if not agent else []:
                check_answer(server.device, f"metadata of {each.id}", server.do(ask, each.id, BrowseFlag="BrowseMetadata"))
    for criteria in SEARCHES:
        with contextlib.suppress(upnp.DeviceError):
            check_answer(server.device, criteria, server.do(ask, "0", SearchCriteria=criteria))


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


def playable(server: Program) -> list[Any]:
    """Of each type two objects, and one whose title cannot be sent as it is; none that ends at once."""
    kinds: dict[tuple[str, bool], dict[str, Any]] = {}
    for each in (each for _, _, found in server.do(walk, "", 40) for each in found):
        is_broken = bool(re.search("[\0-\x1f\ufffd-\uffff]", each.title))
        if any(one.duration or one.resolution for one in each.resources):
            kinds.setdefault((each.resources[0].mime_type, is_broken), {})[each.title] = each
    return [each for (_, is_broken), titles in kinds.items() for each in list(titles.values())[:2 - is_broken]]


def check_renderer(renderer: Program, items: list[tuple[Program, Any]]) -> None:
    """Plays items of servers; an original where the first choice does not play."""
    for server, found in items:
        for prefers_originals in (False, True):
            with contextlib.suppress(upnp.DeviceError):
                renderer.do(play, server, found.id, prefers_originals)
                break


def play(renderer: upnp.Device, server: Program, object_id: str, prefers_originals: bool) -> None:
    """Plays an object as the example does, and asks the renderer what it plays."""
    what = f"plays {'originals ' if prefers_originals else ''}of {server.device.model}"
    found = server.do(controlpoint.fetch, object_id)
    try:
        choice = found.choose(controlpoint.sink(renderer), prefer_originals=prefers_originals)
        assert choice
        uri, text = choice.resource.uri, found.metadata(choice.resource)
        what += f": {choice.resource.protocol_info}"
        controlpoint.start(renderer, uri, text)
        next(now for now in controlpoint.watch(renderer, 0.1) if now.state == "PLAYING")
        for action, place in (("GetMediaInfo", "CurrentURI"), ("GetPositionInfo", "TrackURI")):
            answer = controlpoint.control(renderer, action)
            if (actual := upnp.text(answer, place)) != uri:
                raise upnp.DeviceError(f"{uri} is not {actual!r}")
            check_metadata(renderer.model, text, upnp.text(answer, place.replace("TrackURI", "Track") + "MetaData"))
        controlpoint.control(renderer, "Stop")
    except upnp.DeviceError as error:
        raise upnp.DeviceError(f"{what}: {error}") from error
    counts.update(["plays", f"plays at {renderer.model}"])


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
    for _ in range(120):
        with contextlib.suppress(upnp.DeviceError):
            for each in controlpoint.fetch(server, created["id"]).resources:
                if each.size == len(content) and upnp.fetch("GET", each.uri) == (200, content):
                    counts["uploads"] += 1
                    return
        time.sleep(0.5)
    raise upnp.DeviceError(f"{targets[0]}: not served")


def check_description(template: str, *options: str) -> None:
    """What describe writes for a device and a client is served, and gupnp finds a state variable for each argument."""
    folder, page = FOLDER / f'description{counts["descriptions"]}', (ROOT / "Examples/README.md").read_text()
    folder.mkdir()
    for name, file, *more in (("MediaServer", "description", "--device"), (template, template)):
        path = f"Examples/{name}/template.xml"
        parts = re.findall(r"--part (\S+)", page.split(path)[1].split("```")[0])
        written = run("describe", path, *(f"--part={part}" for part in parts), *more, *options)
        (folder / f"{file}.xml").write_text(written.replace("ContentDirectory", template))
    expected = {action.findtext("{*}name"): {each.findtext("{*}name"): each.findtext("{*}relatedStateVariable")
                                             for each in action.iter("{*}argument")}
                for action in didl.parse(written).iter("{*}action")}
    seen = gupnp.introspect(folder, f"urn:schemas-upnp-org:service:{template}:1", 8300 + counts["descriptions"])
    check(f"{template} {options}, read by gupnp", expected, seen)
    counts.update({"arguments of actions": sum(map(len, seen.values())), "descriptions": 1})


def main() -> int:
    began = time.monotonic()
    print(f"{media.make(FOLDER)} files of media", flush=True)
    with ThreadPoolExecutor() as pool:
        programs = dict(zip(PROGRAMS, pool.map(Program, PROGRAMS)))
        for name in SERVERS:
            check_server(programs[name])
        items = [(programs[name], found) for name in SERVERS for found in playable(programs[name])]
        list(pool.map(check_renderer, [programs[name] for name in RENDERERS], [items] * len(RENDERERS)))
    for file, (kind, mime) in UPLOADS.items():
        programs["rygel"].do(check_upload, file, kind, mime)
    for template, options in CLIENTS:
        check_description(template, *options.split())
    for _ in range(3):
        for each in programs.values():
            each.do(controlpoint.sink)  # one that has crashed meanwhile is started again
        if (session := subprocess.run([ROOT / "Scripts/pages.sh", "Examples/ControlPoint/README.md"])).returncode == 0:
            break
    check("the session of the example's page", 0, session.returncode)
    for name, least in LEAST.items():
        check(f"{counts[name]} {name}", True, counts[name] >= least)
    for title, made in (("Counts", counts), ("What the library changes", model.rules), ("Known faults of devices", faults)):
        print(f"{title}:", *(f"  {count:7}  {name}" for name, count in sorted(made.items()) if count), sep="\n")
    print(f'{time.monotonic() - began:.0f} s, {counts["unexplained differences"]} unexplained differences')
    return 1 if counts["unexplained differences"] else 0


if __name__ == "__main__":
    sys.exit(main())
