"""reach_test.py KALVO: who reaches a server and under which name, encrypted, behind a proxy, and with half a request."""

import http.client
import os
import re
import socket
import ssl
import subprocess
import sys
import time
import unittest

import cases
from serving import Answer, Serving, wait_until

KALVO = sys.argv.pop()
FILES = {"Default.asp": "home", "SignIn.asp": "sign in",
         "who.asp": '<%= Request.ServerVariables("REMOTE_ADDR") %>|<%= Request.ServerVariables("HTTPS") %>',
         "form.asp": '<%= String(Request.Form("x")).length %>'}


def raw(server, text, source="127.0.0.1"):
    """What the server answers to some bytes, to their end."""
    with socket.create_connection(("127.0.0.1", server.port), 20, (source, 0)) as connection:
        connection.sendall(text if isinstance(text, bytes) else text.encode())
        answer = b""
        while piece := connection.recv(65536):
            answer += piece
    return answer.decode("utf-8", "replace")


def status_of(answer):
    return int(answer.split(" ", 2)[1])


class Hosts(unittest.TestCase):
    def assert_known(self, server, known, unknown):
        for host in known:
            with self.subTest(host):
                self.assertEqual(server.get("Default.asp", headers={"Host": host}).text, "home")
        for host in unknown:
            with self.subTest(host):
                answer = server.get("Default.asp", headers={"Host": host})
                self.assertIn(answer.status, (400, 421))
                self.assertNotIn("home", answer.text)
                self.assertIn("<h1>", answer.text)

    def test_a_server_on_loopback_is_known_by_this_machines_names(self):
        with Serving(KALVO, FILES, "workers = 1") as server:
            port = server.port
            self.assert_known(server, ["localhost", f"localhost:{port}", "LOCALHOST", f"127.0.0.1:{port}", "[::1]:80"],
                              ["evil.example", f"evil.example:{port}", "127.0.0.2", "127.0.0.1.evil.example", "xlocalhost",
                               "localhost.evil.example", "1", "a b", "", "127x0x0x1"])
            self.assertIn(" 421 ", raw(server, "GET http://evil.example/KalvoforExchange/ HTTP/1.1\r\nHost: localhost\r\n"
                                               "Connection: close\r\n\r\n"))
            self.assertIn(" 421 ", raw(server, "GET http://localhost/KalvoforExchange/ HTTP/1.1\r\nHost: evil.example\r\n"
                                               "Connection: close\r\n\r\n"))
            self.assertIn(" 421 ", raw(server, "GET /KalvoforExchange/ HTTP/1.0\r\n\r\n"))
            for path in ("_error/421.html", "KalvoforExchange/none.css", "KalvoforExchange/SignIn.asp", ""):
                answer = server.request("/" + path, headers={"Host": "evil.example"})
                self.assertIn(answer.status, (404, 421), path)

    def test_a_server_has_the_names_of_its_settings(self):
        with Serving(KALVO, FILES, 'workers = 1\nhosts = ["mail.example", "10.1.2.3"]') as server:
            self.assert_known(server, ["mail.example", "MAIL.example:8443", "10.1.2.3"],
                              ["localhost", "127.0.0.1", "mailxexample", "www.mail.example"])


