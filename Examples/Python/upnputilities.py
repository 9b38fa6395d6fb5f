"""What a UPnP control point does with the answer to a Browse action, by libUPnPUtilities.so: its objects, the resource
of each that a renderer plays best, and the metadata to send along.

    for media in browse(result):
        choice = media.choose("http-get:*:audio/mpeg:DLNA.ORG_PN=MP3,http-get:*:image/jpeg:*", "192.168.1.7")
        if choice:
            set_av_transport_uri(choice.resource.uri, media.metadata(choice.resource))

The library is the one that the environment variable UPNPUTILITIES_LIBRARY names, or else what the dynamic linker finds.
What is not UTF-8, as a lone surrogate, comes out as U+FFFD. Several threads may use one object. As a program:

    python3 upnputilities.py BROWSE-RESULT.xml [SINKS.txt [RENDERER-ADDRESS]]
"""

from __future__ import annotations

import ctypes
import os
import socket
import sys
import weakref
from ctypes import byref, c_char_p, c_int, c_size_t, c_uint16, c_uint32, c_uint64, c_void_p
from enum import IntEnum
from functools import cached_property
from pathlib import Path
from typing import Any, Iterator, NamedTuple, Optional, Union

LIBRARY = "libUPnPUtilities.so.0.2"  # with the interface's version: another one may have other functions


class EntryTag(IntEnum):
    """Fields of an object, for `MediaObject.text` and `MediaObject.number`."""
    Title, Creator, Date, Genre, Album, ParentID = 0, 1, 2, 3, 4, 5
    ChildCount, ItemID, ItemClassName, ChannelNr, RefID = 8, 9, 10, 11, 15


class ResourceTag(IntEnum):
    """Fields of a resource."""
    URI, ProtocolInfo, Resolution, Duration, BitRate, Size, AudioChannelCount = 0, 1, 2, 3, 4, 6, 11


class Confidence(IntEnum):
    """How likely it is that the renderer plays the chosen resource."""
    WillNot, ShouldNot, May, Should = 0, 1, 2, 3


class DIDLError(ValueError):
    """The text's tags don't match; tells where, and what is wrong."""


class Resource(NamedTuple):
    """A res element; what the server doesn't tell is None or ""."""
    position: int  # among the resources of its object, from 0
    uri: str
    protocol_info: str
    mime_type: str
    size: Optional[int]  # bytes
    duration: Optional[int]  # seconds
    bit_rate: Optional[int]  # bits per second
    resolution: str  # "1920x1080"
    audio_channels: Optional[int]
    extra: tuple[tuple[str, str], ...]  # other attributes: qualified names and values


class Subtitle(NamedTuple):
    """Subtitles of a video."""
    uri: str
    format: str  # "srt"; "" when it is not told
    label: str  # for the user: "English"


class Choice(NamedTuple):
    """The resource that suits a renderer best."""
    resource: Resource
    confidence: Confidence


_UNKNOWN = 0xFFFFFFFF  # a number of the library's that the document doesn't tell
_SUBTITLES = {  # MIME types that servers give to subtitles, and the formats
    "text/srt": "srt", "text/x-srt": "srt", "application/x-srt": "srt", "application/x-subrip": "srt",
    "text/vtt": "vtt", "application/x-subtitle-vtt": "vtt", "text/x-ass": "ass", "application/x-ass": "ass",
    "text/x-ssa": "ssa", "application/x-ssa": "ssa", "application/ttml+xml": "ttml", "smi/caption": "smi",
    "application/x-sami": "smi", "application/x-subtitle-sami": "smi", "text/sub": "sub", "application/x-subtitle": "",
}

