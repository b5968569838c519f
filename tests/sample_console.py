"""The console over a small sample of its own, served, with users of different rights."""

import os
import subprocess

from serving import Serving

CONSOLE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "console")
PASSWORD = "kalvo-sample"
USERS = {"administrator": ["--administrator", "--drill-down"], "alice": ["--drill-down"], "visitor": []}
SETTINGS = 'workers = 2\ndatabase = "sqlite:sample/kalvo.db"\nmail = "maildir:sample/mail"\nusers = "users"'


class SampleConsole(Serving):
    """with SampleConsole(program) as console: console.address is where its pages are."""

    def __init__(self, program):
        super().__init__(program, settings=SETTINGS, site=os.path.normpath(CONSOLE))
        subprocess.run([program, "sample", "--out", os.path.join(self.folder, "sample"), "--mail", "users"], check=True,
                       stderr=subprocess.DEVNULL)
        for name, rights in USERS.items():
            subprocess.run([program, "passwd", "--users", os.path.join(self.folder, "users"), name, *rights],
                           input=PASSWORD + "\n", text=True, check=True, stdout=subprocess.DEVNULL)

    def mailbox(self, server, name):
        """The names of all files of a mailbox's Inbox."""
        inbox = os.path.join(self.folder, "sample", "mail", server, name)
        return {file.split(":")[0] for part in ("cur", "new") for file in os.listdir(os.path.join(inbox, part))}
