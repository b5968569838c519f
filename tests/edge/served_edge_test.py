"""served_edge_test.py KALVO: what the edge lets pass to a page, in a running server and in `kalvo page`."""

import json
import os
import subprocess
import sys
import tempfile
import unittest
import urllib.parse

import cases
from serving import Serving

KALVO = sys.argv.pop()
PASSWORD = "correct horse battery"
FORM = {"Content-Type": "application/x-www-form-urlencoded"}
# What a page sees, a line each.
ECHO = """<%@ Language="JavaScript" {0} %><%
var names = ["Sort", "First", "Server", "ContainerId", "Debug"];
for (var i = 0; i < names.length; ++i) Response.Write(names[i] + "=" + Request(names[i]) + "\\n");
%>left out: <%= Request.ServerVariables("KALVO_EDGE") %>"""
PAGES = {"Echo.asp": ECHO.format(""), "Own.asp": ECHO.format('SortWords="Owner" Identifiers="own"'),
         "SignIn.asp": 'back=<%= Request.QueryString("Return") %>'}


def seen(answer):
    return answer.text.replace("\r", "")


def lines(**values):
    names = ["Sort", "First", "Server", "ContainerId", "Debug"]
    return "".join(f"{name}={values.get(name, '')}\n" for name in names) + "left out: " + values.get("out", "")


class Visitors(unittest.TestCase):
    """Without a users file: everybody is the same visitor."""

    def server(self, settings="", session='KalvoAdministrator = "Yes"'):
        return Serving(KALVO, PAGES, f"workers = 1\n{settings}\n[visitor]\nlogon = 'KALVO\\me'\n[visitor.session]\n{session}\n")

    @staticmethod
    def told(server):
        """What the audit log says of values that were refused."""
        with open(os.path.join(server.folder, "run", "audit", "audit.jsonl"), encoding="utf-8") as file:
            return [line for line in map(json.loads, file) if line["event"] == "value-refused"]

    def test_pages_see_what_fits(self):
        with self.server() as server:
            for why, query, values in [
                    ("what fits", "Sort=ComputerName&First=51&Server=S%C3%A9&ContainerId=aZ_-9",
                     {"Sort": "ComputerName", "First": "51", "Server": "Sé", "ContainerId": "aZ_-9"}),
                    ("what does not is empty in its place", "Sort=Name&Sort=1;x&Sort=8&First=2.5",
                     {"Sort": "Name, , 8", "out": "First, Sort"}),
                    ("beyond 16 bits", "First=40000&First=2", {"First": ", 2", "out": "First"}),
                    ("markup", "Server=%22%3E%3Cb&ContainerId=%22%3E%3Cb", {"out": "ContainerId, Server"}),
            ]:
                with self.subTest(why):
                    self.assertEqual(seen(server.get("Echo.asp?" + query)), lines(**values))
            self.assertEqual(seen(server.get("Own.asp?Sort=Owner&ContainerId=a%3D")), lines(Sort="Owner", ContainerId="a="))
            told = self.told(server)
            self.assertEqual({name: told[0][name] for name in ("event", "user", "address")},
                             {"event": "value-refused", "user": "KALVO\\me", "address": "127.0.0.1"})
            self.assertEqual(told[0]["details"], {"page": "/Echo.asp", "parameter": "Sort", "of": "query", "value": "1;x",
                                                  "values": "2"})
            self.assertNotIn("40000", str(told))

    def test_identifiers_come_from_the_query_alone(self):
        with self.server() as server:
            answer = server.get("Echo.asp", method="POST", body="ContainerId=abc&Server=S1", headers=FORM)
            self.assertEqual(seen(answer), lines(Server="S1", out="ContainerId"))
            answer = server.get("Echo.asp", headers={"Cookie": "ContainerId=abc; Sort=%3Cb"})
            self.assertEqual(seen(answer), lines())

    def test_what_is_refused_says_why(self):
        with self.server() as server:
            for query, sentence in [("a-b=1", "The name of a parameter has 1 to 40 letters"),
                                    ("Site=%25NAME%25", "The value of Site holds a placeholder of the reports")]:
                answer = server.get("Echo.asp?" + query)
                self.assertEqual(answer.status, 400)
                self.assertIn(sentence, answer.text)

    def test_traces_are_for_administrators_where_the_settings_say_so(self):
        for why, settings, session, shown in [
                ("an administrator", "debug = true", 'KalvoAdministrator = "Yes"', lines(Debug="SQL")),
                ("by default", "", 'KalvoAdministrator = "Yes"', lines(out="Debug")),
                ("anybody else", "debug = true", 'KalvoAdministrator = "yes"', lines(out="Debug")),
        ]:
            with self.subTest(why), self.server(settings, session) as server:
                self.assertEqual(seen(server.get("Echo.asp?Debug=SQL")), shown)

    def test_the_log_has_one_line_a_second(self):
        with self.server() as server:
            for _ in range(20):
                server.get("Echo.asp?" + "Sort=%3Cb%3E&" * 60)
            told = self.told(server)
            self.assertLess(len(told), 15)
            self.assertEqual(told[0]["details"]["values"], "60")


class SignedIn(unittest.TestCase):
    def server(self):
        server = Serving(KALVO, PAGES, 'workers = 1\nusers = "users"')
        subprocess.run([KALVO, "passwd", "--users", os.path.join(server.folder, "users"), "alice"],
                       input=PASSWORD + "\n", text=True, check=True, stdout=subprocess.DEVNULL)
        return server

    def test_the_edge_stands_before_the_way_back(self):
        with self.server() as server:
            address = server.get("Echo.asp?Sort=%3Cb%3E&Server=S1").headers["Location"]
            self.assertEqual(urllib.parse.unquote(address),
                             "/KalvoforExchange/SignIn.asp?Return=/KalvoforExchange/Echo.asp?Sort=&Server=S1")

    def test_a_password_may_look_like_a_placeholder(self):
        with self.server() as server:
            answer = server.get("SignIn.asp", method="POST", body="Name=a&Password=%25NAME%25", headers=FORM)
            self.assertEqual(answer.status, 200)


class CommandLine(unittest.TestCase):
    def page(self, *words):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "Echo.asp")
            with open(path, "w", encoding="utf-8") as file:
                file.write(PAGES["Echo.asp"])
            done = subprocess.run([KALVO, "page", *words, path], capture_output=True, text=True, check=False)
            return done.returncode, done.stdout, done.stderr

    def test_a_page_sees_everything(self):
        self.assertEqual(self.page("--query", "Sort=%3Cb%3E&Debug=SQL&a-b=%25NAME%25"),
                         (0, lines(Sort="<b>", Debug="SQL"), ""))

    def test_unless_the_edge_is_asked_for(self):
        self.assertEqual(self.page("--edge", "--query", "Sort=%3Cb%3E&Debug=SQL&First=40000"),
                         (0, lines(out="First, Sort, Debug"),
                          "kalvo: Sort of the query is not taken: <b>\nkalvo: Debug of the query is not taken: SQL\n"))
        code, out, error = self.page("--edge", "--query", "a-b=1")
        self.assertEqual((code, out), (1, ""))
        self.assertIn("The name of a parameter has", error)


if __name__ == "__main__":
    cases.main()
