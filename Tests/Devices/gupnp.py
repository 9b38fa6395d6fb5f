"""What gupnp and gupnp-av make of what the library writes."""

import re
from pathlib import Path
from typing import Any

import didl
import gi

gi.require_version("GSSDP", "1.6")
gi.require_version("GUPnP", "1.6")
gi.require_version("GUPnPAV", "1.0")
from gi.repository import GLib, GSSDP, GUPnP, GUPnPAV  # noqa: E402

TEXTS = {"id": "get_id", "parentId": "get_parent_id", "title": "get_title", "class": "get_upnp_class",
         "genre": "get_genre", "album": "get_album", "date": "get_date"}
NUMBERS = {"size": "get_size64", "durationSeconds": "get_duration", "bitRate": "get_bitrate",
           "colorDepth": "get_color_depth", "audioChannels": "get_audio_channels"}


def differences(text: str) -> list[str]:
    """What gupnp-av reads in an object otherwise than lxml does, of what it knows."""
    found: list[Any] = []
    parser = GUPnPAV.DIDLLiteParser()
    parser.connect("object-available", lambda _, each: found.append(each))
    parser.parse_didl(text)
    [item], [expected] = found, didl.Model().objects(text)
    seen = {name: getattr(item, getter)() or None for name, getter in TEXTS.items()}
    for each in expected["resources"]:
        profile = re.search(r"DLNA\.ORG_PN=(\w+)", each["protocolInfo"])
        each["protocolInfo"] = ":".join([*each["protocolInfo"].split(":")[:3], profile[1] if profile else ""])
        del each["extras"]
    return didl.differences({name: expected.get(name) for name in TEXTS} | {"resources": expected["resources"]},
                            seen | {"resources": [resource(each) for each in item.get_resources()]})


def resource(seen: Any) -> didl.Object:
    protocol = seen.get_protocol_info()
    numbers = {name: getattr(seen, getter)() for name, getter in NUMBERS.items()}
    texts = {"uri": seen.get_uri(), "resolution": f"{seen.get_width()}x{seen.get_height()}".replace("0x0", ""),
             "protocolInfo": ":".join([protocol.get_protocol(), "*", protocol.get_mime_type(),
                                       protocol.get_dlna_profile() or ""])}
    known = {name: value for name, value in (texts | numbers).items() if value not in (None, "", 0, -1)}
    return known | ({"bitRate": known["bitRate"] * 8} if "bitRate" in known else {})


def introspect(folder: Path, port: int) -> dict[str, dict[str, str | None]]:
    """Serves the device description in a folder, finds it by SSDP, and reads the one service description there: of each
    action the arguments, each with the type of its state variable, None without one."""
    context = GUPnP.Context.new_full("dev0", None, port, GSSDP.UDAVersion.VERSION_1_0)
    device = GUPnP.RootDevice.new(context, "description.xml", str(folder))
    device.set_available(True)
    seen: dict[str, dict[str, str | None]] = {}
    loop = GLib.MainLoop()

    def on_introspection(service: Any, answer: Any) -> None:
        introspection = service.introspect_finish(answer)
        for action in introspection.list_actions():
            seen[action.name] = {}
            for argument in action.arguments:
                variable = introspection.get_state_variable(argument.related_state_variable)
                seen[action.name][argument.name] = variable and variable.type.name
        loop.quit()

    def on_device(_: Any, proxy: Any) -> None:
        if proxy.get_udn() == device.get_udn():
            for service in proxy.list_services():
                if (folder / f'{service.get_id().split(":")[-1]}.xml').exists():
                    service.introspect_async(None, on_introspection)

    finder = GUPnP.ControlPoint.new(context, device.get_device_type())
    finder.connect("device-proxy-available", on_device)
    finder.set_active(True)
    GLib.timeout_add_seconds(20, loop.quit)
    loop.run()
    device.set_available(False)
    return seen
