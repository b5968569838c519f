"""sign_in_test.py KALVO: signing in and out of a running server, and `kalvo passwd`, as a browser and a user do."""

import os
import pty
import re
import stat
import subprocess
import sys
import tempfile
import termios
import threading
import unittest
import urllib.parse

import cases
from serving import Serving, wait_until

KALVO = sys.argv.pop()
PASSWORD = "correct horse"
WHO = ('<%= Request.ServerVariables("LOGON_USER") %>|<%= Session("KalvoAdministrator") %>|'
       '<%= Session("KalvoDrillDownAuth") %>|<%= Request.Cookies("KalvoSession") %>')
COUNT = ('<% var until = Date.now() + 150, n = Number(Session("n") || 0) + 1; while (Date.now() < until) {}'
         'Session.Value("n", n); %><%= n %>')
CONSOLE = os.path.join(os.path.dirname(__file__), "..", "..", "..", "console")


def passwd(users, *words, password=PASSWORD):
    return subprocess.run([KALVO, "passwd", "--users", users, *words], input=password + "\n", text=True,
                          capture_output=True, check=False)


class SignIn(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        own = {}
        for name in ("SignIn.asp", "Configuration/Password.asp", "Include/Header.inc", "Include/Navigation.inc",
                     "Include/Footer.inc"):
            with open(os.path.join(CONSOLE, name), encoding="utf-8") as file:
                own[name] = file.read()
        cls.server = Serving(KALVO, {**own, "Who.asp": WHO, "Count.asp": COUNT, "Default.asp": "home",
                                     "style.css": "x", "Big.asp": '<% Session.Value("x", Array(70000).join("x")); %>'},
                             'workers = 3\nusers = "users"')
        users = os.path.join(cls.server.folder, "users")
        for words in (["alice", "--administrator", "--drill-down"], ["bob", "--drill-down"], ["carol"], ["dave"]):
            assert passwd(users, *words).returncode == 0
        cls.server.start()

    @classmethod
    def tearDownClass(cls):
        cls.server.__exit__(None)

    def sign_in(self, name, password=PASSWORD, back="", cookie=""):
        form = urllib.parse.urlencode({"Name": name, "Password": password, "Return": back})
        return self.server.request("/KalvoforExchange/SignIn.asp", "POST", form,
                                   {"Content-Type": "application/x-www-form-urlencoded", "Cookie": cookie})

    def cookie(self, name):
        answer = self.sign_in(name)
        self.assertEqual(answer.status, 303)
        return answer.headers["Set-Cookie"].split(";")[0]

    def test_pages_are_for_those_who_signed_in(self):
        answer = self.server.get("Who.asp?x=1")
        self.assertEqual(answer.status, 302)
        self.assertEqual(answer.headers["Location"],
                         "/KalvoforExchange/SignIn.asp?Return=%2FKalvoforExchange%2FWho%2Easp%3Fx%3D1")
        page = self.server.get("SignIn.asp?Return=%2FKalvoforExchange%2FWho.asp%3Fx%3D1")
        self.assertEqual(page.status, 200)
        self.assertIn('name="Return" value="/KalvoforExchange/Who.asp?x=1"', page.text)
        self.assertEqual(self.server.get("style.css").status, 200)

    def test_rights_are_those_of_the_users_file(self):
        for name, rights in (("alice", "Yes|Yes"), ("bob", "|Yes"), ("carol", "|")):
            answer = self.server.get("Who.asp", headers={"Cookie": self.cookie(name)})
            self.assertEqual(answer.text.rstrip("\n"), f"KALVO\\{name}|{rights}|")

    def test_the_browser_is_sent_where_it_wanted_to_go(self):
        self.assertEqual(self.sign_in("bob", back="/KalvoforExchange/Who.asp?x=1").headers["Location"],
                         "/KalvoforExchange/Who.asp?x=1")
        self.assertEqual(self.sign_in("bob", back="//example.org/").headers["Location"], "/KalvoforExchange/")

    def test_a_stranger_may_send_little(self):
        self.assertEqual(self.sign_in("bob", back="x" * 8000).status, 303)
        self.assertEqual(self.sign_in("bob", back="x" * 8200).status, 413)

    def test_a_wrong_password_shows_the_page_again(self):
        answer = self.sign_in("nobody", "wrong", back="/KalvoforExchange/Who.asp")
        self.assertEqual(answer.status, 200)
        self.assertIn("This name and password do not fit.", answer.text)
        self.assertIn('value="/KalvoforExchange/Who.asp"', answer.text)
        self.assertIsNone(answer.headers["Set-Cookie"])

    def test_guessing_is_slowed(self):
        said = [self.sign_in("mallory", "wrong").text for _ in range(12)]
        self.assertRegex(said[-1] + said[-2], r"try again in \d+ seconds")

    def test_cookie_attributes(self):
        cookie = self.sign_in("bob").headers["Set-Cookie"]
        self.assertRegex(cookie, r"^KalvoSession=[0-9a-f]{64}; Path=/KalvoforExchange/; HttpOnly; SameSite=Strict$")

    def test_signing_out_ends_the_session(self):
        cookie = self.cookie("bob")
        answer = self.server.request("/KalvoforExchange/SignOut.asp", "POST", "", {"Cookie": cookie, "Sec-Fetch-Site": "same-origin"})
        self.assertEqual((answer.status, answer.headers["Location"]), (303, "/KalvoforExchange/SignIn.asp"))
        self.assertEqual(self.server.get("Who.asp", headers={"Cookie": cookie}).status, 302)

    def test_pages_of_one_session_run_one_after_another(self):
        cookie = self.cookie("bob")
        answers = []
        threads = [threading.Thread(target=lambda: answers.append(
            self.server.get("Count.asp", headers={"Cookie": cookie}))) for _ in range(6)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        # One runs, one waits; whoever comes beside them is told to come again, and has counted nothing.
        served = sorted(answer.text.strip() for answer in answers if answer.status == 200)
        self.assertEqual(served, [str(number + 1) for number in range(len(served))])
        self.assertGreaterEqual(len(served), 2)
        self.assertEqual({answer.status for answer in answers} - {200}, {503} if len(served) < 6 else set())

    def test_a_session_does_not_grow_without_end(self):
        cookie = self.cookie("carol")
        self.assertEqual(self.server.get("Big.asp", headers={"Cookie": cookie}).status, 500)
        self.assertEqual(self.server.get("Who.asp", headers={"Cookie": cookie}).status, 200)

    def test_hostile_cookies_are_nobody(self):
        for value in ("", "x", "../users", "0" * 64, "0" * 3000, "%00", "KALVO\\alice", "'or'1'='1"):
            answer = self.server.get("Who.asp", headers={"Cookie": "KalvoSession=" + value})
            self.assertEqual(answer.status, 302, value)

    def test_one_command_ends_sessions(self):
        def end(*words):
            return subprocess.run([KALVO, "passwd", "--config", self.server.config, "--end-sessions", *words], text=True,
                                  capture_output=True, check=False)

        def shown(cookie):
            return self.server.get("Who.asp", headers={"Cookie": cookie}).status

        alice, bob = self.cookie("alice"), self.cookie("bob")
        self.assertRegex(end("bob").stdout, r"^ended \d+ sessions? in .*/run/sessions\n$")
        self.assertEqual((shown(alice), shown(bob)), (200, 302))
        self.assertEqual(end().returncode, 0)
        self.assertEqual(shown(alice), 302)
        self.assertEqual(end("--delete").returncode, 2)

    def test_users_change_their_own_password(self):
        page = "/KalvoforExchange/Configuration/Password.asp"

        def change(cookie, old, chosen, again):
            form = urllib.parse.urlencode({"OldPassword": old, "NewPassword": chosen, "RepeatedPassword": again})
            return self.server.request(page, "POST", form,
                                       {"Content-Type": "application/x-www-form-urlencoded", "Cookie": cookie})

        cookie = self.cookie("dave")
        self.assertIn('action="Password.asp"', self.server.request(page, headers={"Cookie": cookie}).text)
        for old, chosen, again, says in (("wrong", "battery staple", "battery staple", "The old password is another one."),
                                         (PASSWORD, "battery staple", "battery stable", "typed in two ways"),
                                         (PASSWORD, "short", "short", "Not taken: a password has at least 12 characters"),
                                         (PASSWORD, "dave1234567890", "dave1234567890", "guessed first")):
            answer = change(cookie, old, chosen, again)
            self.assertEqual(answer.status, 200)
            self.assertIn(says, answer.text)
            self.assertNotIn(chosen, answer.text)
        answer = change(cookie, PASSWORD, "battery %NAME% staple", "battery %NAME% staple")
        self.assertEqual((answer.status, answer.headers["Location"]), (303, page), answer.text)
        fresh = answer.headers["Set-Cookie"].split(";")[0]
        self.assertIn("Your password was changed", self.server.request(page, headers={"Cookie": fresh}).text)
        self.assertIn('action="Password.asp"', self.server.request(page, headers={"Cookie": fresh}).text)
        self.assertEqual(self.server.request(page, headers={"Cookie": cookie}).status, 302)
        self.assertEqual(self.sign_in("dave").status, 200)
        self.assertEqual(self.sign_in("dave", "battery %NAME% staple").status, 303)

    def test_a_user_has_five_sessions(self):
        cookies = [self.cookie("carol") for _ in range(7)]
        shown = [self.server.get("Who.asp", headers={"Cookie": cookie}).status for cookie in cookies]
        self.assertEqual(shown.count(200), 5, shown)
        self.assertEqual(shown[-1], 200)

    def test_a_users_file_that_others_write_lets_nobody_in(self):
        users = os.path.join(self.server.folder, "users")
        cookie = self.cookie("bob")
        os.chmod(users, 0o666)
        try:
            self.assertEqual(self.sign_in("bob").status, 500)
            self.assertEqual(self.server.get("Who.asp", headers={"Cookie": cookie}).status, 500)
            self.assertIn("may be written by others than its owner", self.server.log())
        finally:
            os.chmod(users, 0o600)
        self.assertEqual(self.server.get("Who.asp", headers={"Cookie": cookie}).status, 200)


class Passwd(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.users = os.path.join(self.folder.name, "users")

    def tearDown(self):
        self.folder.cleanup()

    def lines(self):
        with open(self.users, encoding="utf-8") as file:
            return file.read().splitlines()

    def test_adds_changes_and_removes(self):
        self.assertEqual(passwd(self.users, "alice", "--administrator").stdout, "wrote KALVO\\alice\n")
        self.assertRegex(self.lines()[0], r"^KALVO\\alice administrator \$argon2id\$")
        self.assertEqual(stat.S_IMODE(os.stat(self.users).st_mode), 0o600)
        passwd(self.users, "COTE\\bob", "--drill-down")
        before = self.lines()[0]
        passwd(self.users, "alice")
        self.assertRegex(self.lines()[1], r"^KALVO\\alice - \$argon2id\$")
        self.assertNotIn(before, self.lines())
        self.assertEqual(passwd(self.users, "alice", "--delete").stdout, "removed KALVO\\alice\n")
        self.assertEqual([line.split()[0] for line in self.lines()], ["COTE\\bob"])

    def test_refuses_what_cannot_be_meant(self):
        for words, password, says in ((["al ice"], PASSWORD, "not a user's name"), (["alice"], "elevenchars", "at least 12 characters"),
                                      (["alice"], "Alice-2026!!", "guessed first"),
                                      (["alice"], "x" * 2000, "1024"), (["alice", "--delete"], "", "no user")):
            answer = passwd(self.users, *words, password=password)
            self.assertEqual(answer.returncode, 2, words)
            self.assertIn(says, answer.stderr)
        self.assertFalse(os.path.exists(self.users))

    def test_does_not_show_what_is_typed(self):
        typed, terminal = pty.openpty()
        process = subprocess.Popen([KALVO, "passwd", "--users", self.users, "alice"], stdin=terminal, stdout=terminal,
                                   stderr=terminal, close_fds=True)
        os.close(terminal)
        shown = b""
        for question in (b"Password: ", b"Again: "):
            while question not in shown:
                shown += os.read(typed, 1000)
            wait_until("the terminal shows nothing", lambda: not termios.tcgetattr(typed)[3] & termios.ECHO)
            os.write(typed, PASSWORD.encode() + b"\n")
        try:
            while piece := os.read(typed, 1000):
                shown += piece
        except OSError:
            pass
        os.close(typed)
        self.assertEqual(process.wait(20), 0)
        self.assertNotIn(PASSWORD.encode(), shown)
        self.assertTrue(re.match(r"KALVO\\alice - ", self.lines()[0]))


if __name__ == "__main__":
    cases.main()
