#!/usr/bin/python3
"""Runs every measurement that has a goal and prints them as one table: run.py BUILD [SECTION ...]

BUILD is an optimised build with the programs of bench/. Whatever is compared is measured in turns within this run, and
told as the median over the rounds. Ends with "N goals met, M missed"; BUILD/bench-results.json has every figure. A row
whose other side is not there is no goal met and none missed: it says why it was not measured.
"""

import contextlib
import json
import os
import re
import subprocess
import sys
import tempfile
import time
import urllib.parse
from pathlib import Path
from statistics import median

ROOT = Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tests"))
from serving import Serving  # noqa: E402

ROUNDS = 5
ALERTS_PAGE = {"Tasks/CurrentAlerts.asp": """<%
var generator = Server.CreateObject("KalvoTables.KalvoforExchangeTableGenerator");
generator.BuildTable(TABLE_CURRENTALERTS, "", "", "", "", "", TOPN_UNDEFINED, "", "Current Alerts"); %>"""}
CHARGE_BACK_PAGE = """<%
var generator = Server.CreateObject("KalvoTables.KalvoforExchangeTableGenerator");
generator.BuildTable(TABLE_CHARGEBACK_Organization, "", "Meridian"); %>"""
SESSIONS = 64
USER, PASSWORD = "visitor", "bench-password-1"


class Missing(Exception):
    """The other side of a row is not there."""


class Bench:
    def __init__(self, build):
        self.build = Path(build).resolve()
        self.data = self.build / "bench-data"
        self.rows = []

    def program(self, name):
        for path in (self.build / name, self.build / "bench" / name, self.build / "bench" / "peers" / name):
            if path.is_file():
                return str(path)
        raise Missing(f"{name} was not built")

    def database(self, rows):
        subprocess.run([ROOT / "bench" / "peers" / "make_data.py", self.data, str(rows)], check=True)
        return str(self.data / f"data-{rows}.db")

    def tell(self, work, beside, value, goal, unit="x", more="", at_least=False):
        met = value >= goal if at_least else value <= goal
        bound = f"{'>=' if at_least else '<='} {goal:g}"
        self.rows.append({"work": work, "beside": beside, "value": round(value, 4), "unit": unit, "goal": bound,
                          "met": met, "more": more})
        self.show(self.rows[-1])

    def tell_missing(self, work, why):
        self.rows.append({"work": work, "met": None, "more": str(why)})
        self.show(self.rows[-1])

    @staticmethod
    def show(row):
        if row["met"] is None:
            print(f"{row['work']:58} not measured: {row['more']}", flush=True)
            return
        verdict = "met" if row["met"] else "MISSED"
        print(f"{row['work']:58} {row['value']:10.4g} {row['unit']:7} {row['goal']:>8} {verdict:7} "
              f"{row['beside']}{', ' if row['more'] else ''}{row['more']}", flush=True)


class Asked:
    """A program that answers commands, one line of JSON each."""

    def __init__(self, *command):
        self.process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)

    def __enter__(self):
        return self

    def __exit__(self, *error):
        self.process.stdin.close()
        self.process.wait()

    def ask(self, *words):
        self.process.stdin.write(" ".join(map(str, words)) + "\n")
        self.process.stdin.flush()
        return json.loads(self.process.stdout.readline())


def answer_of(*command, timeout=120):
    return json.loads(subprocess.run(command, check=True, capture_output=True, text=True, timeout=timeout).stdout)


def in_turns(rounds, *steps):
    """The median of each step, and of its ratio to the first one."""
    seen = [[step() for step in steps] for _ in range(rounds)]
    return [median(column) for column in zip(*seen)], [median(r[i] / r[0] for r in seen) for i in range(len(steps))]


# ---- sections ------------------------------------------------------------------------------------------------

def render(bench):
    for rows in (1000, 100_000):
        bench.database(rows)
    with Asked(bench.program("limit"), "render", str(bench.data)) as limit, \
            Asked(bench.program("product"), "render", str(bench.data)) as product, \
            tempfile.TemporaryDirectory() as folder:
        for report in ("alerts", "servers"):
            for rows, size in ((1000, 50), (1000, 1000), (100_000, 30_000)):
                page = (report, rows, 1, size)
                texts = []
                for name, side in (("limit", limit), ("product", product)):
                    side.ask("dump", *page, f"{folder}/{name}")
                    texts.append(Path(folder, name).read_bytes())
                assert texts[0] == texts[1], f"{page}: the pages differ"
                (by_hand, _), (_, ratio) = in_turns(ROUNDS, *(lambda s=side: s.ask("time", *page, 150)["median_us"]
                                                              for side in (limit, product)))
                bench.tell(f"render {size} rows, {report}", "limit", ratio, 2, more=f"limit {by_hand:.1f} us")


