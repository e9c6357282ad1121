"""The host behind fault_server.py: takes connections and answers requests as it was told."""
import collections
import os
import select
import socket
import ssl
import struct
import threading
import time

HEAD_LIMIT = 65536


class FaultyHost:
    def __init__(self, certificates, port, address="127.0.0.1"):
        self.certificates = certificates
        self.handshake = "complete"
        self.expected = collections.defaultdict(collections.deque)
        self.requests = []
        self.arrived = collections.Counter()
        self.unexpected = []
        self.changed = threading.Condition()
        self.use_certificate("good")
        self.renew_release()
        self.listener = socket.create_server((address, port), backlog=128)
        threading.Thread(target=self.accept_all, daemon=True).start()

    def use_certificate(self, name):
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(*(os.path.join(self.certificates, name + end) for end in (".pem", ".key")))
        self.context = context

    def expect(self, path, answer):
        with self.changed:
            self.expected[path].append(answer)

    def wait_for(self, path, count):
        """Waits for so many requests for a path; false when they do not arrive in time."""
        with self.changed:
            return self.changed.wait_for(lambda: self.arrived[path] >= count, timeout=30)

    def release(self):
        """Closes all connections that stall."""
        released = self.release_writer
        self.renew_release()
        os.close(released)

    def problems(self):
        missing = [path for path, answers in self.expected.items() for _ in answers]
        return ["unexpected: " + entry for entry in self.unexpected] + ["missing: " + path for path in missing]

    def renew_release(self):
        """Whoever stalls waits for the end of this pipe beside the end of his connection."""
        self.release_reader, self.release_writer = os.pipe()

    def accept_all(self):
        while True:
            connection, _ = self.listener.accept()
            threading.Thread(target=self.serve, args=(connection,), daemon=True).start()

    def serve(self, plain):
        try:
            if self.handshake != "complete":
                plain.recv(HEAD_LIMIT)
                if self.handshake == "stall":
                    self.stall(plain)
                plain.close()
                return
            with self.context.wrap_socket(plain, server_side=True) as connection:
                self.answer(connection)
        except OSError:
            pass  # The client may go. Requests that it did not make are reported as missing.

    def stall(self, connection):
        select.select([connection, self.release_reader], [], [])

    def answer(self, connection):
        head = b""
        while b"\r\n\r\n" not in head:
            block = connection.recv(HEAD_LIMIT)
            if not block:
                return
            head += block
        answer = self.record(head.decode("latin-1"))
        if answer is None:
            return
        if answer.silent:
            self.stall(connection)
            return
        connection.sendall(answer.head())
        for number, piece in enumerate(answer.pieces()):
            if number and answer.pause:
                time.sleep(answer.pause)
            connection.sendall(piece)
        self.finish(connection, answer.end)

    def finish(self, connection, end):
        if end == "stall":
            self.stall(connection)
        elif end == "reset":
            connection.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
        elif end == "close":
            connection.settimeout(0)
            try:
                connection.unwrap()
            except ssl.SSLError:
                pass  # The notice is sent. The server does not wait for the client's.

    def record(self, head):
        request, *lines = head.split("\r\n")
        method, path, _ = request.split(" ", 2)
        fields = {name.lower(): value.strip() for name, _, value in (line.partition(":") for line in lines if line)}
        entry = "\t".join((method, path, fields.get("user-agent", "-"), fields.get("cache-control", "-")))
        with self.changed:
            self.requests.append(entry)
            self.arrived[path] += 1
            answers = self.expected[path]
            answer = answers.popleft() if answers and method == "GET" else None
            if answer is None:
                self.unexpected.append(entry)
            self.changed.notify_all()
        return answer
