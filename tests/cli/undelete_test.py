"""undelete_test.py KALVO: deleted messages are listed, restored, and gone when their time is over."""

import glob
import os
import subprocess
import sys
import tempfile
import time
import unittest

import cases
import serving

KALVO = os.path.abspath(sys.argv.pop())

MAILBOXES = """[server EX01]
public = public

[mailbox Alice Archer]
server = EX01
account = KALVO\\alice
address = alice@kalvo.example
location = alice
"""

DELETE = """<%
var live = Session.StaticObjects("gLiveDriller");
live.GotoContainer("EX01", "alice", "Inbox", 0, 1);
live.RemoveMessage("EX01", "alice", "", live.Messages().Field("ExchangeId"), 0);
%>deleted"""


class Undelete(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="kalvo-")
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        for name in ("alice/cur", "alice/new", "alice/.Other/cur", "alice/.Other/new", "public"):
            os.makedirs(os.path.join(self.folder, "mail", name))
        self.write("mail/mailboxes.txt", MAILBOXES)
        self.write("mail/alice/cur/1.host:2,FS", "From: bob@kalvo.example\nSubject: Plan\x1b[31m\n\nBody\n")
        self.write("kalvo.toml", 'mail = "maildir:mail"\nrun = "run"\n')
        self.write("delete.asp", DELETE)

    def write(self, name, text):
        with open(os.path.join(self.folder, name), "w", encoding="utf-8") as file:
            file.write(text)

    def run_kalvo(self, *arguments):
        done = subprocess.run([KALVO, *arguments], cwd=self.folder, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, timeout=60, text=True)
        return done.returncode, done.stdout, done.stderr

    def delete(self):
        done = self.run_kalvo("page", "--mail", "maildir:mail", "--logon", "KALVO\\alice", "delete.asp")
        self.assertEqual(done, (0, "deleted", ""))

    def undelete(self, *arguments):
        return self.run_kalvo("undelete", "--config", "kalvo.toml", *arguments)

    def messages(self):
        return sorted(os.path.relpath(path, os.path.join(self.folder, "mail"))
                      for path in glob.glob(self.folder + "/mail/alice/**/*host*", recursive=True) +
                      glob.glob(self.folder + "/mail/alice/.*/*/*host*"))

    def test_nothing_was_deleted(self):
        self.assertEqual(self.undelete(), (0, "", ""))

    def test_a_deleted_message_is_listed_and_restored(self):
        self.delete()
        self.assertEqual(self.messages(), [])
        code, listed, said = self.undelete()
        self.assertEqual((code, said, listed.count("\n")), (0, "", 1))
        for part in ('alice@kalvo.example  Inbox  "Plan [31m"  from bob@kalvo.example', "deleted by KALVO\\alice",
                     "held until " + time.strftime("%Y-%m-%d", time.localtime(time.time() + 14 * 86400))):
            self.assertIn(part, listed)
        self.assertNotIn("\x1b", listed)
        held = listed.split()[0]
        self.assertEqual(self.undelete(held), (0, 'restored "Plan [31m" to Inbox of alice@kalvo.example\n', ""))
        self.assertEqual(self.messages(), ["alice/cur/1.host:2,FS"])
        self.assertEqual(self.undelete(), (0, "", ""))

    def test_what_was_restored_is_in_the_audit_log(self):
        self.delete()
        self.undelete(self.undelete()[1].split()[0])
        lines = "".join(open(path, encoding="utf-8").read() for path in glob.glob(self.folder + "/run/audit/*"))
        self.assertIn("restore-intended", lines)
        self.assertIn('"restored"', lines)

    def test_into_another_folder(self):
        self.delete()
        held = self.undelete()[1].split()[0]
        self.assertEqual(self.undelete(held, "--into", "other")[1],
                         'restored "Plan [31m" to Other of alice@kalvo.example\n')
        self.assertEqual(self.messages(), ["alice/.Other/cur/1.host:2,FS"])

    def test_what_cannot_be_restored_is_told(self):
        self.delete()
        held = self.undelete()[1].split()[0]
        for why, arguments, code, words in [
                ("no such message", ["00112233445566778899aabbccddeeff"], 2, "there is no deleted message"),
                ("no such folder", [held, "--into", "Nowhere"], 1, "There is no such folder"),
                ("a folder alone", ["--into", "Other"], 2, "ID")]:
            with self.subTest(why):
                ended, _, said = self.undelete(*arguments)
                self.assertEqual(ended, code)
                self.assertIn(words, said)
        self.assertEqual(self.undelete()[1].split()[0], held)

    def test_no_mailboxes_are_told(self):
        self.write("kalvo.toml", "")
        code, _, said = self.undelete()
        self.assertEqual(code, 2)
        self.assertIn("names no mailboxes", said)

    def test_a_server_sweeps_what_is_past_its_time(self):
        self.delete()
        record = glob.glob(self.folder + "/mail/.kalvo/held/*/*.record")[0]
        with open(record, encoding="ascii") as file:
            text = file.read()
        when = next(word for word in text.split() if word.startswith("when="))
        with open(record, "w", encoding="ascii") as file:
            file.write(text.replace(when, f"when={int(when[5:]) - 4 * 86400}"))
        settings = f'mail = "maildir:{self.folder}/mail"\nholding_days = 3'
        with serving.Serving(KALVO, {"a.asp": "a"}, settings) as server:
            def told():
                with open(server.log_file, encoding="utf-8") as file:
                    return "deleted messages that were held long enough are gone: 1\n" in file.read()

            serving.wait_until("the log tells that the message is gone", told, 60)
            self.assertFalse(os.path.exists(record))
        self.assertEqual(self.undelete(), (0, "", ""))


if __name__ == "__main__":
    cases.main()