def fetch(bench):
    text = subprocess.run([bench.program("fetch_benchmark")], check=True, capture_output=True, text=True).stdout
    for adapter, ratio in re.findall(r"^(\w+)Adapter takes ([\d.]+) times", text, re.MULTILINE):
        bench.tell(f"fetch 100 000 rows, {adapter} adapter", "bare loop", float(ratio), 1.15)
    bench.tell_missing("bytes kept of 100 000 rows", "nothing tells the bytes of the data apart yet")


# work, report, First, the row that is, the product's sort, the order by hand
PAGES = [
    ("alerts, first page", "alerts", 1, 1, None, None),
    ("alerts, First=32000", "alerts", 32_000, 32_000, None, None),
    ("alerts, last page", "alerts", -1, 99_951, None, None),
    ("alerts by kind, first page", "alerts", 1, 1, ("Attrib3", "ASC"), "Attrib3 ASC"),
    ("servers, first page", "servers", 1, 1, None, None),
    ("servers, last page", "servers", -1, 99_951, None, None),
    ("servers by space, first page", "servers", 1, 1, ("MBSpace", "DESC"), "MBSpace DESC"),
]


def page(bench):
    file, small = bench.database(100_000), bench.database(1000)
    limit, product = bench.program("limit"), bench.program("product")
    for work, report, first, row, sort, order in PAGES:
        ours = [product, "page", file, report, "sqlite", str(first), "50", "3", *(sort or ())]
        hand = [limit, "page", file, report, "window", str(row), "50", "3", *([order] if order else [])]
        (by_hand, _), (_, ratio) = in_turns(3, lambda h=hand: median(answer_of(*h)["times_us"]),
                                            lambda o=ours: median(answer_of(*o)["times_us"]))
        bench.tell(f"page of 50 of 100 000, {work}", "by hand, SQLite", ratio, 1.3, more=f"by hand {by_hand / 1000:.1f} ms")
    for report in ("alerts", "servers"):
        peaks = [answer_of(product, "page", f, report, "sqlite", "1", "50", "1")["peak_kb"] for f in (small, file)]
        bench.tell(f"memory of a page, 100 000 rows, {report}", "1 000 rows", (peaks[1] - peaks[0]) / 1024, 10, "MiB more")
    bench.tell_missing("page of 50 of 100 000, PHP", "there is no page in PHP yet")
    for engine in ("PostgreSQL", "MariaDB"):
        bench.tell_missing(f"page of 50 of 100 000, {engine}", "the databases are made for SQLite alone so far")


def timed_process(command):
    """Seconds, and the most memory in MiB."""
    begin = time.monotonic()
    process = subprocess.Popen(command, stdout=subprocess.DEVNULL)
    _, status, use = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        raise RuntimeError(f"{command[0]} ended with {process.returncode}")
    return time.monotonic() - begin, use.ru_maxrss / 1024


def chargeback(bench):
    kalvo = bench.program("kalvo")
    with tempfile.TemporaryDirectory() as folder:
        page_file = Path(folder, "page.asp")
        page_file.write_text(CHARGE_BACK_PAGE, encoding="utf-8")
        seen = {}
        for size in ("small", "large"):
            sample = bench.data / size
            if not (sample / "kalvo.db").exists():
                subprocess.run([kalvo, "sample", "--out", sample, "--size", size], check=True, capture_output=True)
            command = [kalvo, "page", "--database", f"sqlite:{sample}/kalvo.db", str(page_file)]
            seen[size] = [timed_process(command) for _ in range(3)]
    bench.tell("charge-back of 443 418 mailboxes, SQLite", "the whole process", median(s for s, _ in seen["large"]), 0.5,
               "s")
    more = median(m for _, m in seen["large"]) - median(m for _, m in seen["small"])
    bench.tell("memory of that page", "the small sample's", more, 10, "MiB more")
    for engine in ("PostgreSQL", "MariaDB"):
        bench.tell_missing(f"charge-back of 443 418 mailboxes, {engine}", "the large sample is made for SQLite alone so far")


@contextlib.contextmanager
def serving_alerts(bench, file, folder):
    kalvo = bench.program("kalvo")
    os.chmod(folder, 0o755)  # for those who serve
    users = Path(folder, "users")
    subprocess.run([kalvo, "passwd", "--users", users, USER], input=PASSWORD + "\n", text=True, check=True,
                   capture_output=True)
    users.chmod(0o644)
    settings = (f'database = "sqlite:{file}"\nusers = "{users}"\nworkers = 2\nqueue = 128\nsessions_per_user = 100\n'
                "address_connections = 1000\n")
    server = Serving(kalvo, ALERTS_PAGE, settings)
    try:
        server.start()
        yield server
    finally:
        server.__exit__(None, None, None)


