"""What DIDL-Lite says, read with lxml and nothing of the library, and how that differs from what the library read.

An object has the members that it has in upnputil's JSON. What the library changes or leaves out on purpose is done here,
too, rule by rule, and counted: all else has to be equal.
"""

import html
import re
from collections import Counter
from typing import Any

from lxml import etree

Object = dict[str, Any]

TEXTS = {"dc:title": "title", "upnp:class": "class", "dc:creator": "creator", "dc:date": "date", "upnp:genre": "genre",
         "upnp:album": "album", "upnp:channelNr": "channelNumber", "upnp:storageMedium": "storageMedium"}
ATTRIBUTES = {"id": "id", "parentID": "parentId", "refID": "refId", "childCount": "childCount"}
RESOURCE = {"protocolinfo": "protocolInfo", "resolution": "resolution", "duration": "durationSeconds", "bitrate": "bitRate",
            "colordepth": "colorDepth", "size": "size", "nraudiochannels": "audioChannels", "importuri": "importUri"}
NUMBERS = {"channelNumber", "childCount", "durationSeconds", "bitRate", "colorDepth", "size", "audioChannels"}
DERIVED = {"index", "kindNumber", "flags", "dlnaManaged", "duration", "subtitles"}  # members that others say already
UNWRITTEN = {"refId", "childCount", "createClass", "storageMedium", "dlnaManagedNumber", "importUri"}
LIMITS = {"id": 1024, "parentId": 1024, "value": 1024} | dict.fromkeys(("title", "class", "creator", "genre", "album"), 255)
DLNA_DATE = re.compile(r"\d{4}-\d\d-\d\d(T\d\d:\d\d:\d\d(\.\d{1,3})?(Z|[+-]\d\d:\d\d)?)?")
DURATION = re.compile(r"(\d+):(\d\d):(\d\d)(\.\d+(/\d+)?)?")
FORBIDDEN = "[\0-\x08\x0b\x0c\x0e-\x1f\ufffe\uffff]"  # what XML forbids


def armour(document: bytes) -> str:
    """Puts private characters in place of what XML forbids, and of bytes that are no UTF-8, so that lxml reads the rest."""
    text = re.sub("[\udc80-\udcff]", lambda match: chr(ord(match[0]) - 0xDC00 + 0xF700), document.decode("utf-8", "surrogateescape"))
    return re.sub(FORBIDDEN, lambda match: chr((ord(match[0]) & 0xFF) + 0xE000), text)


def bare(text: str) -> str:
    """What armour stood for; U+FFFD for each byte that is no UTF-8, as JSON has it."""
    text = re.sub("[\uf780-\uf7ff]", "\ufffd", text)
    return re.sub("[\ue000-\ue0ff]", lambda match: chr(ord(match[0]) - 0xE000 + (0xFF00 if match[0] >= "\ue0fe" else 0)), text)


def one_for_each_run(text: str) -> str:
    """The text with one U+FFFD for neighbours: it stands for a byte where texts are read, and for several where written."""
    return re.sub("\ufffd+", "\ufffd", text)


def parse(document: bytes | str) -> Any:
    text = armour(document) if isinstance(document, bytes) else document
    return etree.fromstring(re.sub(r"^\s*<\?xml[^>]*\?>", "", text), etree.XMLParser(huge_tree=True, resolve_entities=False))


def result(answer: bytes) -> str:
    """The Result of the answer to an action."""
    return "".join(node.text or "" for node in parse(answer).iter("{*}Result"))


def name_of(node: Any, tag: str | None = None) -> str:
    """The qualified name, as in the document, of an element or of one of its attributes."""
    name, prefix = etree.QName(tag or node.tag), node.prefix
    if tag:
        prefix = next((prefix for prefix, uri in node.nsmap.items() if prefix and uri == name.namespace), None)
    return f"{prefix}:{name.localname}" if prefix else str(name.localname)


