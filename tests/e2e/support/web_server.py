"""An HTTP server on the loopback interface that answers as a test tells it, wrongly too, and notes
what it is asked. A client that has it as its proxy meets it at every http address.

An answer is a list of steps: bytes to send, or what is called with the connection.
"""

import contextlib
import gzip
import socket
import socketserver
import struct
import threading
import time
from dataclasses import dataclass
from urllib.parse import urlsplit

from .program import eventually

LONGEST_HEAD = 1 << 16
PROXY_KEY = "Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings"


@dataclass
class Request:
    method: str
    target: str  # the whole address where the server is asked as a proxy
    headers: dict  # by names in small letters

    @property
    def path(self):
        """Without what a redirect or a mirror may have put after it."""
        return urlsplit(self.target).path


class Connection:
    def __init__(self, client, ended):
        self._client, self._ended = client, ended

    def send(self, data):
        self._client.sendall(data)

    def pause(self, seconds):
        """False once the server is closed."""
        return not self._ended.wait(seconds)

    def reset(self):
        """Ends the connection as a crash does."""
        self._client.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
        self._client.close()

    def wait_for_client(self):
        """Until it gives up, or the server is closed."""
        self._client.settimeout(0.1)
        while not self._ended.is_set():
            try:
                if not self._client.recv(1 << 16):
                    return
            except TimeoutError:
                pass


# Steps.

def reset(connection):
    connection.reset()


def silence(connection):
    connection.wait_for_client()


def drip(data, seconds=1):
    """One byte at a time, a second between two."""
    def send(connection):
        for number in data:
            connection.send(bytes([number]))
            if not connection.pause(seconds):
                return
    return send


def endless(connection):
    while connection.pause(0):
        connection.send(bytes(1 << 16))


class Gate:
    """Holds an answer in its middle until it is opened."""

    def __init__(self):
        self._opened, self._reached = threading.Event(), threading.Event()

    def __call__(self, connection):
        self._reached.set()
        while not self._opened.is_set() and connection.pause(0.02):
            pass

    def wait(self):
        """Until an answer is held here: all that stands before it has been sent."""
        assert self._reached.wait(30), "nobody has come to the gate"

    def open(self):
        self._opened.set()


# Answers.

def head(status="200 OK", **headers):
    """The status line and the headers; a name's underscores stand for hyphens."""
    lines = [f"HTTP/1.1 {status}", "Connection: close"]
    lines += [f"{name.replace('_', '-')}: {value}" for name, value in headers.items()]
    return ("\r\n".join(lines) + "\r\n\r\n").encode("latin-1")


def page(body, status="200 OK", length=None, **headers):
    """`length`: the one that is told, where it isn't the true one."""
    told = len(body) if length is None else length
    return [head(status, Content_Length=told, Content_Type="text/xml", **headers), body]


def page_without_length(body):
    return [head(Content_Type="text/xml"), body]


def page_packed(body):
    return page(gzip.compress(body), Content_Encoding="gzip")


def page_after_headers_of(size, body):
    """As many bytes of headers, in lines of a kilobyte."""
    lines = b"".join(b"X-Filler-%d: %s\r\n" % (number, b"x" * 1000)
                     for number in range(size // 1000))
    first, rest = page(body)[0].split(b"\r\n", 1)
    return [first, b"\r\n", lines, rest, body]


def redirect_to(address):
    return page(b"It has moved.", "302 Found", Location=address)


def held_page(body, gate, first):
    """The first bytes of a page, and the others once the gate is open."""
    return [head(Content_Length=len(body)), body[:first], gate, body[first:]]


NOT_FOUND = page(b"<html><body><h1>404 Not Found</h1></body></html>", "404 Not Found")
ASKS_FOR_PASSWORD = page(b"<html><body>Who is it?</body></html>",
                         "407 Proxy Authentication Required",
                         Proxy_Authenticate='Basic realm="proxy"')


class WebServer:
    def __init__(self):
        self.requests, self.answers = [], {}
        self._ended = threading.Event()
        self._server = socketserver.ThreadingTCPServer(("127.0.0.1", 0), self._handler())
        self._server.daemon_threads = True
        self._server.handle_error = lambda *_: None
        self.port = self._server.server_address[1]
        self._thread = threading.Thread(target=self._server.serve_forever, args=[0.02])
        self._thread.start()

    def _handler(self):
        serve = self._serve

        class Handler(socketserver.BaseRequestHandler):
            def handle(self):
                # The client may go at any time.
                with contextlib.suppress(OSError):
                    serve(self.request)
        return Handler

    def _serve(self, client):
        request = read_request(client)
        if request is None:
            return
        answer = self.answers.get(request.path, NOT_FOUND)
        self.requests.append(request)
        connection = Connection(client, self._ended)
        for step in answer:
            if callable(step):
                step(connection)
            else:
                connection.send(step)

    def address(self, path="/"):
        return f"http://127.0.0.1:{self.port}{path}"

    def asked_for(self, path):
        """The requests for a path."""
        return [request for request in self.requests if request.path == path]

    def wait_for_requests(self, path, count=1):
        return eventually(lambda: self.asked_for(path)[:count] if len(self.asked_for(path)) >= count
                          else None,
                          lambda: f"{count} requests for {path} among {self.requests}")

    def be_proxy(self, desk):
        """All programs of the prefix ask this server from here on."""
        set_proxy(desk, f"127.0.0.1:{self.port}")

    def forget(self):
        """What it has been told and asked."""
        self.requests.clear()
        self.answers.clear()

    def close(self):
        self._ended.set()
        self._server.shutdown()
        self._thread.join()
        self._server.server_close()


def read_request(client):
    """None if the client goes before it has asked for anything."""
    client.settimeout(30)
    data = b""
    while b"\r\n\r\n" not in data:
        more = client.recv(1 << 12)
        if not more or len(data) > LONGEST_HEAD:
            return None
        data += more
    lines = data.split(b"\r\n\r\n")[0].decode("latin-1").split("\r\n")
    method, target, _ = lines[0].split(" ")
    # A blank at the end of a value belongs to it.
    pairs = [line.split(": ", 1) for line in lines[1:]]
    return Request(method, target, {pair[0].lower(): pair[-1] for pair in pairs})


@contextlib.contextmanager
def refusing_port():
    """A port that refuses every connection while this lasts: it is taken, and nobody listens."""
    with socket.socket() as taken:
        taken.bind(("127.0.0.1", 0))
        yield taken.getsockname()[1]


def set_proxy(desk, server):
    """The prefix's proxy; none of a `server` that is empty."""
    desk.driver("reg-create", "HKCU", 64, PROXY_KEY)
    desk.driver("reg-set", "HKCU", 64, PROXY_KEY, "ProxyEnable", 4,
                int(bool(server)).to_bytes(4, "little"))
    desk.driver("reg-set", "HKCU", 64, PROXY_KEY, "ProxyServer", 1, server.encode() + b"\0")
