"""floods_test.py KALVO PRINT_NAMES: what a server does for everybody else while somebody floods it."""

import itertools
import os
import socket
import subprocess
import sys
import threading
import time
import unittest
import urllib.parse

import cases
from serving import Serving

PRINT_NAMES = sys.argv.pop()
KALVO = sys.argv.pop()
PASSWORD = "correct horse battery"

# The long form floods as hard as an attacker would, and holds the server to what its operators are promised; the short
# one leaves room for a machine that does other things besides.
LONG = bool(os.environ.get("KALVO_TEST_LONG"))
PAGE_SECONDS, SIGN_IN_SECONDS = (1, 3) if LONG else (6, 12)
FORM = {"Content-Type": "application/x-www-form-urlencoded"}

# A page that takes so many seconds of the processor.
SLOW = "<% var until = Date.now() + {0} * 1000; while (Date.now() < until) {{}} %>done"
FILES = {"Default.asp": "home", "good.asp": "good", "slow.asp": SLOW.format(4), "endless.asp": "<% for (;;) {} %>",
         "form.asp": '<%= Request.Form("x").Count %>', "SignIn.asp": '<%= Request.ServerVariables("KALVO_SIGN_IN") %>'}


class Console(Serving):
    """A console with users, who sign in as a browser does."""

    def __init__(self, settings="", users=("alice", "bob")):
        super().__init__(KALVO, FILES, 'users = "users"\n' + settings)
        for name in users:
            subprocess.run([KALVO, "passwd", "--users", os.path.join(self.folder, "users"), name],
                           input=PASSWORD + "\n", text=True, capture_output=True, check=True)

    def sign_in(self, name, password=PASSWORD, cookie="", source="127.0.0.1"):
        form = urllib.parse.urlencode({"Name": name, "Password": password})
        return self.request("/KalvoforExchange/SignIn.asp", "POST", form, {**FORM, "Cookie": cookie}, source=source)

    def cookie(self, name):
        answer = self.sign_in(name)
        assert answer.status == 303, answer.text
        return answer.headers["Set-Cookie"].split(";")[0]

    def ask(self, page, cookie=""):
        """A connection on which a page was asked for, and nothing was read yet."""
        connection = socket.create_connection(("127.0.0.1", self.port), 30)
        connection.sendall(f"GET /KalvoforExchange/{page} HTTP/1.1\r\nHost: 127.0.0.1:{self.port}\r\n"
                           f"Cookie: {cookie}\r\nConnection: close\r\n\r\n".encode())
        return connection


def status_of(connection):
    with connection:
        answer = b""
        while piece := connection.recv(65536):
            answer += piece
    return int(answer.split(b" ", 2)[1])


class Session(unittest.TestCase):
    def test_one_session_takes_no_more_than_two_workers(self):
        with Console("workers = 4\ntime_limit = 20") as server:
            alice, bob = server.cookie("alice"), server.cookie("bob")
            flood = [server.ask("slow.asp", alice) for _ in range(16)]
            statuses = []
            threads = [threading.Thread(target=lambda c=c: statuses.append(status_of(c))) for c in flood]
            for thread in threads:
                thread.start()
            for _ in range(5):
                self.assertEqual(server.get("good.asp", headers={"Cookie": bob}).text, "good")
            self.assertNotIn(200, statuses, "bob was served before the first page of the flood had ended")
            for thread in threads:
                thread.join()
            self.assertEqual((statuses.count(200), statuses.count(503)), (2, 14), "one ran, one waited")

    def test_a_session_that_is_busy_can_be_signed_out(self):
        with Console("workers = 2\ntime_limit = 20") as server:
            alice = server.cookie("alice")
            busy = server.ask("slow.asp", alice)
            begun = time.monotonic()
            own = {"Cookie": alice, "Origin": f"http://127.0.0.1:{server.port}"}
            self.assertEqual(server.get("SignOut.asp", method="POST", headers=own).status, 303)
            self.assertLess(time.monotonic() - begun, 3.5)
            self.assertEqual(status_of(busy), 200)
            self.assertEqual(server.get("good.asp", headers={"Cookie": alice}).status, 302)