class Encrypted(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.server = Serving(KALVO, FILES, 'workers = 1\ncertificate = "certificate.pem"\ncertificate_key = "key.pem"')
        cls.certificate = os.path.join(cls.server.folder, "certificate.pem")
        subprocess.run(["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj", "/CN=localhost",
                        "-addext", "subjectAltName=DNS:localhost,IP:127.0.0.1", "-out", cls.certificate, "-keyout",
                        os.path.join(cls.server.folder, "key.pem")], check=True, capture_output=True)
        cls.server.start()

    @classmethod
    def tearDownClass(cls):
        cls.server.__exit__(None, None, None)

    def context(self, lowest=ssl.TLSVersion.TLSv1_2, highest=ssl.TLSVersion.TLSv1_3):
        context = ssl.create_default_context(cafile=self.certificate)
        context.set_ciphers("ALL:@SECLEVEL=0")
        context.minimum_version, context.maximum_version = lowest, highest
        return context

    def get(self, page, **more):
        connection = http.client.HTTPSConnection("127.0.0.1", self.server.port, timeout=20, context=self.context(**more))
        try:
            connection.request("GET", "/KalvoforExchange/" + page)
            answer = connection.getresponse()
            return Answer(answer.status, answer.headers, answer.read())
        finally:
            connection.close()

    def test_the_address_says_so(self):
        self.assertEqual(self.server.address, f"https://127.0.0.1:{self.server.port}/KalvoforExchange/")

    def test_pages_know_it_and_browsers_are_told_to_stay(self):
        answer = self.get("who.asp")
        self.assertEqual((answer.status, answer.text), (200, "127.0.0.1|on"))
        for page in ("who.asp", "none.asp", "none.css"):
            self.assertEqual(self.get(page).headers.get_all("Strict-Transport-Security"), ["max-age=31536000"], page)

    def test_old_protocols_are_refused(self):
        self.assertEqual(self.get("who.asp", highest=ssl.TLSVersion.TLSv1_2).status, 200)
        with self.assertRaises((ssl.SSLError, OSError)):
            self.get("who.asp", lowest=ssl.TLSVersion.TLSv1, highest=ssl.TLSVersion.TLSv1_1)

    def test_plain_requests_are_refused(self):
        answer = raw(self.server, f"GET /KalvoforExchange/ HTTP/1.1\r\nHost: 127.0.0.1:{self.server.port}\r\n"
                                  "Connection: close\r\n\r\n")
        self.assertIn(" 400 ", answer.split("\r\n")[0])
        self.assertNotIn("home", answer)


class BehindAProxy(unittest.TestCase):
    FORWARDED = {"X-Forwarded-For": "192.0.2.7", "X-Forwarded-Proto": "https"}

    def test_its_word_is_taken_and_nobody_elses(self):
        with Serving(KALVO, FILES, 'workers = 1\ntrusted_proxy = ["127.0.0.9"]') as server:
            for why, source, headers, seen in [
                    ("the proxy", "127.0.0.9", self.FORWARDED, "192.0.2.7|on"),
                    ("the proxy about a plain visitor", "127.0.0.9",
                     {"X-Forwarded-For": "192.0.2.7", "X-Forwarded-Proto": "http"}, "192.0.2.7|"),
                    ("what a visitor told the proxy", "127.0.0.9", {"X-Forwarded-For": "8.8.8.8, 192.0.2.7"}, "192.0.2.7|"),
                    ("the proxy about nobody", "127.0.0.9", {}, "127.0.0.9|"),
                    ("a stranger", "127.0.0.1", self.FORWARDED, "127.0.0.1|"),
                    ("another stranger", "127.0.0.8", self.FORWARDED, "127.0.0.8|")]:
                with self.subTest(why):
                    self.assertEqual(server.get("who.asp", headers=headers, source=source).text, seen)

    def test_without_one_nobodys_word_is_taken(self):
        with Serving(KALVO, FILES, "workers = 1") as server:
            self.assertEqual(server.get("who.asp", headers=self.FORWARDED).text, "127.0.0.1|")

    def test_nobody_goes_past_it_from_another_machine(self):
        server = Serving(KALVO, FILES)
        with open(os.path.join(server.folder, "users"), "w", encoding="utf-8"):
            pass
        os.chmod(os.path.join(server.folder, "users"), 0o600)
        server.configure('workers = 1\nusers = "users"\nhosts = ["127.0.0.1"]\ntrusted_proxy = ["127.0.0.9"]')
        with open(server.config, encoding="utf-8") as file:
            text = file.read().replace("127.0.0.1:", "0.0.0.0:", 1)
        # The address is every one of this machine; the test speaks to its loopback ones alone.
        with open(server.config, "w", encoding="utf-8") as file:
            file.write(text)
        with server:
            self.assertEqual(server.get("SignIn.asp", source="127.0.0.9").text, "sign in")
            self.assertEqual(server.get("SignIn.asp").status, 403)
            self.assertIn("<h1>", server.get("SignIn.asp").text)


class HalfRequests(unittest.TestCase):
    def test_half_a_head_is_given_up_after_seconds(self):
        with Serving(KALVO, FILES, "workers = 1") as server:
            begun = time.monotonic()
            answer = raw(server, "GET /KalvoforExchange/ HTTP/1.1\r\nHost: x\r\n")
            self.assertIn(status_of(answer) if answer else 408, (408,))
            self.assertLess(time.monotonic() - begun, 14)

    def test_an_address_has_a_share_of_the_connections(self):
        with Serving(KALVO, FILES, "workers = 1\naddress_connections = 8") as server:
            half = f"POST /KalvoforExchange/form.asp HTTP/1.1\r\nHost: 127.0.0.1:{server.port}\r\nContent-Length: 9\r\n\r\nx"
            open_ones = [socket.create_connection(("127.0.0.1", server.port), 10, ("127.0.0.5", 0)) for _ in range(12)]
            for connection in open_ones:
                connection.sendall(half.encode())
            # Those beyond the share are answered at once, the others wait for their bodies.
            wait_until("some are refused", lambda: sum(self.is_refused(c) for c in open_ones) >= 4)
            self.assertEqual(server.get("Default.asp").text, "home", "another address has its own share")
            self.assertEqual(sum(self.is_refused(c) for c in open_ones), 4)
            for connection in open_ones:
                connection.close()

    @staticmethod
    def is_refused(connection):
        connection.setblocking(False)
        try:
            return b" 503 " in connection.recv(100, socket.MSG_PEEK)
        except BlockingIOError:
            return False

    def test_a_slow_body_holds_no_worker_and_is_given_up(self):
        with Serving(KALVO, FILES, "workers = 1") as server:
            begun = time.monotonic()
            with socket.create_connection(("127.0.0.1", server.port), 20) as slow:
                slow.sendall(f"POST /KalvoforExchange/form.asp HTTP/1.1\r\nHost: 127.0.0.1:{server.port}\r\n"
                             "Content-Type: application/x-www-form-urlencoded\r\nContent-Length: 9\r\n\r\nx=".encode())
                self.assertEqual(server.get("Default.asp").text, "home", "the one worker is free")
                answer = slow.recv(1000).decode()
            self.assertIn(status_of(answer) if answer else 408, (408,))
            self.assertLess(time.monotonic() - begun, 14)

    def test_a_flood_does_not_grow_the_log_of_nginx(self):
        with Serving(KALVO, FILES, "workers = 1") as server:
            log = os.path.join(server.folder, "run", "nginx.log")
            before = os.path.getsize(log)
            for _ in range(100):
                raw(server, "nonsense\r\n\r\n")
                raw(server, "GET /KalvoforExchange/ HTTP/1.1\r\nHost: evil\r\nConnection: close\r\n\r\n")
            self.assertEqual(os.path.getsize(log), before)
            with open(log, "a", encoding="utf-8") as file:
                file.write("x" * (5 << 20))
            wait_until("it begins anew", lambda: os.path.exists(log) and os.path.getsize(log) < 1000)
            self.assertGreaterEqual(os.path.getsize(log + ".old"), 5 << 20)


class ToSignIn(unittest.TestCase):
    def test_is_asked_for_a_few_times_a_second(self):
        server = Serving(KALVO, FILES, 'workers = 2\nusers = "users"')
        with open(os.path.join(server.folder, "users"), "w", encoding="utf-8"):
            pass
        os.chmod(os.path.join(server.folder, "users"), 0o600)
        with server:
            ask = (f"POST /KalvoforExchange/SignIn.asp HTTP/1.1\r\nHost: 127.0.0.1:{server.port}\r\n"
                   "Content-Length: 0\r\n\r\n")
            statuses = re.findall(r"^HTTP/1.1 (\d+)", raw(server, ask * 99 + ask.replace("\r\n\r\n", "\r\nConnection: close\r\n\r\n")),
                                  re.MULTILINE)
            self.assertEqual(len(statuses), 100)
            self.assertGreater(statuses.count("503"), 20)
            self.assertGreaterEqual(statuses.count("200"), 20)
            self.assertEqual(server.get("SignIn.asp").text, "sign in", "the page itself is there")


if __name__ == "__main__":
    cases.main()
