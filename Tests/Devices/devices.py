"""Servers and renderers of others against the library: devices.py UPNPUTIL FOLDER, in a network namespace."""

import json
import os
import re
import shlex
import signal
import subprocess
import sys
import time
from collections import Counter
from collections.abc import Iterator
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path
from typing import Any

HERE = Path(__file__).resolve().parent
EXAMPLES = HERE.parents[1] / "Examples"
sys.path.insert(0, str(EXAMPLES / "ControlPoint"))
import controlpoint  # noqa: E402
import didl  # noqa: E402
import gupnp  # noqa: E402
import media  # noqa: E402
import upnp  # noqa: E402

GERBERA, MINIDLNA, RYGEL = "gerbera 1.1.0", "Windows Media Connect compatible (MiniDLNA) 1.3.0", "Rygel 0.42.1"
GMEDIARENDER = "gmediarender 0.1"
PROGRAMS = {  # by what they are called on the network; {0}: the folder of the trial
    "minidlna": "minidlnad -S -f {0}/minidlna.conf -P {0}/minidlna.pid",
    "gerbera": "gerbera -c {0}/gerbera.xml -m {0}/gerbera --add {0}/media/whole --add {0}/media/broken",
    "rygel": "dbus-run-session rygel --disable-plugin=Playbin",
    "playbin": "dbus-run-session rygel --disable-plugin=MediaExport",
    "gmediarender": "gmediarender -f gmediarender -I dev0 --gstout-audiopipe 'fakesink sync=true' "
                    "--gstout-videopipe 'fakesink sync=true'",
}
LEAST = {"objects": 3000, "fields": 30000, "texts written": 3000, "plays": 60, "uploads": 3, "descriptions": 6}
FILTERS = ["dc:title", "dc:title,upnp:albumArtURI,res,res@duration,res@size,@childCount"]
SEARCHES = ['upnp:class derivedfrom "object.item.audioItem"', 'dc:title contains "&"',
            'upnp:class derivedfrom "object.item.videoItem" and @refID exists false']
CLIENTS = {  # user agents for which servers answer in ways of their own, and how many containers are browsed
    "": 15, "DLNADOC/1.50 SEC_HHP_[TV]UE40D7000/1.0": 6, "Xbox/2.0.4552.0 UPnP/1.0 Xbox/2.0.4552.0": 6,
    "PLAYSTATION 3 UPnP/1.0 DLNADOC/1.50": 6, "Panasonic MIL DLNA CP UPnP/1.0 DLNADOC/1.50": 6,
    "Microsoft-Windows/6.1 UPnP/1.0 Windows-Media-Player/12.0": 6, "FDSSDP LGE_DLNA_SDK/1.6.0 DLNADOC/1.50": 6,
}
UPLOADS = [("audioItem.musicTrack", "audio/mpeg", "a.mp3"), ("videoItem", "video/mp4", "v.mp4"),
           ("imageItem.photo", "image/jpeg", "p.jpg")]
TAGS = ("id", "title", "creator", "album", "genre", "extras")  # which a renderer takes from the stream
PARTS = {  # of the templates: the names of optional parts, in the order of their markers, and their files
    "MediaServer": "srs=ScheduledRecording energymanagement=EnergyManagement basicmanagement=BasicManagement "
                   "configurationmanagement=ConfigurationManagement msregistrar=MediaReceiverRegistrar",
    "ContentDirectory": "featurelist=GetFeatureList search=Search upload=CreateObject updateobject=UpdateObject "
                        "featurelist=FeatureList containerupdateids=ContainerUpdateIDs search=SearchCriteria "
                        "updateobject=TagValueList",
    "AVTransport": "nexturi=SetNextAVTransportURI byteseek=GetBytePositionInfo transportstatuslist= playspeedlist= "
                   "playmodelist= byteseek=BytePositions seekmodelist=",
}
DESCRIPTIONS = [  # devices and clients
    ("ContentDirectory", ""), ("ContentDirectory", "--user-agent=Xbox/2.0.4552.0"),
    ("ContentDirectory", "--feature=Search --feature=Upload --feature=UpdateObject --feature=GetFeatureList "
                         "--feature=MSRegistrar"),
    ("AVTransport", ""), ("AVTransport", "--feature=NoSetNextURI"),
    ("AVTransport", "--feature=TimeSeek --feature=ByteSeek --property=PlayModeList=SHUFFLE,REPEAT_ALL"),
]
CONVERTED = f"{RYGEL} offers a converted resource that does not play"  # the original has to play
CRASHED = f"{RYGEL} crashes or hangs, and plays the same once it is started again"