class WrongSignIns(unittest.TestCase):
    def test_strangers_do_not_keep_out_who_is_known(self):
        with Console("workers = 2") as server:
            cookies = server.sign_in("alice").headers.get_all("Set-Cookie")
            device = next(cookie for cookie in cookies if cookie.startswith("KalvoDevice=")).split(";")[0]
            for name in [f"user{number}" for number in range(60)] + ["alice"] * 20:
                server.sign_in(name, "wrong")
            said = [server.sign_in("bob") for _ in range(20)]
            self.assertTrue(any(answer.status == 503 or "wait" in answer.text for answer in said), "the address is slowed")
            self.assertEqual(server.sign_in("alice", cookie=device).status, 303)
            self.assertEqual(server.sign_in("bob", source="127.0.0.2").status, 303)
            self.assertEqual(server.sign_in("alice", source="127.0.0.2").status, 303)

    def test_a_device_is_no_business_of_pages_or_of_other_hosts(self):
        with Console("workers = 1") as server:
            server.write("cookies.asp", '[<%= Request.ServerVariables("HTTP_COOKIE") %>]')
            cookies = server.sign_in("alice").headers.get_all("Set-Cookie")
            self.assertEqual(len(cookies), 2)
            self.assertRegex(cookies[1], r"^KalvoDevice=[0-9a-f]{64}; Path=/KalvoforExchange/SignIn\.asp; "
                                         r"HttpOnly; SameSite=Strict; Max-Age=2419200$")
            both = "; ".join(cookie.split(";")[0] for cookie in cookies)
            self.assertEqual(server.get("cookies.asp", headers={"Cookie": both + "; own=1"}).text, "[own=1]")

    def test_endless_names_do_not_fill_the_log(self):
        with Console("workers = 1") as server:
            server.sign_in("n" * 7000, "wrong")
            self.assertLess(max(map(len, server.log().splitlines())), 400)


class Gone(unittest.TestCase):
    def test_pages_of_visitors_who_have_gone_are_not_made(self):
        with Console("workers = 2\ntime_limit = 60") as server:
            alice, bob = server.cookie("alice"), server.cookie("bob")
            begun = time.monotonic()
            for _ in range(30):
                server.ask("endless.asp", alice).close()
            self.assertEqual(server.get("good.asp", headers={"Cookie": bob}).text, "good")
            # One page of the flood alone would have taken a minute.
            self.assertLess(time.monotonic() - begun, 20)

    def test_a_page_ends_when_its_visitor_goes(self):
        with Console("workers = 1\ntime_limit = 60") as server:
            alice, bob = server.cookie("alice"), server.cookie("bob")
            asked = server.ask("endless.asp", alice)
            time.sleep(0.5)  # so that the page runs; if it does not yet, the test is the one above
            asked.close()
            begun = time.monotonic()
            self.assertEqual(server.get("good.asp", headers={"Cookie": bob}).text, "good")
            self.assertLess(time.monotonic() - begun, 20)
            self.assertNotIn("endless", server.log(), "nobody needs to be told of it")


