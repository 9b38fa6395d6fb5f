"""Servers and renderers of others against the library: devices.py UPNPUTIL FOLDER, in a network namespace of its own."""

import functools
import json
import os
import re
import signal
import subprocess
import sys
import time
from collections import Counter
from collections.abc import Iterator
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

HERE = Path(__file__).resolve().parent
EXAMPLES = HERE.parents[1] / "Examples"
sys.path.insert(0, str(EXAMPLES / "ControlPoint"))
import controlpoint  # noqa: E402
import didl  # noqa: E402
import gupnp  # noqa: E402
import media  # noqa: E402
import upnp  # noqa: E402

INTERFACE = "dev0"
GERBERA, MINIDLNA, RYGEL = "gerbera 1.1.0", "Windows Media Connect compatible (MiniDLNA) 1.3.0", "Rygel 0.42.1"
GMEDIARENDER = "gmediarender 0.1"
LEAST = {"objects": 3000, "fields": 30000, "texts written": 3000, "plays": 60, "uploads": 3, "descriptions": 6}
FILTERS = ["dc:title", "dc:title,upnp:albumArtURI,res,res@duration,res@size,@childCount"]
SEARCHES = ['upnp:class derivedfrom "object.item.audioItem"', 'dc:title contains "&"',
            'upnp:class derivedfrom "object.item.videoItem" and @refID exists false']
CLIENTS = {  # user agents for which servers answer in ways of their own, and how many containers are browsed
    "": 15, "DLNADOC/1.50 SEC_HHP_[TV]UE40D7000/1.0": 6, "Xbox/2.0.4552.0 UPnP/1.0 Xbox/2.0.4552.0": 6,
    "PLAYSTATION 3 UPnP/1.0 DLNADOC/1.50": 6, "Panasonic MIL DLNA CP UPnP/1.0 DLNADOC/1.50": 6,
    "Microsoft-Windows/6.1 UPnP/1.0 Windows-Media-Player/12.0": 6, "FDSSDP LGE_DLNA_SDK/1.6.0 DLNADOC/1.50": 6,
}
UPLOADS = [("object.item.audioItem.musicTrack", "audio/mpeg", "a.mp3"), ("object.item.videoItem", "video/mp4", "v.mp4"),
           ("object.item.imageItem.photo", "image/jpeg", "p.jpg")]
UNESCAPED = [("&quot;", '"'), ("&lt;", "<"), ("&gt;", ">"), ("&apos;", "'"), ("&amp;", "&")]
PARTS = {  # of the templates: the names of optional parts, in the order of their markers, and their files
    "MediaServer": "srs=ScheduledRecording.xml energymanagement=EnergyManagement.xml basicmanagement=BasicManagement.xml "
                   "configurationmanagement=ConfigurationManagement.xml msregistrar=MediaReceiverRegistrar.xml",
    "ContentDirectory": "featurelist=GetFeatureList.xml search=Search.xml upload=CreateObject.xml updateobject=UpdateObject.xml "
                        "featurelist=FeatureList.xml containerupdateids=ContainerUpdateIDs.xml search=SearchCriteria.xml "
                        "updateobject=TagValueList.xml",
    "AVTransport": "nexturi=SetNextAVTransportURI.xml byteseek=GetBytePositionInfo.xml transportstatuslist= playspeedlist= "
                   "playmodelist= byteseek=BytePositions.xml seekmodelist=",
}
DESCRIPTIONS = [  # devices and clients
    ("ContentDirectory", ""), ("ContentDirectory", "--user-agent=Xbox/2.0.4552.0"), ("AVTransport", "--feature=NoSetNextURI"),
    ("ContentDirectory", "--feature=Search --feature=Upload --feature=UpdateObject --feature=GetFeatureList --feature=MSRegistrar"),
    ("AVTransport", ""), ("AVTransport", "--feature=TimeSeek --feature=ByteSeek --property=PlayModeList=SHUFFLE,REPEAT_ALL"),
]


class Fault(Exception):
    """What a device is known to do wrong."""


class Conversion(Fault):
    """A converted resource that cannot be played; the original has to be."""


