"""Media of every kind that servers index, a few kilobytes each, with names and tags that make trouble."""

import itertools
import os
import subprocess
from pathlib import Path

# Parts of file names and tags. What is not UTF-8, and control characters, come from real collections, too.
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
TAGS = [  # names for ffmpeg and of ID3's frames, and texts, in which * stands for a word
    (b"title", b"TIT2", b"*"), (b"artist", b"TPE1", b"Artist of *"), (b"album", b"TALB", b"* (album)"),
    (b"genre", b"TCON", b"Genre & *"), (b"date", b"TDRC", b"2019-05-04"), (b"album_artist", b"TPE2", b"Band of *"),
    (b"composer", b"TCOM", b"Composer <3>"), (b"track", b"TRCK", b"7"),
]
FILES = {  # for each word: an album with its cover, pictures, and videos with subtitles
    "a.mp3": [b"Music/*/*.mp3", b"Music/*/latin *.mp3"], "a.flac": [b"Music/*/*.flac"], "a.wav": [b"Music/*/*.wav"],
    "cover.jpg": [b"Music/*/cover.jpg"], "p.jpg": [b"Pictures/*.jpg"], "p.png": [b"Pictures/*.png"],
    "v.mp4": [b"Videos/*.mp4", b"Videos/*.mkv"], "v.mpg": [b"Videos/*.mpg"], "v.srt": [b"Videos/*.srt"],
}


def id3(word: bytes, encoding: int) -> bytes:
    """Tags of an mp3 file, as ID3v2.4: frames of a name, a size, flags, an encoding and a text."""
    def sized(name: bytes, flags: bytes, content: bytes) -> bytes:
        return name + bytes(len(content) >> shift & 0x7F for shift in (21, 14, 7, 0)) + flags + content

    frames = (sized(name, b"\0\0", bytes([encoding]) + text.replace(b"*", word)) for _, name, text in TAGS)
    return sized(b"ID3\4\0\0", b"", b"".join(frames))


def make_file(base: Path, target: bytes, word: bytes) -> None:
    """A file with the content of a base, and with tags where ffmpeg or ID3 can say them."""
    os.makedirs(os.path.dirname(target), exist_ok=True)
    if base.suffix == ".mp3":
        Path(os.fsdecode(target)).write_bytes(id3(word, 0 if b"/latin " in target else 3) + base.read_bytes())
    elif base.suffix in (".flac", ".mp4"):
        options = [part for name, _, text in TAGS for part in (b"-metadata", name + b"=" + text.replace(b"*", word))]
        subprocess.run([*FFMPEG.split(), "-i", base, "-c", "copy", *options, target], check=True)
    else:
        os.link(base, target)


def make(folder: Path) -> int:
    """Makes the media: those of WORDS and a folder of many in media/whole, those of BROKEN in media/broken, contents to
    upload in bases; returns the number of files."""
    bases, media = folder / "bases", bytes(folder / "media")
    bases.mkdir()
    (bases / "v.srt").write_text("1\n00:00:00,000 --> 00:00:02,000\nHello\n")
    for name, command in BASES.items():
        subprocess.run([*command.split(), bases / name], check=True)
    for part, words in ((b"/whole/", WORDS), (b"/broken/", BROKEN)):
        for word, (name, places) in itertools.product(words, FILES.items()):
            for place in places:
                make_file(bases / name, media + part + place.replace(b"*", word[:119]), word)
    for number in range(MANY):
        word = WORDS[number % len(WORDS)] + b" %d" % number
        make_file(bases / "short.mp3", media + b"/whole/Music/Many/%03d.mp3" % number, word)
    return sum(len(files) for _, _, files in os.walk(media))
