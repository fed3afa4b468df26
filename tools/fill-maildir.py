#!/usr/bin/env python3
"""Writes messages START+1..END into a Maildir's new folder for benchmarks:
plain text mail with a few Received lines and bodies of varied length."""
import os
import random
import sys

folder, start, end = sys.argv[1], int(sys.argv[2]), int(sys.argv[3])
random.seed(start)
for i in range(start + 1, end + 1):
    received = "".join(f"Received: from relay{k}.example.net (relay{k}.example.net [10.0.{k}.{i % 250}])\r\n\tby mx.example.org with ESMTP id {i}{k}\r\n" for k in range(random.randint(2, 6)))
    body = "Lorem ipsum dolor sit amet.\r\n" * random.randint(5, 200)
    text = (received + f"From: Sender {i} <sender{i}@example.com>\r\nTo: jo@example.org\r\nSubject: Report number {i}\r\n"
            f"Date: Mon, 23 Nov 2026 10:{i % 60:02d}:00 +0000\r\nMessage-ID: <{i}.bench@example.com>\r\n"
            "MIME-Version: 1.0\r\nContent-Type: text/plain; charset=us-ascii\r\n\r\n" + body)
    with open(os.path.join(folder, f"{i:06d}.bench"), "w", newline="") as f:
        f.write(text)
