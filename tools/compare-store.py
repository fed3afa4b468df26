#!/usr/bin/env python3
"""Compares the messages of a Maildir with the files of a Vonel store.

Each stored file without the store's own header lines must equal one
message as a POP3 server serves it (LF as CR LF, a line end added at the
end), and the other way round: so no message is missing, altered or stored
twice. Prints a summary line and a few of the differences; exits with 1
when the two sets differ.
    tools/compare-store.py MAILDIR STORE
"""
import collections
import os
import re
import sys

STORE_LINES = (b"X-Receive-Date:", b"X-Message-Tags:", b"X-Message-Read:", b"X-Message-Replied:",
               b"X-Message-HighPriority:")


def served(data):
    data = re.sub(rb"(?<!\r)\n", b"\r\n", data)
    return data if data.endswith(b"\r\n") else data + b"\r\n"


def without_store_lines(data):
    head, blank, body = data.partition(b"\r\n\r\n")
    if not blank:
        return data
    return b"\r\n".join(line for line in head.split(b"\r\n") if not line.startswith(STORE_LINES)) + blank + body


def files(root, wanted):
    for folder, _, names in os.walk(root):
        for name in names:
            if wanted(name):
                with open(os.path.join(folder, name), "rb") as f:
                    yield f.read()


def main(maildir, store):
    # Dovecot keeps its own files beside the messages, under new/ and cur/ only the mail.
    expected = collections.Counter(
        served(data) for part in ("new", "cur") for data in files(os.path.join(maildir, part), lambda n: True))
    got = collections.Counter(
        without_store_lines(data) for data in files(store, lambda n: n.lower().endswith(".eml")))
    missing, extra = expected - got, got - expected
    print(f"{sum(got.values())} stored, {sum((expected & got).values())} of {sum(expected.values())} equal")
    for data in list(extra)[:3]:
        print("stored but not on the server:", data[:300])
    for data in list(missing)[:3]:
        print("on the server but not stored:", data[:300])
    return 1 if missing or extra else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], sys.argv[2]))