class Bench:
    """The programs that are started, the tool, and what has come out."""

    def __init__(self, tool: str, folder: Path) -> None:
        self.tool, self.folder = tool, folder
        self.counts: Counter[str] = Counter()
        self.faults: Counter[str] = Counter()
        self.wrong: list[str] = []
        self.servers: dict[str, upnp.Device] = {}
        self.reader, self.writer, self.written = didl.Reader(), didl.Writer(), didl.Reader()

    def start(self, name: str, *command: str, rygel: str = "") -> subprocess.Popen[bytes]:
        """Starts a program with a home of its own. rygel: the part of it that is switched on."""
        home = self.folder / name
        home.mkdir()
        (home / "rygel.conf").write_text((HERE / "rygel.conf").read_text().format(
            self.folder, *(str(part == rygel).lower() for part in ("server", "renderer"))))
        environment = os.environ | {"HOME": str(home), "XDG_CONFIG_HOME": str(home), "XDG_RUNTIME_DIR": str(home), "LC_ALL": "C.UTF-8"}
        with open(self.folder / f"{name}.log", "wb") as log:
            return subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=log, stderr=log, env=environment, start_new_session=True)

    def start_all(self) -> None:
        (self.folder / "upload").mkdir()
        for name in ("minidlna.conf", "gerbera.xml"):
            (self.folder / name).write_text((HERE / name).read_text().format(self.folder))
        self.start("minidlna", "minidlnad", "-S", "-f", f"{self.folder}/minidlna.conf", "-P", f"{self.folder}/minidlna.pid")
        self.start("gerbera", "gerbera", "-c", f"{self.folder}/gerbera.xml", "-m", f"{self.folder}/gerbera",
                   "--add", f"{self.folder}/media/whole", "--add", f"{self.folder}/media/broken")
        self.start("rygel", "dbus-run-session", "rygel", rygel="server")
        sink = "fakesink sync=true"
        self.start("gmediarender", "gmediarender", "-f", "gmediarender", "-I", INTERFACE, "--gstout-audiopipe", sink,
                   "--gstout-videopipe", sink)
        self.start_playbin()
        for _ in range(30):
            self.servers = {server.name: server for server in upnp.discover(upnp.SERVER)}
            if len(self.servers) == 3:
                return
        raise SystemExit(f"of three servers there are only {list(self.servers)}")

    def start_playbin(self) -> None:
        self.counts["starts of rygel's player"] += 1
        number = self.counts["starts of rygel's player"]
        self.playbin = self.start(f"playbin{number}", "dbus-run-session", "rygel", rygel="renderer")

    def restart_playbin(self) -> None:
        os.killpg(self.playbin.pid, signal.SIGKILL)
        self.playbin.wait()
        self.start_playbin()
        time.sleep(4)

    def check(self, is_right: bool, what: str) -> None:
        if not is_right:
            self.wrong.append(what)
            print(f"WRONG: {what}"[:1000], flush=True)

    def check_same(self, what: str, expected: didl.Object, actual: didl.Object) -> None:
        for difference in didl.differences(expected, actual):
            self.check(False, f"{what}: {difference}")

    def run(self, *arguments: str, file: bytes = b"") -> str:
        done = subprocess.run([self.tool, *arguments], input=file, capture_output=True)
        self.check(done.returncode in (0, 1), f"upnputil {arguments[0]} ends with {done.returncode}: {done.stderr!r}")
        return done.stdout.decode()

    def objects(self, *arguments: str, file: bytes = b"") -> list[didl.Object]:
        return [json.loads(line) for line in self.run(*arguments, "--json-lines", file=file).splitlines()]


# ---- Servers ----

def ask(server: upnp.Device, action: str, of: str, agent: str = "", *, Filter: str = "*", **more: str) -> bytes:
    """Browses or searches a container, all of it."""
    name = "ContainerID" if action == "Search" or (server.model == RYGEL and "Xbox" in agent) else "ObjectID"  # as clients do
    return upnp.call(server.service("ContentDirectory"), action, agent, **{name: of}, **more, Filter=Filter, StartingIndex=0,
                     RequestedCount=0, SortCriteria="")


def children(server: upnp.Device, of: str, agent: str = "", filter: str = "*") -> bytes:
    return ask(server, "Browse", of, agent, BrowseFlag="BrowseDirectChildren", Filter=filter)


def metadata(server: upnp.Device, of: str) -> bytes:
    return ask(server, "Browse", of, BrowseFlag="BrowseMetadata")


def walk(server: upnp.Device, agent: str, limit: int) -> Iterator[tuple[str, bytes, list[didl.Object]]]:
    """The first containers, breadth first, each with the answer that lists its children, and the children."""
    waiting = ["0"]
    for container in waiting:
        answer = children(server, container, agent)
        found = didl.Reader().objects(didl.result(answer))
        yield container, answer, found
        waiting += [each["id"] for each in found if each["kind"] == "container"][:limit - len(waiting)]


