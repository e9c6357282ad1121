#!/usr/bin/env python3
"""Asks a server on this machine for paths and prints what came, one path a line: status, Cache-Control, Content-Type,
Content-Encoding and the number of bytes, separated by tabs, "-" for a header that is missing.

Usage: get_headers.py HOST PORT PATH...

Waits up to 20 s for the server to accept connections. Certificates are not checked: the updater does that.
"""
import http.client
import ssl
import sys
import time


def connect(host, port):
    deadline = time.monotonic() + 20
    while True:
        connection = http.client.HTTPSConnection(host, port, context=ssl._create_unverified_context(), timeout=20)
        try:
            connection.connect()
            return connection
        except ConnectionRefusedError:
            if time.monotonic() > deadline:
                raise
            time.sleep(0.02)


host, port, *paths = sys.argv[1:]
for path in paths:
    connection = connect(host, int(port))
    connection.request("GET", path, headers={"Accept-Encoding": "gzip"})
    answer = connection.getresponse()
    size = len(answer.read())
    headers = [answer.getheader(name, "-") for name in ("Cache-Control", "Content-Type", "Content-Encoding")]
    print(answer.status, *headers, size, sep="\t")