# The functions that are used here: results and arguments. A pointer as a result is a new block, record or text.
_FUNCTIONS: dict[str, tuple[Any, list[Any]]] = {
    "CDSEntryInfo_IsContainer": (c_int, [c_void_p]),
    "CDSEntryInfo_GetInfoAsStr": (c_char_p, [c_void_p, c_uint16]),
    "CDSEntryInfo_GetInfoAsUInt32": (c_uint32, [c_void_p, c_uint16]),
    "CDSEntryInfo_GetExtraInfoCount": (c_uint16, [c_void_p]),
    "CDSEntryInfo_GetExtraInfoName": (c_char_p, [c_void_p, c_int]),
    "CDSEntryInfo_GetExtraInfoData": (c_char_p, [c_void_p, c_int]),
    "CDSResourceInfo_GetResourceCount": (c_uint32, [c_void_p]),
    "CDSResourceInfo_GetInfoAsStr": (c_char_p, [c_void_p, c_uint32, c_uint16]),
    "CDSResourceInfo_GetInfoAsUInt64": (c_uint64, [c_void_p, c_uint32, c_uint16]),
    "CDSResourceInfo_FetchMimeType": (c_void_p, [c_void_p, c_uint32]),
    "CDSResourceInfo_GetExtraInfoCount": (c_uint16, [c_void_p, c_uint32]),
    "CDSResourceInfo_GetExtraInfoName": (c_char_p, [c_void_p, c_uint32, c_int]),
    "CDSResourceInfo_GetExtraInfoData": (c_char_p, [c_void_p, c_uint32, c_int]),
    "CDSResourceInfo_IsSubtitle": (c_int, [c_void_p, c_uint32]),
    "CDSResourceInfo_ChooseResource": (c_int, [c_void_p, c_void_p, c_int, c_char_p, c_void_p, c_uint32, c_void_p]),
    "CDSResourceInfo_FetchThumbnailURI": (c_void_p, [c_void_p, c_void_p, c_char_p, c_void_p, c_uint32, c_void_p]),
    "CDSResourceInfo_FetchAlbumArtURI": (c_void_p, [c_void_p, c_char_p, c_void_p, c_uint32, c_void_p]),
    "UPnPDIDL_FindError": (c_void_p, [c_char_p, c_size_t, c_void_p, c_void_p]),
    "UPnPDIDL_GetSendable": (c_void_p, [c_void_p, c_void_p, c_int, c_int, c_char_p, c_void_p]),
    "UPnPDIDLDocument_New": (c_void_p, [c_char_p, c_char_p]),
    "UPnPDIDLDocument_NextObject": (c_int, [c_void_p, c_void_p, c_void_p, c_void_p]),
    "UPnPDIDLDocument_Delete": (None, [c_void_p]),
    "UPnPUtilities_GetVersion": (c_char_p, []),
    "zoDLNAProtocolInfoList_New": (c_void_p, [c_char_p, c_int]),
    "zoDLNAProtocolInfoList_Delete": (None, [c_void_p]),
    "zoPackedData_NewData": (c_void_p, [c_void_p]),
    "zoPackedData_Free": (None, [c_void_p]),
    "free": (None, [c_void_p]),
}

_lib = ctypes.CDLL(os.environ.get("UPNPUTILITIES_LIBRARY") or LIBRARY)
for _name, (_result, _arguments) in _FUNCTIONS.items():
    getattr(_lib, _name).restype, getattr(_lib, _name).argtypes = _result, _arguments
__version__: str = _lib.UPnPUtilities_GetVersion().decode()  # the library's


def _decode(text: bytes) -> str:
    return text.decode("utf-8", "replace")


def _encode(text: str) -> bytes:
    return text.encode("utf-8", "surrogatepass")


def _take(text: int) -> str:
    """A text that the library gave out as new."""
    result = _decode(ctypes.string_at(text) if text else b"")
    _lib.free(text)
    return result


def _pairs(kind: str, *where: Any) -> tuple[tuple[str, str], ...]:
    """The extra info of a record ("CDSEntryInfo") or of one of its entries."""
    count, name, data = (getattr(_lib, f"{kind}_GetExtraInfo{part}") for part in ("Count", "Name", "Data"))
    return tuple((_decode(name(*where, i)), _decode(data(*where, i))) for i in range(count(*where)))


def _by_local_name(pairs: tuple[tuple[str, str], ...]) -> dict[str, str]:
    return {name.rpartition(":")[2].lower(): value for name, value in pairs}  # the prefix is the document's choice


def _targets(host: Optional[str]) -> tuple[Optional[ctypes.Array[c_uint32]], int]:  # in network byte order
    return ((c_uint32 * 1).from_buffer_copy(socket.inet_aton(host)), 1) if host else (None, 0)