def wait_for_media(server: upnp.Device) -> None:
    """Waits until the server has indexed the folder of many, and no count changes any more."""
    before: list[int] = []
    for _ in range(60):
        counts = [len(found) for _, _, found in walk(server, "", 40)]
        if counts == before and max(counts) >= media.MANY:
            return
        before = counts
        time.sleep(3)
    raise SystemExit(f"{server.name} has not indexed the media within three minutes: {before}")


def answers(server: upnp.Device) -> Iterator[tuple[str, bytes]]:
    """What the server answers to each client, with a name for each answer."""
    for agent, limit in CLIENTS.items():
        for container, answer, _ in walk(server, agent, limit):
            yield f"{server.name}, {agent[:20]!r}: children of {container}", answer
    for container, _, found in walk(server, "", 10):
        for filter in FILTERS:
            yield f"{server.name}: {filter} of the children of {container}", children(server, container, filter=filter)
        for each in found[:6]:
            yield f'{server.name}: {each["id"]}', metadata(server, each["id"])
    for criteria in SEARCHES if server.model != GERBERA else []:  # which refuses it
        yield f"{server.name}: {criteria}", ask(server, "Search", "0", SearchCriteria=criteria)


def check_server(bench: Bench, server: upnp.Device) -> None:
    before = bench.counts.copy()
    for name, answer in answers(server):
        check_answer(bench, name, answer)
    made = bench.counts - before
    print(f'{server.model}: {made["answers"]} answers, {made["objects"]} objects, {made["fields"]} fields', flush=True)
    bench.check(made["objects"] > 0, f"{server.model}: no objects")


def check_answer(bench: Bench, name: str, answer: bytes) -> None:
    """Every field of every object as lxml reads it; and what is written of the objects for a renderer that plays all."""
    bench.counts["answers"] += 1
    expected = bench.reader.objects(didl.result(answer))
    shown = bench.objects("show", "-", file=answer) if expected else []
    selected = bench.objects("select", "-", "--sink", "http-get:*:*:*", file=answer) if expected else []
    bench.check(len(expected) == len(shown) == len(selected), f"{name}: {len(expected)} objects became {len(shown)}, {len(selected)}")
    for one, other, choice in zip(expected, shown, selected):
        bench.counts["objects"] += 1
        bench.counts["fields"] += len(didl.flat(one))
        bench.check_same(f'{name}: {one["id"]}', one, other)
        bench.check(didl.differences(one, other | {"title": "other"}) != [], "a difference is not seen")
        if "didlLite" in choice:
            check_written(bench, f'{name}: {one["id"]} written', one, choice.get("uri"), choice["didlLite"])


def check_written(bench: Bench, name: str, found: didl.Object, uri: str | None, text: str) -> None:
    """The metadata that goes with the choice, as lxml and gupnp-av read it."""
    bench.counts["texts written"] += 1
    text = didl.one_for_each_run(text)
    [read] = bench.written.objects(text)
    bench.check(uri in (None, *(each["uri"] for each in read["resources"][:1])), f"{name}: {uri} is not the first resource")
    bench.check_same(f"{name}, read by gupnp-av", gupnp.seen_by_lxml(read), gupnp.seen_by_gupnp(text))
    read["resources"].sort(key=str)
    bench.check_same(name, bench.writer.object(found), read)


# ---- Renderers ----

def mime_type(found: didl.Object) -> str:
    return str(found["resources"][0]["protocolInfo"].split(":")[2]) if found["resources"] else ""


def playable(server: upnp.Device) -> list[didl.Object]:
    """Two objects of each type that the server has, and one whose title cannot be sent as it is; none that ends at once."""
    chosen: dict[tuple[str, bool], dict[str, didl.Object]] = {}
    for found in (each for _, _, objects in walk(server, "", 40) for each in objects):
        is_broken = re.search("[\0-\x1f\ufffd-\uffff]", found.get("title", "")) is not None
        titles = chosen.setdefault((mime_type(found), is_broken), {})
        is_long = any(each.get("durationSeconds", 0) >= 2 or "resolution" in each for each in found["resources"])
        if is_long and len(titles) < 2 - is_broken:
            titles.setdefault(found["title"], found)
    return [found for titles in chosen.values() for found in titles.values()]


