"""A `kalvo serve` of its own for a test: a site and settings in a private folder, a free port, and its processes."""

import http.client
import os
import shutil
import signal
import socket
import subprocess
import tempfile
import time


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def wait_until(what, happened, seconds=15.0):
    until = time.monotonic() + seconds
    while not happened():
        if time.monotonic() > until:
            raise AssertionError(f"not within {seconds} seconds: {what}")
        time.sleep(0.02)


def parents():
    """The parent of every process that runs (zombies do not)."""
    found = {}
    for name in os.listdir("/proc"):
        if name.isdigit():
            try:
                with open(f"/proc/{name}/stat", encoding="ascii", errors="replace") as file:
                    state, parent = file.read().rpartition(")")[2].split()[:2]
            except OSError:
                continue
            if state != "Z":
                found[int(name)] = int(parent)
    return found


def program_of(process):
    try:
        with open(f"/proc/{process}/comm", encoding="utf-8") as file:
            return file.read().strip()
    except OSError:
        return ""


class Answer:
    def __init__(self, status, headers, body):
        self.status, self.headers, self.body = status, headers, body
        self.text = body.decode("utf-8", "replace")


class Serving:
    """with Serving(program, {"page.asp": "..."}, 'workers = 2') as server: server.get("page.asp")"""

    def __init__(self, program, files=None, settings="", site=None):
        self.program = program
        self.folder = tempfile.mkdtemp(prefix="kalvo-")
        self.site = site or os.path.join(self.folder, "site")
        self.config = os.path.join(self.folder, "kalvo.toml")
        self.log_file = os.path.join(self.folder, "log")
        self.port = free_port()
        os.makedirs(self.site, exist_ok=True)
        for name, content in (files or {}).items():
            self.write(name, content)
        self.configure(settings)
        self.process = None
        self.seen = set()

    def write(self, name, content):
        path = os.path.join(self.site, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path + ".new", "wb") as file:
            file.write(content if isinstance(content, bytes) else content.encode())
        os.rename(path + ".new", path)

    def configure(self, settings):
        with open(self.config, "w", encoding="utf-8") as file:
            file.write(f'listen = "127.0.0.1:{self.port}"\nsite = "{self.site}"\nrun = "run"\nlog = "log"\n{settings}\n')

    def start(self):
        self.process = subprocess.Popen([self.program, "serve", "--config", self.config], stdin=subprocess.DEVNULL,
                                        stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        for line in self.process.stdout:
            if line.startswith(("http://", "https://")) or "server block" in line:
                self.address = line.strip()
                return self
        raise AssertionError("the server did not start: " + self.process.stderr.read())

    __enter__ = start

    def __exit__(self, *error):
        self.tree()
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGTERM)
            try:
                self.process.wait(15)
            except subprocess.TimeoutExpired:
                self.process.kill()
                self.process.wait()
        self.process.stdout.close()
        self.process.stderr.close()
        left = self.left()
        for process in left:
            os.kill(process, signal.SIGKILL)
        shutil.rmtree(self.folder, ignore_errors=True)
        if left and error[0] is None:
            raise AssertionError(f"processes were left behind: {left}")

    def tree(self):
        """Every process below the server's, remembered for `left`."""
        table, found, fresh = parents(), set(), {self.process.pid}
        while fresh:
            found |= fresh
            fresh = {child for child, parent in table.items() if parent in fresh} - found
        found.discard(self.process.pid)
        self.seen |= found
        return found

    def left(self):
        return [process for process in self.seen if process in parents()]

    def workers(self):
        table = parents()
        return sorted(p for p, parent in table.items() if parent == self.process.pid and program_of(p) != "nginx")

    def nginx(self):
        table = parents()
        return [p for p, parent in table.items() if parent == self.process.pid and program_of(p) == "nginx"]

    def request(self, path, method="GET", body=None, headers=None, timeout=30, source="127.0.0.1"):
        connection = http.client.HTTPConnection("127.0.0.1", self.port, timeout=timeout, source_address=(source, 0))
        try:
            connection.request(method, path, body, headers or {})
            answer = connection.getresponse()
            return Answer(answer.status, answer.headers, answer.read())
        finally:
            connection.close()

    def get(self, page, **more):
        return self.request("/KalvoforExchange/" + page, **more)

    def log(self):
        with open(self.log_file, encoding="utf-8") as file:
            return file.read()
