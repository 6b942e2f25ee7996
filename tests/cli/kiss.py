"""A KISS TNC on the loopback, and what it takes to write its frames."""

import socket
import struct
import threading

import rig

FEND, FESC, TFEND, TFESC = b"\xc0", b"\xdb", b"\xdc", b"\xdd"


def ax25(source, destination, information):
    """A UI frame without digipeaters, flags and checksum."""
    def address(callsign, last):
        name, _, number = callsign.partition("-")
        return bytes(ord(letter) << 1 for letter in name.ljust(6)) + bytes([0x60 | int(number or 0) << 1 | last])
    return address(destination, 0) + address(source, 1) + b"\x03\xf0" + information


def framed(data, command=0):
    """A KISS frame between two marks."""
    escaped = (bytes([command]) + data).replace(FESC, FESC + TFESC).replace(FEND, FESC + TFEND)
    return FEND + escaped + FEND


def recorded(utc, data):
    """A frame of a recording, its time before it; `utc` in milliseconds."""
    return framed(struct.pack(">Q", utc), 9) + framed(data)


class Tnc:
    """Sends whoever is connected what the test says."""

    def __init__(self):
        self.port = rig.free_port()
        self._clients = []
        self._lock = threading.Lock()
        self.start()

    def start(self):
        self._server = socket.create_server(("127.0.0.1", self.port))
        threading.Thread(target=self._accept, args=(self._server,), daemon=True).start()

    def _accept(self, server):
        while True:
            try:
                client, _ = server.accept()
            except OSError:
                return
            with self._lock:
                self._clients.append(client)

    def connected(self):
        with self._lock:
            return len(self._clients)

    def send(self, *frames):
        """AX.25 frames, to every program that is connected."""
        with self._lock:
            for client in self._clients:
                client.sendall(b"".join(framed(frame) for frame in frames))

    def stop(self):
        """Closes the port and every connection."""
        self._server.shutdown(socket.SHUT_RDWR)
        self._server.close()
        with self._lock:
            for client in self._clients:
                client.close()
            self._clients.clear()
