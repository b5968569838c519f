"""check_attack_test.py KALVO: `kalvo check --attack` finds what is wrong with a careless system, changes nothing there,
takes its time, and finds nothing with our own."""

import http.server
import os
import re
import subprocess
import sys
import tempfile
import threading
import time
import unittest
import urllib.parse

import cases
from serving import Serving, free_port

KALVO = sys.argv.pop()
CONSOLE = os.path.join(os.path.dirname(__file__), "..", "..", "console")


class Careless(http.server.BaseHTTPRequestHandler):
    """Answers everything, and says what it was asked."""
    protocol_version = "HTTP/1.1"
    server_version = "Careless/1.0"
    asked = []

    def answer(self):
        Careless.asked.append((time.monotonic(), self.command, self.path, self.headers.get("Cookie")))
        body = ("<p>" + urllib.parse.unquote(self.path) + "</p>").encode()
        self.send_response(200)
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        if self.command != "HEAD":
            self.wfile.write(body)

    do_GET = do_HEAD = do_POST = do_PUT = do_DELETE = do_TRACE = do_OPTIONS = do_PROPFIND = answer

    def log_message(self, *_):
        pass


def attack(*words, typed=None):
    return subprocess.run([KALVO, "check", "--attack", *words], text=True, capture_output=True, check=False, input=typed,
                          timeout=170)


class Attack(unittest.TestCase):
    def test_finds_what_a_careless_system_lets_through(self):
        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Careless)
        threading.Thread(target=server.serve_forever, daemon=True).start()
        try:
            before = time.monotonic()
            answer = attack(f"http://127.0.0.1:{server.server_port}", "--cookie", "-", typed="KalvoSession=abc\n")
            took = time.monotonic() - before
        finally:
            server.shutdown()
            server.server_close()
        self.assertEqual(answer.returncode, 1, answer.stderr)
        for finding in ("FOUND  headers of the sign-in page: the page may be cached",
                        "FOUND  headers of a file: the header content-security-policy is missing",
                        "FOUND  a page without a sign-in: a page is shown to whoever asks: it is answered 200",
                        "FOUND  an include: it is answered 200",
                        "FOUND  TRACE: it is answered 200",
                        "FOUND  another host's name: it is answered 200",
                        "FOUND  a tag as a parameter's name: text of the address became a tag of the page",
                        "FOUND  Sort of Tasks/TopN.asp: text of the address became a tag of the page"):
            self.assertIn(finding, answer.stdout)
        asked = Careless.asked
        self.assertRegex(answer.stdout, rf"(?m)^{len(asked)} questions, \d+ findings$")
        self.assertGreater(took, 0.099 * (len(asked) - 1))
        self.assertEqual({method for _, method, _, _ in asked},
                         {"GET", "HEAD", "TRACE", "OPTIONS", "PUT", "DELETE", "PROPFIND"})
        for _, method, path, cookie in asked:
            self.assertFalse(cookie == "KalvoSession=abc" and method not in ("GET", "HEAD"), path)
            for number in re.findall(r"(?:MessageId|ContainerId|PublicFolderId)=([^&]*)", path):
                self.assertTrue(set(number) == {"A"} or "kalvo-probe" in number, path)

    def test_stops_when_nobody_answers(self):
        answer = attack(f"http://127.0.0.1:{free_port()}")
        self.assertEqual(answer.returncode, 1)
        self.assertIn("no answer: ", answer.stdout)
        self.assertTrue(answer.stdout.endswith("the rest was not asked\n3 questions, 3 findings\n"), answer.stdout)

    def test_refuses_what_is_no_address(self):
        for words, says in ((["ftp://127.0.0.1/"], "not the address of a console"),
                            (["http://127.0.0.1/elsewhere"], "not the address of a console"),
                            (["http://user@127.0.0.1/"], "not the address of a console"),
                            (["file:///etc/passwd"], "not the address of a console"),
                            ([""], "not the address of a console"),
                            (["http://127.0.0.1", "--cookie", "/dev/null"], "no line to read"),
                            (["http://127.0.0.1", "--config", "x"], "excludes")):
            answer = attack(*words)
            self.assertEqual(answer.returncode, 2, words)
            self.assertIn(says, answer.stderr)

    def test_finds_nothing_with_the_console(self):
        with tempfile.TemporaryDirectory() as folder:
            users = os.path.join(folder, "users")
            subprocess.run([KALVO, "passwd", "--users", users, "alice"], input="correct horse\n", text=True, check=True,
                           stdout=subprocess.DEVNULL)
            with Serving(KALVO, site=CONSOLE, settings=f'users = "{users}"\ndatabase = "sqlite:none.db"') as server:
                form = urllib.parse.urlencode({"Name": "alice", "Password": "correct horse"})
                signed_in = server.request("/KalvoforExchange/SignIn.asp", "POST", form,
                                           {"Content-Type": "application/x-www-form-urlencoded"})
                cookie = signed_in.headers["Set-Cookie"].split(";")[0]
                answer = attack(f"http://127.0.0.1:{server.port}/KalvoforExchange/", "--cookie", "-", typed=cookie + "\n")
        self.assertEqual(answer.stdout.split(" questions, ")[1], "0 findings\n", answer.stdout)
        self.assertEqual(answer.returncode, 0)


if __name__ == "__main__":
    cases.main()