class Reader:
    """Reads objects, and counts what of them the library changes."""

    def __init__(self) -> None:
        self.rules: Counter[str] = Counter()

    def objects(self, didl: str) -> list[Object]:
        return [self.object(node) for node in parse(didl) if isinstance(node.tag, str)]

    def object(self, node: Any) -> Object:
        found: Object = {"kind": name_of(node), "albumArts": [], "extras": [], "resources": []}
        flags = {"restricted": True, "searchable": found["kind"] == "container"}
        for tag, value in node.attrib.items():
            name = name_of(node, tag).split(":")[-1]
            if name in flags:
                flags[name] = value in ("1", "true", "yes")
            elif name == "dlnaManaged":
                found["dlnaManagedNumber"] = int(value, 16)
            elif name in ATTRIBUTES:
                self.put(found, ATTRIBUTES[name], value)
            else:
                self.rules["attribute of an object that has no field"] += 1
        found["flagsNumber"] = flags["restricted"] + 2 * flags["searchable"]
        declared: dict[str | None, str] = {}
        for element in [node.getparent(), node, *node.iterdescendants("{*}*")]:
            declared = element.nsmap | declared
        found["namespaces"] = sorted(f'xmlns{":" if prefix else ""}{prefix or ""}="{uri}"' for prefix, uri in declared.items())
        for child in node.iterdescendants("{*}*"):
            self.element(found, child)
        return found

    def element(self, found: Object, node: Any) -> None:
        name, text = name_of(node), node.text or ""
        attributes = {name_of(node, tag): value for tag, value in node.attrib.items()}
        if name == "res":
            found["resources"].append(self.resource(text, attributes))
            return
        if node.prefix is None:
            self.rules["element without a prefix"] += 1
        elif name == "dc:date" and not DLNA_DATE.fullmatch(text):
            self.rules["date that is no DLNA date"] += 1
        elif name in TEXTS:
            self.rules["element that comes again: the last counts"] += TEXTS[name] in found
            self.put(found, TEXTS[name], text)
        elif name == "upnp:albumArtURI":
            profile = attributes.pop("dlna:profileID", "")
            found["albumArts"].append({"uri": bare(text)} | ({"profile": bare(profile)} if profile else {}))
        elif name == "upnp:createClass":
            one = text + (",1" if attributes.pop("includeDerived", "0") != "0" else "")
            found["createClass"] = ";".join(filter(None, [found.get("createClass"), one]))
        else:
            found["extras"].append({"name": name, "value": bare(text)})
        self.rules["attribute of an element that has no field"] += len(attributes)

    def resource(self, uri: str, attributes: dict[str, str]) -> Object:
        found: Object = {"extras": []}
        self.put(found, "uri", uri)
        for name, value in attributes.items():
            if field := RESOURCE.get(name.split(":")[-1].lower()):
                self.put(found, field, value)
            else:
                written = html.escape(value, quote=False)
                self.rules["attribute with its references as written"] += written != value
                found["extras"].append({"name": name, "value": bare(written)})
        return found

    def put(self, found: Object, field: str, value: str) -> None:
        """Stores a value that says something: no empty text, and no number of 0 but that of children."""
        number = self.number(field, value) if field in NUMBERS else None
        if field not in NUMBERS and value:
            found[field] = bare(value)
        elif number or (number == 0 and field == "childCount"):
            found[field] = number
        self.rules["number of 0, which stands for none"] += number == 0 and field not in found

    def number(self, field: str, value: str) -> int | None:
        if field == "durationSeconds":
            match = DURATION.fullmatch(value)
            self.rules["duration that is none"] += not match
            self.rules["fraction of a duration"] += bool(match and (match[4] or "").strip(".0"))
            return int(match[1]) * 3600 + int(match[2]) * 60 + int(match[3]) if match else None
        self.rules["bit rate from bytes to bits a second"] += field == "bitRate"
        return int(value) * (8 if field == "bitRate" else 1) if value.isdecimal() else None


class Writer:
    """What the library is to write of an object that is played, as a Reader reads it, with counts of what that changes."""

    def __init__(self) -> None:
        self.rules: Counter[str] = Counter()

    def object(self, found: Object) -> Object:
        self.rules["container as an item"] += found["kind"] == "container"
        written: Object = self.fields(found) | {"kind": "item", "flagsNumber": 1}
        return written | {"resources": sorted((each for each in written["resources"] if "uri" in each), key=str)}

    def fields(self, value: Any, name: str = "") -> Any:
        if isinstance(value, list):
            return [self.fields(each) for each in value]
        if isinstance(value, dict):
            self.rules["field that says nothing to a renderer"] += len(value.keys() & UNWRITTEN)
            return {name: self.fields(each, name) for name, each in value.items() if name not in UNWRITTEN}
        return self.text(value, LIMITS[name]) if name in LIMITS else value

    def text(self, value: str, limit: int) -> str:
        sendable = one_for_each_run(re.sub(FORBIDDEN, "\ufffd", value))
        self.rules["text with bytes that cannot be sent"] += "\ufffd" in sendable
        sizes = [len(html.escape(character).replace("&#x27;", "&apos;").encode()) for character in sendable]
        while sum(sizes) > limit:
            self.rules["character that is cut off"] += 1
            sizes.pop()
        return sendable[:len(sizes)]


def flat(value: Any, path: str = "") -> dict[str, Any]:
    """The fields of an object, with where they are."""
    if isinstance(value, list):
        value = {str(index): each for index, each in enumerate(value)}
    if not isinstance(value, dict):
        return {path: value}
    fields: dict[str, Any] = {}
    for name, each in value.items():
        if name not in DERIVED:
            fields |= flat(sorted(each) if name == "namespaces" else each, f"{path}/{name}" if path else name)
    return fields


def differences(expected: Object, actual: Object) -> list[str]:
    one, other = flat(expected), flat(actual)
    return [f"{name}: {one.get(name)!r} became {other.get(name)!r}"
            for name in sorted(one.keys() | other.keys()) if one.get(name) != other.get(name)]
