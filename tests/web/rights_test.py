"""rights_test.py KALVO: what a worker may do to the machine, and what it says when its own parts are missing."""

import os
import pwd
import shutil
import stat
import subprocess
import sys
import unittest

import cases
from serving import Serving, program_of, wait_until

KALVO = sys.argv.pop()
PASSWORD = "correct horse battery"
HOG = "<% var piece = new Array(5000).join('x'), hog = []; for (;;) { hog.push(piece + hog.length); } %>"
FILES = {"Default.asp": "home", "style.css": "x", "hog.asp": HOG,
         "SignIn.asp": '<%= Request.ServerVariables("KALVO_SIGN_IN") %>', "bad.asp": "<% oops(); %>"}
ROOT = os.geteuid() == 0


def status_of(process):
    with open(f"/proc/{process}/status", encoding="utf-8") as file:
        return dict(line.rstrip("\n").split(":\t", 1) for line in file if ":\t" in line)


class Workers(unittest.TestCase):
    def test_cannot_gain_rights(self):
        with Serving(KALVO, FILES, "workers = 2") as server:
            wait_until("the workers have begun", lambda: all(status_of(p)["NoNewPrivs"] == "1" for p in server.workers()))
            for worker in server.workers():
                status = status_of(worker)
                for rights in ("CapPrm", "CapEff", "CapInh", "CapAmb"):
                    self.assertEqual(int(status[rights], 16), 0, rights)
                if ROOT:
                    self.assertEqual(int(status["CapBnd"], 16), 0)
            self.assertEqual(server.get("Default.asp").text, "home")
            if ROOT:
                self.assertIn("running as root: workers keep its id and lose every capability", server.log())

    def test_have_a_limit_of_memory(self):
        # The script alone might take more than the worker.
        with Serving(KALVO, FILES, "workers = 1\nmemory_limit = 32\nworker_memory = 300") as server:
            self.assertEqual(server.get("Default.asp").text, "home")
            with open(f"/proc/{server.workers()[0]}/limits", encoding="utf-8") as file:
                line = next(line for line in file if line.startswith("Max address space"))
            if "unlimited" not in line:  # a sanitizer takes terabytes
                self.assertEqual(line.split()[3:5], [str(300 << 20)] * 2)
            self.assertEqual(server.get("hog.asp").status, 500)
            self.assertEqual(server.get("Default.asp").text, "home")

    def test_say_why_a_database_cannot_be_opened(self):
        files = {"report.asp": "<% Server.CreateObject('KalvoTables.KalvoforExchangeTableGenerator').BuildTable("
                               "TABLE_RES_ORGANIZATION_ALLSERVERS, '', '', '', '', '', TOPN_UNDEFINED, 'none'); %>"}
        with Serving(KALVO, files, 'workers = 1\ndatabase = "sqlite:missing.db"') as server:
            server.get("report.asp")
            wait_until("a word in the log", lambda: "the data source KalvoDB cannot be opened: [" in server.log())


class AnotherUser(unittest.TestCase):
    def serve_as(self, user):
        server = Serving(KALVO, FILES)
        users = os.path.join(server.folder, "users")
        subprocess.run([KALVO, "passwd", "--users", users, "alice"], input=PASSWORD + "\n", text=True,
                       capture_output=True, check=True)
        server.configure(f'workers = 2\nusers = "users"\nuser = "{user.pw_name}"')
        return server, users

    def test_is_whom_workers_and_nginx_serve_as(self):
        user = pwd.getpwnam("nobody") if ROOT else pwd.getpwuid(os.geteuid())
        server, users = self.serve_as(user)
        os.chmod(server.folder, 0o755)
        os.chown(users, user.pw_uid, user.pw_gid)
        with server:
            wait_until("the workers have begun",
                       lambda: all(status_of(p)["Uid"].split() == [str(user.pw_uid)] * 4 for p in server.workers()))
            helpers = [p for p in server.tree() if program_of(p) == "nginx" and p not in server.nginx()]
            for process in server.workers() + helpers:
                self.assertEqual(status_of(process)["Uid"].split(), [str(user.pw_uid)] * 4)
                self.assertEqual(int(status_of(process)["CapEff"], 16), 0)
            if ROOT:
                self.assertEqual(status_of(server.process.pid)["Uid"].split()[0], "0")
                self.assertEqual(os.stat(os.path.join(server.folder, "run")).st_uid, 0)
            form = {"Content-Type": "application/x-www-form-urlencoded"}
            answer = server.get("SignIn.asp", method="POST", headers=form,
                                body="Name=alice&Password=" + PASSWORD.replace(" ", "+"))
            self.assertEqual(answer.status, 303, answer.text)
            cookie = answer.headers["Set-Cookie"].split(";")[0]
            self.assertEqual(server.get("Default.asp", headers={"Cookie": cookie}).text, "home")
            self.assertEqual(server.get("style.css").text, "x")
            self.assertIn("<h1>Internal", server.get("bad.asp", headers={"Cookie": cookie}).text)
            self.assertIn("<h1>Not Found", server.get("none.css").text)

    def test_has_to_be_able_to_read_the_users(self):
        user = pwd.getpwnam("nobody")
        server, users = self.serve_as(user)
        os.chmod(users, stat.S_IRUSR | stat.S_IWUSR)
        self.refused(server, "nobody, who serves, cannot read" if ROOT else "only root can have its workers serve as")

    def test_is_one_of_the_system_and_not_root(self):
        for name, why in (("no-such-user", "this system has no user no-such-user"), ("root", "is root")):
            with self.subTest(name):
                server = Serving(KALVO, FILES, f'user = "{name}"')
                self.refused(server, why)

    def refused(self, server, why):
        try:
            done = subprocess.run([KALVO, "serve", "--config", server.config], stdin=subprocess.DEVNULL,
                                  capture_output=True, text=True, timeout=30, check=False)
            self.assertEqual(done.returncode, 2, done.stderr)
            self.assertIn(why, done.stderr)
        finally:
            shutil.rmtree(server.folder, ignore_errors=True)


if __name__ == "__main__":
    cases.main()
