#!/usr/bin/env python3
"""The Python module against the built library, which UPNPUTILITIES_LIBRARY names. Exits with 77 where this Python can't load
it, being of another word size."""

from __future__ import annotations

import gc
import re
import struct
import sys
import unittest
from pathlib import Path
from xml.etree import ElementTree

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "Examples/Python"))
sys.dont_write_bytecode = True
try:
    import upnputilities as upnp
except OSError as failure:
    if "wrong ELF class" not in str(failure):
        raise
    print(f"skipped: this Python has {8 * struct.calcsize('P')} bits: {failure}")
    sys.exit(77)

BROWSE = (ROOT / "Tests/Data/didl-multi/minidlna-generic-photo.xml").read_bytes()
SINKS = (ROOT / "Tests/Data/sinks/handmade-dlna-tv.txt").read_text()
ESCAPES = str.maketrans({"\\": r"\\", "\n": r"\n", "\r": r"\r", "\t": r"\t"})  # of facts
VIDEO = b"""<DIDL-Lite><item id="7" parentID="5" restricted="1"><dc:title>A \xff film</dc:title>
<res protocolInfo="http-get:*:video/mp4:*" size="5000000000" duration="1:00:01" bitrate="100"
pv:subtitleFileType="srt" pv:subtitleFileUri="/a.srt">/film.mp4</res><res protocolInfo="http-get:*:text/srt:*">http://h/b.srt</res>
<sec:CaptionInfoEx>http://h/b.srt
</sec:CaptionInfoEx></item><item restricted="maybe"/><container id="8" childCount="0"/></DIDL-Lite>"""


def say(media: upnp.MediaObject, sinks: dict[str, upnp.SinkList], shown: str, chosen: str) -> dict[str, str]:
    """What the module says of an object, as facts in the form of the expected ones."""
    said = {f"{shown} {key}": value for key, value in (
        ("id", media.id), ("parent id", media.parent_id), ("title", media.title), ("class", media.media_class),
        ("kind", "container" if media.is_container else "item"), ("resources", str(len(media.resources))))}
    for r in media.resources:
        for name in ("uri", "protocol_info", "resolution", "size", "bit_rate", "audio_channels"):
            said[f"{shown} resource {r.position} {name.replace('_', ' ')}"] = str(getattr(r, name))
    for name, sink in sinks.items():
        choice = media.choose(sink)
        confidence = choice.confidence if choice else upnp.Confidence.WillNot
        words = re.sub("(?<=[a-z])N", " n", confidence.name).lower()
        said |= {f"{name} {chosen}{key}": value for key, value in (
            ("confidence", f"{words} ({confidence.value})"), ("choice", str(choice.resource.position) if choice else "none"),
            ("uri", choice.resource.uri if choice else ""), ("mime type", choice.resource.mime_type if choice else ""))}
    said |= {f"television {chosen}thumbnail": media.thumbnail(), f"television {chosen}album art": media.album_art()}
    return {key: value.translate(ESCAPES) for key, value in said.items()}


class ModuleTest(unittest.TestCase):
    def test_chooses_for_a_renderer(self) -> None:
        first = next(upnp.browse(BROWSE))
        gc.collect()  # the object lives on without the others
        choice = first.choose(SINKS, "10.77.0.9")
        assert choice
        self.assertEqual(choice, first.choose(SINKS, prefer_originals=True))
        self.assertIsNone(first.choose("rtsp-rtp-udp:*:image/jpeg:*"))
        again = next(upnp.browse(first.metadata(choice.resource)))
        self.assertEqual((first.title, choice.resource.uri), (again.title, again.resources[0].uri))
        self.assertEqual(("", "http://10.77.0.2:8200/Resized/67.jpg?width=160,height=117"),
                         (first.album_art("JPEG_TN", "10.77.0.9"), first.thumbnail()))

    def test_agrees_with_the_facts_of_real_documents(self) -> None:
        sinks = {name: upnp.SinkList((ROOT / f"Tests/Data/sinks/{file}.txt").read_text()) for name, file in (
            ("television", "handmade-dlna-tv"), ("player", "gmediarender"), ("streamer", "handmade-audio-streamer"))}
        compared = 0
        for facts in (ROOT / "Tests/Data").glob("didl*/*.expected"):
            objects = list(upnp.browse(facts.with_suffix("").read_bytes()))
            expected = dict(line.split(": ", 1) for line in facts.read_text().splitlines())
            for number, media in enumerate(objects):
                said = say(media, sinks, f"show object {number}", f"object {number} " if len(objects) > 1 else "")
                known = expected.keys() & said.keys()
                compared += len(known)
                self.assertEqual({key: expected[key] for key in known}, {key: said[key] for key in known}, facts.name)
        self.assertGreater(compared, 600)

    def test_reads_what_is_odd(self) -> None:
        film, folder = upnp.browse(VIDEO, "http://h:80/")
        self.assertEqual("A \ufffd film", film.title)
        self.assertEqual((5000000000, 3601, 800, None), (film.resources[0].size, film.resources[0].duration,
                                                         film.resources[0].bit_rate, film.resources[0].audio_channels))
        self.assertEqual("http://h:80/film.mp4", film.resources[0].uri)
        self.assertEqual([("http://h/b.srt", "srt"), ("/a.srt", "srt")], [(s.uri, s.format) for s in film.subtitles])
        self.assertEqual((True, 0, "8"), (folder.is_container, folder.number(upnp.EntryTag.ChildCount), folder.id))
        self.assertIsNone(folder.choose(None))
        self.assertEqual([], list(upnp.browse("")))
        surrogate = next(upnp.browse("<item><dc:title>\ud83d</dc:title></item>"))
        self.assertEqual(("\ufffd" * 3, None), (surrogate.title, surrogate.choose("\udcff")))
        with self.assertRaisesRegex(upnp.DIDLError, "^line 2, column 1: .*DIDL-Lite"):
            list(upnp.browse("<DIDL-Lite><item>\n</DIDL-Lite>"))
        self.assertIn("A \ufffd film", "".join(ElementTree.fromstring(film.metadata()).itertext()))  # strict

    def test_agrees_with_the_headers(self) -> None:
        header = (ROOT / "Libs/Internal/UPnP/Utilities/UPnPConst.h").read_text()
        for prefix, names in (("kCDSEntryInfo_", upnp.EntryTag), ("kCDSResourceInfo_", upnp.ResourceTag),
                              ("kRendererPlayConfidence_", upnp.Confidence)):
            for name in names:
                self.assertRegex(header, rf"\b{prefix}{name.name} = {name.value}\b")
        self.assertEqual(upnp.LIBRARY.partition(".so.")[2], upnp.__version__.rpartition(".")[0])
        self.assertLess(len((ROOT / "Examples/Python/upnputilities.py").read_text().splitlines()), 300)


if __name__ == "__main__":
    unittest.main()
