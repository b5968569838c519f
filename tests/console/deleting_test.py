"""deleting_test.py KALVO: what deletes a message of the console over the wire, and what does not."""

import concurrent.futures
import html
import json
import os
import pwd
import re
import signal
import subprocess
import sys
import tempfile
import unittest
import urllib.parse

import cases
from sample_console import PASSWORD, SampleConsole
from serving import Serving, wait_until

KALVO = sys.argv.pop()
SERVER = "SEA-EX01"
HERE = {"Sec-Fetch-Site": "same-origin"}
PROCESS = "Configuration/Process.asp"
FORM = "application/x-www-form-urlencoded"


def setUpModule():
    global console
    console = SampleConsole(KALVO)
    unittest.addModuleCleanup(lambda: console.__exit__(None))
    console.start()


class Case(unittest.TestCase):
    cookies = {}

    def cookie(self, name):
        if name not in self.cookies:
            self.cookies[name] = self.sign_in(name)
        return self.cookies[name]

    def sign_in(self, name, back=""):
        form = urllib.parse.urlencode({"Name": name, "Password": PASSWORD, "Return": back})
        answer = console.request("/KalvoforExchange/SignIn.asp", "POST", form, {"Content-Type": FORM})
        self.assertEqual(answer.status, 303)
        self.location = answer.headers["Location"]
        return answer.headers["Set-Cookie"].split(";")[0]

    def ask(self, page, name="alice", method="GET", form=None, headers=None, cookie=None):
        headers = {"Cookie": cookie or self.cookie(name), **(headers or {})}
        if form is not None:
            headers["Content-Type"] = FORM
            form = urllib.parse.urlencode(form)
        return console.request("/KalvoforExchange/" + page, method, form, headers)

    def messages(self, mailbox="alice", name="alice", folder="Archive"):
        """The identifiers of a folder's messages."""
        page = self.ask(f"Resources/MailboxSummary.asp?Server={SERVER}&Mailbox={mailbox}&Container={folder}", name)
        return re.findall('name="MessageId" value="([^"]+)"', page.text)

    def message(self):
        return self.messages()[0]

    def address(self, message, mailbox="alice", server=SERVER, flags="0", back=""):
        return PROCESS + "?" + urllib.parse.urlencode({
            "ProcessType": "DeleteMessage", "ServerName": server, "MailboxName": mailbox, "FolderId": "",
            "MessageId": message, "Flags": flags, "Continue": back})

    def question(self, address, name="alice", cookie=None):
        """Where the answer of a question is posted to, and its token; none where nothing was asked."""
        page = self.ask(address, name, cookie=cookie).text
        found = re.search(r'<form[^>]* method="post" action="(Process\.asp[^"]*)">\s*<input type="hidden" name="Token" '
                          r'value="([0-9a-f]+)">', page)
        return ("Configuration/" + html.unescape(found.group(1)), found.group(2)) if found else (None, page)

    def delete(self, message, name="alice", **more):
        action, token = self.question(self.address(message, **more), name)
        self.assertIsNotNone(action, token)
        return self.ask(action, name, "POST", {"Token": token}, HERE)

    def files(self):
        """Every message that a listing of the mailboxes of these tests would show."""
        store, found = os.path.join(console.folder, "sample", "mail", SERVER), set()
        for mailbox in ("alice", "admin"):
            for folder, _, names in os.walk(os.path.join(store, mailbox)):
                if os.path.basename(folder) in ("cur", "new"):
                    found |= {os.path.join(folder, each.split(":")[0]) for each in names}
        return found

    def nothing_goes(self):
        case, before = self, self.files()

        class Nothing:
            def __enter__(self):
                return self

            def __exit__(self, *error):
                if error[0] is None:
                    case.assertEqual(before - case.files(), set(), "a message was deleted")
        return Nothing()

    @staticmethod
    def audit():
        with open(os.path.join(console.folder, "run", "audit", "audit.jsonl"), encoding="utf-8") as file:
            return [json.loads(line) for line in file]


