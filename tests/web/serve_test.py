"""serve_test.py KALVO: the running server, with the real nginx and real workers, seen from outside."""

import http.client
import os
import re
import signal
import socket
import subprocess
import sys
import tempfile
import threading
import time
import unittest

import cases
from serving import Serving, free_port, program_of, wait_until

KALVO = sys.argv.pop()

# A page that takes so many milliseconds.
SLOW = "<% var until = Date.now() + {0}; while (Date.now() < until) {{}} %>done"
SESSIONS_BELOW_A_FILE = 'users = "users"\nsessions = "plain/sessions"'
INTERNAL = re.compile(r"\.asp|line|Error:|stack|KalvoTables|/tmp", re.IGNORECASE)


def serving(files=None, settings="workers = 2\ntime_limit = 5"):
    return Serving(KALVO, files, settings)


class InBackground:
    """A request that runs beside the test."""

    def __init__(self, server, page):
        self.answer = self.error = None
        self.thread = threading.Thread(target=self.run, args=(server, page))
        self.thread.start()

    def run(self, server, page):
        try:
            self.answer = server.get(page)
        except (OSError, http.client.HTTPException) as error:
            self.error = error

    def has_ended(self):
        return not self.thread.is_alive()

    def join(self):
        self.thread.join(60)
        return self.answer


def busy_worker(server):
    """The worker that burns time."""

    def burnt():
        ticks = {}
        for worker in server.workers():
            with open(f"/proc/{worker}/stat", encoding="ascii") as file:
                ticks[worker] = int(file.read().rpartition(")")[2].split()[11])
        return ticks

    for _ in range(50):
        before = burnt()
        time.sleep(0.1)
        after = burnt()
        for worker, ticks in after.items():
            if ticks - before.get(worker, ticks) >= 2:
                return worker
    raise AssertionError("no worker is busy")


