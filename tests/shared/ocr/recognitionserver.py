"""Stands for the services that recognise text: says how many requests came, and what was wrong with them.

Arguments: none. Prints its port, then a line for each request: "ok", or what is wrong. What is
replied stands in the file REPLY of the current folder: the status in the first line, then the body;
"silent" accepts and says nothing. Signatures are made anew, by hmac and hashlib.
"""

import base64
import email.parser
import hashlib
import hmac
import http.server
import json
import sys
import time


def png_problem(data):
    return None if data[:8] == b"\x89PNG\r\n\x1a\n" else "no PNG"


def check_form(headers, body):
    if headers.get("apikey") != "the key":
        return "apikey is %r" % headers.get("apikey")
    raw = b"Content-Type: " + headers["Content-Type"].encode() + b"\r\n\r\n" + body
    form = email.parser.BytesParser().parsebytes(raw)
    if form.get_content_type() != "multipart/form-data":
        return "not a form: " + form.get_content_type()
    parts = [
        (part["Content-Disposition"], part["Content-Type"], part.get_payload(decode=True))
        for part in form.get_payload()
    ]
    told = ["%s=%s" % (name, data.decode()) for name, _, data in parts[:-1]]
    expected = [
        'form-data; name="scale"=False',
        'form-data; name="isOverlayRequired"=True',
        'form-data; name="detectOrientation"=False',
    ]
    if len(parts) == 5:
        expected.append('form-data; name="language"=ger')
    if told != expected:
        return "parts: %s" % told
    name, kind, picture = parts[-1]
    if name != 'form-data; name="file"; filename="screenshot.png"' or kind != "image/png":
        return "file: %s %s" % (name, kind)
    return png_problem(picture)


def sign(key, text):
    return hmac.new(key, text.encode(), hashlib.sha256).digest()


def check_signature(headers, body):
    names = [name for name in headers.keys() if name.lower().startswith(("content-type", "x-amz", "authorization"))]
    if names != ["Content-Type", "X-Amz-Date", "X-Amz-Target", "Authorization"]:
        return "headers: %s" % names
    date = headers["X-Amz-Date"]
    host = "rekognition.eu-west-1.amazonaws.com"
    signed = "content-type;host;x-amz-date;x-amz-target"
    canonical = (
        "POST\n/\n\ncontent-type:application/x-amz-json-1.1\nhost:%s\nx-amz-date:%s\n"
        "x-amz-target:RekognitionService.DetectText\n\n%s\n%s"
        % (host, date, signed, hashlib.sha256(body).hexdigest())
    )
    scope = date[:8] + "/eu-west-1/rekognition/aws4_request"
    text = "AWS4-HMAC-SHA256\n%s\n%s\n%s" % (date, scope, hashlib.sha256(canonical.encode()).hexdigest())
    key = b"AWS4secret"
    for part in (date[:8], "eu-west-1", "rekognition", "aws4_request"):
        key = sign(key, part)
    expected = "AWS4-HMAC-SHA256 Credential=the id/%s, SignedHeaders=%s, Signature=%s" % (
        scope,
        signed,
        sign(key, text).hex(),
    )
    if headers["Authorization"] != expected:
        return "Authorization is %s instead of %s" % (headers["Authorization"], expected)
    return png_problem(base64.b64decode(json.loads(body)["Image"]["Bytes"]))


class Handler(http.server.BaseHTTPRequestHandler):
    def do_POST(self):
        # Behind a proxy the whole address is the path.
        body = self.rfile.read(int(self.headers["Content-Length"]))
        check = check_signature if "X-Amz-Target" in self.headers else check_form
        print(check(self.headers, body) or "ok", flush=True)
        with open("REPLY", "rb") as file:
            status, _, reply = file.read().partition(b"\n")
        if status == b"silent":
            time.sleep(600)
        self.send_response(int(status))
        self.send_header("Content-Length", str(len(reply)))
        self.end_headers()
        self.wfile.write(reply)

    def log_message(self, *arguments):
        pass


server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
server.daemon_threads = True
print(server.server_address[1], flush=True)
sys.exit(server.serve_forever())
