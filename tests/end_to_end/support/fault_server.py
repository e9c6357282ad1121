#!/usr/bin/python3
"""A TLS server on 127.0.0.1 that gives exactly the answers that a test asks for, faults above all.

Usage: fault_server.py CERTIFICATES PORT

Commands arrive on standard input, one a line; each is answered on standard output by any number of lines and a line
with a single dot. Such a line also says that the server is ready. Words are separated by blanks; one with blanks in it
stands in quotation marks. The server ends with its input.

  answer PATH [KEY=VALUE...]  Expects one more request for PATH and says how it is answered:
      status=N      status code (200)
      location=URL  a Location header
      body=FILE     the body (none), or ...
      text=TEXT     ... the body itself, in Latin-1, ...
      times=N       ... so many times
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

import shlex
import sys

sys.dont_write_bytecode = True

from fault_answer import Answer  # noqa: E402
from faulty_host import FaultyHost  # noqa: E402


def execute(host, command, arguments):
    if command == "answer":
        host.expect(arguments[0], Answer(arguments[1:]))
    elif command == "certificate":
        host.use_certificate(arguments[0])
    elif command == "handshake":
        host.handshake = arguments[0]
    elif command == "wait":
        return [] if host.wait_for(arguments[0], int(arguments[1])) else ["they did not arrive"]
    elif command == "release":
        host.release()
    elif command == "requests":
        return list(host.requests)
    elif command == "problems":
        return host.problems()
    else:
        return ["no such command: " + command]
    return []


def main():
    host = FaultyHost(sys.argv[1], int(sys.argv[2]))
    print(".", flush=True)
    for line in sys.stdin:
        command, *arguments = shlex.split(line)
        try:
            replies = execute(host, command, arguments)
        except (OSError, ValueError) as failure:
            replies = [f"failed: {line.strip()}: {failure}"]
        print(*replies, ".", sep="\n", flush=True)


if __name__ == "__main__":
    main()
