"""What DIDL-Lite says, read with lxml and nothing of the library, in the members that upnputil's JSON has.

What the library changes or leaves out on purpose is done here, too, rule by rule, and counted; all else is equal.
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
RESOURCE = {"protocolinfo": "protocolInfo", "resolution": "resolution", "duration": "durationSeconds", "size": "size",
            "bitrate": "bitRate", "colordepth": "colorDepth", "nraudiochannels": "audioChannels",
            "importuri": "importUri"}
NUMBERS = {"channelNumber", "childCount", "durationSeconds", "bitRate", "colorDepth", "size", "audioChannels"}
DERIVED = {"index", "kindNumber", "flags", "dlnaManaged", "duration", "subtitles"}  # members that others say already
UNWRITTEN = {"refId", "childCount", "createClass", "storageMedium", "dlnaManagedNumber", "importUri"}
LIMITS = {"id": 1024, "parentId": 1024, "value": 1024, "title": 255, "class": 255, "creator": 255, "genre": 255,
          "album": 255}  # bytes as written
DLNA_DATE = re.compile(r"\d{4}-\d\d-\d\d(T\d\d:\d\d:\d\d(\.\d{1,3})?(Z|[+-]\d\d:\d\d)?)?")
DURATION = re.compile(r"(\d+):(\d\d):(\d\d)(\.\d+(/\d+)?)?")
FORBIDDEN = [*range(9), 11, 12, *range(14, 32), 0xFFFE, 0xFFFF]  # by XML
BYTES = range(0xDC80, 0xDD00)  # that are no UTF-8, as Python has them
ARMOUR = {code: 0xE000 + index for index, code in enumerate([*FORBIDDEN, *BYTES])}
BARE = {private: 0xFFFD if code in BYTES else code for code, private in ARMOUR.items()}  # as in JSON


def parse(document: bytes | str) -> Any:
    """The document, with private characters in place of bytes that are no UTF-8, and of what XML forbids."""
    text = document if isinstance(document, str) else document.decode("utf-8", "surrogateescape").translate(ARMOUR)
    parser = etree.XMLParser(huge_tree=True, resolve_entities=False)
    return etree.fromstring(re.sub(r"^\s*<\?xml[^>]*\?>", "", text), parser)


def one_for_each_run(text: str) -> str:
    """The text with one U+FFFD for neighbours: it stands for a byte in what is read, for several in what is written."""
    return re.sub("\ufffd+", "\ufffd", text)


def name_of(node: Any, attribute: str = "") -> str:
    """The qualified name, as in the document, of an element or of one of its attributes."""
    name, prefixes = etree.QName(attribute or node.tag), [node.prefix]
    if attribute:
        prefixes = [prefix for prefix, uri in node.nsmap.items() if prefix and uri == name.namespace]
    return ":".join([*filter(None, prefixes[:1]), name.localname])


class Model:
    """Reads objects, foretells what is written of them, and counts what the library changes."""

    def __init__(self) -> None:
        self.rules: Counter[str] = Counter()

    def objects(self, document: bytes | str) -> list[Object]:
        return [self.object(node) for node in parse(document) if isinstance(node.tag, str)]

    def object(self, node: Any) -> Object:
        attributes = {name_of(node, tag).split(":")[-1]: value for tag, value in node.attrib.items()}
        is_container = name_of(node) == "container"
        restricted, searchable = (attributes.pop(name, default) in ("1", "true", "yes")
                                  for name, default in (("restricted", "1"), ("searchable", "01"[is_container])))
        found: Object = {"kind": name_of(node), "flagsNumber": restricted + 2 * searchable,
                         "albumArts": [], "extras": [], "resources": []}
        if managed := attributes.pop("dlnaManaged", ""):
            found["dlnaManagedNumber"] = int(managed, 16)
        for name in attributes.keys() & ATTRIBUTES:
            self.put(found, ATTRIBUTES[name], attributes.pop(name))
        self.rules["attribute of an object that has no field"] += len(attributes)
        declared = node.getparent().nsmap
        for element in node.iter("{*}*"):
            declared = element.nsmap | declared
            if element is not node:
                self.element(found, element)
        names = {":".join(filter(None, ("xmlns", prefix))): uri for prefix, uri in declared.items()}
        found["namespaces"] = sorted(f'{name}="{uri}"' for name, uri in names.items())
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
            profile = attributes.pop("dlna:profileID", "").translate(BARE)
            found["albumArts"].append({"uri": text.translate(BARE)} | ({"profile": profile} if profile else {}))
        elif name == "upnp:createClass":
            one = text + (",1" if attributes.pop("includeDerived", "0") != "0" else "")
            found["createClass"] = ";".join(filter(None, [found.get("createClass"), one]))
        else:
            found["extras"].append({"name": name, "value": text.translate(BARE)})
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
                found["extras"].append({"name": name, "value": written.translate(BARE)})
        return found

    def put(self, found: Object, field: str, text: str) -> None:
        """Stores a value that says something: no empty text, and no number of 0 but that of children."""
        value = self.number(field, text) if field in NUMBERS else text.translate(BARE) or None
        if value == 0 and field != "childCount":
            self.rules["number of 0, which stands for none"] += 1
        elif value is not None:
            found[field] = value

    def number(self, field: str, text: str) -> int | None:
        if field == "durationSeconds":
            match = DURATION.fullmatch(text)
            self.rules["invalid duration"] += not match
            self.rules["fraction of a duration"] += bool(match and (match[4] or "").strip(".0"))
            return int(match[1]) * 3600 + int(match[2]) * 60 + int(match[3]) if match else None
        self.rules["bit rate from bytes to bits a second"] += field == "bitRate"
        return int(text) * (8 if field == "bitRate" else 1) if text.isdecimal() else None

    def written(self, found: Object) -> Object:
        """What the library is to write of an object that is played, as it is read again."""
        self.rules["container as an item"] += found["kind"] == "container"
        item: Object = self.sendable(found) | {"kind": "item", "flagsNumber": 1}
        return item | {"resources": sorted((each for each in item["resources"] if "uri" in each), key=str)}

    def sendable(self, value: Any, name: str = "") -> Any:
        if isinstance(value, list):
            return [self.sendable(each) for each in value]
        if isinstance(value, dict):
            self.rules["field that says nothing to a renderer"] += len(value.keys() & UNWRITTEN)
            return {name: self.sendable(each, name) for name, each in value.items() if name not in UNWRITTEN}
        if name not in LIMITS:
            return value
        text = one_for_each_run(value.translate(dict.fromkeys(FORBIDDEN, 0xFFFD)))
        self.rules["text with bytes that cannot be sent"] += "\ufffd" in text
        sizes = [len(html.escape(character).replace("&#x27;", "&apos;").encode()) for character in text]
        while sum(sizes) > LIMITS[name]:
            self.rules["character that is cut off"] += 1
            sizes.pop()
        return text[:len(sizes)]


def flat(value: Any, path: str = "") -> dict[str, Any]:
    """The fields of an object, with where they are."""
    if not isinstance(value, (dict, list)):
        return {path: value}
    fields: dict[str, Any] = {}
    for name, each in value.items() if isinstance(value, dict) else enumerate(value):
        if name not in DERIVED:
            fields |= flat(sorted(each) if name == "namespaces" else each, f"{path}/{name}")
    return fields


def differences(expected: Object, actual: Object) -> list[str]:
    one, other = flat(expected), flat(actual)
    return [f"{name}: {one.get(name)!r} became {other.get(name)!r}"
            for name in sorted(one.keys() | other.keys()) if one.get(name) != other.get(name)]
