#!/usr/bin/python3
"""report.py BUILD: runs every attack that the tests know against copies of the product, and prints a report.

A line an attack, with what became of it, and the numbers last. An attack is a case of a test program; the table below
says which. A program that is not there, or a row that no case fits, is an attack that was not tried, and counts as one
that got through.
"""

import argparse
import importlib.machinery
import importlib.util
import os
import re
import sys

# What is attacked, by whom of the test programs, and which of its cases are attacks.
ATTACKS = (
    ("Sign-in and sessions", (
        ("sign_in", "hostile|guess|refuse|writes_lets_nobody|sessions?$|ends_the_session|wrong_password|own_password"),
        ("login", r"^(Gates\.(Let|Refuse|DoNot|Slow|SendBack|End|Keep|Find|LookAt)|OwnPasswords|PasswordChanges|Proxied"
                  r"|Attempts|Sessions\.|Users\.Are)"),
        ("proxy", "."),
    )),
    ("Text in pages", (
        ("html_attack", "."),
        ("policy", "nothing|no_other"),
        ("console", "write_nothing"),
    )),
    ("Deleting", (
        ("deleting", "."),
        ("browser", "neighbour|through_the_sign_in|foreign_name|run_nothing"),
        ("audit", r"^(KilledActs|Verifying)\.|NobodyBrings|StrangersOf"),
    )),
    ("Reports and SQL on every engine", (
        ("report_pages", "Hostile"),
        ("sql_attack", "refused|edge|values"),
        ("database_contract", "HostileText|RefusesToWrite|StopsAStatement"),
        ("database_proof", "AttributeCalls|UnknownEngine|Proof"),
        ("sql", "^Shape"),
    )),
    ("Requests", (
        ("edge", "Judge|Limits|Refuses|Hides|IsFound|IsShort|TakesIdentifiers"),
        ("served_edge", "refused|identifiers|fits|traces|one_line"),
        ("serve", "is_not|too_much|elsewhere|refused|control_characters|name_himself|ill_formed|no_http|limited"),
        ("raw_requests", "."),
        ("reach", "."),
        ("check_attack", "."),
    )),
    ("Waiting, floods and rights", (
        ("floods", "."),
    )),
    ("Rights of workers", (("rights", "."),)),
    ("Mail", (
        ("mail_attack", "."),
        ("maildir", "Hostile|MaildirHolding|MessageScan"),
        ("imap_holding", "."),
        ("mail", "MailErrors|Identifiers|ANameThatIsNo"),
        ("imap", "Hostile|ResponseGuard|ANameCannot|OnlyConfigured|Tls"),
    )),
    ("Page scripts and killed processes", (
        ("serve", "never_ends|takes_all_memory|for_ever|killed|stands_still"),
        ("script", "Limits"),
        ("maildir", "Killed"),
    )),
)

SCRIPT_CASE = re.compile(r"^(test_\w+) \(.*\) \.\.\. (?:[\d.]+ s )?(ok|FAIL|ERROR|skipped.*)$", re.MULTILINE)
PROGRAM_CASE = re.compile(r"^\[  (     OK|FAILED ) \] (\S+?)(?:,.*)? \(\d+ ms\)$", re.MULTILINE)


def load_runner():
    path = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tools", "run-tests")
    loader = importlib.machinery.SourceFileLoader("run_tests", path)
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader("run_tests", loader))
    loader.exec_module(module)
    return module


def cases_of(outcome):
    """Each case that the program tells of, and whether the attack was refused."""
    found = {name: word == "ok" for name, word in SCRIPT_CASE.findall(outcome.output)}
    found.update({name: word.strip() == "OK" for word, name in PROGRAM_CASE.findall(outcome.output)})
    return found


class Report:
    def __init__(self, runner, build, scale):
        self.runner, self.scale = runner, scale
        self.programs = {program.name: program for program in runner.listed(build)}
        self.outcomes = {}
        self.tried, self.through = 0, 0

    def outcome(self, name):
        if name not in self.outcomes:
            self.outcomes[name] = self.runner.run(self.programs[name], self.scale)
        return self.outcomes[name]

    def tell(self, refused, what):
        self.tried += 1
        self.through += not refused
        print(f"  {'refused' if refused else 'NOT REFUSED':11}  {what}", flush=True)

    def part(self, name, pattern):
        if name not in self.programs:
            return self.tell(False, f"{name}: there is no such program")
        outcome = self.outcome(name)
        chosen = {case: refused for case, refused in cases_of(outcome).items() if re.search(pattern, case)}
        for case, refused in chosen.items():
            self.tell(refused, f"{name}: {case.removeprefix('test_').replace('_', ' ')}")
        if not chosen:
            self.tell(False, f"{name}: no case fits \"{pattern}\"")
        # A program that ended badly may have left cases out.
        for failure in outcome.failures:
            if not re.search(r" cases$|: \S+\.\S+$", failure):
                self.tell(False, failure)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("build", help="the build folder")
    parser.add_argument("--long", action="store_true", help="the long form of those that have one")
    arguments = parser.parse_args()
    if arguments.long:
        os.environ["KALVO_TEST_LONG"] = "1"
    runner = load_runner()
    report = Report(runner, arguments.build, 10 if arguments.long else 2)
    for title, parts in ATTACKS:
        print(title)
        for name, pattern in parts:
            report.part(name, pattern)
    print(f"{report.tried} attacks, {report.through} not refused")
    return 1 if report.through else 0


if __name__ == "__main__":
    sys.exit(main())