class Bench:
    """The programs that are started, the tool, and what has come out."""

    def __init__(self, tool: str, folder: Path) -> None:
        self.tool, self.folder = tool, folder
        self.counts: Counter[str] = Counter()
        self.faults: Counter[str] = Counter()
        self.wrong: list[str] = []
        self.processes: dict[str, subprocess.Popen[bytes]] = {}
        self.model = didl.Model()

    def start(self, name: str) -> None:
        """Starts a program with a home of its own, in place of the one that runs."""
        if name in self.processes:
            os.killpg(self.processes[name].pid, signal.SIGKILL)
            self.processes[name].wait()
        home = self.folder / name
        home.mkdir(exist_ok=True)
        environment = os.environ | {"HOME": str(home), "XDG_RUNTIME_DIR": str(home), "LC_ALL": "C.UTF-8"}
        with open(self.folder / f"{name}.log", "ab") as log:
            self.processes[name] = subprocess.Popen(
                shlex.split(PROGRAMS[name].format(self.folder)), stdin=subprocess.DEVNULL, stdout=log, stderr=log,
                env=environment | {"XDG_CONFIG_HOME": str(self.folder)}, start_new_session=True)
        self.counts[f"starts of {name}"] += 1

    def start_all(self) -> list[upnp.Device]:
        """Starts the programs; returns the servers, those first that are quick to index."""
        (self.folder / "upload").mkdir()
        for name in ("minidlna.conf", "gerbera.xml", "rygel.conf"):
            (self.folder / name).write_text((HERE / name).read_text().format(self.folder))
        for name in PROGRAMS:
            self.start(name)
        for _ in range(30):
            if len(servers := upnp.discover(upnp.SERVER)) == 3:
                return sorted(servers, key=lambda server: [MINIDLNA, GERBERA, RYGEL].index(server.model))
        raise SystemExit(f"of three servers there are only {[server.name for server in servers]}")

    def check(self, is_right: bool, what: str) -> None:
        if not is_right:
            self.wrong.append(what)
            print(f"WRONG: {what}"[:1000], flush=True)

    def check_none(self, what: str, differences: list[str]) -> None:
        for difference in differences:
            self.check(False, f"{what}: {difference}")

    def run(self, *arguments: str, file: bytes = b"") -> str:
        done = subprocess.run([self.tool, *arguments], input=file, capture_output=True)
        self.check(done.returncode in (0, 1), f"upnputil {arguments[0]} ends with {done.returncode}: {done.stderr!r}")
        return done.stdout.decode()

    def objects(self, file: bytes, *arguments: str) -> list[didl.Object]:
        return [json.loads(line) for line in self.run(*arguments, "-", "--json-lines", file=file).splitlines()]


# ---- Servers ----

def ask(server: upnp.Device, of: str, agent: str = "", filter: str = "*", **how: str) -> bytes:
    """Browses the children of a container, all of them, or browses and searches as the arguments in how say."""
    how = how or {"BrowseFlag": "BrowseDirectChildren"}
    action = "Search" if "SearchCriteria" in how else "Browse"
    is_container = action == "Search" or (server.model == RYGEL and "Xbox" in agent)  # as clients do
    how = {"ContainerID" if is_container else "ObjectID": of, "Filter": filter, "SortCriteria": ""} | how
    return upnp.call(server.service("ContentDirectory"), action, agent, **how, StartingIndex=0, RequestedCount=0)


def walk(server: upnp.Device, agent: str, limit: int) -> Iterator[tuple[str, bytes, list[Any]]]:
    """The first containers, breadth first, each with the answer that lists its children, and the children."""
    waiting = ["0"]
    for container in waiting:
        answer = ask(server, container, agent)
        found = controlpoint.read(answer)
        yield container, answer, found
        waiting += [each.id for each in found if each.is_container][:limit - len(waiting)]