class Addresses(unittest.TestCase):
    FILES = {
        "Default.asp": 'home <%= Request.ServerVariables("URL") %>',
        "Resources/Default.asp": "resources",
        "broken.asp": "<% nothing(); %>",
        "kept.asp": '<% Response.AddHeader("Cache-Control", "max-age=60"); %>kept',
        "own.asp": f'<%@ Handlers="sha256-{"A" * 43}=" %>own',
        "Resources/a b.asp": 'blank <%= Request.ServerVariables("URL") %>',
        "style.css": "body {}",
        "long.css": "p { margin: 0 }\n" * 200,
        "long.asp": "<% for (var i = 0; i < 500; ++i) Response.Write('all the same '); %>",
        "script.js": "1",
        "pixel.GIF": b"GIF89a",
        "header.inc": "<% secret %>",
        "notes.bak": "secret",
        "kalvo.db": "secret",
        "page.asp.txt.old": "secret",
        ".hidden.css": "secret",
        ".git/x.css": "secret",
    }

    @classmethod
    def setUpClass(cls):
        cls.server = serving(cls.FILES)
        with open(os.path.join(cls.server.folder, "outside.css"), "w", encoding="utf-8") as file:
            file.write("secret")
        os.symlink(os.path.join(cls.server.folder, "outside.css"), os.path.join(cls.server.site, "link.css"))
        cls.server.start()

    @classmethod
    def tearDownClass(cls):
        cls.server.__exit__(None, None, None)

    def test_what_is_served(self):
        for why, path, status, body in [
                ("a folder is its default page", "/KalvoforExchange/", 200, "home /KalvoforExchange/Default.asp"),
                ("the page itself", "/KalvoforExchange/Default.asp", 200, "home /KalvoforExchange/Default.asp"),
                ("a folder below", "/KalvoforExchange/Resources/", 200, "resources"),
                ("a name with a blank", "/KalvoforExchange/Resources/a%20b.asp", 200,
                 "blank /KalvoforExchange/Resources/a b.asp"),
                ("a style sheet", "/KalvoforExchange/style.css", 200, "body {}"),
                ("an image, whatever the case", "/KalvoforExchange/pixel.GIF", 200, "GIF89a"),
        ]:
            with self.subTest(why):
                answer = self.server.request(path)
                self.assertEqual((answer.status, answer.text), (status, body))

    def test_what_is_not(self):
        for why, path in [
                ("a page that does not exist", "/KalvoforExchange/none.asp"),
                ("a folder without a page", "/KalvoforExchange/None/"),
                ("an include", "/KalvoforExchange/header.inc"),
                ("a kind that is not listed", "/KalvoforExchange/notes.bak"),
                ("a database", "/KalvoforExchange/kalvo.db"),
                ("a page's old copy", "/KalvoforExchange/page.asp.txt.old"),
                ("a hidden file", "/KalvoforExchange/.hidden.css"),
                ("a hidden folder", "/KalvoforExchange/.git/x.css"),
                ("a link out of the site", "/KalvoforExchange/link.css"),
                ("more behind a page", "/KalvoforExchange/Default.asp/more"),
                ("another case of the site", "/kalvoforexchange/Default.asp"),
                ("beside the site", "/outside.css"),
                ("above the site", "/KalvoforExchange/Resources/../../outside.css"),
                ("above the site, encoded", "/KalvoforExchange/%2e%2e/outside.css"),
                ("above the site, a page", "/KalvoforExchange/Resources/..%2f..%2f..%2fx.asp"),
                ("the error pages", "/_error/404.html"),
                ("another tree", "/etc/passwd"),
        ]:
            with self.subTest(why):
                answer = self.server.request(path)
                self.assertIn(answer.status, (400, 404))
                self.assertNotIn("secret", answer.text)
                self.assertIn("<h1>", answer.text)

    def test_every_answer_says_what_browsers_may_do_with_it(self):
        for why, path, kept in [("a page", "/KalvoforExchange/", "no-store"),
                                ("a style sheet", "/KalvoforExchange/style.css", "max-age=300"),
                                ("no page", "/KalvoforExchange/none.asp", "no-store"),
                                ("nothing", "/elsewhere", "no-store"),
                                ("a redirection", "/", "no-store"),
                                ("a page that fails", "/KalvoforExchange/broken.asp", "no-store"),
                                ("a page that says so itself", "/KalvoforExchange/kept.asp", "max-age=60"),
                                ("too much", "/KalvoforExchange/Default.asp?a=" + "x" * 8191, "no-store"),
                                ("an address without end", "/KalvoforExchange/" + "x" * 40000, "no-store")]:
            with self.subTest(why):
                self.assert_headers(self.server.request(path), kept)
        self.assert_headers(self.server.request("/KalvoforExchange/", "DELETE"), "no-store")
        body = b"x" * (1024 * 1024 + 1)
        self.assert_headers(self.server.request("/KalvoforExchange/", "POST", body), "no-store")

    def assert_headers(self, answer, kept, handlers=""):
        policy = ("default-src 'self'; script-src 'self' 'unsafe-hashes' "
                  f"'sha256-BpXhXx2vRLHwaBAlwgc7ySqE/qjSuaDmk4N/0EX3KB4='{handlers}; style-src 'self'; "
                  "object-src 'none'; base-uri 'none'; form-action 'self'; frame-ancestors 'self'")
        for name, value in {"Content-Security-Policy": policy, "Cache-Control": kept,
                            "X-Content-Type-Options": "nosniff", "Referrer-Policy": "same-origin",
                            "Cross-Origin-Opener-Policy": "same-origin", "X-Frame-Options": "SAMEORIGIN",
                            "Cross-Origin-Resource-Policy": "same-origin"}.items():
            self.assertEqual(answer.headers.get_all(name), [value], (answer.status, name))

    def test_a_file_is_asked_for_again_by_its_tag(self):
        tag = self.server.get("style.css").headers["ETag"]
        again = self.server.get("style.css", headers={"If-None-Match": tag})
        self.assertEqual((again.status, again.text), (304, ""))
        self.assert_headers(again, "max-age=300")

    def test_long_files_are_packed_and_pages_are_not(self):
        for why, path, coding in [("a long file", "long.css", "gzip"), ("a short file", "style.css", None),
                                  ("a long page", "long.asp", None)]:
            with self.subTest(why):
                answer = self.server.get(path, headers={"Accept-Encoding": "gzip"})
                self.assertEqual((answer.status, answer.headers["Content-Encoding"]), (200, coding))
        self.assertIsNone(self.server.get("long.css").headers["Content-Encoding"])

    def test_a_page_declares_its_own_handlers(self):
        self.assert_headers(self.server.get("own.asp"), "no-store", f" 'sha256-{'A' * 43}='")

    def test_what_is_too_much(self):
        form = {"Content-Type": "application/x-www-form-urlencoded"}
        for why, query, body, sentence in [
                ("a long query", "a=" + "x" * 8191, "", "at most 8192 bytes"),
                ("many parameters", "".join(f"a{i}&" for i in range(1001)), "", "at most 1000 parameters"),
                ("many values of one", "a&" * 65, "", "at most 64 values"),
                ("many fields", "", "a&" * 100_001, "at most 100000 fields"),
        ]:
            with self.subTest(why):
                answer = self.server.request("/KalvoforExchange/Default.asp?" + query, "POST", body, form)
                self.assertEqual(answer.status, 400)
                self.assertIn(sentence, answer.text)
        answer = self.server.request("/KalvoforExchange/Default.asp", "POST", "a&" * 100_000, form)
        self.assertEqual(answer.status, 200)

    def test_what_leads_elsewhere(self):
        for path, status, target in [
                ("/", 302, "/KalvoforExchange/"),
                ("/KalvoforExchange", 301, "/KalvoforExchange/"),
                ("/KalvoforExchange/Resources", 301, "/KalvoforExchange/Resources/"),
        ]:
            with self.subTest(path):
                answer = self.server.request(path)
                self.assertEqual((answer.status, answer.headers["Location"]), (status, target))

    def test_other_methods_are_refused(self):
        for method in ("PUT", "DELETE", "OPTIONS", "TRACE", "PROPFIND"):
            with self.subTest(method):
                self.assertEqual(self.server.get("Default.asp", method=method).status, 405)

    def test_the_head_of_a_page_alone(self):
        answer = self.server.get("Default.asp", method="HEAD")
        self.assertEqual((answer.status, answer.body), (200, b""))

    def test_control_characters_in_an_address_are_refused(self):
        self.assertEqual(self.server.get("x%0d%0aSet-Cookie:%20a=b.asp").status, 400)


