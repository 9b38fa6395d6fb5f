#!/usr/bin/env python3
"""Checks what upnputil prints with --json and --json-lines against its schema: schema.py TOOL REPOSITORY.

Ends with status 77, which stands for a test that is left out, where Python's jsonschema is missing.
"""
import copy
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

TOOL = sys.argv[1]
ROOT = pathlib.Path(sys.argv[2])
SCHEMA = json.loads((ROOT / "Docs/upnputil.schema.json").read_text())
SINKS = sorted((ROOT / "Tests/Data/sinks").glob("*.txt"))[:3]
DOCUMENTS = sorted((ROOT / "Tests/Data").glob("didl*/*.xml"))
GROUP = ('<groupInfo friendlyName="a" UDN="b" label="c"><master groupedFriendlyName="d" groupedUDN="e"/>'
         '<slave groupedFriendlyName="f" groupedUDN="g"/></groupInfo>')
CAPABILITIES = ('<groupCapabilities><groupCapability capability="a" groupedUDN="b" UDN="c" mode="slave"/>'
                '</groupCapabilities>')
ODD = ('<DIDL-Lite xmlns:a="b"><item id="\xff\x01" restricted="maybe"/><container childCount="0" '
       'dlna:dlnaManaged="101"><upnp:albumArtURI>a</upnp:albumArtURI></container><item><res duration="1:00:00" '
       'size="18446744073709551615" bitrate="1" dlna:lifetime="1" x="y" '
       'pv:subtitleFileUri="c">http://10.0.0.2/u?lock=</res></item></DIDL-Lite>')

jsonschema.Draft202012Validator.check_schema(SCHEMA)


def validator(part):
    """Checks one of the schema's definitions."""
    return jsonschema.Draft202012Validator({"$ref": "#/$defs/" + part, "$defs": SCHEMA["$defs"]})


def run(arguments, text=""):
    """Runs the tool; returns what it prints."""
    result = subprocess.run([TOOL, *map(str, arguments)], input=text.encode("latin-1"), stdout=subprocess.PIPE,
                            stderr=subprocess.PIPE, check=False)
    if not result.stdout:
        raise SystemExit(f"{arguments}: {result.stderr.decode()}")
    return result.stdout.decode()  # strictly UTF-8


def check(part, line, arguments, text=""):
    """Checks the output as one object; and line by line, by the definitions that line names."""
    whole = json.loads(run([*arguments, "--json"], text))
    validator(part).validate(whole)
    lines = [json.loads(each) for each in run([*arguments, "--json-lines"], text).splitlines()]
    if "objects" in whole:
        assert lines == whole["objects"], arguments
    for each in lines:
        validator(line).validate(each)
    return whole


def mutations(value):
    """Yields copies of a value, in each of which one member is unknown or of another type."""
    if isinstance(value, list):
        places = list(enumerate(value))
    elif isinstance(value, dict):
        places = list(value.items())
        yield {**value, "unknown": 1}
    else:
        return
    for place, member in places:
        other = copy.copy(value)
        other[place] = [1] if not isinstance(member, list) else "x"
        yield other
        for changed in mutations(member):
            other = copy.copy(value)
            other[place] = changed
            yield other


def main():
    """Checks every command."""
    for document in DOCUMENTS:
        check("show", "shownObject", ["show", document])
        for sink in SINKS:
            check("select", "selectedObject", ["select", document, "--all", "--raw", "--sink-file", sink])
    shown = check("show", "shownObject", ["show", "-"], ODD)
    selected = check("select", "selectedObject",
                     ["select", "-", "--pin", "1", "--sink", "http-get:*:*:*", "--all", "--target", "10.0.0.1"], ODD)
    check("unlock", "unlock", ["unlock", "http://h/p?lock=", "--pin", "1"])
    check("hook", "hook", ["hook", "--filter", "a"])
    check("hook", "hook", ["hook", "--count", "5"])
    for section in "Stack", "SSDP", "WebServer", "WebClient", "ControlPoint":
        check("config", "config", ["config", ROOT / "Examples/device.conf", section])
    check("config", "config", ["config", "-", "s"], "[s]\nTTL=200\nDLNAVersion=2.0\nUPnPLocal=1\n")
    check("group", "group", ["group", "show", "-"], GROUP)
    check("groupCapabilities", "groupCapabilities", ["group", "show", "-"], CAPABILITIES)
    with tempfile.NamedTemporaryFile() as config:
        check("groupStore", "groupStore", ["group", "store", "-", "M", config.name], GROUP)
    check("monitor", "monitor", ["monitor", "--once"])

    refused = 0
    for part, whole in ("show", shown), ("select", selected):
        for changed in mutations(whole):
            assert not validator(part).is_valid(changed), changed
            refused += 1
    print(f"{len(DOCUMENTS)} documents are valid, {refused} changed ones are not")
    assert DOCUMENTS and len(SINKS) == 3 and refused > 50


main()
