"""floods_test.py KALVO: what a server does for everybody else while somebody floods it."""

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

KALVO = sys.argv.pop()
PASSWORD = "correct horse battery"
FORM = {"Content-Type": "application/x-www-form-urlencoded"}

# A page that takes so many seconds of the processor.
SLOW = "<% var until = Date.now() + {0} * 1000; while (Date.now() < until) {{}} %>done"
FILES = {"Default.asp": "home", "good.asp": "good", "slow.asp": SLOW.format(4), "endless.asp": "<% for (;;) {} %>",
         "SignIn.asp": '<%= Request.ServerVariables("KALVO_SIGN_IN") %>'}


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
            self.assertEqual(server.get("SignOut.asp", method="POST", headers={"Cookie": alice}).status, 303)
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


if __name__ == "__main__":
    cases.main()