class Requests(unittest.TestCase):
    FILES = {
        "echo.asp": """<% var names = ["REQUEST_METHOD", "QUERY_STRING", "SERVER_NAME", "REMOTE_ADDR", "LOGON_USER",
                           "AUTH_USER", "HTTP_USER_AGENT", "HTTP_X_ODD"];
                         for (var i = 0; i < names.length; ++i) { %><%= names[i] %>=<%=
                         Request.ServerVariables(names[i]) %>|<% } %>""",
        "query.asp": '<%= escape(String(Request.QueryString("x"))) %>',
        "form.asp": '<%= Request.Form("x") %>|<%= Request.Form("y").Count %>',
        "session.asp": '<%= Session("KalvoAdministrator") %>|<% Session.Value("own", "1") %><%= Session("own") %>',
        "own.asp": '<%= String(Session("own")) %>',
        "head.asp": '<% Response.Status = "404 Gone Away"; Response.AddHeader("X-Own", "1"); %>own text',
        "redirect.asp": '<% Response.Redirect("query.asp?x=1"); %>',
    }

    @classmethod
    def setUpClass(cls):
        cls.server = serving(cls.FILES, "workers = 2\n[visitor]\nlogon = 'KALVO\\carol'\n[visitor.session]\n"
                                        'KalvoAdministrator = "Yes"\n').start()

    @classmethod
    def tearDownClass(cls):
        cls.server.__exit__(None, None, None)

    def test_server_variables(self):
        answer = self.server.get("echo.asp?a=1&b=%20", headers={"User-Agent": "test", "X-Odd": "<&>"})
        self.assertEqual(answer.text, "REQUEST_METHOD=GET|QUERY_STRING=a=1&b=%20|SERVER_NAME=127.0.0.1|"
                                      "REMOTE_ADDR=127.0.0.1|LOGON_USER=KALVO\\carol|AUTH_USER=KALVO\\carol|"
                                      "HTTP_USER_AGENT=test|HTTP_X_ODD=<&>|")

    def test_a_visitor_cannot_name_himself(self):
        answer = self.server.get("echo.asp", headers={"Logon-User": "root", "Auth-User": "root"})
        self.assertIn("LOGON_USER=KALVO\\carol|AUTH_USER=KALVO\\carol", answer.text)

    def test_ill_formed_text_is_replaced(self):
        self.assertEqual(self.server.get("query.asp?x=a%FFb").text, "a%uFFFDb")
        self.assertEqual(self.server.get("query.asp?x=%F0%9F%98%80").text, "%uD83D%uDE00")

    def test_a_posted_form(self):
        form = {"Content-Type": "application/x-www-form-urlencoded"}
        self.assertEqual(self.server.get("form.asp", method="POST", body="x=1&y=a&y=b", headers=form).text, "1|2")

    def test_a_body_of_another_type_is_no_form(self):
        text = {"Content-Type": "text/plain"}
        self.assertEqual(self.server.get("form.asp", method="POST", body="x=1", headers=text).text, "|0")

    def test_the_visitors_session_values(self):
        self.assertEqual(self.server.get("session.asp").text, "Yes|1")
        for _ in range(4):
            self.assertNotEqual(self.server.get("own.asp").text, "1")

    def test_a_page_sets_status_and_headers(self):
        answer = self.server.get("head.asp")
        self.assertEqual((answer.status, answer.headers["X-Own"], answer.text), (404, "1", "own text"))

    def test_a_page_redirects(self):
        answer = self.server.get("redirect.asp")
        self.assertEqual((answer.status, answer.headers["Location"]), (302, "query.asp?x=1"))

    def test_sizes_are_limited(self):
        form = {"Content-Type": "application/x-www-form-urlencoded"}
        big = "x=" + "a" * (1024 * 1024 - 2)
        for why, ask, status in [
                ("a query string of 1 MB", lambda: self.server.get("query.asp?x=" + "a" * 1000000), 414),
                ("a query string of 15 KB", lambda: self.server.get("query.asp?x=" + "a" * 15000), 400),
                ("a query string of 8 KiB", lambda: self.server.get("query.asp?x=" + "a" * 8190), 200),
                ("a header of 100 KB", lambda: self.server.get("echo.asp", headers={"X-Odd": "a" * 100000}), 431),
                ("a form of 1 MiB", lambda: self.server.get("form.asp", method="POST", body=big, headers=form), 200),
                ("one byte more", lambda: self.server.get("form.asp", method="POST", body=big + "a", headers=form),
                 413),
        ]:
            with self.subTest(why):
                self.assertEqual(ask().status, status)
        self.assertEqual(self.server.get("query.asp?x=1").text, "1")

    def test_what_is_no_http_is_refused(self):
        with socket.create_connection(("127.0.0.1", self.server.port), 10) as raw:
            raw.sendall(b"\x16\x03\x01 nonsense\r\n\r\n")
            self.assertIn(b"400", raw.recv(1000).split(b"\r\n")[0])
        self.assertEqual(self.server.get("query.asp?x=1").text, "1")


