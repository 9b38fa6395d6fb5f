#!/usr/bin/env python3
"""Checks what upnputil prints with --json and --json-lines against its schema: schema.py TOOL REPOSITORY.

Ends with status 77, which stands for a test that is left out, where Python's jsonschema is missing.
"""
import json
import pathlib
import subprocess
import sys
import tempfile

try:
    import jsonschema
except ImportError:
    print("left out: no python3-jsonschema")
    sys.exit(77)

TOOL, ROOT = sys.argv[1], pathlib.Path(sys.argv[2])
SCHEMA = json.loads((ROOT / "Docs/upnputil.schema.json").read_text())
VALIDATORS = {part: jsonschema.Draft202012Validator({"$ref": "#/$defs/" + part, "$defs": SCHEMA["$defs"]})
              for part in SCHEMA["$defs"]}
SINKS = sorted((ROOT / "Tests/Data/sinks").glob("*.txt"))
DOCUMENTS = sorted((ROOT / "Tests/Data").glob("didl*/*.xml"))
CONFIG = tempfile.NamedTemporaryFile()
GROUP = ROOT / "Fuzz/Corpus/GroupInfoFuzz/living-room.xml"
CAPABILITIES = ROOT / "Fuzz/Corpus/GroupCapabilitiesFuzz/master.xml"
ODD = ('<DIDL-Lite xmlns:a="b"><item id="\xff\x01" restricted="maybe"/><container childCount="0" '
       'dlna:dlnaManaged="101"><upnp:albumArtURI>a</upnp:albumArtURI></container><item><res duration="1:00:00" '
       'size="18446744073709551615" bitrate="1" dlna:lifetime="1" x="y" '
       'pv:subtitleFileUri="c">http://10.0.0.2/u?lock=</res></item></DIDL-Lite>')
SELECT = ["select", "-", "--pin", "1", "--sink", "http-get:*:*:*", "--all", "--target", "10.0.0.1"]
COMMANDS = [  # definitions of the schema, for what is printed and for one line of it, commands and what they read
    *(("show", "shownObject", ["show", document], "") for document in DOCUMENTS),
    *(("select", "selectedObject", ["select", document, "--all", "--raw", "--sink-file", sink], "")
      for document in DOCUMENTS for sink in SINKS),
    ("show", "shownObject", ["show", "-"], ODD), ("select", "selectedObject", SELECT, ODD),
    ("unlock", "unlock", ["unlock", "http://h/p?lock=", "--pin", "1"], ""),
    ("hook", "hook", ["hook", "--filter", "a"], ""), ("hook", "hook", ["hook", "--count", "5"], ""),
    *(("config", "config", ["config", ROOT / "Examples/device.conf", section], "")
      for section in ("Stack", "SSDP", "WebServer", "WebClient", "ControlPoint")),
    ("config", "config", ["config", "-", "s"], "[s]\nTTL=200\nDLNAVersion=2.0\nUPnPLocal=1\n"),
    ("group", "group", ["group", "show", GROUP], ""),
    ("groupCapabilities", "groupCapabilities", ["group", "show", CAPABILITIES], ""),
    ("groupStore", "groupStore", ["group", "store", GROUP, "uuid:group-1", CONFIG.name], ""),
    ("monitor", "monitor", ["monitor", "--once"], ""),
]


def run(arguments, text):
    """Runs the tool; returns what it prints, line by line."""
    result = subprocess.run([TOOL, *map(str, arguments)], input=text.encode("latin-1"), capture_output=True, check=False)
    assert result.stdout, (arguments, result.stderr)
    return result.stdout.decode().splitlines()  # strictly UTF-8


def mutations(value):
    """Yields copies of a value, in each of which one member is unknown or of another type."""
    if isinstance(value, dict):
        yield {**value, "unknown": 1}
    for place in value if isinstance(value, dict) else range(len(value)) if isinstance(value, list) else []:
        for changed in ["x" if isinstance(value[place], list) else [1], *mutations(value[place])]:
            other = value.copy()
            other[place] = changed
            yield other


jsonschema.Draft202012Validator.check_schema(SCHEMA)
refused = 0
for part, line, arguments, text in COMMANDS:
    whole = json.loads("\n".join(run([*arguments, "--json"], text)))
    VALIDATORS[part].validate(whole)
    lines = [json.loads(each) for each in run([*arguments, "--json-lines"], text)]
    for each in lines:
        VALIDATORS[line].validate(each)
    assert lines == whole.get("objects", lines), arguments
    for changed in mutations(whole) if text == ODD else []:
        assert not VALIDATORS[part].is_valid(changed), changed
        refused += 1
print(f"{len(COMMANDS)} commands print what is valid, {refused} changed values are not")
assert DOCUMENTS and SINKS and refused > 50