def check_renderer(bench: Bench, name: str) -> None:
    """Plays objects of all servers, and asks the renderer what it plays."""
    renderer = controlpoint.find(upnp.RENDERER, name)
    for server, found in [(server, found) for server in bench.servers.values() for found in playable(server)]:
        for attempt in range(3):
            try:
                play(bench, renderer, server, found["id"], attempt > 0)
                bench.counts.update(["plays", f"plays at {renderer.model}"])
            except Fault as fault:
                bench.faults[str(fault)] += 1
                if isinstance(fault, Conversion):
                    continue
            except upnp.DeviceError as error:
                if name == "playbin" and attempt < 2:
                    bench.faults[f"{renderer.model} crashes or hangs, and plays the same once it is started again"] += 1
                    bench.restart_playbin()
                    renderer = controlpoint.find(upnp.RENDERER, name)
                    continue
                bench.check(False, f'{name}: {server.name}: {found["title"]!r}, {mime_type(found)}: {error}')
            break


def play(bench: Bench, renderer: upnp.Device, server: upnp.Device, object_id: str, prefers_originals: bool) -> None:
    """Plays an object as the example does, and asks for what is played."""
    found = controlpoint.fetch(server, object_id)
    choice = found.choose(controlpoint.sink(renderer), prefer_originals=prefers_originals)
    assert choice
    uri, text = choice.resource.uri, found.metadata(choice.resource)
    is_ended = renderer.model == GMEDIARENDER and choice.resource.mime_type.startswith("image/")
    transport = renderer.service("AVTransport")
    try:
        controlpoint.start(renderer, uri, text)
        if not is_ended:
            next(now for now in controlpoint.watch(renderer, 0.1, 20) if now.state == "PLAYING")
    except upnp.DeviceError as error:
        if server.model == RYGEL and "DLNA.ORG_CI=1" in choice.resource.protocol_info and not prefers_originals:
            raise Conversion(f"{RYGEL} offers a converted resource that does not play") from error
        if is_ended and "501 Playing failed" in str(error):
            raise Fault(f"{GMEDIARENDER} refuses to play a picture after others") from error
        raise
    if is_ended:
        time.sleep(1)
        if not upnp.text(upnp.call(transport, "GetMediaInfo", InstanceID=0), "CurrentURI"):
            raise Fault(f"{GMEDIARENDER} ends a picture at once and forgets its URI")
    for action, place, of in (("GetMediaInfo", "CurrentURI", "CurrentURIMetaData"), ("GetPositionInfo", "TrackURI", "TrackMetaData")):
        answer = upnp.call(transport, action, InstanceID=0)
        bench.check(upnp.text(answer, place) == uri, f"{renderer.model}: {place} is {upnp.text(answer, place)}, not {uri}")
        check_metadata(bench, renderer.model, text, upnp.text(answer, of))
    controlpoint.stop(renderer)


def check_metadata(bench: Bench, model: str, sent: str, back: str) -> None:
    """The metadata as it was sent, but for what a renderer is known to do to it."""
    if model == RYGEL and back == functools.reduce(lambda text, pair: text.replace(*pair), UNESCAPED, sent) != sent:
        bench.faults[f"{RYGEL} gives metadata with a level of references too few"] += 1
    elif model == GMEDIARENDER and back != sent and without_tags(back) == without_tags(sent):
        bench.faults[f"{GMEDIARENDER} gives metadata with tags of the stream and an ID of its own"] += 1
    else:
        bench.check(back == sent, f"{model}: metadata {sent!r} came back as {back!r}")


def without_tags(text: str) -> didl.Object:
    objects = didl.Reader().objects(didl.armour(text.encode())) if text else [{}]
    return {name: value for name, value in objects[0].items() if name not in ("id", "title", "creator", "album", "genre", "extras")}


# ---- Uploads and descriptions ----

