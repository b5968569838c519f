"""Made mail with the oddities that mail out there has, and what each message says of itself by the rules of mail."""

import email
import email.header
import email.policy
import email.utils
import itertools

CHARSETS = {
    "utf-8": "Grüße aus München, наконец, 日本語のメール und noch viel mehr Text",
    "iso-8859-1": "Grüße aus Köln, déjà vu und noch viel mehr Text",
    "koi8-r": "Наконец письмо, которое длиннее одного слова",
    "iso-2022-jp": "日本語のメールの件名はとても長いので分けられる",
    "gb2312": "这是一个很长的中文主题行需要分成几个词",
    "windows-1252": "“Quotes” – and a dash… €5",
}
ZONES = ("+0000", "-0600", "-600", "cst", "CST", "gmt", "EDT", "edt", "+0530", "UT")
SENDERS = (
    ("Ann Archer <ann@x.example>", "Ann Archer <ann@x.example>"),
    ('"Archer, Ann" <ann@x.example>', "Archer, Ann <ann@x.example>"),
    ("ann@x.example", "ann@x.example"),
    ("<ann@x.example>", "ann@x.example"),
    ("root (Cron Daemon)", "Cron Daemon <root>"),
    ("ann@x.example (Ann Archer)", "Ann Archer <ann@x.example>"),
    ("Team: ann@x.example, bob@x.example;", "ann@x.example"),
    ("Ann   Archer\n\t<ann@x.example>, Bob <bob@x.example>", "Ann Archer <ann@x.example>"),
    ("=?utf-8?B?R3LDvMOfZQ==?=\n =?utf-8?B?IGF1cyBLw7Zsbg==?= <ann@x.example>", "Grüße aus Köln <ann@x.example>"),
    ("=?iso-8859-1?Q?J=FCrgen_M=FCller?= <j@x.example>", "Jürgen Müller <j@x.example>"),
)
PARTS = (  # what a part's head says, and the name of the attachment, None for no attachment
    ("Content-Type: text/plain", None),
    ("Content-Type: application/pdf; name=report.pdf", "report.pdf"),
    ("Content-Type: image/png\nContent-Disposition: inline; filename*=utf-8''caf%C3%A9.png", "café.png"),
    ('Content-Type: application/zip; name="=?utf-8?B?R3LDvMOfZQ==?=\n =?utf-8?B?LnppcA==?="', "Grüße.zip"),
    ('Content-Type: application/x; name*0="a b"; name*1=" c.bin"', "a b c.bin"),
    ("Content-Type: APPLICATION/X-BE2", "application/x-be2"),
    ("Content-Type: text\nContent-Disposition: inline", None),
)


def encoded(text, charset, length):
    return email.header.Header(text, charset, maxlinelen=length).encode()


def subjects():
    """Subject fields and their texts."""
    for charset, text in CHARSETS.items():
        for length in (40, 55, 76):
            yield encoded(text, charset, length), text
    yield "Now    Available\n\there", "Now Available here"
    yield "Re: =?utf-8?Q?caf=C3=A9?= now", "Re: café now"
    yield "=?utf-8?B?R3LD?=\n =?utf-8?B?vMOfZQ==?=", "Grüße"
    yield "=?utf-8?Q?Gr=C3?= =?utf-8?Q?=BC=C3=9Fe?=", "Grüße"
    yield "plain (with) [all] \"signs\" <b>&</b>", "plain (with) [all] \"signs\" <b>&</b>"
    yield "", ""


def messages(count):
    """So many messages: name of the file, bytes, subject, sender, seconds since 1970 when it was sent, names."""
    rounds = zip(range(count), itertools.cycle(subjects()), itertools.cycle(SENDERS), itertools.cycle(ZONES))
    for i, (subject, subject_text), (sender, sender_text), zone in rounds:
        date = f"{'Tue, ' if i % 2 else ''}{1 + i % 28} {('May', 'may', 'Dec')[i % 3]} {1996 + i % 30} 12:24:{i % 60:02} {zone}"
        head = f"Subject: {subject}\nFrom: {sender}\nDate: {date}\nMIME-Version: 1.0\n"
        if i % 10 == 7:
            head = "   \n" + head
        part, name = PARTS[i % len(PARTS)]
        if i % 3 == 0:
            names = [] if name is None else [name]
            text = f"{head}{part}\n\nBody {i}.\n"
        else:
            names = [] if name is None else [name]
            text = (f"{head}Content-Type: multipart/mixed; boundary=b\n\n--b\nContent-Type: text/plain\n\nHello.\n"
                    f"--b\n{part}\n\nPart {i}.\n--b--\n")
        content = text.encode("utf-8")
        told = email.message_from_bytes(content.lstrip(), policy=email.policy.compat32)
        sent = email.utils.parsedate_tz(told["Date"])
        yield f"{1_600_000_000 + i}.M{i}.host,S={len(content)}:2,S", content, subject_text, sender_text, email.utils.mktime_tz(sent), names
