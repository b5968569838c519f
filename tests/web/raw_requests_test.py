"""raw_requests_test.py KALVO: requests that no browser sends. Each is refused or harmless, and the server goes on."""

import os
import socket
import subprocess
import sys
import unittest

import cases
from serving import Serving

KALVO = sys.argv.pop()
FILES = {"Default.asp": "the secret home", "SignIn.asp": "sign in", "form.asp": 'the secret <%= Request.Form("x") %>',
         "Tasks/Default.asp": "the secret tasks", "Include/header.inc": "the secret include", ".git/config": "secret",
         "kalvo.toml": "secret", "users": "secret", "x.asp.old": "secret", "image.gif": b"GIF89a", "style.css": "body {}"}
SITE = "/KalvoforExchange/"


def get(path, *headers, version="HTTP/1.1", method="GET"):
    lines = [f"{method} {path} {version}", "Host: localhost", *headers, "Connection: close"]
    return "\r\n".join(lines) + "\r\n\r\n"


def post(body, *headers):
    return get(SITE + "SignIn.asp", "Content-Type: application/x-www-form-urlencoded", *headers, method="POST") + body


def lengths():
    for length in ("-1", "+5", "0x5", "5 5", "5,5", "5;", "99999999999999999999", "18446744073709551617", "abc", "1e3"):
        yield f"a length of {length!r}", post("x=1&y", f"Content-Length: {length}"), {400, 413}
    yield "two lengths", post("x=1&y", "Content-Length: 5", "Content-Length: 6"), {400}
    yield "one length twice", post("x=1&y", "Content-Length: 5", "Content-Length: 5"), {400}
    yield "more than is taken", post("", "Content-Length: 2000000"), {413}
    yield "more than a sign-in may send", post("", "Content-Length: 10000"), {413}


def codings():
    yield "a length and chunks", post("0\r\n\r\n", "Content-Length: 5", "Transfer-Encoding: chunked"), {400}
    yield "chunks and a length", post("0\r\n\r\n", "Transfer-Encoding: chunked", "Content-Length: 5"), {400}
    for coding in ("identity", "gzip", "xchunked", "chunked, chunked", "chunked, identity", "gzip, chunked", "chunke", "\x0bchunked",
                   "chunked;x=1", "\"chunked\""):
        yield f"the coding {coding!r}", post("0\r\n\r\n", f"Transfer-Encoding: {coding}"), {400, 501}
    yield "two codings", post("0\r\n\r\n", "Transfer-Encoding: chunked", "Transfer-Encoding: chunked"), {400}
    yield "chunks of version 1.0", post("0\r\n\r\n", "Transfer-Encoding: chunked").replace("HTTP/1.1", "HTTP/1.0"), {400, 421, 501}
    for chunk in ("z\r\nx=1\r\n0\r\n\r\n", "-1\r\nx\r\n0\r\n\r\n", "ffffffffffffffffff\r\nx\r\n", "3\r\nx=1y\r\n0\r\n\r\n",
                  "\r\n\r\n", ";x\r\n\r\n", "0x3\r\nx=1\r\n0\r\n\r\n", "+3\r\nx=1\r\n0\r\n\r\n"):
        yield f"the chunk {chunk[:12]!r}", post(chunk, "Transfer-Encoding: chunked"), {400, 413}


def hosts():
    for host in ("", "evil.example", "localhost.evil.example", "localhost@evil.example", "evil.example:80", "local host", "localhost/",
                 "localhost\\x", "localhost\x00", "localhost:port", "localhost:80:80", "..", "a" * 5000, "[::1", "[evil]", "{x}",
                 "<script>", "127.0.0.2", "2130706433", "0x7f.1", "localhost,evil.example", "localhost?", "localhost#"):
        yield f"the host {host[:20]!r}", get(SITE, "").replace("Host: localhost\r\n\r\n", f"Host: {host}\r\n"), {400, 414, 421, 431}
    yield "no host", "GET / HTTP/1.1\r\nConnection: close\r\n\r\n", {400}
    yield "two hosts", get(SITE, "Host: localhost"), {400}
    yield "two hosts, one strange", get(SITE, "Host: evil.example"), {400}
    for target in ("http://evil.example/KalvoforExchange/", "https://evil.example/", "http://localhost@evil.example/", "//evil.example/"):
        yield f"the target {target}", get(target), {400, 404, 421}