def check_upload(bench: Bench, server: upnp.Device, kind: str, mime: str, file: Path) -> None:
    """Creates an item, uploads a file to where the server says, and finds and fetches it there."""
    content, title = file.read_bytes(), f"Up & <loaded> \"{file.name}\" ü 日本"
    elements = bench.run("create", "item", "--parent", "DLNA.ORG_AnyContainer", "--title", title, "--class", kind,
                         "--protocol-info", f"http-get:*:{mime}:*", "--length", str(len(content)))
    bench.check_same("Elements, read by gupnp-av", gupnp.seen_by_lxml(didl.Reader().objects(elements)[0]), gupnp.seen_by_gupnp(elements))
    answer = upnp.call(server.service("ContentDirectory"), "CreateObject", ContainerID="DLNA.ORG_AnyContainer", Elements=elements)
    check_answer(bench, f"{server.name}: CreateObject", answer)
    [created] = bench.objects("show", "-", file=answer)
    bench.check(created["title"] == title, f'{server.name} created {created["title"]!r} for {title!r}')
    target = next(each["importUri"] for each in created["resources"] if "importUri" in each)
    status, _ = upnp.fetch("POST", target, content, {"Content-Type": mime})
    bench.check(status == 200, f"{server.name} answers HTTP {status} to the upload of {file.name}")
    for _ in range(40):
        [found] = bench.objects("show", "-", file=metadata(server, created["id"]))
        uris = [each["uri"] for each in found["resources"] if each.get("size") == len(content) and "uri" in each]
        if uris and upnp.fetch("GET", uris[0]) == (200, content):
            bench.counts["uploads"] += 1
            return
        time.sleep(0.5)
    bench.check(False, f"{server.name} has not got what was uploaded: {found}")


def describe(bench: Bench, template: str, *options: str) -> str:
    pairs = [part.split("=") for part in PARTS[template].split()]
    parts = [f"--part=:{name}={EXAMPLES / template / file if file else ''}" for name, file in pairs]
    return bench.run("describe", str(EXAMPLES / template / "template.xml"), *parts, *options)


def check_description(bench: Bench, template: str, options: str) -> None:
    """What describe writes for a device and a client is served, and gupnp finds a state variable for each argument."""
    folder = bench.folder / f'description{bench.counts["descriptions"]}'
    folder.mkdir()
    written = describe(bench, template, *options.split())
    device = describe(bench, "MediaServer", "--device", *options.split())
    (folder / "description.xml").write_text(device.replace("ContentDirectory", template))
    (folder / f"{template}.xml").write_text(written)
    seen = gupnp.introspect(INTERFACE, folder)
    expected = {action.findtext("{*}name"): [each.findtext("{*}name") for each in action.iter("{*}argument")]
                for action in didl.parse(written).iter("{*}action")}
    bench.check({name: list(arguments) for name, arguments in seen.items()} == expected != {}, f"{template} {options}: gupnp reads {seen}")
    bench.check(all(all(arguments.values()) for arguments in seen.values()), f"{template} {options}: no state variable in {seen}")
    bench.counts["arguments of actions"] += sum(map(len, seen.values()))
    bench.counts["descriptions"] += 1


def check_session(bench: Bench) -> None:
    """The session that the example's page shows, with what it prints."""
    done = subprocess.run([HERE.parent / "Pages/run.sh", EXAMPLES / "ControlPoint/README.md"], capture_output=True, text=True)
    bench.check(done.returncode == 0, f"the example's session: {done.stdout}{done.stderr}")


def main() -> int:
    bench = Bench(sys.argv[1], Path(sys.argv[2]))
    began = time.monotonic()
    print(f'{media.make(bench.folder / "media")} files of media', flush=True)
    bench.start_all()
    for server in sorted(bench.servers.values(), key=lambda server: -len(server.model)):  # the quickest to index comes first
        wait_for_media(server)
        check_server(bench, server)
    with ThreadPoolExecutor() as pool:
        list(pool.map(functools.partial(check_renderer, bench), ("gmediarender", "playbin")))
    for kind, mime, file in UPLOADS:
        check_upload(bench, bench.servers["rygel"], kind, mime, bench.folder / "media/bases" / file)
    for template, options in DESCRIPTIONS:
        check_description(bench, template, options)
    check_session(bench)
    for title, counts in (("Counts", bench.counts), ("What the library changes in reading", bench.reader.rules),
                          ("What it changes in writing", bench.writer.rules), ("Known faults of devices", bench.faults)):
        print(f"{title}:\n" + "\n".join(f"  {count:7}  {name}" for name, count in sorted(counts.items()) if count))
    for name, least in LEAST.items():
        bench.check(bench.counts[name] >= least, f"only {bench.counts[name]} {name}, of {least}")
    print(f"{time.monotonic() - began:.0f} s, {len(bench.wrong)} unexplained differences")
    return 1 if bench.wrong else 0


if __name__ == "__main__":
    sys.exit(main())