class SinkList:
    """What a renderer plays: the Sink of its GetProtocolInfo answer. Made once, it serves for many choices."""

    def __init__(self, protocol_infos: str) -> None:
        self._list = _lib.zoDLNAProtocolInfoList_New(_encode(protocol_infos), 0)
        weakref.finalize(self, _lib.zoDLNAProtocolInfoList_Delete, self._list)


class MediaObject:
    """An item or a container of a Browse answer."""

    def __init__(self, entry: Optional[int], resources: Optional[int]) -> None:
        """Takes over two blocks of UPnPDIDLDocument_NextObject; objects come from `browse`."""
        self._entry = _lib.zoPackedData_NewData(entry)
        self._resources = _lib.zoPackedData_NewData(resources)
        for record in (self._entry, self._resources):
            weakref.finalize(self, _lib.zoPackedData_Free, record)
        self.id = self.text(EntryTag.ItemID)
        self.parent_id = self.text(EntryTag.ParentID)
        self.title = self.text(EntryTag.Title)
        self.media_class = self.text(EntryTag.ItemClassName)  # "object.item.audioItem.musicTrack"
        self.is_container: bool = _lib.CDSEntryInfo_IsContainer(self._entry) != 0

    def text(self, tag: EntryTag) -> str:
        """A field; "" when the document hasn't got it."""
        return _decode(_lib.CDSEntryInfo_GetInfoAsStr(self._entry, tag))

    def number(self, tag: EntryTag) -> Optional[int]:
        """A field that is a number (`ChildCount`, `ChannelNr`); None when it is not told."""
        number: int = _lib.CDSEntryInfo_GetInfoAsUInt32(self._entry, tag)
        return None if number == _UNKNOWN or (number == 0 and tag != EntryTag.ChildCount) else number

    @cached_property
    def extra(self) -> tuple[tuple[str, str], ...]:
        """Elements without a field: qualified names ("upnp:artist") and inner texts."""
        return _pairs("CDSEntryInfo", self._entry)

    @cached_property
    def resources(self) -> tuple[Resource, ...]:
        """The resources in document order, subtitles and thumbnails among them."""
        return tuple(self._read(i) for i in range(_lib.CDSResourceInfo_GetResourceCount(self._resources)))

    def _read(self, index: int) -> Resource:
        record = self._resources

        def text(tag: ResourceTag) -> str:
            return _decode(_lib.CDSResourceInfo_GetInfoAsStr(record, index, tag))

        def number(tag: ResourceTag) -> Optional[int]:
            value: int = _lib.CDSResourceInfo_GetInfoAsUInt64(record, index, tag)
            return None if value == 0 or (value == _UNKNOWN and tag != ResourceTag.Size) else value

        return Resource(index, text(ResourceTag.URI), text(ResourceTag.ProtocolInfo),
                        _take(_lib.CDSResourceInfo_FetchMimeType(record, index)), number(ResourceTag.Size),
                        number(ResourceTag.Duration), number(ResourceTag.BitRate), text(ResourceTag.Resolution),
                        number(ResourceTag.AudioChannelCount), _pairs("CDSResourceInfo", record, index))

    @property
    def subtitles(self) -> list[Subtitle]:
        """Subtitles as servers write them: resources of their own, attributes of resources, elements of the object."""
        found: dict[str, Subtitle] = {}  # by URI: servers say the same in several ways
        for resource in self.resources:
            extra = _by_local_name(resource.extra)
            kind = _SUBTITLES.get(resource.mime_type.lower())
            if kind is not None or _lib.CDSResourceInfo_IsSubtitle(self._resources, resource.position):
                found[resource.uri] = Subtitle(resource.uri, extra.get("subtitletype") or kind or "",
                                               extra.get("subtitlelabel", ""))
        for extra in [_by_local_name(resource.extra) for resource in self.resources] + [_by_local_name(self.extra)]:
            for name in ("subtitlefileuri", "captioninfoex", "captioninfo"):
                if uri := extra.get(name, "").strip():
                    found.setdefault(uri, Subtitle(uri, extra.get("subtitlefiletype", ""), ""))
        return list(found.values())

    def album_art(self, profiles: str = "", host: Optional[str] = None) -> str:
        """The URI of the album art of the best of the DLNA profiles ("JPEG_TN,PNG_TN"), or of any; "" without one.
        host: the IPv4 address of who will fetch it."""
        return _take(_lib.CDSResourceInfo_FetchAlbumArtURI(self._entry, _encode(profiles), *_targets(host), None))

    def thumbnail(self, profiles: str = "", host: Optional[str] = None) -> str:
        """As `album_art`, among the album art and the thumbnails that are resources; only of the profiles' kinds."""
        return _take(_lib.CDSResourceInfo_FetchThumbnailURI(
            self._resources, self._entry, _encode(profiles), *_targets(host), None))

    def choose(self, sinks: Union[SinkList, str, None], host: Optional[str] = None, *,
               scheme_order: str = "*", prefer_originals: bool = False) -> Optional[Choice]:
        """The resource that suits a renderer best; None when none has a transport protocol of the renderer's.

        sinks: what the renderer plays; None when that is unknown.
        host: the renderer's IPv4 address; of equally good resources the one on the nearest server is taken.
        scheme_order: transport protocols separated by commas, best first ("http-get,rtsp"); "*" takes any.
        prefer_originals: leave out what the server converts while the renderer may play something else.
        """
        sinks = SinkList(sinks) if isinstance(sinks, str) else sinks
        confidence = c_int()
        index: int = _lib.CDSResourceInfo_ChooseResource(
            self._resources, sinks._list if sinks else None, int(prefer_originals), _encode(scheme_order),
            *_targets(host), byref(confidence))
        return None if index < 0 else Choice(self.resources[index], Confidence(confidence.value))

    def metadata(self, resource: Optional[Resource] = None) -> str:
        """DIDL-Lite of this object that strict readers take, to be sent with a resource's URI: that one comes first."""
        selected = resource and _lib.CDSResourceInfo_GetInfoAsStr(self._resources, resource.position, ResourceTag.URI)
        return _take(_lib.UPnPDIDL_GetSendable(self._entry, self._resources, 1, 1, selected, None))