class Failures(unittest.TestCase):
    FILES = {
        "good.asp": "good",
        "syntax.asp": "one\ntwo\n<% var x = ; %>",
        "script.asp": "one\n<% nothing.at.all(); %>",
        "included.asp": '<!--#include file="bad.inc"-->',
        "bad.inc": "one\ntwo\n<% oops(); %>",
        "endless.asp": "<% for (;;) {} %>",
        "trapped.asp": "<% for (;;) { try { for (;;) {} } catch (e) {} } %>",
        "hog.asp": "<% var piece = new Array(5000).join('x'), hog = []; for (;;) { hog.push(piece + hog.length); } %>",
        "deep.asp": "<% function f() { f(); } f(); %>",
        "half.asp": "<% Response.Write('begin'); Response.Flush(); nothing.at.all(); %>",
        "slow.asp": SLOW.format(3000),
    }

    @classmethod
    def setUpClass(cls):
        cls.server = serving(cls.FILES, "workers = 2\ntime_limit = 2\nmemory_limit = 32").start()
        cls.addClassCleanup(cls.server.__exit__, None, None, None)

    def assert_serves(self):
        for _ in range(4):
            self.assertEqual(self.server.get("good.asp").text, "good")

    def assert_plain(self, answer):
        self.assertEqual(answer.status, 500)
        self.assertIn("<h1>Internal Server Error</h1>", answer.text)
        self.assertIsNone(INTERNAL.search(answer.text), answer.text)

    def test_a_page_that_cannot_be_compiled(self):
        self.assert_plain(self.server.get("syntax.asp"))
        self.assertIn("syntax.asp:3:", self.server.log())
        self.assert_serves()

    def test_a_page_that_fails(self):
        self.assert_plain(self.server.get("script.asp"))
        self.assertIn("script.asp:2:", self.server.log())
        self.assert_serves()

    def test_an_include_that_fails(self):
        self.assert_plain(self.server.get("included.asp"))
        self.assertIn("bad.inc:3:", self.server.log())
        self.assert_serves()

    def test_a_page_that_never_ends(self):
        begun = time.monotonic()
        together = [InBackground(self.server, page) for page in ("endless.asp", "trapped.asp")]
        for one in together:
            self.assert_plain(one.join())
        self.assertLess(time.monotonic() - begun, 10)
        self.assertIn("endless.asp:1:", self.server.log())
        self.assert_serves()

    def test_a_page_that_takes_all_memory(self):
        self.assert_plain(self.server.get("hog.asp"))
        self.assertIn("page hog.asp", self.server.log())
        self.assert_serves()

    def test_a_page_that_calls_itself_for_ever(self):
        self.assert_plain(self.server.get("deep.asp"))
        self.assertIn("deep.asp:1:", self.server.log())
        self.assert_serves()

    def test_half_a_page_is_not_taken_for_a_whole_one(self):
        with self.assertRaises(http.client.IncompleteRead):
            self.server.get("half.asp")
        self.assertIn("half.asp:1:", self.server.log())
        self.assert_serves()

    def test_a_worker_that_is_killed_is_replaced(self):
        before = self.server.workers()
        asked = InBackground(self.server, "slow.asp")
        os.kill(busy_worker(self.server), signal.SIGKILL)
        self.assert_plain(asked.join())
        self.assert_serves()
        wait_until("two workers again", lambda: len(self.server.workers()) == 2)
        self.assertNotEqual(self.server.workers(), before)
        self.assertRegex(self.server.log(), r"worker \d+ died of signal 9 \(Killed\); it was running /slow\.asp")

    def test_a_worker_that_stands_still_is_ended(self):
        asked = InBackground(self.server, "slow.asp")
        worker = busy_worker(self.server)
        os.kill(worker, signal.SIGSTOP)
        self.assert_plain(asked.join())
        wait_until("the worker is gone", lambda: worker not in self.server.workers())
        wait_until("a word in the log",
                   lambda: f"worker {worker} was ended: its page outstayed the time limit" in self.server.log())
        self.assert_serves()

    def test_idle_workers_that_are_killed_are_replaced(self):
        for _ in range(3):
            for worker in self.server.workers():
                os.kill(worker, signal.SIGKILL)
            wait_until("two workers again", lambda: len(self.server.workers()) == 2)
            self.assert_serves()

    def test_an_nginx_that_is_killed_is_replaced(self):
        for _ in range(2):
            nginx = self.server.nginx()
            os.kill(nginx[0], signal.SIGKILL)
            wait_until("another nginx", lambda: self.server.nginx() not in ([], nginx))

            def serves():
                try:
                    return self.server.get("good.asp").text == "good"
                except OSError:
                    return False

            wait_until("it serves", serves)
        self.assertIn("nginx ended by signal 9", self.server.log())


