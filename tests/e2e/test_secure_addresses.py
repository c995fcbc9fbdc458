"""The system's HTTP client at addresses that are secure, or stop being so: the tests of it that
need a server with a certificate, which can't be had inside a program of the target."""

import contextlib
import http.server
import ssl
import subprocess
import threading

import pytest

from conftest import BINARIES, ENGLISH
from support.prefix import Prefix

TESTS = BINARIES / "platform_tests.exe"


class Handler(http.server.BaseHTTPRequestHandler):
    redirects = {}

    def do_GET(self):
        target = self.redirects.get(self.path)
        body = b"" if target else b"safe"
        self.send_response(302 if target else 200)
        if target:
            self.send_header("Location", target)
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def log_message(self, *_):
        pass


@contextlib.contextmanager
def server(context=None):
    """A server on a port of its own; with a context its addresses are secure."""
    with http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler) as made:
        if context is not None:
            # The handshake is made by the connection's own thread.
            made.socket = context.wrap_socket(made.socket, server_side=True,
                                              do_handshake_on_connect=False)
        thread = threading.Thread(target=made.serve_forever)
        thread.start()
        try:
            yield f"http{'s' if context else ''}://127.0.0.1:{made.server_port}"
        finally:
            made.shutdown()
            thread.join()


def own_certificate(folder):
    key, certificate = folder / "key.pem", folder / "certificate.pem"
    subprocess.run(["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2",
                    "-subj", "/CN=127.0.0.1", "-keyout", key, "-out", certificate],
                   check=True, capture_output=True, timeout=60)
    context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    context.load_cert_chain(certificate, key)
    return context


@pytest.mark.skipif(not TESTS.exists(), reason="the programs of unit tests aren't here")
def test_secure_addresses_are_judged(screen, template, tmp_path):
    with contextlib.closing(Prefix(template, screen.env, ENGLISH)) as prefix, \
            server() as plain, server(own_certificate(tmp_path)) as secure:
        Handler.redirects = {"/redirect": plain + "/x", "/inside": secure + "/x"}
        with open(tmp_path / "output", "w+") as output:
            done = subprocess.run(["wine", str(TESTS), "--gtest_filter=SecureInternet.*"],
                                  env=dict(prefix.env, ZOLVANE_SECURE_SERVER=secure),
                                  stdin=subprocess.DEVNULL, stdout=output, stderr=output, timeout=120)
            output.seek(0)
            text = output.read()
    assert done.returncode == 0, text
    assert "[  PASSED  ] 4 tests." in text, text
