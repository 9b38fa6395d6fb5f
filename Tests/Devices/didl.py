"""What DIDL-Lite says, read with lxml and nothing of the library, in the members that upnputil's JSON has. What the library
changes or leaves out on purpose is done here, too, rule by rule, and counted; all else is equal."""

import html
import re
from collections import Counter
from typing import Any

from lxml import etree

Object = dict[str, Any]

MEMBERS = {  # what becomes of attributes of objects and of resources, and of elements; the others are pairs
    "id": "id", "parentID": "parentId", "refID": "refId", "childCount": "childCount", "dlna:dlnaManaged": "dlnaManagedNumber",
    "dc:title": "title", "upnp:class": "class", "dc:creator": "creator", "dc:date": "date", "upnp:genre": "genre",
    "upnp:album": "album", "protocolInfo": "protocolInfo", "resolution": "resolution", "duration": "durationSeconds",
    "size": "size", "bitrate": "bitRate", "colorDepth": "colorDepth", "nrAudioChannels": "audioChannels",
    "importUri": "importUri",
}
NUMBERS = {"childCount", "dlnaManagedNumber", "durationSeconds", "size", "bitRate", "colorDepth", "audioChannels"}
DERIVED = {"index", "kindNumber", "flags", "dlnaManaged", "duration", "subtitles"}  # members that others say already
UNWRITTEN = {"refId", "childCount", "createClass", "dlnaManagedNumber", "importUri"}
LIMITS = dict.fromkeys(("id", "parentId", "value"), 1024) | dict.fromkeys(("title", "class", "creator", "genre", "album"), 255)
FORBIDDEN = [*range(9), 11, 12, *range(14, 32), 0xFFFE, 0xFFFF]  # by XML
BYTES = range(0xDC80, 0xDD00)  # that are not UTF-8, as Python has them
ARMOUR = {code: 0xE000 + index for index, code in enumerate([*FORBIDDEN, *BYTES])}
BARE = {private: 0xFFFD if code in BYTES else code for code, private in ARMOUR.items()}  # as in JSON


def parse(document: bytes | str) -> Any:
    """The document, with private characters in place of bytes that are not UTF-8, and of what XML forbids."""
    text = document if isinstance(document, str) else document.decode("utf-8", "surrogateescape").translate(ARMOUR)
    return etree.fromstring(re.sub(r"^\s*<\?xml[^>]*\?>", "", text), etree.XMLParser(huge_tree=True, resolve_entities=False))


def qualified(node: Any, name: str) -> str:
    """The name of an element, or of one of its attributes, as the document has it."""
    prefixes = [prefix for prefix, uri in node.nsmap.items() if prefix and uri == etree.QName(name).namespace]
    return ":".join([*prefixes[:1], etree.QName(name).localname])