def browse(result: Union[str, bytes], base_url: Optional[str] = None) -> Iterator[MediaObject]:
    """The objects of a Browse answer in their order; invalid ones (a flag that is neither true nor false) are left out.

    result: the Result argument, DIDL-Lite, unescaped. It ends at a NUL.
    base_url: what relative URIs are made absolute against.
    Raises DIDLError when tags don't match: where the first object is asked for, not at the call.
    """
    text = ctypes.create_string_buffer(_encode(result) if isinstance(result, str) else result)
    url = _encode(base_url) if base_url else None  # has to outlive the document, as the text has
    document = _lib.UPnPDIDLDocument_New(text, url)
    if not document:
        line, column = c_uint32(), c_uint32()
        reason = _take(_lib.UPnPDIDL_FindError(text, len(text) - 1, byref(line), byref(column)))
        raise DIDLError(f"line {line.value}, column {column.value}: {reason}")
    try:
        kind = c_int(1)
        while kind.value:
            entry, resources = c_void_p(), c_void_p()
            _lib.UPnPDIDLDocument_NextObject(document, byref(entry), byref(resources), byref(kind))
            if entry.value:
                yield MediaObject(entry.value, resources.value)
    finally:
        _lib.UPnPDIDLDocument_Delete(document)


def main(arguments: list[str]) -> int:
    """Prints for each object of a file what to play."""
    if not 1 <= len(arguments) <= 3:
        print(__doc__, file=sys.stderr)
        return 2
    sinks = SinkList(_decode(Path(arguments[1]).read_bytes()).strip()) if len(arguments) > 1 else None
    for media in browse(Path(arguments[0]).read_bytes()):
        choice = media.choose(sinks, arguments[2] if len(arguments) > 2 else None)
        print(f"{media.title}: " + (f"{choice.resource.uri} ({choice.confidence.name})" if choice else "not played"))
    return 0


if __name__ == "__main__":
    try:
        sys.exit(main(sys.argv[1:]))
    except (DIDLError, OSError) as failure:
        sys.exit(str(failure))