class Load(unittest.TestCase):
    def test_what_cannot_wait_is_answered_503_at_once(self):
        with serving({"good.asp": "good"}, "workers = 1\nqueue = 1\ntime_limit = 60") as server:
            worker = server.workers()[0]
            os.kill(worker, signal.SIGSTOP)  # so that nothing leaves the queue
            try:
                asked = [InBackground(server, "good.asp") for _ in range(8)]
                wait_until("five refusals, while no page runs", lambda: sum(one.has_ended() for one in asked) >= 5)
                refused = [one.join() for one in asked if one.has_ended()]
            finally:
                os.kill(worker, signal.SIGCONT)
            for answer in refused:
                self.assertEqual(answer.status, 503)
                self.assertEqual(answer.headers["Retry-After"], "2")
                self.assertEqual(answer.headers.get_all("X-Content-Type-Options"), ["nosniff"])
                self.assertIn("frame-ancestors 'self'", answer.headers["Content-Security-Policy"])
                self.assertIn("<h1>Service Unavailable</h1>", answer.text)
            statuses = sorted(one.join().status for one in asked)
            self.assertEqual(statuses[0], 200, "who could wait is served")
            self.assertEqual(set(statuses), {200, 503})

    def test_pages_run_beside_each_other(self):
        with serving({"slow.asp": SLOW.format(500), "good.asp": "good"}, "workers = 3") as server:
            slow = [InBackground(server, "slow.asp") for _ in range(2)]
            self.assertEqual(server.get("good.asp").text, "good")
            for one in slow:
                self.assertEqual(one.join().text, "done")