class Links(Case):
    """Nothing that a page of any site can have a browser fetch deletes anything."""

    def test_ask_and_do_nothing(self):
        with self.nothing_goes():
            for headers in ({}, HERE, {"Sec-Fetch-Site": "same-site", "Sec-Fetch-Dest": "image"},
                            {"Sec-Fetch-Site": "cross-site", "Sec-Fetch-Dest": "iframe"},
                            {"Sec-Purpose": "prefetch", "Sec-Fetch-Dest": "empty"}):
                with self.subTest(headers):
                    answer = self.ask(self.address(self.message()), headers=headers)
                    self.assertEqual(answer.status, 200)
                    self.assertIn("Delete this message", answer.text)
                    self.assertIn("It is kept for 14 days", answer.text)

    def test_may_be_looked_at_by_head(self):
        with self.nothing_goes():
            answer = self.ask(self.address(self.message()), method="HEAD")
            self.assertEqual((answer.status, answer.body), (200, b""))

    def test_with_a_token_in_their_address_do_nothing(self):
        message = self.message()
        action, token = self.question(self.address(message))
        with self.nothing_goes():
            self.assertIn("Delete this message", self.ask(f"{action}&Token={token}", headers=HERE).text)
            self.ask(f"{action}&Token={token}", method="HEAD", headers=HERE)

    def test_through_the_sign_in_ask(self):
        address = self.address(self.message())
        with self.nothing_goes():
            cookie = self.sign_in("alice", "/KalvoforExchange/" + address)
            page = console.request(self.location, headers={"Cookie": cookie, **HERE})
            self.assertIn("Delete this message", page.text)

    def test_of_one_delete_to_the_next_ask(self):
        first, second = self.messages()[:2]
        chained = "../" + self.address(second)
        answer = self.delete(first, back=chained)
        self.assertEqual((answer.status, answer.headers["Location"]), (302, chained))
        with self.nothing_goes():
            self.assertIn("Delete this message", self.ask(self.address(second), headers=HERE).text)


class Posts(Case):
    def test_of_the_question_delete_one_message_once(self):
        before, message = self.files(), self.message()
        action, token = self.question(self.address(message, back=f"../Resources/MailboxSummary.asp?Server={SERVER}"))
        answer = self.ask(action, form={"Token": token}, method="POST", headers=HERE)
        self.assertEqual((answer.status, answer.headers["Location"]), (302, f"../Resources/MailboxSummary.asp?Server={SERVER}"))
        self.assertEqual(len(before - self.files()), 1)
        self.assertNotIn(message, self.messages())
        with self.nothing_goes():
            again = self.ask(action, form={"Token": token}, method="POST", headers=HERE)
            self.assertIn("was given already", again.text)
            self.assertIn("does not exist any more", self.question(self.address(message))[1])

    def test_from_anywhere_else_are_refused(self):
        for headers in ({"Sec-Fetch-Site": "same-site"}, {"Sec-Fetch-Site": "cross-site"},
                        {"Origin": "http://127.0.0.1:1"}, {"Origin": "null"}, {"Origin": "http://localhost"}):
            with self.subTest(headers), self.nothing_goes():
                action, token = self.question(self.address(self.message()))
                self.assertEqual(self.ask(action, method="POST", form={"Token": token}, headers=headers).status, 403)

    def test_without_the_token_of_their_question_are_refused(self):
        first, second = self.messages()[:2]
        action, token = self.question(self.address(first))
        other, _ = self.question(self.address(second))
        theirs = self.question(self.address(first), "administrator")[1]
        with self.nothing_goes():
            for why, address, form in (("none", action, {}), ("empty", action, {"Token": ""}),
                                       ("of another message", other, {"Token": token}),
                                       ("of another session", action, {"Token": theirs}),
                                       ("cut", action, {"Token": token[:-1]}), ("made up", action, {"Token": "0" * len(token)}),
                                       ("in the address", f"{action}&Token={token}", {})):
                with self.subTest(why):
                    answer = self.ask(address, method="POST", form=form, headers=HERE)
                    self.assertIn("Nothing was deleted.", answer.text)
        fresh = self.sign_in("alice")
        with self.nothing_goes():
            answer = self.ask(action, method="POST", form={"Token": token}, headers=HERE, cookie=fresh)
            self.assertIn("Nothing was deleted.", answer.text, "the token of another session of the same user")
        self.assertEqual(self.ask(action, method="POST", form={"Token": token}, headers=HERE).status, 302)

    def test_of_two_tabs_both_count(self):
        first, second = self.messages()[:2]
        questions = [self.question(self.address(message)) for message in (first, second, first)]
        for action, token in questions[:2]:
            self.assertEqual(self.ask(action, method="POST", form={"Token": token}, headers=HERE).status, 302)
        answer = self.ask(questions[2][0], method="POST", form={"Token": questions[2][1]}, headers=HERE)
        self.assertIn("does not exist any more", answer.text)

    def test_of_several_at_once_delete_each_message_once(self):
        before, messages = self.files(), self.messages()[:6]
        cookies = [self.sign_in("alice") for _ in range(3)]
        self.cookies["alice"] = cookies[0]
        questions = [(cookie, *self.question(self.address(message), cookie=cookie))
                     for message in messages for cookie in cookies]
        with concurrent.futures.ThreadPoolExecutor(6) as workers:
            answers = list(workers.map(lambda each: self.ask(each[1], method="POST", form={"Token": each[2]}, headers=HERE,
                                                             cookie=each[0]), questions))
        self.assertEqual(sum(answer.status == 302 for answer in answers), len(messages))
        self.assertEqual(len(before - self.files()), len(messages))
        self.assertEqual(set(messages) & set(self.messages()), set())


