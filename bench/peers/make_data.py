#!/usr/bin/python3
"""Makes the databases that everybody is measured by: make_data.py FOLDER ROWS ...

FOLDER/data-ROWS.db has the product's own schema with ROWS alerts that "Current Alerts" shows and ROWS servers with
their totals, the same ones every time. Texts have the lengths of real ones: some need encoding, some are missing.
A file that is there already is kept.
"""

import os
import random
import sqlite3
import sys
import uuid
from datetime import datetime, timedelta
from pathlib import Path

SCHEMA = Path(__file__).resolve().parents[2] / "database" / "schema.sql"
WORDS = {"@DT@": "datetime", "@B16@": "blob", "@CI@": " collate nocase", "@END@": "", "@PG@": "-- "}
ORGANIZATION, SITE, SUBSYSTEM = "Kalvo Test", "Main Site", "Exchange Manager"
BEGIN, DAYS = datetime(2002, 1, 1), 700

# kind, its share in percent, the codes of its alerts
KINDS = [
    ("Mailbox", 36, (5001, 5002, 5006, 5008, 5013)),
    ("Public folder", 12, (5004, 5005, 5011, 5014)),
    ("Mailbox Group", 8, (5016,)),
    ("Server", 20, (5018, 5022, 5023)),
    ("Server Group", 8, (5040,)),
    ("File System", 16, (5030, 5032, 5034)),
]
PEOPLE = ["Åsa Holm", "Ben O'Hara", "Chloé Martin", "Dmitri Orlov", "Eva Brückner", "Farid Aziz", "Greta & Hans Vogel",
          "Inês Duarte", "Jon Lee", "Katarzyna Wójcik"]
GROUPS = ["Board", "Research & Development", "Sales <north>", "Purchasing", 'The "gold" group', "Service desk"]
FOLDERS = ["Budget", "Plans & drafts", "Minutes", "Old <2001>", "Team"]
FINDINGS = ["Mailbox is larger than its policy allows", "Messages are older than 90 days & take space",
            "Free space < 10 %", "The last backup has failed", 'Storage limit "warn" was passed', "Folder grows fast"]
DOMAINS = ["NORTH", "SOUTH", "EAST", "R&D"]


def text_of(moment):
    return moment.strftime("%Y-%m-%d %H:%M:%S")


def a_size(dice):
    return f"{dice.randrange(100, 99_999) / 100:.2f} {dice.choice(['KB', 'MB', 'GB'])}"


def servers_of(dice, rows):
    for number in range(1, rows + 1):
        name = f"{dice.choice(['OSL', 'LIS', 'KRK', 'TRN'])}-MAIL{number:05d}" + ("&B" if number % 50 == 7 else "")
        scanned = text_of(BEGIN + timedelta(seconds=dice.randrange(DAYS * 86400)))
        yield (number, 1 + number % 10, dice.choice(DOMAINS), name, ORGANIZATION, SITE, f"cn={name}",
               int(dice.random() < 0.04), 2, scanned, scanned, "3.1.250")


def totals_of(dice, rows):
    for number in range(1, rows + 1):
        yield (number, number, dice.randrange(1, 9000), dice.randrange(10**6), 1 + 2 * dice.randrange(45 * 10**9),
               dice.randrange(4000), dice.randrange(10**5), 1 + 2 * dice.randrange(45 * 10**8))


def alert_of(dice, number, names, types):
    kind, _, codes = dice.choices(KINDS, [share for _, share, _ in KINDS])[0]
    code = dice.choice(codes)
    computer = dice.choice(names)
    resource = {
        "Mailbox": f"{dice.choice(PEOPLE)} {dice.randrange(500)}",
        "Public folder": "/".join(dice.sample(FOLDERS, 2)),
        "Server": computer,
        "File System": f"{dice.choice('CDE')}:\\mail & data",
    }.get(kind) or dice.choice(GROUPS)
    # Each at a second of its own, so that the order is one.
    second = number * 599 + dice.randrange(599)
    moment = BEGIN + timedelta(seconds=second - second % 86400 if number % 1000 == 0 else second)
    return (uuid.UUID(int=dice.getrandbits(128)).bytes, types[code], text_of(moment), resource, dice.choice(DOMAINS),
            computer, kind, dice.choice(GROUPS), f"{number:032X}" if kind == "Public folder" else None,
            dice.choice(FINDINGS), "6/1/2001" if number % 5 == 0 else None,
            "" if kind == "Server" else a_size(dice), None if kind == "Server" else a_size(dice))


def schema():
    text = SCHEMA.read_text(encoding="utf-8")
    for word, meaning in WORDS.items():
        text = text.replace(word, meaning)
    return text


def insert(database, table, rows):
    rows = list(rows)
    database.executemany(f"insert into {table} values ({', '.join('?' * len(rows[0]))})", rows)


def make(path, rows):
    dice = random.Random(rows)
    database = sqlite3.connect(path)
    database.executescript("pragma journal_mode = off; pragma synchronous = off;" + schema())
    servers = list(servers_of(dice, rows))
    insert(database, "EXDB_SERVER", servers)
    insert(database, "EXDB_SERVERTOTALS", totals_of(dice, rows))
    insert(database, "EXDB_SERVERCURRENT", ((number, 1, number) for number in range(1, rows + 1)))
    types = {code: i for i, code in enumerate((code for _, _, codes in KINDS for code in codes), 1)}
    insert(database, "RMC_ALERTTYPE", ((i, code, SUBSYSTEM, None) for code, i in types.items()))
    names = [server[3] for server in servers[:max(20, rows // 20)]]
    insert(database, "RMC_ALERT", (alert_of(dice, number, names, types) for number in dice.sample(range(rows), rows)))
    database.commit()
    database.close()


def main():
    folder = Path(sys.argv[1])
    folder.mkdir(parents=True, exist_ok=True)
    for rows in map(int, sys.argv[2:]):
        path = folder / f"data-{rows}.db"
        if path.exists():
            continue
        part = path.with_suffix(".part")
        part.unlink(missing_ok=True)
        make(part, rows)
        os.rename(part, path)


if __name__ == "__main__":
    main()