class Reload(unittest.TestCase):
    def test_settings_are_read_anew_while_pages_run(self):
        files = {"who.asp": '<%= Request.ServerVariables("LOGON_USER") %>', "slow.asp": SLOW.format(1500)}
        with serving(files, "workers = 2\n[visitor]\nlogon = 'old'") as server:
            self.assertEqual(server.get("who.asp").text, "old")
            before = server.workers()
            slow = InBackground(server, "slow.asp")
            busy_worker(server)
            server.configure("workers = 3\n[visitor]\nlogon = 'new'")
            server.process.send_signal(signal.SIGHUP)
            wait_until("reloaded", lambda: "reloaded" in server.log())
            wait_until("the new name", lambda: server.get("who.asp").text == "new")
            self.assertEqual(slow.join().text, "done")
            wait_until("three new workers",
                       lambda: len(server.workers()) == 3 and not set(before) & set(server.workers()))
            for _ in range(6):
                self.assertEqual(server.get("who.asp").text, "new")

    def test_wrong_settings_change_nothing(self):
        with serving({"who.asp": '<%= Request.ServerVariables("LOGON_USER") %>'}, "[visitor]\nlogon = 'old'") as server:
            server.configure("workers = 0\n[visitor]\nlogon = 'new'")
            server.process.send_signal(signal.SIGHUP)
            wait_until("a refusal", lambda: "not reloaded: " in server.log())
            self.assertIn("workers takes a whole number", server.log())
            self.assertEqual(server.get("who.asp").text, "old")

    def test_sessions_that_cannot_be_kept_change_nothing(self):
        with serving({"good.asp": "good"}, "workers = 1") as server:
            blocked = SESSIONS_BELOW_A_FILE
            for name in ("users", "plain"):
                open(os.path.join(server.folder, name), "w", encoding="utf-8").close()
            os.chmod(os.path.join(server.folder, "users"), 0o600)
            before = server.workers()
            server.configure("workers = 1\n" + blocked)
            server.process.send_signal(signal.SIGHUP)
            wait_until("a word in the log", lambda: "not reloaded: " in server.log())
            self.assertIn(f"sessions: {server.folder}/plain/sessions", server.log())
            self.assertEqual(server.workers(), before)
            self.assertEqual(server.get("good.asp").text, "good")

    def test_another_address(self):
        with serving({"good.asp": "good"}) as server:
            server.port = free_port()
            server.configure("workers = 2")
            server.process.send_signal(signal.SIGHUP)

            def serves():
                try:
                    return server.get("good.asp").text == "good"
                except OSError:
                    return False

            wait_until("the new address", serves)

    def test_a_changed_page_needs_none(self):
        with serving({"page.asp": "old"}) as server:
            self.assertEqual(server.get("page.asp").text, "old")
            server.write("page.asp", "newer")
            wait_until("the new page", lambda: server.get("page.asp").text == "newer", 5)
            server.write("later.asp", "later")
            self.assertEqual(server.get("later.asp").text, "later")

    def test_the_log_is_opened_anew(self):
        with serving({"bad.asp": "<% oops(); %>"}) as server:
            server.get("bad.asp")
            os.rename(server.log_file, server.log_file + ".1")
            server.process.send_signal(signal.SIGUSR1)
            wait_until("a new log", lambda: os.path.exists(server.log_file))

            def told():
                server.get("bad.asp")
                return "bad.asp:1:" in server.log()

            wait_until("what workers say is in it", told)

    def test_a_log_that_cannot_be_opened_anew_stays(self):
        with serving({"bad.asp": "<% oops(); %>"}, "workers = 1") as server:
            place, server.log_file = server.log_file, server.log_file + ".1"
            os.rename(place, server.log_file)
            os.mkdir(place)
            server.process.send_signal(signal.SIGUSR1)
            wait_until("a word in the old one", lambda: "the log goes on where it was" in server.log())
            self.assertEqual(server.get("bad.asp").status, 500)