class Refusals(Case):
    def refused(self, address, name="alice", said="Delete message not allowed"):
        """Neither asked nor done, whatever is posted."""
        with self.nothing_goes():
            action, page = self.question(address, name)
            self.assertIsNone(action, page)
            self.assertIn(said, page)
            own_action, token = self.question(self.address(self.message()))
            self.assertIsNotNone(own_action, token)
            answer = self.ask(address, name, "POST", {"Token": token}, HERE)
            self.assertEqual(answer.status, 200)

    def test_of_who_may_not(self):
        message = self.message()
        self.refused(self.address(message), "visitor")
        for mailbox, server in (("admin", SERVER), ("", SERVER), ("alice", ""), ("alice", "NO-SUCH"), ("nobody", SERVER)):
            with self.subTest(f"{mailbox} on {server}"):
                self.refused(self.address(message, mailbox, server))

    def test_of_an_identifier_of_another_mailbox(self):
        foreign = self.messages("admin", "administrator", "Inbox")[0]
        self.refused(self.address(foreign), said="was not issued for this mailbox")
        self.refused(self.address(foreign, "admin"))

    def test_of_a_form_that_does_not_say_where(self):
        message = self.message()
        for flags in (" 0", "4.0", "", "-1", "8"):
            with self.subTest(flags):
                self.refused(self.address(message, flags=flags), said="does not say where the message is")
        self.refused(self.address(message, flags="4"))

    def test_of_identifiers_that_were_never_issued(self):
        message = self.message()
        for made_up in ("../x", "a\0b", "a\nb", "' or 1=1 --", "\"><script>", "a" * 5000, message[:-1], message + "=",
                        message[:-1] + ("A" if message[-1] != "A" else "B"), ""):
            with self.subTest(made_up[:20]), self.nothing_goes():
                action, page = self.question(self.address(made_up))
                self.assertIsNone(action, page)
                self.assertNotIn("<script>", page)

    def test_of_ways_back_that_leave_the_console(self):
        for back in ("javascript:alert(1)", "//evil.example/x.asp", "https://evil.example/", "..\\", "../a/b.asp?\\", "../../x.asp",
                     "/x.asp", "../a/b.asp?\n", ""):
            with self.subTest(back):
                action, token = self.question(self.address(self.message(), back=back))
                answer = self.ask(action, method="POST", form={"Token": token}, headers=HERE)
                self.assertEqual((answer.status, answer.headers["Location"]), (302, "../Default.asp"))


