"""A packet engine's side of the wire, as far as these tests need it. Python's standard library only."""

import contextlib
import pathlib
import socket
import struct
import threading

HEADER = struct.Struct("<B3xBxBx10s10sII")


def log_text(folder):
    """Everything in the traffic logs of a program folder."""
    return b"".join(path.read_bytes() for path in sorted(pathlib.Path(folder).glob("LOGS/*.TXT")))


def frame(kind, data=b"", call_from=b"", call_to=b"", port=0):
    return HEADER.pack(port, ord(kind), 0, call_from, call_to, len(data), 0) + data


class Engine:
    """Listens on a port of the loopback interface and answers like an engine with one radio port."""

    def __init__(self, port, address="127.0.0.1"):
        self._server = socket.create_server((address, port))
        self._lock = threading.Lock()
        self._clients = []
        self._monitoring = []
        self.received = b""
        self.connections = 0

    def __enter__(self):
        threading.Thread(target=self._accept, daemon=True).start()
        return self

    def __exit__(self, *_):
        with contextlib.suppress(OSError):
            self._server.shutdown(socket.SHUT_RDWR)
        self._server.close()
        with self._lock:
            for client in self._clients:
                with contextlib.suppress(OSError):
                    client.shutdown(socket.SHUT_RDWR)
                client.close()

    def monitoring(self):
        return bool(self._monitoring)

    def heard(self, source, text):
        data = b" 1:Fm %s To CQ <UI pid=F0 Len=%d >[12:00:00]\r%s\r\0" % (source, len(text), text)
        self.raw(frame("U", data, source, b"CQ"))

    def raw(self, data):
        for client in list(self._monitoring):
            try:
                client.sendall(data)
            except OSError:
                self._monitoring.remove(client)

    def _accept(self):
        with contextlib.suppress(OSError):
            while True:
                client, _ = self._server.accept()
                self.connections += 1
                with self._lock:
                    self._clients.append(client)
                threading.Thread(target=self._serve, args=(client,), daemon=True).start()

    def _serve(self, client):
        waiting = b""
        with contextlib.suppress(OSError):
            while data := client.recv(65536):
                self.received += data
                waiting += data
                while len(waiting) >= HEADER.size:
                    _, kind, _, _, _, length, _ = HEADER.unpack_from(waiting)
                    if len(waiting) < HEADER.size + length:
                        break
                    waiting = waiting[HEADER.size + length:]
                    if chr(kind) == "R":
                        client.sendall(frame("R", struct.pack("<HHHH", 2005, 0, 127, 0)))
                    elif chr(kind) == "G":
                        client.sendall(frame("G", b"1;Port1 simulated;\0"))
                    elif chr(kind) == "m":
                        self._monitoring.append(client)
        if client in self._monitoring:
            self._monitoring.remove(client)
