"""UPnP devices on the network: finding them (SSDP), reading their descriptions and calling their actions (SOAP).
Answers are read leniently, since devices put into them whatever bytes their files and tags have."""

import contextlib
import html
import http.client
import re
import socket
import sys
import time
from typing import NamedTuple
from urllib.parse import urljoin, urlsplit

SSDP = ("239.255.255.250", 1900)
SERVER = "urn:schemas-upnp-org:device:MediaServer:1"
RENDERER = "urn:schemas-upnp-org:device:MediaRenderer:1"
NAMED = {"lt": b"<", "gt": b">", "amp": b"&", "quot": b'"', "apos": b"'"}
USER_AGENT = "Linux UPnP/1.0 ControlPoint/1.0"


class DeviceError(Exception):
    """What a device answered instead of doing what it was asked, or that it did not answer."""


class Device(NamedTuple):
    name: str
    model: str
    address: str  # IPv4
    services: dict[str, tuple[str, str]]  # types and control URLs, by short names such as "ContentDirectory"

    def service(self, name: str) -> tuple[str, str]:
        if name not in self.services:
            raise DeviceError(f"{self.name} has no {name}")
        return self.services[name]


def fetch(method: str, url: str, body: bytes | None = None, headers: dict[str, str] | None = None) -> tuple[int, bytes]:
    """Makes an HTTP request; returns the status and the body of the answer."""
    try:
        parts = urlsplit(url)
        with contextlib.closing(http.client.HTTPConnection(parts.hostname or "", parts.port or 80, timeout=60)) as connection:
            connection.request(method, parts._replace(scheme="", netloc="").geturl() or "/", body, headers or {})
            answer = connection.getresponse()
            return answer.status, answer.read()
    except (OSError, ValueError, http.client.HTTPException) as error:  # ValueError: an invalid URL or header
        raise DeviceError(f"{url}: {error or type(error).__name__}") from error


def values(document: bytes, name: str) -> list[bytes]:
    """The contents of all elements of a local name, in the document's order, with their markup."""
    pattern = rb"<((?:[\w.-]+:)?%s)(?:\s[^<>]*)?(?:/>|>(.*?)</\1\s*>)" % name.encode()
    return [match.group(2) or b"" for match in re.finditer(pattern, document, re.DOTALL)]


def unescape(content: bytes) -> bytes:
    """A text without its references; bytes that are not UTF-8 stay as they are."""
    def character(match: re.Match[bytes]) -> bytes:
        if (name := match[1].decode()) in NAMED:
            return NAMED[name]
        code = int(name[2:], 16) if name[1] == "x" else int(name[1:])
        return chr(code).encode("utf-8", "replace") if code < 0x110000 else match[0]

    return re.sub(rb"&(#\d{1,7}|#x[0-9a-fA-F]{1,6}|lt|gt|amp|quot|apos);", character, content)


def text(document: bytes, name: str) -> str:
    """The text of the first such element; "" without one."""
    return unescape((values(document, name) or [b""])[0]).decode(errors="replace").strip()


def describe(location: str) -> Device:
    """Reads the description of a device."""
    status, document = fetch("GET", location)
    if status != 200:
        raise DeviceError(f"{location}: HTTP status {status}")
    services = {}
    try:
        for service in values(document, "service"):
            if ":" in (type_name := text(service, "serviceType")):
                services[type_name.split(":")[-2]] = (type_name, urljoin(location, text(service, "controlURL")))
        address = socket.gethostbyname(urlsplit(location).hostname or "")
    except (OSError, ValueError) as error:
        raise DeviceError(f"{location}: {error}") from error
    model = f'{text(document, "modelName")} {text(document, "modelNumber")}'.strip()
    return Device(text(document, "friendlyName"), model, address, services)


def discover(target: str, wait: float = 2) -> list[Device]:
    """Asks the network for devices of a type; returns them by name. One whose description can't be read is passed over."""
    request = (f'M-SEARCH * HTTP/1.1\r\nHOST: {SSDP[0]}:{SSDP[1]}\r\nMAN: "ssdp:discover"\r\n'
               f"MX: {max(1, int(wait) - 1)}\r\nST: {target}\r\n\r\n").encode()
    found: dict[str, Device] = {}
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as sender:
        sender.setsockopt(socket.IPPROTO_IP, socket.IP_MULTICAST_TTL, 4)
        sender.sendto(request, SSDP)
        end = time.monotonic() + wait
        while (left := end - time.monotonic()) > 0:
            sender.settimeout(left)
            try:
                match = re.search(rb"^location:\s*(\S+)", sender.recv(65536), re.IGNORECASE | re.MULTILINE)
                if match and (location := match[1].decode(errors="replace")) not in found:
                    found[location] = describe(location)
            except TimeoutError:
                break
            except DeviceError as error:
                print(f"passed over: {error}", file=sys.stderr)
    return sorted(found.values(), key=lambda device: device.name)


def call(service: tuple[str, str], action: str, user_agent: str = USER_AGENT, **arguments: str | int) -> bytes:
    """Calls an action; returns the answer as it came. Raises DeviceError with what the device says is wrong."""
    type_name, url = service
    inner = "".join(f"<{name}>{html.escape(str(value))}</{name}>" for name, value in arguments.items())
    body = ('<?xml version="1.0"?><s:Envelope xmlns:s="http://schemas.xmlsoap.org/soap/envelope/" '
            's:encodingStyle="http://schemas.xmlsoap.org/soap/encoding/"><s:Body>'
            f'<u:{action} xmlns:u="{type_name}">{inner}</u:{action}></s:Body></s:Envelope>')
    status, answer = fetch("POST", url, body.encode(), {"Content-Type": 'text/xml; charset="utf-8"', "User-Agent": user_agent,
                                                        "SOAPAction": f'"{type_name}#{action}"'})
    if status != 200:
        reason = f'{text(answer, "errorCode")} {text(answer, "errorDescription")}'.strip() or f"HTTP status {status}"
        raise DeviceError(f"{action}: {reason}")
    return answer