class Written(Case):
    def test_is_every_delete_before_and_after(self):
        message = self.message()
        self.delete(message)
        intent, outcome = self.audit()[-2:]
        self.assertEqual((intent["event"], intent["user"], intent["address"]), ("delete-intended", "KALVO\\alice", "127.0.0.1"))
        self.assertEqual({name: intent["details"][name] for name in ("server", "mailbox", "folder", "public", "message")},
                         {"server": SERVER, "mailbox": "alice", "folder": "Archive", "public": "no", "message": message})
        self.assertTrue(intent["details"]["subject"])
        self.assertEqual((outcome["event"], outcome["details"]), ("deleted", {"intent": str(intent["number"])}))
        self.assertEqual(outcome["previous"], intent["hash"])
        self.assertIn(f"audit {intent['number']} delete-intended {intent['hash']}", console.log())

    def test_is_a_delete_that_failed(self):
        message = self.message()
        questions = [self.question(self.address(message)) for _ in range(2)]
        for action, token in questions:
            self.ask(action, method="POST", form={"Token": token}, headers=HERE)
        failed = self.audit()[-1]
        self.assertEqual(failed["event"], "delete-failed")
        self.assertIn("does not exist any more", failed["details"]["reason"])

    def test_is_every_sign_in_and_what_was_refused(self):
        cookie = self.sign_in("visitor")
        self.question(self.address("x"), "visitor", cookie)
        self.ask("SignOut.asp", method="POST", form={}, headers=HERE, cookie=cookie)
        events = [(line["event"], line["user"]) for line in self.audit()]
        for event in ("signed-in", "right-refused", "signed-out"):
            self.assertIn((event, "KALVO\\visitor"), events)
        self.assertEqual(events[0][0], "server-started")

    def test_is_a_post_from_another_site_in_the_server_log(self):
        action, token = self.question(self.address(self.message()))

        # One a second is written down; an earlier test may have had this second's.
        def post():
            self.ask(action, method="POST", form={"Token": token}, headers={"Origin": "http://evil.example"})
            return re.search(r'security: request-refused from 127.0.0.1 .*origin="http://evil.example"', console.log())
        wait_until("the post is in the server's log", post)

class Changes(Case):
    def test_of_users_and_settings_are_written(self):
        def events():
            return [(line["event"], line["user"], line["details"].get("account", "")) for line in self.audit()]

        subprocess.run([KALVO, "passwd", "--config", console.config, "dora"], input="a long enough word\n", text=True,
                       check=True, stdout=subprocess.DEVNULL)
        wait_until("the changed users file is noted", lambda: ("users-changed", "", "") in events())
        me = pwd.getpwuid(os.getuid()).pw_name
        self.assertIn(("users-changed", me, "KALVO\\dora"), events())
        console.process.send_signal(signal.SIGHUP)
        wait_until("the reload is noted", lambda: ("settings-reloaded", "", "") in events())


class WithoutAudit(Case):
    """Without the line nothing is deleted. The last class by name: it takes the log away for a while."""

    def test_nothing_is_deleted(self):
        log = os.path.join(console.folder, "run", "audit", "audit.jsonl")
        action, token = self.question(self.address(self.message()))
        os.rename(log, log + ".away")
        os.mkdir(log)
        try:
            with self.nothing_goes():
                answer = self.ask(action, method="POST", form={"Token": token}, headers=HERE)
                self.assertIn("It could not be written down, so nothing was deleted", answer.text)
                self.assertNotIn(console.folder, answer.text, "where the log is, is nobody's business")
        finally:
            os.rmdir(log)
            os.rename(log + ".away", log)
        self.assertEqual(self.delete(self.message()).status, 302)