def wait_for_media(server: upnp.Device) -> None:
    """Waits until the server has indexed the folder of many, and no count changes any more."""
    counts: list[int] = []
    for _ in range(60):
        before, counts = counts, [len(found) for _, _, found in walk(server, "", 40)]
        if counts == before and max(counts) >= media.MANY:
            return
        time.sleep(3)
    raise SystemExit(f"{server.name} has not indexed the media within three minutes: {counts}")


def check_server(bench: Bench, server: upnp.Device) -> None:
    """Checks what the server answers to each client."""
    wait_for_media(server)
    before = bench.counts.copy()
    for agent, limit in CLIENTS.items():
        for container, answer, _ in walk(server, agent, limit):
            check_answer(bench, f"{server.name}, {agent[:20]!r}: children of {container}", answer)
    for container, _, found in walk(server, "", 10):
        for filter in FILTERS:
            check_answer(bench, f"{server.name}: {filter} of {container}", ask(server, container, filter=filter))
        for each in found[:6]:
            check_answer(bench, f"{server.name}: {each.id}", ask(server, each.id, BrowseFlag="BrowseMetadata"))
    for criteria in SEARCHES:
        try:
            check_answer(bench, f"{server.name}: {criteria}", ask(server, "0", SearchCriteria=criteria))
            bench.check(server.model != GERBERA, f"{GERBERA} answers the search for {criteria}")
        except upnp.DeviceError as error:
            is_known = server.model == GERBERA and str(error) == "Search: 501 Action Failed"
            bench.check(is_known, f"{server.name}: {criteria}: {error}")
            bench.faults[f"{GERBERA} refuses Search"] += 1
    made = bench.counts - before
    print(f'{server.model}: {made["answers"]} answers, {made["objects"]} objects, {made["fields"]} fields', flush=True)
    bench.check(made["objects"] > 0, f"{server.model}: no objects")


def check_answer(bench: Bench, name: str, answer: bytes) -> None:
    """Every field of every object as lxml reads it, and what is written of each for a renderer that plays all."""
    bench.counts["answers"] += 1
    expected = bench.model.objects(upnp.unescape(upnp.values(answer, "Result")[0]))
    shown = bench.objects(answer, "show") if expected else []
    selected = bench.objects(answer, "select", "--sink", "http-get:*:*:*") if expected else []
    bench.check(len(expected) == len(shown) == len(selected),
                f"{name}: {len(expected)} objects became {len(shown)}, {len(selected)}")
    for one, other, choice in zip(expected, shown, selected):
        bench.counts.update({"objects": 1, "fields": len(didl.flat(one))})
        bench.check_none(f'{name}: {one["id"]}', didl.differences(one, other))
        bench.check(didl.differences(one, other | {"title": "other"}) != [], "a difference is not seen")
        if "didlLite" in choice:
            check_written(bench, f'{name}: {one["id"]} written', one, choice.get("uri"), choice["didlLite"])


def check_written(bench: Bench, name: str, found: didl.Object, uri: str | None, text: str) -> None:
    """The metadata that goes with the choice, as lxml and gupnp-av read it."""
    bench.counts["texts written"] += 1
    text = didl.one_for_each_run(text)
    [read] = didl.Model().objects(text)
    first = [each["uri"] for each in read["resources"][:1]]
    bench.check(uri is None or [uri] == first, f"{name}: {uri} is not the first resource, {first}")
    bench.check_none(f"{name}, read by gupnp-av", gupnp.differences(text))
    read["resources"].sort(key=str)
    bench.check_none(name, didl.differences(bench.model.written(found), read))


# ---- Renderers ----

def playable(server: upnp.Device) -> Iterator[Any]:
    """Of each type two objects, and one whose title cannot be sent as it is; none that ends at once."""
    chosen: dict[tuple[str, bool], set[str]] = {}
    for found in (each for _, _, objects in walk(server, "", 40) for each in objects):
        is_broken = re.search("[\0-\x1f\ufffd-\uffff]", found.title) is not None
        titles = chosen.setdefault((found.resources[0].mime_type if found.resources else "", is_broken), set())
        is_long = any((each.duration or 0) >= 2 or each.resolution for each in found.resources)
        if is_long and len(titles) < 2 - is_broken and found.title not in titles:
            titles.add(found.title)
            yield found