def heads():
    for line in ("X: a\r\n folded", "X\x00: a", "X: a\x00b", " X: a", "X : a", "X: a\rY: b", ": a", "X", "X\x7f: a", "X-\xff: a", "X(: a",
                 "Content_Length: 5", "Transfer_Encoding: chunked", "Upgrade: h2c", "Expect: 200-maybe", "Range: bytes=0-0,-1",
                 "If-Modified-Since: yesterday", "Accept-Encoding: " + "gzip," * 1000, "X-Forwarded-Host: evil.example",
                 "X-Original-URL: /KalvoforExchange/Tasks/", "X-Rewrite-URL: /KalvoforExchange/Tasks/", "X-HTTP-Method-Override: DELETE",
                 "Proxy: http://evil.example", "KALVO_PAGE: /Default.asp", "KALVO-PAGE: /Default.asp", "Logon-User: root",
                 "Remote-User: root", "X-Remote-User: root", "Script-Name: /x", "Path-Info: /x", "Document-Root: /", "Https: on"):
        yield f"the line {line[:24]!r}", get(SITE, line), {302, 400}
    yield "a header of 40 KB", get(SITE, "X: " + "a" * 40_000), {400, 431}
    yield "a thousand headers", get(SITE, *(f"X-{i}: {'a' * 60}" for i in range(1000))), {400, 431}
    yield "a thousand cookies", get(SITE, "Cookie: " + "; ".join(f"c{i}=1" for i in range(1000))), {302, 400, 431}
    yield "cookies that share a name", get(SITE, "Cookie: " + "; ".join(["KalvoSession=x"] * 500)), {302, 400}


def methods():
    for method in ("PUT", "DELETE", "OPTIONS", "TRACE", "CONNECT", "PATCH", "PROPFIND", "MKCOL", "COPY", "MOVE", "LOCK", "SEARCH", "DEBUG",
                   "TRACK", "get", "GETT", "G", "GET\x00", "G ET", "<>", "P0ST"):
        yield f"the method {method!r}", get(SITE, method=method), {400, 405}


def versions():
    for version in ("HTTP/0.9", "HTTP/1.2", "HTTP/2.0", "HTTP/9.9", "HTTP/1.", "HTTP/x", "http/1.1", "HTTPS/1.1", "HTTP/1.1 x", "HTTP/11111.1",
                    "FTP/1.0"):
        yield f"the version {version}", get(SITE, version=version), {302, 400, 405, 505}
    yield "the beginning of another protocol", "PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n", {400, 405, 421, 505}
    yield "an encrypted greeting", "\x16\x03\x01\x02\x00\x01\x00\x01\xfc\x03\x03" + "x" * 100 + "\r\n\r\n", {400}
    yield "nothing but ends of lines", "\r\n" * 100 + get(SITE), {302, 400}
    yield "no method", " / HTTP/1.1\r\n\r\n", {400}
    yield "no target", "GET  HTTP/1.1\r\nHost: localhost\r\n\r\n", {400}
    yield "a star", get("*"), {400}
    yield "no slash", get("KalvoforExchange/"), {400}