class Others(unittest.TestCase):
    """Under each flood another user's page comes soon, and who knows the password signs in."""

    def setUp(self):
        self.server = Console("workers = 4\ntime_limit = 20", ("alice", "bob")).start()
        self.addCleanup(self.server.__exit__, None, None, None)
        self.bob = self.server.cookie("bob")
        cookies = self.server.sign_in("alice").headers.get_all("Set-Cookie")
        self.alice, self.device = (cookie.split(";")[0] for cookie in cookies)
        self.over = threading.Event()
        self.threads = []

    def flood(self, send, threads=2):
        """Repeats a step until the test ends."""

        def run():
            while not self.over.is_set():
                try:
                    send()
                except OSError:
                    pass

        self.threads = [threading.Thread(target=run) for _ in range(threads)]
        for thread in self.threads:
            thread.start()
        self.addCleanup(self.stop)

    def stop(self):
        self.over.set()
        for thread in self.threads:
            thread.join()

    def timed(self, limit, ask):
        begun = time.monotonic()
        answer = ask()
        self.assertLess(time.monotonic() - begun, limit)
        return answer

    def assert_others_are_served(self, rounds=3):
        for _ in range(rounds):
            page = self.timed(PAGE_SECONDS, lambda: self.server.get("good.asp", headers={"Cookie": self.bob}))
            self.assertEqual((page.status, page.text), (200, "good"))
        elsewhere = self.timed(SIGN_IN_SECONDS, lambda: self.server.sign_in("alice", source="127.0.0.2"))
        self.assertEqual(elsewhere.status, 303)
        known = self.timed(SIGN_IN_SECONDS, lambda: self.server.sign_in("alice", cookie=self.device))
        self.assertEqual(known.status, 303)

    def raw(self, path, body="", cookie="", length=None):
        return (f"POST /KalvoforExchange/{path} HTTP/1.1\r\nHost: 127.0.0.1:{self.server.port}\r\nCookie: {cookie}\r\n"
                f"Content-Type: application/x-www-form-urlencoded\r\nConnection: close\r\n"
                f"Content-Length: {len(body) if length is None else length}\r\n\r\n").encode("latin-1") + body.encode("latin-1")

    def connect(self):
        return socket.create_connection(("127.0.0.1", self.server.port), 20)

    def test_names_that_share_a_hash(self):
        names = subprocess.run([PRINT_NAMES, "61000" if LONG else "20000"], capture_output=True, check=True).stdout
        body = names.decode("latin-1")
        self.assertGreater(len(body), 300_000)

        def send():
            for path, cookie in (("SignIn.asp", ""), ("good.asp", ""), ("form.asp", self.alice)):
                with self.connect() as connection:
                    connection.sendall(self.raw(path, body, cookie))
                    status_of(connection)

        self.flood(send, 4)
        self.assert_others_are_served()

    def test_wrong_sign_ins(self):
        names = itertools.count()
        self.flood(lambda: self.server.sign_in(f"user{next(names) % 500}", "wrong"))
        self.flood(lambda: self.server.sign_in("bob", "wrong"))
        time.sleep(2)  # so that the address is slowed
        self.assert_others_are_served()

    def test_one_session(self):
        def send():
            flood = [self.server.ask("slow.asp", self.alice) for _ in range(10)]
            for connection in flood:
                status_of(connection)

        self.flood(send)
        time.sleep(0.5)
        self.assert_others_are_served()

    def test_half_heads(self):
        def send():
            half = []
            try:
                for _ in range(1150 if LONG else 300):
                    half.append(self.connect())
                    half[-1].sendall(b"GET /KalvoforExchange/good.asp HTTP/1.1\r\nHost: ")
                self.over.wait(4)
            finally:
                for connection in half:
                    connection.close()

        self.flood(send)
        time.sleep(2 if LONG else 1)
        self.assert_others_are_served()

    def test_slow_bodies(self):
        flood = []
        for _ in range(200 if LONG else 100):
            flood.append(socket.create_connection(("127.0.0.1", self.server.port), 20, ("127.0.0.3", 0)))
            flood[-1].sendall(self.raw("form.asp", "x", self.alice, 100_000))

        def send():
            for connection in flood:
                try:
                    connection.sendall(b"x")
                except OSError:
                    pass  # beyond the share of the address
            self.over.wait(1)

        self.flood(send, 1)
        self.assert_others_are_served()
        for connection in flood:
            connection.close()

    def test_a_full_queue(self):
        def send():
            flood = [self.server.ask("good.asp") for _ in range(100)]
            for connection in flood:
                status_of(connection)

        self.flood(send, 1)
        answers = [self.server.get("good.asp", headers={"Cookie": self.bob}) for _ in range(20)]
        self.assertGreaterEqual([answer.status for answer in answers].count(200), 10)
        self.stop()
        self.assert_others_are_served(1)


if __name__ == "__main__":
    cases.main()
