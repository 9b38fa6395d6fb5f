"""What gupnp and gupnp-av make of what the library writes."""

import re
from pathlib import Path
from typing import Any

import gi

gi.require_version("GSSDP", "1.6")
gi.require_version("GUPnP", "1.6")
gi.require_version("GUPnPAV", "1.0")
from gi.repository import GLib, GSSDP, GUPnP, GUPnPAV  # noqa: E402

import didl  # noqa: E402


def seen_by_gupnp(text: str) -> didl.Object:
    """An object's texts and resources, read by gupnp-av, as didl.Reader reads them."""
    found: list[Any] = []
    parser = GUPnPAV.DIDLLiteParser()
    parser.connect("object-available", lambda _, each: found.append(each))
    parser.parse_didl(text)
    [item] = found
    texts = {"id": item.get_id(), "parentId": item.get_parent_id(), "title": item.get_title(), "class": item.get_upnp_class(),
             "genre": item.get_genre(), "album": item.get_album(), "date": item.get_date()}
    return {name: value for name, value in texts.items() if value} | {"resources": list(map(resource, item.get_resources()))}


def resource(seen: Any) -> didl.Object:
    protocol = seen.get_protocol_info()
    numbers = {"size": seen.get_size64(), "durationSeconds": seen.get_duration(), "bitRate": seen.get_bitrate() * 8,
               "audioChannels": seen.get_audio_channels(), "colorDepth": seen.get_color_depth()}
    texts = {"uri": seen.get_uri(), "resolution": f"{seen.get_width()}x{seen.get_height()}".replace("0x0", ""),
             "protocolInfo": f"{protocol.get_protocol()}:*:{protocol.get_mime_type()}:{protocol.get_dlna_profile() or ''}"}
    return {name: value for name, value in (texts | numbers).items() if value and value not in (-1, -8)}


def seen_by_lxml(read: didl.Object) -> didl.Object:
    """What gupnp-av knows of an object that didl.Reader has read."""
    kept = ("id", "parentId", "title", "class", "genre", "album", "date")
    resources = [{name: value for name, value in each.items() if name != "extras"} for each in read["resources"]]
    for each in resources:
        profile = re.search(r"DLNA\.ORG_PN=(\w+)", each["protocolInfo"])
        each["protocolInfo"] = ":".join([*each["protocolInfo"].split(":")[:3], profile[1] if profile else ""])
    return {name: value for name, value in read.items() if name in kept} | {"resources": resources}


def new_context(interface: str) -> Any:
    """gupnp takes a port by chance, which can be somebody's."""
    for attempt in range(10):
        try:
            return GUPnP.Context.new_full(interface, None, 0, GSSDP.UDAVersion.VERSION_1_0)
        except GLib.Error as error:
            if attempt == 9:
                raise SystemExit(f"gupnp has no port: {error}") from error
    return None


def introspect(interface: str, folder: Path) -> dict[str, dict[str, str | None]]:
    """Serves the device description in a folder, finds it by SSDP, and reads the one service description there: for each action
    its arguments, each with the type of its state variable, None without one."""
    context = new_context(interface)
    device = GUPnP.RootDevice.new(context, "description.xml", str(folder))
    device.set_available(True)
    seen: dict[str, dict[str, str | None]] = {}
    loop = GLib.MainLoop()

    def on_introspection(service: Any, answer: Any) -> None:
        introspection = service.introspect_finish(answer)
        for action in introspection.list_actions():
            pairs = [(each.name, introspection.get_state_variable(each.related_state_variable)) for each in action.arguments]
            seen[action.name] = {name: variable and variable.type.name for name, variable in pairs}
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