def addresses():
    paths = ["Include/header.inc", "Include/HEADER.INC", "Include/header.inc%00.asp", "Include/header.inc%2easp", ".git/config",
             ".git%2fconfig", "kalvo.toml", "users", "x.asp.old", "Default.asp.", "Default.asp%20", "Default.asp%2e", "Default.asp::$DATA",
             "Default.asp;.gif", "Default.ASP/x", "Default.asp%00", "Default.asp%0a", "Default.asp%0d%0aX:y", "..%2fkalvo.toml",
             "..%5ckalvo.toml", "%2e%2e/kalvo.toml", "%2e%2e%2f%2e%2e%2fetc%2fpasswd", "../../etc/passwd", "....//etc/passwd",
             "%252e%252e/kalvo.toml", "%c0%ae%c0%ae/kalvo.toml", "%uff0e%uff0e/x", "\\..\\kalvo.toml", "Tasks\\Default.asp",
             "SignIn.asp%2f..%2fTasks/Default.asp", "SignIn.asp/../Tasks/Default.asp", "SignIn.asp/Tasks/Default.asp", "./Default.asp/.",
             "%ff%fe.asp", "%80.asp", "%", "%2", "%zz", "Tasks", "Tasks//Default.asp", "_error/404.html", "a" * 20_000, "a/" * 3000,
             "image.gif/Default.asp", "Default.asp/image.gif", "image.gif%00.asp", "style.css/../Tasks/Default.asp", "con", "nul.asp",
             "~/x", "?/Default.asp", "#/Default.asp", "%3fx.asp", "%23x.asp"]
    for path in paths:
        yield f"the address {path[:24]}", get(SITE + path), {301, 302, 400, 404, 414}
    for path in ("/_error/404.html", "/../etc/passwd", "/etc/passwd", "/.git/config", "/kalvo.db", "/kalvoforexchange/Default.asp", "//",
                 "/%2f", "/KalvoforExchange%2fDefault.asp", "/KalvoforExchange;/Default.asp", "/nginx_status", "/server-status",
                 "/cgi-bin/test", "/favicon.ico"):
        yield f"the address {path}", get(path), {301, 302, 400, 404}


REQUESTS = [request for kind in (lengths, codings, hosts, heads, methods, versions, addresses) for request in kind()]


class RawRequests(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.server = Serving(KALVO, FILES, 'workers = 2\nusers = "users-file"')
        subprocess.run([KALVO, "passwd", "--users", os.path.join(cls.server.folder, "users-file"), "alice"],
                       input="correct horse battery\n", text=True, capture_output=True, check=True)
        cls.server.start()

    @classmethod
    def tearDownClass(cls):
        cls.server.__exit__(None, None, None)

    def answer(self, request):
        with socket.create_connection(("127.0.0.1", self.server.port), 20) as connection:
            try:
                connection.sendall(request.encode("latin-1"))
            except (BrokenPipeError, ConnectionResetError):
                pass  # refused before all of it was sent
            answer = b""
            try:
                while piece := connection.recv(65536):
                    answer += piece
            except ConnectionResetError:
                pass
        return answer.decode("latin-1")

    def test_are_refused_or_harmless(self):
        workers = self.server.workers()
        self.assertGreaterEqual(len(REQUESTS), 200)
        for why, request, expected in REQUESTS:
            with self.subTest(why):
                answer = self.answer(request)
                self.assertRegex(answer, r"^HTTP/1\.[01] \d{3} |^<", why)
                self.assertNotIn("secret", answer)
                self.assertNotIn("evil.example", answer)
                if answer.startswith("HTTP"):
                    self.assertIn(int(answer.split(" ", 2)[1]), expected)
        self.assertEqual(self.server.workers(), workers, "no worker was lost")
        self.assertNotIn("died", self.server.log())
        self.assertEqual(self.server.get("SignIn.asp").text, "sign in")

    def test_one_after_another_are_as_many(self):
        # Whoever smuggles a second request into the first one's body is answered once.
        smuggled = get(SITE + "style.css")
        answer = self.answer(post(smuggled, f"Content-Length: {len(smuggled)}"))
        self.assertEqual(answer.count("HTTP/1.1 "), 1)
        self.assertNotIn("body {}", answer)
        two = get(SITE + "style.css").replace("Connection: close\r\n", "") + get(SITE + "image.gif")
        self.assertEqual(self.answer(two).count("HTTP/1.1 200 "), 2)


if __name__ == "__main__":
    cases.main()