def check_renderer(bench: Bench, servers: list[upnp.Device], name: str) -> None:
    """Plays objects of all servers, and asks the renderer what it plays."""
    renderer = controlpoint.find(upnp.RENDERER, name)
    for server, found in [(server, found) for server in servers for found in playable(server)]:
        for attempt in range(3):
            try:
                fault = play(bench, renderer, server, found.id, attempt > 0)
            except upnp.DeviceError as error:
                if name != "playbin" or attempt == 2:
                    bench.check(False, f"{name}: {server.name}: {found.title!r}, {found.resources[:1]}: {error}")
                    break
                fault = CRASHED
                bench.start(name)
                time.sleep(4)
                renderer = controlpoint.find(upnp.RENDERER, name)
            bench.counts.update([] if fault else ["plays", f"plays at {renderer.model}"])
            bench.faults.update([fault] if fault else [])
            if fault not in (CONVERTED, CRASHED):
                break


def play(bench: Bench, renderer: upnp.Device, server: upnp.Device, object_id: str, prefers_originals: bool) -> str:
    """Plays an object as the example does, and asks for what is played; returns the known fault that prevents it."""
    found = controlpoint.fetch(server, object_id)
    choice = found.choose(controlpoint.sink(renderer), prefer_originals=prefers_originals)
    assert choice
    uri, text = choice.resource.uri, found.metadata(choice.resource)
    is_ended = renderer.model == GMEDIARENDER and choice.resource.mime_type.startswith("image/")
    try:
        controlpoint.start(renderer, uri, text)
        if not is_ended:
            next(now for now in controlpoint.watch(renderer, 0.1, 20) if now.state == "PLAYING")
    except upnp.DeviceError as error:
        if server.model == RYGEL and "DLNA.ORG_CI=1" in choice.resource.protocol_info and not prefers_originals:
            return CONVERTED
        if is_ended and "501 Playing failed" in str(error):
            return f"{GMEDIARENDER} refuses to play a picture after others"
        raise
    if is_ended:
        time.sleep(1)
        if not upnp.text(controlpoint.control(renderer, "GetMediaInfo"), "CurrentURI"):
            return f"{GMEDIARENDER} ends a picture at once and forgets its URI"
    for action, place in (("GetMediaInfo", "CurrentURI"), ("GetPositionInfo", "TrackURI")):
        answer = controlpoint.control(renderer, action)
        bench.check(upnp.text(answer, place) == uri, f"{renderer.model}: {uri} is no {place} in {answer!r}")
        check_metadata(bench, renderer.model, text, upnp.text(answer, place.replace("TrackURI", "Track") + "MetaData"))
    controlpoint.control(renderer, "Stop")
    return ""


def check_metadata(bench: Bench, model: str, sent: str, back: str) -> None:
    """The metadata as it was sent, but for what a renderer is known to do to it."""
    if model == RYGEL and back == upnp.unescape(sent.encode()).decode() != sent:
        bench.faults[f"{RYGEL} gives metadata with a level of references too few"] += 1
    elif model == GMEDIARENDER and back != sent and without_tags(back) == without_tags(sent):
        bench.faults[f"{GMEDIARENDER} gives metadata with tags of the stream and an ID of its own"] += 1
    else:
        bench.check(back == sent, f"{model}: metadata {sent!r} came back as {back!r}")


def without_tags(text: str) -> didl.Object:
    objects = didl.Model().objects(text.encode()) if text else [{}]
    return {name: value for name, value in objects[0].items() if name not in TAGS}


# ---- Uploads and descriptions ----