class Stop(unittest.TestCase):
    FILES = {"slow.asp": SLOW.format(2500), "endless.asp": "<% for (;;) {} %>", "good.asp": "good"}

    def test_leaves_no_process_and_no_socket(self):
        for number in (signal.SIGTERM, signal.SIGINT):
            with self.subTest(number), serving(self.FILES) as server:
                wait_until("nginx has its helper", lambda: len(server.tree()) >= 4)
                server.process.send_signal(number)
                self.assertEqual(server.process.wait(10), 0)
                self.assertEqual(server.left(), [])
                self.assertFalse(os.path.exists(os.path.join(server.folder, "run", "worker.sock")))

    def test_lets_a_page_end(self):
        with serving(self.FILES) as server:
            slow = InBackground(server, "slow.asp")
            busy_worker(server)
            server.process.send_signal(signal.SIGTERM)
            self.assertEqual(slow.join().text, "done")
            self.assertEqual(server.process.wait(10), 0)

    def test_does_not_wait_for_ever(self):
        with serving(self.FILES, "workers = 2\ntime_limit = 60") as server:
            endless = InBackground(server, "endless.asp")
            busy_worker(server)
            server.tree()
            server.process.send_signal(signal.SIGTERM)
            self.assertEqual(server.process.wait(15), 0)
            self.assertEqual(server.left(), [])
            endless.join()

    def test_a_killed_server_takes_its_processes_along(self):
        with serving(self.FILES, "workers = 2\ntime_limit = 60") as server:
            endless = InBackground(server, "endless.asp")
            busy_worker(server)
            self.assertGreaterEqual(len(server.tree()), 4)
            server.process.kill()
            server.process.wait(10)
            wait_until("nothing is left", lambda: not server.left(), 10)
            endless.join()
            # And the next one starts where the killed one stood.
            server.start()
            self.assertEqual(server.get("good.asp").text, "good")


