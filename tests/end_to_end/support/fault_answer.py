"""One answer of fault_server.py, as a test asked for it."""


class Answer:
    def __init__(self, arguments):
        values = dict(argument.split("=", 1) for argument in arguments)
        self.status = int(values.pop("status", 200))
        self.location = values.pop("location", None)
        body = values.pop("body", None)
        text = values.pop("text", "").encode("latin-1") * int(values.pop("times", 1))
        self.body = open(body, "rb").read() if body else text
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
