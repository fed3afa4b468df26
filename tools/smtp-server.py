#!/usr/bin/env python3
"""A real SMTP server for the tests: aiosmtpd on 127.0.0.1 on a free port.

Usage: smtp-server.py DIR
Writes the port it listens on to DIR/port, then stores every message it
accepts as DIR/NNNN.eml (the text as received, dots removed) with its
envelope in DIR/NNNN.env ("MAIL FROM" then one "RCPT TO" per line), and
the number of connections so far in DIR/connections.
Two kinds of recipient play faults: one whose address begins with "refused"
is refused (550), and a message to one beginning with "dropped" has its
connection closed after the data, without a reply.
Secure transport and authentication come from the environment:
SMTP_TLS_CERT and SMTP_TLS_KEY (PEM files) with SMTP_TLS_MODE "implicit"
(TLS from the first byte) or "starttls" (STARTTLS required before mail);
SMTP_AUTH_USER and SMTP_AUTH_PASSWORD make authentication required, over
TLS only (require_starttls besides); SMTP_AUTH_EXCLUDE (say "PLAIN") leaves
mechanisms out of the announcement. Every AUTH attempt is counted in DIR/auth-attempts.
Stops on SIGTERM or SIGINT.
"""
import asyncio
import os
import signal
import ssl
import sys

from aiosmtpd.smtp import SMTP, AuthResult, LoginPassword


class StoreEachMessage:
    def __init__(self, folder):
        self.folder = folder
        self.count = 0
        self.connections = 0

    def connected(self):
        self.connections += 1
        name = os.path.join(self.folder, "connections")
        with open(name + ".tmp", "w") as out:
            out.write("%d\n" % self.connections)
        os.rename(name + ".tmp", name)

    async def handle_RCPT(self, server, session, envelope, address, rcpt_options):
        if address.lower().startswith("refused"):
            return "550 5.1.1 <%s>: Recipient address rejected" % address
        envelope.rcpt_tos.append(address)
        return "250 OK"

    async def handle_DATA(self, server, session, envelope):
        if any(rcpt.lower().startswith("dropped") for rcpt in envelope.rcpt_tos):
            server.transport.close()
            return "421 closing"
        name = os.path.join(self.folder, "%04d" % self.count)
        self.count += 1
        with open(name + ".env.tmp", "w") as env:
            env.write(envelope.mail_from + "\n")
            for rcpt in envelope.rcpt_tos:
                env.write(rcpt + "\n")
        with open(name + ".eml.tmp", "wb") as eml:
            eml.write(envelope.original_content)
        os.rename(name + ".env.tmp", name + ".env")
        os.rename(name + ".eml.tmp", name + ".eml")
        return "250 OK"


class OneUser:
    def __init__(self, folder, user, password):
        self.folder = folder
        self.user = user.encode()
        self.password = password.encode()
        self.attempts = 0

    def __call__(self, server, session, envelope, mechanism, auth_data):
        self.attempts += 1
        with open(os.path.join(self.folder, "auth-attempts"), "w") as out:
            out.write("%d %s\n" % (self.attempts, mechanism))
        ok = isinstance(auth_data, LoginPassword) and \
            auth_data.login == self.user and auth_data.password == self.password
        return AuthResult(success=ok, handled=False)


def tls_context():
    context = ssl.create_default_context(ssl.Purpose.CLIENT_AUTH)
    context.minimum_version = ssl.TLSVersion.TLSv1_2
    context.load_cert_chain(os.environ["SMTP_TLS_CERT"], os.environ["SMTP_TLS_KEY"])
    return context


class CountingSMTP(SMTP):
    def connection_made(self, transport):
        super().connection_made(transport)
        self.event_handler.connected()


async def serve(folder):
    loop = asyncio.get_running_loop()
    handler = StoreEachMessage(folder)
    options = {}
    mode = os.environ.get("SMTP_TLS_MODE", "")
    context = tls_context() if mode else None
    if mode == "starttls":
        options.update(tls_context=context, require_starttls=True)
    if os.environ.get("SMTP_AUTH_USER"):
        options.update(authenticator=OneUser(folder, os.environ["SMTP_AUTH_USER"], os.environ["SMTP_AUTH_PASSWORD"]),
                       auth_required=True,
                       # Over TLS from the first byte the server can't tell, and everything is encrypted anyway.
                       auth_require_tls=mode != "implicit",
                       auth_exclude_mechanism=[m for m in os.environ.get("SMTP_AUTH_EXCLUDE", "").split(",") if m])
    server = await loop.create_server(
        lambda: CountingSMTP(handler, hostname="vonel-test", data_size_limit=200 * 1024 * 1024, **options),
        host="127.0.0.1", port=0, ssl=context if mode == "implicit" else None)
    port = server.sockets[0].getsockname()[1]
    with open(os.path.join(folder, "port.tmp"), "w") as out:
        out.write("%d\n" % port)
    os.rename(os.path.join(folder, "port.tmp"), os.path.join(folder, "port"))
    stop = loop.create_future()
    for sig in (signal.SIGTERM, signal.SIGINT):
        loop.add_signal_handler(sig, stop.set_result, None)
    await stop
    server.close()
    await server.wait_closed()


if __name__ == "__main__":
    asyncio.run(serve(sys.argv[1]))
