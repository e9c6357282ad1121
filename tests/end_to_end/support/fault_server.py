#!/usr/bin/python3
"""A TLS server on 127.0.0.1 that gives exactly the answers that a test asks for, faults above all.

Usage: fault_server.py CERTIFICATES PORT

Commands arrive on standard input, one a line; each is answered on standard output by any number of lines and a line
with a single dot. Such a line also says that the server is ready. Words are separated by blanks; one with blanks in it
stands in quotation marks. The server ends with its input.

  answer PATH [KEY=VALUE...]  Expects one more request for PATH and says how it is answered:
      status=N      status code (200)
      location=URL  a Location header
      body=FILE     the body (none)
      length=N      what Content-Length claims; "none" leaves the header out (default: the body's true length)
      chunked=yes   the body in chunks and no Content-Length
      head=stall    nothing is ever answered
      send=N        only the first N bytes of the body are sent (with chunks: and no last chunk)
      piece=N       bytes sent at a time ...
      pause=S       ... with so many seconds between them
      end=close     afterwards: close in good order (default), or
      end=drop      close the connection without the notice of TLS, or
      end=reset     reset the connection, or
      end=stall     leave it open and silent
  certificate NAME            The certificate of all further connections, NAME.pem and NAME.key.
  handshake complete|cut|stall  What becomes of further connections: the usual, the end after the client's first
                              message, or silence.
  wait PATH COUNT             Returns when COUNT requests for PATH have arrived.
  release                     Closes all connections that stall.
  requests                    Lists the requests in the order of arrival: method, path, user agent, Cache-Control,
                              separated by tabs.
  problems                    Lists requests that were not expected and answers that nobody asked for.
"""

import collections
import os
import select
import shlex
import socket
import ssl
import struct
import sys
import threading
import time

HEAD_LIMIT = 65536


class Answer:
    def __init__(self, arguments):
        values = dict(argument.split("=", 1) for argument in arguments)
        self.status = int(values.pop("status", 200))
        self.location = values.pop("location", None)
        body = values.pop("body", None)
        self.body = open(body, "rb").read() if body else b""
        self.length = values.pop("length", str(len(self.body)))
        self.chunked = values.pop("chunked", "no") == "yes"
        self.silent = values.pop("head", "") == "stall"
        self.send = int(values.pop("send", len(self.body)))
        self.whole = self.send >= len(self.body)
        self.piece = int(values.pop("piece", 65536))
        self.pause = float(values.pop("pause", 0))
        self.end = values.pop("end", "close")
        if values or self.end not in ("close", "drop", "reset", "stall"):
            raise ValueError(f"no such answer: {arguments}")

    def head(self):
        lines = [f"HTTP/1.1 {self.status} As Asked", "Connection: close"]
        if self.location:
            lines.append(f"Location: {self.location}")
        if self.chunked:
            lines.append("Transfer-Encoding: chunked")
        elif self.length != "none":
            lines.append(f"Content-Length: {self.length}")
        return ("\r\n".join(lines) + "\r\n\r\n").encode()

    def pieces(self):
        sent = self.body[: self.send]
        for start in range(0, len(sent), self.piece):
            piece = sent[start : start + self.piece]
            yield b"%x\r\n%s\r\n" % (len(piece), piece) if self.chunked else piece
        if self.chunked and self.whole:
            yield b"0\r\n\r\n"


class Server:
    def __init__(self, certificates, port):
        self.certificates = certificates
        self.handshake = "complete"
        self.expected = collections.defaultdict(collections.deque)
        self.requests = []
        self.arrived = collections.Counter()
        self.unexpected = []
        self.changed = threading.Condition()
        self.use_certificate("good")
        self.renew_release()
        self.listener = socket.create_server(("127.0.0.1", port), backlog=128)
        threading.Thread(target=self.accept_all, daemon=True).start()

    def use_certificate(self, name):
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(*(os.path.join(self.certificates, name + end) for end in (".pem", ".key")))
        self.context = context

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

    def execute(self, command, arguments):
        if command == "answer":
            with self.changed:
                self.expected[arguments[0]].append(Answer(arguments[1:]))
        elif command == "certificate":
            self.use_certificate(arguments[0])
        elif command == "handshake":
            self.handshake = arguments[0]
        elif command == "wait":
            with self.changed:
                if not self.changed.wait_for(lambda: self.arrived[arguments[0]] >= int(arguments[1]), timeout=30):
                    return ["they did not arrive"]
        elif command == "release":
            released = self.release_writer
            self.renew_release()
            os.close(released)
        elif command == "requests":
            return list(self.requests)
        elif command == "problems":
            missing = [path for path, answers in self.expected.items() for _ in answers]
            return ["unexpected: " + entry for entry in self.unexpected] + ["missing: " + path for path in missing]
        else:
            return ["no such command: " + command]
        return []


def main():
    server = Server(sys.argv[1], int(sys.argv[2]))
    print(".", flush=True)
    for line in sys.stdin:
        command, *arguments = shlex.split(line)
        try:
            replies = server.execute(command, arguments)
        except (OSError, ValueError) as failure:
            replies = [f"failed: {line.strip()}: {failure}"]
        print(*replies, ".", sep="\n", flush=True)


if __name__ == "__main__":
    main()