def check_upload(bench: Bench, server: upnp.Device, kind: str, mime: str, file: Path) -> None:
    """Creates an item, uploads a file to where the server says, and finds and fetches it there."""
    content, title, container = file.read_bytes(), f"Up & <loaded> \"{file.name}\" ü 日本", "DLNA.ORG_AnyContainer"
    elements = bench.run("create", "item", "--parent", container, "--title", title, "--class", f"object.item.{kind}",
                         "--protocol-info", f"http-get:*:{mime}:*", "--length", str(len(content)))
    bench.check_none("Elements, read by gupnp-av", gupnp.differences(elements))
    answer = upnp.call(server.service("ContentDirectory"), "CreateObject", ContainerID=container, Elements=elements)
    check_answer(bench, f"{server.name}: CreateObject", answer)
    [created] = bench.objects(answer, "show")
    bench.check(created["title"] == title, f'{server.name} created {created["title"]!r} for {title!r}')
    target = next(each["importUri"] for each in created["resources"] if "importUri" in each)
    status, _ = upnp.fetch("POST", target, content, {"Content-Type": mime})
    bench.check(status == 200, f"{server.name} answers HTTP {status} to the upload of {file.name}")
    for _ in range(40):
        [found] = bench.objects(ask(server, created["id"], BrowseFlag="BrowseMetadata"), "show")
        uris = [each["uri"] for each in found["resources"] if each.get("size") == len(content) and "uri" in each]
        if uris and upnp.fetch("GET", uris[0]) == (200, content):
            bench.counts["uploads"] += 1
            return
        time.sleep(0.5)
    bench.check(False, f"{server.name} has not got what was uploaded: {found}")


def describe(bench: Bench, template: str, options: str) -> str:
    parts = re.sub(r"=(\S+)", rf"={EXAMPLES / template}/\1.xml", PARTS[template]).split()
    return bench.run("describe", str(EXAMPLES / template / "template.xml"), *(f"--part=:{part}" for part in parts),
                     *options.split())


def check_description(bench: Bench, template: str, options: str) -> None:
    """What describe writes for a device and a client is served, and gupnp finds a state variable for each argument."""
    folder = bench.folder / f'description{bench.counts["descriptions"]}'
    folder.mkdir()
    device, written = describe(bench, "MediaServer", f"--device {options}"), describe(bench, template, options)
    (folder / "description.xml").write_text(device.replace("ContentDirectory", template))
    (folder / f"{template}.xml").write_text(written)
    seen = gupnp.introspect(folder, 8300 + bench.counts["descriptions"])
    expected = {action.findtext("{*}name"): [each.findtext("{*}name") for each in action.iter("{*}argument")]
                for action in didl.parse(written).iter("{*}action")}
    is_same = {name: list(arguments) for name, arguments in seen.items()} == expected != {}
    is_typed = all(all(types.values()) for types in seen.values())
    bench.check(is_same and is_typed, f"{template} {options}: gupnp reads {seen}")
    bench.counts.update({"arguments of actions": sum(map(len, seen.values())), "descriptions": 1})


def main() -> int:
    bench, began = Bench(sys.argv[1], Path(sys.argv[2])), time.monotonic()
    print(f'{media.make(bench.folder / "media")} files of media', flush=True)
    servers = bench.start_all()
    for server in servers:
        check_server(bench, server)
    with ThreadPoolExecutor() as pool:
        list(pool.map(lambda name: check_renderer(bench, servers, name), ("gmediarender", "playbin")))
    for kind, mime, file in UPLOADS:
        check_upload(bench, servers[-1], kind, mime, bench.folder / "media/bases" / file)
    for template, options in DESCRIPTIONS:
        check_description(bench, template, options)
    session = [HERE.parents[1] / "Scripts/pages.sh", EXAMPLES / "ControlPoint/README.md"]  # with what it shows
    done = subprocess.run(session, capture_output=True, text=True)
    bench.check(done.returncode == 0, f"the example's session: {done.stdout}{done.stderr}")
    for title, counts in (("Counts", bench.counts), ("What the library changes", bench.model.rules),
                          ("Known faults of devices", bench.faults)):
        print(f"{title}:\n" + "\n".join(f"  {count:7}  {name}" for name, count in sorted(counts.items()) if count))
    for name, least in LEAST.items():
        bench.check(bench.counts[name] >= least, f"only {bench.counts[name]} {name}, of {least}")
    print(f"{time.monotonic() - began:.0f} s, {len(bench.wrong)} unexplained differences")
    return 1 if bench.wrong else 0


if __name__ == "__main__":
    sys.exit(main())
