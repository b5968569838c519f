"""proxy_test.py KALVO: a user whom a proxy names is believed on the proxy's own socket, and nowhere else."""

import http.client
import os
import signal
import socket
import subprocess
import sys
import unittest

import cases
from serving import Answer, Serving, wait_until

KALVO = sys.argv.pop()
WHO = ('<%= Request.ServerVariables("LOGON_USER") %>|<%= Request.ServerVariables("AUTH_TYPE") %>|'
       '<%= Session("KalvoAdministrator") %>|<%= Request.ServerVariables("HTTP_X_REMOTE_USER") %>|'
       '<%= Request.ServerVariables("KALVO_PROXY_USER") %>|<%= Request.ServerVariables("REMOTE_ADDR") %>|'
       '<%= Request.ServerVariables("HTTPS") %>')
COUNT = '<% var n = Number(Session("n") || 0) + 1; Session.Value("n", n); %><%= n %>'
FILES = {"Default.asp": "home", "SignIn.asp": "sign in", "who.asp": WHO, "count.asp": COUNT}


class BySocket(http.client.HTTPConnection):
    def __init__(self, path):
        super().__init__("localhost", timeout=20)
        self.path = path

    def connect(self):
        self.sock = socket.socket(socket.AF_UNIX)
        self.sock.connect(self.path)


class Proxy(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.server = Serving(KALVO, FILES, 'workers = 2\nusers = "users"\nproxy_socket = "proxy/in.sock"\n'
                                           'proxy_user_header = "X-Remote-User"')
        os.mkdir(os.path.join(cls.server.folder, "proxy"), 0o750)
        cls.socket = os.path.join(cls.server.folder, "proxy", "in.sock")
        for words in (["alice", "--administrator"], ["bob"]):
            subprocess.run([KALVO, "passwd", "--users", os.path.join(cls.server.folder, "users"), *words, "--no-password"],
                           check=True, stdout=subprocess.DEVNULL)
        cls.server.start()

    @classmethod
    def tearDownClass(cls):
        cls.server.__exit__(None)

    def by_socket(self, page, headers):
        connection = BySocket(self.socket)
        try:
            connection.request("GET", "/KalvoforExchange/" + page, headers=headers)
            answer = connection.getresponse()
            return Answer(answer.status, answer.headers, answer.read())
        finally:
            connection.close()

    def test_the_socket_names_the_user(self):
        answer = self.by_socket("who.asp", {"X-Remote-User": "alice", "X-Forwarded-For": "192.0.2.7",
                                            "X-Forwarded-Proto": "https"})
        self.assertEqual(answer.text.strip(), "KALVO\\alice|Proxy|Yes|||192.0.2.7|on")
        self.assertEqual(self.by_socket("who.asp", {"x-remote-user": "bob"}).text.split("|")[:3], ["KALVO\\bob", "Proxy", ""])

    def test_the_session_of_a_user_goes_on(self):
        for expected in ("1", "2", "3"):
            self.assertEqual(self.by_socket("count.asp", {"X-Remote-User": "bob"}).text.strip(), expected)

    def test_nobody_else_names_a_user(self):
        for headers in ({"X-Remote-User": "alice"}, {"X_Remote_User": "alice"}, {"KALVO_PROXY_USER": "alice"},
                        {"Kalvo-Proxy-User": "alice"}, {"X-Remote-User": "alice", "X-Forwarded-For": "unix:"},
                        {"X-Remote-User": "alice", "X-Forwarded-For": "127.0.0.1"}, {"X-Real-IP": "unix:"}):
            answer = self.server.get("who.asp", headers=headers)
            self.assertEqual(answer.status, 302, headers)
            self.assertIn("SignIn.asp", answer.headers["Location"])

    def test_the_socket_without_a_name_asks_to_sign_in(self):
        self.assertEqual(self.by_socket("who.asp", {}).status, 302)
        self.assertEqual(self.by_socket("who.asp", {"X-Remote-User": ""}).status, 302)
        self.assertEqual(self.by_socket("who.asp", {"X_Remote_User": "alice"}).status, 302)

    def test_who_is_no_user_here_is_refused(self):
        for name in ("mallory", "KALVO\\mallory", "alice, bob", "alice bob", "<script>", "a" * 4000):
            self.assertEqual(self.by_socket("who.asp", {"X-Remote-User": name}).status, 403, name)

    def test_a_killed_nginx_leaves_no_socket_in_the_way(self):
        master = self.server.nginx()[0]
        os.kill(master, signal.SIGKILL)

        def answers():
            try:
                return self.by_socket("who.asp", {"X-Remote-User": "bob"}).status == 200 and self.server.nginx() != [master]
            except OSError:
                return False
        wait_until("nginx listens at its socket again", answers, 60)


class Settings(unittest.TestCase):
    def refusal(self, settings, mode=0o750):
        server = Serving(KALVO, FILES, settings)
        os.mkdir(os.path.join(server.folder, "proxy"))
        os.chmod(os.path.join(server.folder, "proxy"), mode)
        with open(os.path.join(server.folder, "users"), "w", encoding="utf-8") as file:
            file.write("KALVO\\alice - -\n")
        os.chmod(os.path.join(server.folder, "users"), 0o600)
        answer = subprocess.run([KALVO, "serve", "--config", server.config], text=True, capture_output=True, timeout=60,
                                check=False)
        self.assertEqual(answer.returncode, 2, answer.stderr)
        return answer.stderr

    def test_that_let_others_in_are_refused(self):
        both = 'proxy_socket = "proxy/in.sock"\nproxy_user_header = "X-Remote-User"\n'
        for settings, mode, says in (
                (both + 'users = "users"', 0o755, "could name a user; chmod o-rwx"),
                (both + 'users = "users"', 0o1777, "could name a user; chmod o-rwx"),
                (both, 0o750, "users, which is missing"),
                ('users = "users"\nproxy_user_header = "X-Remote-User"', 0o750, "proxy_socket alone, which is missing"),
                ('users = "users"\nproxy_user_header = "X Remote"', 0o750, "the name of a header"),
                ('users = "users"\nproxy_socket = "nowhere/in.sock"', 0o750, "there is no folder"),
                ('users = "users"\nweb = "external"\n' + both, 0o750, "that nginx is the proxy"),
                (f'users = "users"\nproxy_socket = "proxy/{"x" * 120}"', 0o750, "too long for a socket")):
            with self.subTest(settings):
                self.assertIn(says, self.refusal(settings, mode))


if __name__ == "__main__":
    cases.main()
