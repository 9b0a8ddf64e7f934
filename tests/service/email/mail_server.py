#!/usr/bin/env python3
"""A real mail server for the tests: STARTTLS, AUTH LOGIN (ann, secret), messages kept as JSON.

Usage: mail_server.py FOLDER   needs cert.pem and key.pem there, writes "port" and "1.json" ...
"""

import base64
import email
import email.policy
import json
import logging
import os
import ssl
import sys
import time

from aiosmtpd.controller import Controller
from aiosmtpd.smtp import AuthResult


class Keeper:
    def __init__(self, folder):
        self.folder = folder
        self.count = 0

    async def handle_DATA(self, server, session, envelope):
        message = email.message_from_bytes(envelope.content, policy=email.policy.default)
        body = message.get_body(("plain",))
        kept = {
            "secure": str(session.ssl is not None),
            "sender": envelope.mail_from,
            "recipients": ",".join(envelope.rcpt_tos),
            "from": str(message["From"]),
            "to": str(message["To"]),
            "subject": str(message["Subject"]),
            "headers": ",".join(message.keys()),
            "body": body.get_content(),
            "longest": str(max(len(line) for line in envelope.content.split(b"\r\n"))),
        }
        for part in message.iter_attachments():
            bytes_ = part.get_payload(decode=True)
            kept[part.get_filename()] = base64.b64encode(bytes_).decode()
        self.count += 1
        name = os.path.join(self.folder, f"{self.count}.json")
        with open(name + ".new", "w", encoding="utf-8") as file:
            json.dump(kept, file)
        os.rename(name + ".new", name)
        return "250 OK"


def authenticate(server, session, envelope, mechanism, data):
    good = data.login == b"ann" and data.password == b"secret"
    return AuthResult(success=mechanism == "LOGIN" and good, handled=False)


logging.disable(logging.WARNING)  # of what the module itself will do without one day
folder = sys.argv[1]
context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
context.load_cert_chain(os.path.join(folder, "cert.pem"), os.path.join(folder, "key.pem"))


class FreePortController(Controller):
    """Listens on a free port, and only then connects to it to see whether it is up."""

    def _trigger_server(self):
        self.port = self.server.sockets[0].getsockname()[1]
        super()._trigger_server()


controller = FreePortController(
    Keeper(folder), hostname="127.0.0.1", port=0, tls_context=context, require_starttls=True,
    authenticator=authenticate)
controller.start()
with open(os.path.join(folder, "port.new"), "w", encoding="utf-8") as file:
    file.write(str(controller.port))
os.rename(os.path.join(folder, "port.new"), os.path.join(folder, "port"))
while os.getppid() != 1:
    time.sleep(0.2)