class Model:
    """Reads objects, foretells what is written of them, and counts what the library changes."""

    def __init__(self) -> None:
        self.rules: Counter[str] = Counter()

    def objects(self, document: bytes | str) -> list[Object]:
        return [self.object(node) for node in parse(document).iterchildren("{*}*")]

    def object(self, node: Any) -> Object:
        names = {f"xmlns:{prefix or ''}".rstrip(":"): uri for prefix, uri in node.nsmap.items()}
        kind = qualified(node, node.tag)
        attributes = {"searchable": "1" if kind == "container" else "0"} | self.attributes(node)
        flags = int(attributes.pop("restricted")) + 2 * int(attributes.pop("searchable"))
        found: Object = {"kind": kind, "flagsNumber": flags, "albumArts": [], "extras": [], "resources": [],
                         "namespaces": [f'{name}="{uri}"' for name, uri in names.items()]}
        self.put_all(found, attributes)
        for element in node.iterdescendants("{*}*"):
            text = (element.text or "").translate(BARE)
            self.element(found, qualified(element, element.tag), text, self.attributes(element))
        return found

    def attributes(self, node: Any) -> dict[str, str]:
        return {qualified(node, tag): value.translate(BARE) for tag, value in node.attrib.items()}

    def element(self, found: Object, name: str, text: str, attributes: dict[str, str]) -> None:
        if name == "res":
            found["resources"].append({"uri": text or None, "extras": []})
            self.put_all(found["resources"][-1], attributes)
            return
        if name == "upnp:albumArtURI":
            found["albumArts"].append({"uri": text, "profile": attributes.pop("dlna:profileID", None)})
        elif name == "upnp:createClass":
            one = text + ",1" * int(attributes.pop("includeDerived"))
            found["createClass"] = ";".join(filter(None, [found.get("createClass"), one]))
        else:
            self.put_all(found, {name: text})
        self.rules["attribute of an element that has no field"] += len(attributes)

    def put_all(self, found: Object, values: dict[str, str]) -> None:
        """Stores what says something: no empty text, and no number of 0 but that of children."""
        for name, text in values.items():
            if (member := MEMBERS.get(name)) is None:
                found["extras"].append({"name": name, "value": text})
                continue
            value = self.number(member, text) if member in NUMBERS else text
            self.rules["number of 0, which stands for none"] += value == 0 and member != "childCount"
            found[member] = value if value or member == "childCount" else None

    def number(self, member: str, text: str) -> int:
        if member == "durationSeconds":
            hours, minutes, seconds = map(float, text.split(":"))
            self.rules["fraction of a duration"] += seconds % 1 > 0
            return int(hours * 3600 + minutes * 60 + seconds)
        self.rules["bit rate from bytes to bits a second"] += member == "bitRate"
        return int(text, 16 if member == "dlnaManagedNumber" else 10) * (8 if member == "bitRate" else 1)

    def written(self, found: Object, uri: str | None) -> Object:
        """The fields that the library is to write of an object of which a resource is played, as they are read again."""
        self.rules["container as an item"] += found["kind"] == "container"
        resources = sorted((each for each in found["resources"] if each["uri"]), key=lambda each: bool(each["uri"] != uri))
        fields = flat(found | {"kind": "item", "flagsNumber": 1, "resources": resources})
        fields |= {"/resources/0/uri": uri} if uri else {}
        unwritten = {path for path in fields if path.split("/")[-1] in UNWRITTEN}
        self.rules["field that says nothing to a renderer"] += len(unwritten)
        return {path: self.sendable(path.split("/")[-1], fields[path]) for path in fields.keys() - unwritten}

    def sendable(self, name: str, value: Any) -> Any:
        if name not in LIMITS:
            return value
        text = re.sub("\ufffd+", "\ufffd", value.translate(dict.fromkeys(FORBIDDEN, 0xFFFD)))
        self.rules["text with bytes that cannot be sent"] += "\ufffd" in text
        while len(html.escape(text).encode()) > LIMITS[name]:  # bytes as written
            self.rules["character that is cut off"] += 1
            text = text[:-1]
        return text


def flat(value: Any, path: str = "") -> Object:
    """The fields of an object, with where they are."""
    if not isinstance(value, (dict, list)):
        return {} if value is None else {path: value}
    fields: Object = {}
    for name, each in value.items() if isinstance(value, dict) else enumerate(value):
        if name not in DERIVED:
            fields |= flat(sorted(each) if name == "namespaces" else each, f"{path}/{name}")
    return fields


def fields(text: str) -> Object:
    """The fields of the only object of a text, with one U+FFFD for neighbours: in what is read it stands for a byte."""
    return flat(Model().objects(re.sub("\ufffd+", "\ufffd", text))[0])


def differences(expected: Any, actual: Any) -> list[str]:
    """The fields that are not the same in both."""
    one, other = flat(expected), flat(actual)
    return [f"{name}: {one.get(name)!r} became {other.get(name)!r}"
            for name in sorted(one.keys() | other.keys()) if one.get(name) != other.get(name)]
