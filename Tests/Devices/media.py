"""Media of every kind that servers index, a few kilobytes each, with names and tags that make trouble."""

import os
import subprocess
from pathlib import Path

# Parts of file names and tags. What is no UTF-8, and control characters, come from real collections, too.
WORDS = [
    b"plain", b"Rock & Roll <live> \"quoted\" 'single'", "Äpfel, Übermut; ß".encode(), "日本語のタイトル".encode(),
    "song 🎵 e\u0301".encode(), b"100% #1 a+b=c?d ]]> &amp; &#65;", "right \u202eto\u202c left\u200b".encode(),
    b"back\\slash,comma\\,both", b"long " + "ü&".encode() * 60,
]
BROKEN = [b"caf\xe9 latin", b"cut \xe6\x97", b"control \x01\x1f\x7f tab\tline\nend",
          b"surrogate \xed\xa0\x80 \xef\xbf\xbe"]
MANY = 500
FFMPEG, TONE = "ffmpeg -nostdin -v error -y", "-f lavfi -i sine=d=3:r=44100"
FILM = f"{FFMPEG} -f lavfi -i testsrc=s=160x120:r=10:d=3 {TONE}"
BASES = {  # contents of three seconds, without tags, and what makes them
    "a.mp3": f"{FFMPEG} {TONE} -b:a 64k -id3v2_version 0 -write_xing 0",
    "short.mp3": f"{FFMPEG} {TONE} -t 0.3 -b:a 32k -id3v2_version 0 -write_xing 0",
    "a.flac": f"{FFMPEG} {TONE}",
    "a.wav": f"{FFMPEG} {TONE} -ac 2",
    "v.mp4": f"{FILM} -c:v libx264 -preset ultrafast -pix_fmt yuv420p -c:a aac",
    "v.mpg": f"{FILM} -c:v mpeg2video -r 25 -c:a mp2",
    "p.jpg": "convert -size 640x480 plasma:red-blue",
    "p.png": "convert -size 320x200 plasma:red-blue",
    "cover.jpg": "convert -size 160x160 plasma:red-blue",
}


def tags(word: bytes) -> dict[bytes, bytes]:
    return {b"title": word, b"artist": b"Artist of " + word, b"album": word + b" (album)", b"genre": b"Genre & " + word,
            b"date": b"2019-05-04"}


def seven_bits(size: int) -> bytes:
    return bytes(size >> shift & 0x7F for shift in (21, 14, 7, 0))


def id3(word: bytes, number: int, encoding: int = 3) -> bytes:
    """Tags of an mp3 file, as ID3v2.4: frames of a name, a size, flags, an encoding and a text."""
    texts = dict(zip((b"TIT2", b"TPE1", b"TALB", b"TCON", b"TDRC"), tags(word).values()))
    texts |= {b"TPE2": b"Band of " + word, b"TCOM": b"Composer <%d>" % number, b"TRCK": b"%d" % number}
    frames = ((name, bytes([encoding]) + text) for name, text in texts.items())
    body = b"".join(name + seven_bits(len(text)) + b"\0\0" + text for name, text in frames)
    return b"ID3\4\0\0" + seven_bits(len(body)) + body


def make_word(bases: Path, root: bytes, number: int, word: bytes) -> None:
    """Media with one word in their names and tags: an album with its cover, pictures, and videos with subtitles."""
    name = word[:119]
    album, pictures, videos = root + b"/Music/%02d " % number + name + b"/", root + b"/Pictures/", root + b"/Videos/"
    for folder in (album, pictures, videos):
        os.makedirs(folder, exist_ok=True)
    song = (bases / "a.mp3").read_bytes()
    for path, content in ((album + name + b".mp3", id3(word, number) + song),
                          (album + b"latin " + name + b".mp3", id3(word, number, 0) + song),
                          (videos + name + b".srt", b"1\n00:00:00,000 --> 00:00:02,000\nHello\n")):
        Path(os.fsdecode(path)).write_bytes(content)
    options = [part for tag in tags(word).items() for part in (b"-metadata", b"=".join(tag))]
    for base, target in (("a.flac", album + name + b".flac"), ("v.mp4", videos + name + b".mp4"),
                         ("v.mp4", videos + name + b".mkv")):
        subprocess.run([*FFMPEG.split(), "-i", bases / base, "-c", "copy", *options, target], check=True)
    for base, target in (("a.wav", album), ("v.mpg", videos), ("p.jpg", pictures), ("p.png", pictures)):
        os.link(bases / base, target + name + base[1:].encode())
    os.link(bases / "cover.jpg", album + b"cover.jpg")


def make(root: Path) -> int:
    """Makes the media: those of WORDS and a folder of many in root/whole, those of BROKEN in root/broken, contents to
    upload in root/bases; returns the number of files."""
    bases = root / "bases"
    bases.mkdir(parents=True)
    for name, command in BASES.items():
        subprocess.run([*command.split(), bases / name], check=True)
    for name, words in (("whole", WORDS), ("broken", BROKEN)):
        for number, word in enumerate(words):
            make_word(bases, bytes(root / name), number, word)
    many = root / "whole/Music/Many"
    many.mkdir()
    for number in range(MANY):
        word = WORDS[number % len(WORDS)] + b" %d" % number
        (many / f"{number:03}.mp3").write_bytes(id3(word, number) + (bases / "short.mp3").read_bytes())
    return sum(len(files) for _, _, files in os.walk(root))