class Start(unittest.TestCase):
    def refused(self, *arguments):
        done = subprocess.run([KALVO, "serve", *arguments], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, text=True, timeout=30)
        self.assertEqual(done.returncode, 2, done.stderr)
        return done.stderr

    def test_prints_the_address_last(self):
        with serving({}) as server:
            self.assertEqual(server.address, f"http://127.0.0.1:{server.port}/KalvoforExchange/")

    def test_other_machines_are_not_served(self):
        for address, why in (("0.0.0.0:8080", "visitors have to sign in"), ("[::]:8080", "visitors have to sign in"),
                             ("192.168.0.1:80", "visitors have to sign in"), ("8080", "is not an address with a port")):
            with self.subTest(address), tempfile.TemporaryDirectory() as site:
                self.assertIn(why, self.refused("--site", site, "--listen", address))

    def test_an_address_in_use_is_refused(self):
        with socket.socket() as taken, tempfile.TemporaryDirectory() as site:
            taken.bind(("127.0.0.1", 0))
            taken.listen()
            address = "127.0.0.1:%d" % taken.getsockname()[1]
            self.assertIn("Address already in use", self.refused("--site", site, "--listen", address))

    def test_a_run_folder_in_use_is_refused(self):
        with serving({}) as server:
            with open(server.config, encoding="utf-8") as file:
                text = file.read().replace(f":{server.port}", f":{free_port()}")
            second = os.path.join(server.folder, "second.toml")
            with open(second, "w", encoding="utf-8") as file:
                file.write(text)
            self.assertIn("another server is running in", self.refused("--config", second))

    def test_wrong_settings_are_refused(self):
        with tempfile.TemporaryDirectory() as folder:
            config = os.path.join(folder, "kalvo.toml")
            with open(config, "w", encoding="utf-8") as file:
                file.write("\nworkers = -1\n")
            self.assertIn(f"{config}:2: workers takes a whole number", self.refused("--config", config))
            self.assertIn("there is no such settings file", self.refused("--config", config + "x"))
            self.assertIn("is not a folder", self.refused("--site", folder + "/missing"))

    def test_sessions_that_cannot_be_kept_are_refused(self):
        server = serving({})
        server.configure(SESSIONS_BELOW_A_FILE)
        try:
            for name in ("users", "plain"):
                open(os.path.join(server.folder, name), "w", encoding="utf-8").close()
            os.chmod(os.path.join(server.folder, "users"), 0o600)
            said = self.refused("--config", server.config)
            self.assertIn(f"sessions: {server.folder}/plain/sessions", said)
            self.assertIn("Not a directory", said)
            self.assertFalse(os.path.exists(os.path.join(server.folder, "run", "worker.sock")))
        finally:
            subprocess.run(["rm", "-rf", server.folder], check=True)

    def test_an_nginx_that_cannot_run_is_refused_and_nothing_is_left(self):
        server = serving({}, 'nginx = "no-such-nginx"')
        try:
            self.assertIn("nginx did not start: cannot run no-such-nginx", self.refused("--config", server.config))
            self.assertFalse(os.path.exists(os.path.join(server.folder, "run", "worker.sock")))
        finally:
            subprocess.run(["rm", "-rf", server.folder], check=True)

    def test_error_pages_of_the_sites_own(self):
        server = serving({"bad.asp": "<% oops(); %>"}, 'error_pages = "errors"\nworkers = 1')
        os.mkdir(os.path.join(server.folder, "errors"))
        for status in (404, 500):
            with open(os.path.join(server.folder, "errors", f"{status}.html"), "w", encoding="utf-8") as file:
                file.write(f"our {status}")
        with server:
            self.assertEqual(server.get("bad.asp").text, "our 500")
            self.assertEqual(server.get("none.asp").text, "our 404")
            self.assertEqual(server.get("none.css").text, "our 404")
            self.assertEqual(server.get("bad.asp", method="PUT").status, 405)

    def test_an_nginx_that_is_there_already(self):
        with serving({"good.asp": "good"}, 'web = "external"') as server:
            self.assertEqual([p for p in server.tree() if program_of(p) == "nginx"], [])
            folder = os.path.join(server.folder, "nginx")
            os.mkdir(folder)
            config = os.path.join(folder, "nginx.conf")
            with open(config, "w", encoding="utf-8") as file:
                file.write("user root root;\n" if os.geteuid() == 0 else "")
                file.write(f"daemon off; pid {folder}/pid; error_log {folder}/log; events {{}}\nhttp {{ access_log off;\n")
                for kind in ("client_body", "fastcgi", "proxy", "uwsgi", "scgi"):
                    file.write(f"{kind}_temp_path {folder}/{kind};\n")
                file.write(f"server {{ listen 127.0.0.1:{server.port}; include {server.folder}/run/site.conf; }} }}\n")
            nginx = subprocess.Popen(["nginx", "-p", folder, "-c", config, "-e", f"{folder}/log"])
            try:
                wait_until("nginx listens", lambda: os.path.exists(f"{folder}/pid"))
                self.assertEqual(server.get("good.asp").text, "good")
            finally:
                nginx.terminate()
                nginx.wait(10)


if __name__ == "__main__":
    cases.main()