class Restoring(Case):
    PAGE = f"Resources/DeletedMessages.asp?Server={SERVER}&Mailbox=alice"

    def held(self, name="alice", page=PAGE):
        """The forms that restore a message: its id and its token."""
        return re.findall(r'<form method="post" action="DeletedMessages\.asp[^"]*"><input type="hidden" name="Id" '
                          r'value="([0-9a-zA-Z]+)"><input type="hidden" name="Token" value="([0-9a-f]+)">',
                          self.ask(page, name).text)

    def restore(self, form, name="alice", **more):
        return self.ask(self.PAGE, name, "POST", {"Id": form[0], "Token": form[1]}, more.get("headers", HERE))

    def test_brings_a_message_back_as_it_was(self):
        before, message, held = self.files(), self.message(), {form[0] for form in self.held()}
        self.delete(message)
        self.assertEqual(len(before - self.files()), 1)
        answer = self.restore(*[form for form in self.held() if form[0] not in held])
        self.assertIn("The message is back in the folder Archive.", answer.text)
        self.assertEqual(self.files(), before)
        self.assertIn(message, self.messages())
        intent, outcome = self.audit()[-2:]
        self.assertEqual((intent["event"], intent["user"], intent["details"]["folder"]), ("restore-intended", "KALVO\\alice", "Archive"))
        self.assertEqual((outcome["event"], outcome["details"]), ("restored", {"intent": str(intent["number"])}))

    def test_is_done_once_and_by_its_own_token(self):
        for message in self.messages()[:2]:
            self.delete(message)
        first, second = self.held()[:2]
        with self.held_stay():
            for form in ((first[0], ""), (first[0], second[1]), (first[0], first[1][:-1])):
                self.assertIn("Nothing was restored.", self.restore(form).text)
            for headers in ({"Sec-Fetch-Site": "same-site"}, {"Origin": "http://evil.example"}):
                self.assertEqual(self.restore(first, headers=headers).status, 403)
            self.ask(f"{self.PAGE}&Id={first[0]}&Token={first[1]}")
            self.ask(f"{self.PAGE}&Id={first[0]}&Token={first[1]}", method="HEAD")
        self.assertIn("is back", self.restore(first).text)
        self.assertIn("Nothing was restored.", self.restore(first).text)

    def held_stay(self):
        case, before = self, sorted(form[0] for form in self.held())

        class Stay:
            def __enter__(self):
                return self

            def __exit__(self, *error):
                if error[0] is None:
                    case.assertEqual(sorted(form[0] for form in case.held()), before)
        return Stay()

    def test_is_for_who_may_delete(self):
        self.delete(self.message())
        form = self.held()[0]
        for page in (self.PAGE, f"Resources/DeletedMessages.asp?Server={SERVER}&Mailbox=admin",
                     f"Resources/DeletedMessages.asp?Server={SERVER}&Public=Yes"):
            with self.subTest(page):
                self.assertEqual(self.held("visitor", page), [])
                self.assertIn("not yours to restore", self.ask(page, "visitor").text)
        with self.held_stay():
            self.restore(form, "visitor")
            self.assertIn("Nothing was restored", self.restore(form, "administrator").text, "the token of another session")
        self.assertIn(form[0], [each[0] for each in self.held("administrator")])
        self.assertIn("No deleted messages are held.", self.ask(f"Resources/DeletedMessages.asp?Server={SERVER}&Public=Yes",
                                                                "administrator").text)