def session_cookies(server, folder):
    form = urllib.parse.urlencode({"Name": USER, "Password": PASSWORD})
    cookies = []
    while len(cookies) < SESSIONS:
        answer = server.request("/KalvoforExchange/SignIn.asp", "POST", form,
                                {"Content-Type": "application/x-www-form-urlencoded"})
        if answer.status == 303:
            cookies.append(answer.headers["Set-Cookie"].split(";")[0])
        else:
            time.sleep(0.2)  # one address may not sign in faster
    file = Path(folder, "cookies")
    file.write_text("\n".join(cookies) + "\n", encoding="utf-8")
    return str(file)


@contextlib.contextmanager
def limit_server(bench, file):
    process = subprocess.Popen([bench.program("limit"), "http", file], stdout=subprocess.PIPE, text=True)
    try:
        line = process.stdout.readline()
        if not line:
            raise Missing("limit was built without a web server (libmicrohttpd-dev)")
        yield json.loads(line)["port"]
    finally:
        process.terminate()
        process.wait()


def http(bench):
    file, load = bench.database(1000), bench.program("load")
    query = "?First=1&PageSize=50"
    with tempfile.TemporaryDirectory() as folder, serving_alerts(bench, file, folder) as server, \
            limit_server(bench, file) as limit_port:
        cookies = session_cookies(server, folder)
        address = "/KalvoforExchange/Tasks/CurrentAlerts.asp" + query
        ours = [answer_of(load, str(server.port), address, "8", "3", cookies)]
        hand = []
        for _ in range(3):
            hand.append(answer_of(load, str(limit_port), "/" + query, "8", "3"))
            ours.append(answer_of(load, str(server.port), address, "8", "3", cookies))
        many = [answer_of(load, str(server.port), address, str(SESSIONS), "4", cookies) for _ in range(2)]
    ours = ours[1:]  # the first one warms up
    rate = lambda r: r["pages"] / r["seconds"]  # noqa: E731
    ratio = median(rate(h) / rate(o) for h, o in zip(hand, ours))
    bench.tell("HTTP, 8 connections: its time by ours", "limit's server", ratio, 1,
               more=f"{median(map(rate, ours)):.0f} pages/s, limit {median(map(rate, hand)):.0f}")
    bench.tell("HTTP, 8 connections: p99", "", median(r["p99_ms"] for r in ours), 25, "ms")
    bench.tell("HTTP, 64 connections", "", median(map(rate, many)), 2000, "pages/s", at_least=True)
    bench.tell("HTTP, 64 connections: p99", "", median(r["p99_ms"] for r in many), 64, "ms")
    bench.tell("HTTP: failures", "", sum(r["failures"] for r in ours + many), 0, "answers")


def script(bench):
    seen = [answer_of(bench.program("script_cost")) for _ in range(3)]
    bench.tell("what a page script costs", "the same page from C++",
               median(r["script_us"] - r["plain_us"] for r in seen) / 1000, 0.2, "ms")


def growth(bench):
    product = bench.program("product")
    files = [bench.database(10_000), bench.database(100_000)]
    for report in ("alerts", "servers"):
        _, ratios = in_turns(3, *(lambda f=f: median(answer_of(product, "page", f, report, "sqlite", "1", "50", "3")["times_us"])
                                  for f in files))
        bench.tell(f"10 times the rows, {report}", "time of the same page", ratios[1], 12.5)
    bench.tell_missing("rows read for a window, and for a Top-N", "no engine is asked yet what it reads")


def imap(bench):
    text = subprocess.run([bench.program("imap_benchmark")], check=True, capture_output=True, text=True).stdout
    ours = re.search(r"^by date +next page +([\d.]+) ms", text, re.MULTILINE)
    bare = re.search(r"^the bare commands, by date +([\d.]+) ms", text, re.MULTILINE)
    bench.tell("page of 50 of 50 000 messages, IMAP", "SORT and FETCH by hand", float(ours[1]) / float(bare[1]), 1.3)


SECTIONS = {"render": render, "fetch": fetch, "page": page, "chargeback": chargeback, "http": http, "script": script,
            "growth": growth, "imap": imap}


def main():
    if len(sys.argv) < 2 or not set(sys.argv[2:]) <= set(SECTIONS):
        sys.exit(f"usage: run.py BUILD [{' '.join(SECTIONS)}]")
    bench = Bench(sys.argv[1])
    print(f"{os.cpu_count()} cores, load before the run {os.getloadavg()[0]:.1f}")
    for name in sys.argv[2:] or SECTIONS:
        try:
            SECTIONS[name](bench)
        except (Missing, OSError, subprocess.SubprocessError, RuntimeError, AssertionError) as why:
            bench.tell_missing(name, why)
    (bench.build / "bench-results.json").write_text(json.dumps(bench.rows, indent=1), encoding="utf-8")
    met = sum(row["met"] is True for row in bench.rows)
    print(f"{met} goals met, {sum(row['met'] is False for row in bench.rows)} missed")


if __name__ == "__main__":
    main()
