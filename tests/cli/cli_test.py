"""cli_test.py KALVO: the command as a user types it."""

import os
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

import cases

KALVO = sys.argv.pop()


class Command(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="kalvo-")
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def write(self, name, text):
        path = os.path.join(self.folder, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.write(text if isinstance(text, bytes) else text.encode())

    def run_kalvo(self, *arguments, **more):
        # No data source is configured, whatever the machine has.
        environment = {**os.environ, "ODBCINI": "/dev/null", "ODBCSYSINI": self.folder}
        return subprocess.run([KALVO, *arguments], cwd=self.folder, env=environment, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=60, **more)

    def page(self, text, *arguments):
        """Runs a page that is expected to end well; what it printed."""
        self.write("page.asp", text)
        done = self.run_kalvo("page", *arguments, "page.asp")
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        return done.stdout.decode()

    def failed(self, code, *arguments):
        """What a command said on standard error that ended with this code."""
        done = self.run_kalvo(*arguments)
        self.assertEqual(done.returncode, code, done.stderr)
        return done.stderr.decode()


class Page(Command):
    def test_prints_what_it_writes_and_nothing_more(self):
        self.assertEqual(self.page("a\r\n<% Response.Write('b') %>"), "a\r\nb")

    def test_options_reach_the_page(self):
        url, method, logon = (f'<%= Request.ServerVariables("{n}") %>' for n in ("URL", "REQUEST_METHOD", "LOGON_USER"))
        for why, arguments, text, printed in [
                ("no options", [], f"{url}|{method}|{logon}", "/page.asp|GET|"),
                ("another address", ["--url", "/a/b.asp"], url, "/a/b.asp"),
                ("a query", ["--query", "a=1&b=%20x"], '<%= Request.QueryString("b") %>', " x"),
                ("an empty query", ["--query="], '[<%= Request.QueryString %>]', "[]"),
                ("an empty query as a word", ["--query", ""], '[<%= Request.QueryString %>]', "[]"),
                ("a query that begins with a dash", ["--query=-a=1"], '<%= Request.QueryString("-a") %>', "1"),
                ("a form is a POST", ["--form", "a=1"], f'{method}<%= Request.Form("a") %>', "POST1"),
                ("an empty form too", ["--form", ""], method, "POST"),
                ("an empty form in one word", ["--form="], method, "POST"),
                ("no logon name", ["--logon="], f"[{logon}]", "[]"),
                ("no mailboxes", ["--mail="], "text", "text"),
                ("empty ones in a row", ["--logon=", "--form=", "--query=", "--url", "/b"], f"{url}{method}", "/bPOST"),
                ("a logon name", ["--logon", "D\\carol"], logon, "D\\carol"),
                ("a session value", ["--session", "a=b=c"], '<%= Session("A") %>', "b=c"),
                ("an empty one", ["--session", "a="], '[<%= Session("a") %>]', "[]"),
                ("several", ["--session", "a=1", "--session", "b=2"], '<%= Session("a") + Session("b") %>', "12"),
                ("a list is text", ["--session", "a=[1,2]"], '<%= Session("a") %>', "[1,2]"),
        ]:
            with self.subTest(why):
                self.assertEqual(self.page(text, *arguments), printed)

    def test_static_objects_are_what_a_script_evaluates_to(self):
        self.write("own.js", "({name: 'own', twice: function (x) { return 2 * x; }})")
        self.assertEqual(self.page('<% var o = Session.StaticObjects("thing"); %><%= o.name + o.twice(2) %>',
                                   "--static", "thing=own.js"), "own4")

    def test_headers_come_before_the_body_when_asked_for(self):
        text = '<% Response.Status = "404 Not Here"; Response.AddHeader("X-Own", "1"); %>body'
        self.assertEqual(self.page(text), "body")
        self.assertEqual(self.page(text, "--headers"), "HTTP/1.1 404 Not Here\r\n"
                                                       "Content-Type: text/html; charset=utf-8\r\nX-Own: 1\r\n\r\nbody")

    def test_the_root_is_where_addresses_begin(self):
        self.write("site/Resources/a.asp", '<%= Request.ServerVariables("URL") %>|<!--#include virtual="/b.inc"-->')
        self.write("site/b.inc", "included")
        for page in ("site/Resources/a.asp", "Resources/a.asp"):
            with self.subTest(page):
                done = self.run_kalvo("page", "--root", "site", page)
                self.assertEqual(done.stdout, b"/Resources/a.asp|included")

    def test_a_page_outside_the_root_is_wrong_usage(self):
        self.write("site/a.asp", "")
        self.write("b.asp", "secret")
        for page in ("b.asp", "site/../b.asp", "../b.asp"):
            with self.subTest(page):
                self.assertIn("is not below --root", self.failed(2, "page", "--root", "site", page))

    def test_a_failure_names_file_and_line(self):
        for why, text, message in [
                ("a script error", "one\n<% nothing.at.all() %>", "page.asp:2: ReferenceError"),
                ("a syntax error", "\n\n<% var = %>", "page.asp:3: SyntaxError"),
                ("an error of the library", '<% new ActiveXObject("KalvoTables.None") %>', "page.asp:1: "),
                ("a thrown text", "\n<% throw 'own text' %>", "own text"),
        ]:
            with self.subTest(why):
                self.write("page.asp", text)
                self.assertIn(message, self.failed(1, "page", "page.asp"))

    def test_what_was_written_before_a_failure_stands(self):
        self.write("page.asp", "before<% oops() %>after")
        done = self.run_kalvo("page", "page.asp")
        self.assertEqual((done.returncode, done.stdout), (1, b"before"))

    def test_the_end_of_a_response_is_no_failure(self):
        self.assertEqual(self.page("a<% Response.End() %>b"), "a")

    def test_limits_hold(self):
        for why, text, option, message in [
                ("time", "\n<% var i = 0;\nfor (;;) { ++i; } %>", ["--time-limit", "0.5"], "page.asp:3: "),
                ("trapped time", "<% for (;;) { try { for (;;) {} } catch (e) {} } %>", ["--time-limit", "0.5"],
                 "page.asp:1: "),
                ("memory", "<% var s = 'x'; for (;;) s += s; %>", ["--memory-limit", "8"], "page.asp:1: "),
        ]:
            with self.subTest(why):
                self.write("page.asp", text)
                begun = time.monotonic()
                self.assertIn(message, self.failed(1, "page", *option, "page.asp"))
                self.assertLess(time.monotonic() - begun, 10)

    def test_a_page_that_does_not_exist_has_failed(self):
        self.assertIn("none.asp", self.failed(1, "page", "none.asp"))

    def test_ill_formed_text_is_replaced(self):
        self.assertEqual(self.page('<%= Request.QueryString("x") %>', "--query", "x=a%FFb"), "a\ufffdb")

    def test_a_query_as_long_as_a_command_line_takes(self):
        self.assertEqual(self.page('<%= String(Request.QueryString("x")).length %>', "--query", "x=" + "a" * 120000),
                         "120000")

    def test_an_unknown_data_source_is_a_failure_line(self):
        text = ('<% var g = Server.CreateObject("KalvoTables.KalvoforExchangeTableGenerator");'
                "g.BuildTable(TABLE_CURRENTALERTS); %>")
        for where in ([], ["--database", "sqlite:missing.db"]):
            with self.subTest(where):
                self.assertIn("<p>Error Generating Table: ", self.page(text, *where))
        self.assertFalse(os.path.exists(os.path.join(self.folder, "missing.db")))

    def test_an_unknown_table_is_an_error(self):
        self.write("page.asp", '<% var g = Server.CreateObject("KalvoTables.KalvoforExchangeTableGenerator");\n'
                               "g.BuildTable(999); %>")
        self.assertIn("page.asp:2: ", self.failed(1, "page", "page.asp"))

    def test_a_reader_that_went_away_ends_the_page(self):
        self.write("page.asp", "<% for (;;) { Response.Write('xxxxxxxxxxxxxxxx'); Response.Flush(); } %>")
        with subprocess.Popen([KALVO, "page", "page.asp"], cwd=self.folder, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE) as running:
            running.stdout.read(100)
            running.stdout.close()
            self.assertEqual(running.wait(30), 1)


class Usage(Command):
    def test_wrong_words_end_with_2(self):
        self.write("page.asp", "")
        for why, arguments in [
                ("no command", []),
                ("an unknown command", ["run"]),
                ("no page", ["page"]),
                ("two pages", ["page", "page.asp", "page.asp"]),
                ("an unknown option", ["page", "--colour", "page.asp"]),
                ("an option without its value", ["page", "page.asp", "--query"]),
                ("a session value without a name", ["page", "--session", "=x", "page.asp"]),
                ("a session value without a value", ["page", "--session", "x", "page.asp"]),
                ("a static object without a file", ["page", "--static", "x=none.js", "page.asp"]),
                ("another database", ["page", "--database", "mysql:x", "page.asp"]),
                ("no file", ["page", "--database", "sqlite:", "page.asp"]),
                ("other mailboxes", ["page", "--mail", "pop3:x", "page.asp"]),
                ("another locale", ["page", "--locale", "xx-XX", "page.asp"]),
                ("no time", ["page", "--time-limit", "0", "page.asp"]),
                ("nothing for a number", ["page", "--time-limit=", "page.asp"]),
                ("a value for a flag", ["page", "--headers=", "page.asp"]),
                ("no number", ["page", "--memory-limit", "much", "page.asp"]),
                ("a root that is none", ["page", "--root", "none", "page.asp"]),
                ("a sample without a place", ["sample"]),
                ("a sample of no size", ["sample", "--out", "x", "--size", "huge"]),
                ("no workers", ["serve", "--workers", "0"]),
        ]:
            with self.subTest(why):
                self.assertNotEqual(self.failed(2, *arguments), "")

    def test_help_ends_well(self):
        for arguments in (["--help"], ["page", "--help"], ["serve", "--help"], ["sample", "--help"],
                          ["check", "--help"]):
            with self.subTest(arguments):
                done = self.run_kalvo(*arguments)
                self.assertEqual((done.returncode, done.stderr), (0, b""))
                self.assertIn(b"Usage: ", done.stdout)


class Check(Command):
    def checked(self, settings):
        """What a check of the sample says, by its first words."""
        self.assertEqual(self.run_kalvo("sample", "--out", "data", "--mail", "none").returncode, 0)
        self.write("kalvo.toml", settings)
        done = self.run_kalvo("check", "--config", "kalvo.toml")
        self.assertEqual((done.returncode, done.stderr), (0, b""), done.stdout)
        return dict(line.split(None, 1) for line in done.stdout.decode().splitlines() if " " in line.strip())

    def test_names_the_library_that_reads_a_file(self):
        said = self.checked('database = "sqlite:data/kalvo.db"')
        self.assertRegex(said["Driver"], r"^SQLite 3\.\d+\.\d+$")
        self.assertEqual(said["Server"], said["Driver"])

    def test_names_the_driver_of_a_data_source(self):
        shutil.copy("/etc/odbcinst.ini", self.folder)
        self.write("odbc.ini", f"[KalvoDB]\nDriver=SQLite3\nDatabase={self.folder}/data/kalvo.db\n")
        said = self.checked('database = "odbc"')
        self.assertRegex(said["Driver"], r"^\S*sqlite3odbc\.so 0\.\d+ for SQLite 3\.\d+\.\d+$")

    def test_of_a_source_that_does_not_open_says_why(self):
        self.write("kalvo.toml", "")
        done = self.run_kalvo("check", "--config", "kalvo.toml")
        self.assertEqual(done.returncode, 1)
        self.assertNotIn(b"\nDriver", done.stdout)
        self.assertIn(b"Connection  fails: [IM002]", done.stdout)


class Sample(Command):
    def test_makes_a_database_that_the_reports_read(self):
        made = self.run_kalvo("sample", "--out", "data", "--mail", "none")
        self.assertEqual(made.returncode, 0, made.stderr)
        self.assertEqual(os.listdir(os.path.join(self.folder, "data")), ["kalvo.db"])
        text = ('<% var g = Server.CreateObject("KalvoTables.KalvoforExchangeTableGenerator");'
                "g.BuildTable(TABLE_CURRENTALERTS); %>")
        html = self.page(text, "--database", "sqlite:data/kalvo.db")
        self.assertIn("<table", html)
        self.assertNotIn("Error Generating Table", html)

    def test_a_folder_that_cannot_be_made_is_a_failure(self):
        self.write("file", "")
        self.assertNotEqual(self.failed(1, "sample", "--out", "file/data"), "")


if __name__ == "__main__":
    cases.main()