class AuditLog(Case):
    def run_audit(self, *words):
        return subprocess.run([KALVO, "audit", "--config", console.config, *words], capture_output=True, text=True, check=False)

    def test_is_shown_to_administrators_alone(self):
        self.delete(self.message())
        page = self.ask("Configuration/AuditLog.asp", "administrator").text
        self.assertIn("<td>deleted</td><td>KALVO\\alice</td><td>127.0.0.1</td>", page)
        self.assertEqual(self.ask("Configuration/AuditLog.asp?Event=deleted", "administrator").text.count("<td>signed-in</td>"), 0)
        self.assertIn("There are no such lines.", self.ask("Configuration/AuditLog.asp?Skip=100000", "administrator").text)
        for name in ("alice", "visitor"):
            page = self.ask("Configuration/AuditLog.asp", name).text
            self.assertIn("shown to administrators only", page)
            self.assertNotIn("<td>deleted</td>", page)

    def test_encodes_what_it_shows(self):
        self.question(self.address("x", mailbox="<script>alert(1)</script>"), "visitor")
        for query in ("", "?User=%3Cscript%3E&Event=%3Cscript%3E&Skip=%3Cscript%3E"):
            self.assertNotIn("<script>", self.ask("Configuration/AuditLog.asp" + query, "administrator").text)

    def test_is_listed_and_verified_by_the_command(self):
        self.delete(self.message())
        lines = [json.loads(line) for line in self.run_audit("--event", "deleted", "--user", "alice").stdout.splitlines()]
        self.assertTrue(lines)
        self.assertEqual({(line["event"], line["user"]) for line in lines}, {("deleted", "KALVO\\alice")})
        self.assertEqual(self.run_audit("--until", "2000").stdout, "")
        self.assertEqual(len(self.run_audit("--last", "2").stdout.splitlines()), 2)
        done = self.run_audit("--verify", "--contains", lines[-1]["hash"])
        self.assertEqual((done.returncode, done.stdout.splitlines()[-1]), (0, "the log is whole"))
        done = self.run_audit("--verify", "--contains", "1" * 64)
        self.assertEqual((done.returncode, done.stdout.splitlines()[-1]), (1, "the log is not whole"))
        done = self.run_audit("--event", "nonsense")
        self.assertEqual(done.returncode, 2)
        self.assertIn("there is no event nonsense; there are server-started", done.stderr)

    def test_that_was_changed_is_found(self):
        with tempfile.TemporaryDirectory(prefix="kalvo-") as folder:
            with open(os.path.join(console.folder, "run", "audit", "audit.jsonl"), encoding="utf-8") as file:
                text = file.read()
            with open(os.path.join(folder, "audit.jsonl"), "w", encoding="utf-8") as file:
                file.write(text.replace('"signed-in"', '"signed-out"', 1))
            done = subprocess.run([KALVO, "audit", "--folder", folder, "--verify"], capture_output=True, text=True, check=False)
        self.assertEqual(done.returncode, 1)
        self.assertRegex(done.stdout, r"broken: audit\.jsonl:\d+: this is no line of the audit log, or it was changed")


class OwnPages(unittest.TestCase):
    """A page of the site's own, in a server where nobody signs in."""

    PAGE = """<%
        var g = Server.CreateObject("KalvoTables.KalvoforExchangeTableGenerator"), step = {value: ""},
          id = String(Request.QueryString("MessageId")), live = Session.StaticObjects("gLiveDriller");
        try {
          if (id === "") {
            live.GotoContainer("SEA-EX01", "alice", "Archive", 0, 1);
            Response.Write(live.Messages().Field("ExchangeId"));
          } else {
            if (String(Request.Form("Token")) !== "") { Session.TakeToken("DeleteMessage " + id, String(Request.Form("Token"))); }
            if (String(Request.QueryString("How")) === "direct") { live.RemoveMessage("SEA-EX01", "alice", "", id, 0); }
            else { g.DeleteMessage(step); }
            Response.Write("deleted");
          }
        } catch (e) { Response.Write(e.description + "|" + Session.NewToken("DeleteMessage " + id)); }
      %>"""

    def test_delete_by_a_posted_token_only(self):
        store = os.path.join(console.folder, "sample")
        settings = (f'workers = 2\ndatabase = "sqlite:{store}/kalvo.db"\nmail = "maildir:{store}/mail"\n'
                    '[visitor]\nlogon = "KALVO\\\\alice"\n[visitor.session]\nKalvoDrillDownAuth = "Yes"')
        with Serving(KALVO, {"Page.asp": self.PAGE}, settings) as server:
            message = server.get("Page.asp").text
            query = f"Page.asp?ServerName=SEA-EX01&MailboxName=alice&Flags=0&MessageId={message}"
            refused = "A message is deleted by a posted form with a token for it"
            for how in ("", "&How=direct"):
                said, token = server.get(query + how).text.split("|")
                self.assertIn(refused, said)
                self.assertIn(refused, server.request("/KalvoforExchange/" + query + how, "POST", "x=1", {"Content-Type": FORM}).text)
                self.assertIn(refused, server.get(query + how + "&Token=" + token).text)
            answer = server.request("/KalvoforExchange/" + query, "POST", "Token=" + token,
                                    {"Content-Type": FORM, "Sec-Fetch-Site": "same-site"})
            self.assertEqual(answer.status, 403)
            answer = server.request("/KalvoforExchange/" + query, "POST", "Token=" + token, {"Content-Type": FORM})
            self.assertEqual(answer.text, "deleted")


if __name__ == "__main__":
    cases.main()
