"""What gupnp and gupnp-av make of what the library writes."""

from pathlib import Path
from typing import Any

import didl
import gi

gi.require_version("GSSDP", "1.6")
gi.require_version("GUPnP", "1.6")
gi.require_version("GUPnPAV", "1.0")
from gi.repository import GLib, GSSDP, GUPnP, GUPnPAV  # noqa: E402

OBJECT = {"id": "id", "parentId": "parent_id", "title": "title", "class": "upnp_class", "genre": "genre", "album": "album",
          "date": "date"}
RESOURCE = {"uri": "uri", "size": "size64", "durationSeconds": "duration", "bitRate": "bitrate",
            "colorDepth": "color_depth", "audioChannels": "audio_channels"}


def read(text: str) -> tuple[didl.Object, didl.Object]:
    """What lxml and gupnp-av read in an object, of what gupnp-av knows."""
    found: list[Any] = []
    parser = GUPnPAV.DIDLLiteParser()
    parser.connect("object-available", lambda _, each: found.append(each))
    parser.parse_didl(text)
    [item], [expected] = found, didl.Model().objects(text)
    for each in expected["resources"]:
        each["protocolInfo"] = GUPnPAV.ProtocolInfo.new_from_string(each["protocolInfo"]).to_string()
        each["bitRate"] = each["bitRate"] // 8 if "bitRate" in each else None
        del each["extras"]
    resources = [fields(each, RESOURCE) | {
        "protocolInfo": each.get_protocol_info().to_string(),
        "resolution": f"{each.get_width()}x{each.get_height()}" if each.get_width() > 0 else None,
    } for each in item.get_resources()]
    return {name: expected.get(name) for name in (*OBJECT, "resources")}, fields(item, OBJECT) | {"resources": resources}


def fields(what: Any, getters: dict[str, str]) -> didl.Object:
    values = {name: getattr(what, f"get_{getter}")() for name, getter in getters.items()}
    return {name: value for name, value in values.items() if value not in ("", 0, -1)}


def introspect(folder: Path, service: str, port: int) -> didl.Object:
    """Serves the device description in a folder, finds it by SSDP, and reads the description of a service: of each action
    the arguments, each with its state variable."""
    context = GUPnP.Context.new_full("dev0", None, port, GSSDP.UDAVersion.VERSION_1_0)
    device = GUPnP.RootDevice.new(context, "description.xml", str(folder))
    device.set_available(True)
    answers: list[Any] = []
    finder = GUPnP.ControlPoint.new(context, device.get_udn())
    finder.connect("device-proxy-available", lambda _, found: found.get_service(service).introspect_async(
        None, lambda proxy, answer: answers.append(proxy.introspect_finish(answer))))
    finder.set_active(True)
    GLib.timeout_add_seconds(60, answers.append, None)
    while not answers:
        GLib.MainContext.default().iteration()
    device.set_available(False)
    assert answers[0], f"gupnp does not read {service} within 60 s"
    variables = {variable.name for variable in answers[0].list_state_variables()}
    return {action.name: {each.name: ({each.related_state_variable} & variables).pop() for each in action.arguments}
            for action in answers[0].list_actions()}
