"""A server of element files over HTTP, as far as these tests need it. Python's standard library only."""

import contextlib
import itertools
import socket
import threading
import time

LINES = 3000


def sent(number):
    """What the server sends to its request of this number, counted from 0."""
    return (bytes([ord("A") + number % 26]) * 68 + b"\n") * LINES


def stored(number):
    """The same as it is to stand in the Keps folder: one line end is added to every download."""
    return sent(number).replace(b"\n", b"\r\n") + b"\r\n"


class ElementServer:
    """Listens on a port of the loopback interface. `pause` is waited between pieces; `midway` is called once a file,
    when half of it is out."""

    def __init__(self, pause=0.0, midway=None):
        self._server = socket.create_server(("127.0.0.1", 0))
        self.address = f"127.0.0.1:{self._server.getsockname()[1]}/elements/amateur.txt"
        self.pause = pause
        self._midway = midway
        self._numbers = itertools.count()
        self.requests = 0
        self.cut = 0  # files whose receiver went away before their end

    def __enter__(self):
        threading.Thread(target=self._accept, daemon=True).start()
        return self

    def __exit__(self, *_):
        with contextlib.suppress(OSError):
            self._server.shutdown(socket.SHUT_RDWR)
        self._server.close()

    def _accept(self):
        with contextlib.suppress(OSError):
            while True:
                client, _ = self._server.accept()
                threading.Thread(target=self._serve, args=(client,), daemon=True).start()

    def _serve(self, client):
        with client, contextlib.suppress(OSError):
            request = b""
            while b"\r\n\r\n" not in request:
                piece = client.recv(65536)
                if not piece:
                    return
                request += piece
            body = sent(next(self._numbers))
            self.requests += 1
            client.sendall(b"HTTP/1.1 200 OK\r\nContent-Length: %d\r\nConnection: close\r\n\r\n" % len(body))
            size = len(body) // 50
            try:
                for at in range(0, len(body), size):
                    client.sendall(body[at:at + size])
                    if self._midway and at <= len(body) // 2 < at + size:
                        self._midway()
                    time.sleep(self.pause)
            except OSError:
                self.cut += 1
