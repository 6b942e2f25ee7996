"""A server that takes SiDS requests as a test's script says."""

import contextlib
import http.server
import socket
import threading
import time
import urllib.parse


class Answer:
    """What the server does with a request."""

    def __init__(self, status=201, page="", headers=None, after=0.0, cut=False):
        self.status = status
        self.page = page
        self.headers = headers or {}
        self.after = after  # seconds
        self.cut = cut      # closes the connection without an answer


class SidsServer:
    """Answers the requests by `script`, one after the other, and 201 behind its end. `bodies` has all that came, `taken`
    those that were answered by 201."""

    def __init__(self, context=None):
        self.script = []
        self.bodies = []
        self.taken = []
        self.headers = []
        self.at_once = 0   # requests that were under way at the same time, at most
        self._under_way = 0
        self._connections = set()
        self._lock = threading.Lock()
        self._context = context
        self._server = None
        self.port = 0
        self.start()

    def start(self):
        room = self

        class Handler(http.server.BaseHTTPRequestHandler):
            protocol_version = "HTTP/1.1"

            def setup(self):
                super().setup()
                room._connections.add(self.connection)

            def finish(self):
                room._connections.discard(self.connection)
                super().finish()

            def do_POST(self):  # noqa: N802
                body = self.rfile.read(int(self.headers["Content-Length"]))
                room._take(self, body)

            def log_message(self, *_):
                pass

        class Server(http.server.ThreadingHTTPServer):
            daemon_threads = True

            def handle_error(self, *_):
                pass

        self._server = Server(("127.0.0.1", self.port), Handler)
        self.port = self._server.server_port
        if self._context:
            self._server.socket = self._context.wrap_socket(self._server.socket, server_side=True)
        threading.Thread(target=self._server.serve_forever, args=(0.05,), daemon=True).start()

    def stop(self):
        """Nothing listens any more, and what is connected is cut off."""
        if self._server:
            self._server.shutdown()
            self._server.server_close()
            for connection in list(self._connections):
                with contextlib.suppress(OSError):
                    connection.shutdown(socket.SHUT_RDWR)
            self._server = None

    def _take(self, handler, body):
        with self._lock:
            self._under_way += 1
            self.at_once = max(self.at_once, self._under_way)
            self.bodies.append(body)
            self.headers.append(dict(handler.headers))
            answer = self.script.pop(0) if self.script else Answer()
        time.sleep(answer.after)
        with self._lock:
            self._under_way -= 1
            if answer.status == 201 and not answer.cut:
                self.taken.append(body)
        if answer.cut:
            handler.close_connection = True
            handler.connection.shutdown(socket.SHUT_RDWR)
            return
        page = answer.page.encode()
        handler.send_response(answer.status)
        for name, value in answer.headers.items():
            handler.send_header(name, value)
        handler.send_header("Content-Length", str(len(page)))
        handler.end_headers()
        handler.wfile.write(page)

    @property
    def url(self):
        return f"http{'s' if self._context else ''}://127.0.0.1:{self.port}/api/telemetry/"


def fields(body):
    """The form in a request."""
    return dict(urllib.parse.parse_qsl(body.decode("ascii"), strict_parsing=True))


def frame(body):
    """The AX.25 frame in a request."""
    return bytes.fromhex(fields(body)["frame"])
