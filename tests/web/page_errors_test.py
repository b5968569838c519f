"""page_errors_test.py KALVO: what visitors, administrators and the log are told of pages that fail, and what a page may not
do to its response."""

import http.client
import json
import os
import subprocess
import sys
import tempfile
import unittest

import cases
from serving import Serving, wait_until

KALVO = sys.argv.pop()
COLUMN = """<%
var bad = { GotoContainer: function () {
  throw new Error("mine <b>"); } };
var context = Server.CreateObject("KalvoTables.Context");
context.EncapsulateGotoContainerFailure(bad, "", "", "", 0, 0, "");
%>"""
PAGES = {
    "Fails.asp": '<%\nvar secret = "s3cret";\n\nnosuch("<b>");\n%>',
    "Half.asp": 'begun<% Response.Flush(); nosuch(); %>',
    "Column.asp": COLUMN,
    "Length.asp": '<% Response.AddHeader("Content-Length", "3"); %>xyzzy',
    "Post.asp": '<%= Request.Form.Count %>|<%= Request.Text %>|<%= Application("Title") %>',
    "Utf16.asp": '<% var secret = 1; %>'.encode("utf-16-le"),
    "Stuck.asp": '<% Array.prototype.indexOf.call({length: 2147483647}, 1); %>',
}


def served(settings):
    return Serving(KALVO, PAGES, f"workers = 2\n{settings}")


class PageErrors(unittest.TestCase):
    def log(self, server):
        with open(server.log_file, encoding="utf-8") as file:
            return file.read()

    def test_visitors_are_told_nothing_of_the_inside(self):
        with served("") as server:
            answer = server.get("Fails.asp")
            self.assertEqual(answer.status, 500)
            self.assertNotIn("nosuch", answer.text)
            self.assertNotIn("nosuch", server.get("Column.asp").text + server.get("Utf16.asp").text)
            self.assertEqual(server.get("Utf16.asp").status, 500)
            self.assertIn("page Fails.asp:4: ReferenceError: identifier 'nosuch' undefined", self.log(server))
            self.assertIn("page Column.asp:3: live container: GotoContainer: Error: mine <b>, called from Column.asp:5",
                          self.log(server))
            self.assertIn("page Utf16.asp:1: the file is not UTF-8", self.log(server))

    def test_errors_are_shown_where_the_settings_say_so(self):
        with served("show_errors = true") as server:
            answer = server.get("Fails.asp")
            self.assertEqual(answer.status, 500)
            for shown in ("Fails.asp:4: ReferenceError", "&gt; 4  nosuch(&quot;&lt;b&gt;&quot;);", "  2  var secret"):
                self.assertIn(shown, answer.text)
            answer = server.get("Column.asp")
            self.assertEqual(answer.status, 200)
            self.assertIn("live container: GotoContainer: Error: mine &lt;b&gt;", answer.text)
            self.assertIn("called from Column.asp:5", answer.text)
            self.assertEqual(server.get("NoSuch.asp").status, 404)

    def test_a_page_that_fails_after_a_flush_says_so_and_is_not_complete(self):
        with served("") as server:
            connection = http.client.HTTPConnection("127.0.0.1", server.port, timeout=30)
            connection.request("GET", "/KalvoforExchange/Half.asp")
            answer = connection.getresponse()
            with self.assertRaises((http.client.IncompleteRead, ConnectionError)) as broken:
                answer.read()
            connection.close()
            if isinstance(broken.exception, http.client.IncompleteRead):
                self.assertIn(b"begun", broken.exception.partial)
                self.assertIn(b"The page failed here and is not complete.", broken.exception.partial)
            self.assertIn("page Half.asp:1: ReferenceError", self.log(server))

    def test_a_page_does_not_set_its_length(self):
        with served("") as server:
            self.assertEqual(server.get("Length.asp").status, 500)
            self.assertIn("Content-Length is set by the server alone", self.log(server))

    def test_a_body_that_is_no_form_is_readable(self):
        with served("[application]\nTitle = \"Kalvo\"") as server:
            for kind, body, shown in [("application/json", json.dumps({"a": 1}), '0|{"a": 1}|Kalvo'),
                                      ("multipart/form-data; boundary=x", "--x\r\n", "0|--x\r\n|Kalvo"),
                                      ("application/x-www-form-urlencoded", "a=1&b=2", "2||Kalvo")]:
                answer = server.get("Post.asp", method="POST", body=body, headers={"Content-Type": kind})
                self.assertEqual((answer.status, answer.text), (200, shown), kind)

    def test_a_page_that_outstays_its_time_is_named_in_the_log(self):
        with served("time_limit = 1") as server:
            answer = server.get("Stuck.asp")
            self.assertGreaterEqual(answer.status, 500)
            wait_until("the page is named", lambda: "Stuck.asp" in self.log(server))


class OnTheCommandLine(unittest.TestCase):
    def run_page(self, text, *options):
        with tempfile.TemporaryDirectory() as folder:
            page = os.path.join(folder, "page.asp")
            with open(page, "w", encoding="utf-8") as file:
                file.write(text)
            done = subprocess.run([KALVO, "page", *options, page], capture_output=True, text=True, timeout=60)
            return done.returncode, done.stdout, done.stderr

    def test_a_built_in_does_not_outstay_the_time_limit(self):
        code, _, told = self.run_page(PAGES["Stuck.asp"], "--time-limit", "0.2")
        self.assertEqual((code, told), (1, "kalvo: page.asp: the page has run for longer than its time limit\n"))

    def test_what_a_page_does_not_see_is_told(self):
        code, shown, told = self.run_page(COLUMN)
        self.assertEqual(code, 0)
        self.assertNotIn("Column.asp", shown)
        self.assertEqual(told, "kalvo: page.asp:3: live container: GotoContainer: Error: mine <b>, called from "
                               "page.asp:5\n")

    def test_strict_fails_where_something_failed(self):
        self.assertEqual(self.run_page(COLUMN, "--strict")[0], 1)
        table = ('<% Server.CreateObject("KalvoTables.KalvoforExchangeTableGenerator").BuildTable(2); %>')
        self.assertEqual(self.run_page(table, "--database", "sqlite:/none/at/all.db")[0], 0)
        code, _, told = self.run_page(table, "--database", "sqlite:/none/at/all.db", "--strict")
        self.assertEqual(code, 1)
        self.assertIn("kalvo: page.asp: ", told)
        self.assertEqual(self.run_page("fine", "--strict"), (0, "fine", ""))

    def test_every_page_of_a_site_can_be_compiled(self):
        with tempfile.TemporaryDirectory() as folder:
            for name, text in [("a.asp", "<% fine(); %>"), ("b.ASP", "<% if ( %>"), ("c.inc", "<% if ( %>")]:
                with open(os.path.join(folder, name), "w", encoding="utf-8") as file:
                    file.write(text)
            done = subprocess.run([KALVO, "page", "--check", folder], capture_output=True, text=True)
            self.assertEqual(done.returncode, 1)
            self.assertEqual(len(done.stderr.splitlines()), 1, done.stderr)
            self.assertTrue(done.stderr.startswith("kalvo: b.ASP:1: SyntaxError"), done.stderr)
            os.remove(os.path.join(folder, "b.ASP"))
            self.assertEqual(subprocess.run([KALVO, "page", "--check", folder]).returncode, 0)


if __name__ == "__main__":
    cases.main()
