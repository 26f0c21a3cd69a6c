#!/usr/bin/env python3
"""The TavRin service as the setup program meets it: the account server (check
and sign-up of a new account), the bookmark import server, and the few plain
pages the program opens in the browser. Listens on 127.0.0.1 only.

    python3 service/tavrin_service.py --port 0 --db /tmp/tavrin.db \
        --port-file /tmp/tavrin.port [--test-mode] [--log FILE] \
        [--deadline SECONDS] [--max-connections N]

With --test-mode the service also takes orders from tests under /__ (faults to
inject, the stored account, the requests it saw); see README.md beside this file.
"""

import argparse
import codecs
import hashlib
import html
import io
import itertools
import json
import os
import re
import secrets
import signal
import socket
import sqlite3
import struct
import sys
import threading
import time
from collections import deque
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer
from urllib.parse import parse_qsl, quote, unquote_to_bytes, urlsplit

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import lists  # noqa: E402

REGISTRATION_PATH = "/servlet/bookmarks.servlet.install.registrationServlet"
IMPORT_PATH = "/servlet/bookmarks.servlet.install.ImportServlet"

FORM_LIMIT = 64 * 1024           # the registration form
IMPORT_LIMIT = 16 * 1024 * 1024  # one import of favorites
OTHER_LIMIT = 64 * 1024          # any other request body

# What one client can hold. A request must come whole, head and body, within
# DEADLINE seconds of the connection's acceptance (its first request) or of the
# answer before it (the next ones on a kept-alive connection); each write of an
# answer has as long. At most MAX_CONNECTIONS connections are served at once;
# up to BACKLOG more wait for a place, each until its deadline. For each one
# waiting, an idle kept-alive connection gives way, or else the request that has
# been coming longest, once it has taken YIELD_AFTER seconds (a quarter of the
# deadline if that is less). The listening socket's backlog is BACKLOG too, for
# a burst of clients arriving at once.
DEADLINE = 60.0
MAX_CONNECTIONS = 64
BACKLOG = 256
YIELD_AFTER = 2.0

# The keys of the account form, in the order in which the setup program writes them.
FORM_KEYS = (
    "Command", "CommandAction", "Email", "FirstName", "Gender", "LastName",
    "Industry", "NewServices", "Occupation", "Password", "RepeatPassword",
    "PasswordHint", "UserCode", "Zip", "Country", "AgeRange", "Phone",
    "company_name", "number_of_employees", "company_type", "JobTitle",
    "website", "MID", "TimeZone",
)
NUMBER_KEYS = ("Industry", "Occupation", "Country", "AgeRange", "number_of_employees")
VALUE_LIMIT = 255  # the setup program reads every edit into 255 characters
SIGNUP_COMMANDS = {"add": "Add", "addtrial": "AddTrial"}

USER_NAME = re.compile(r"[A-Za-z0-9._-]{3,32}")
EMAIL_FORBIDDEN = frozenset(" ,;/\\'\"")
MACHINE_ID = re.compile(r"(MA[0-9a-f]{12}|VS-?[0-9]+)?")
TIME_ZONES = frozenset(lists.TIME_ZONES.values()) | {lists.DEFAULT_TIME_ZONE}
AGE_CODES = frozenset(code for _, code in lists.AGE_RANGES)
GENDER_CODES = frozenset(code for _, code in lists.GENDERS)
HEAD_COUNTS = frozenset(count for _, count in lists.EMPLOYEE_COUNTS)

PBKDF2_ROUNDS = 200_000
SALT_BYTES = 16

TEXT_TYPE = "text/plain; charset=windows-1252"
HTML_TYPE = "text/html; charset=utf-8"
JSON_TYPE = "application/json"


# ---------------------------------------------------------------------------
# Text of the Windows ANSI code page. Every byte maps to one character and
# back: the five bytes that windows-1252 leaves undefined keep their Latin-1
# meaning, so nothing the program sends is lost or refused.

_ANSI_UPPER = {}
for _byte in range(0x80, 0xA0):
    try:
        _ANSI_UPPER[_byte] = bytes([_byte]).decode("cp1252")
    except UnicodeDecodeError:
        pass
_ANSI_BACK = {ord(ch): byte for byte, ch in _ANSI_UPPER.items()}
# The same mapping as a table of 256 characters, which decodes at the speed of
# a code page of its own: a long name of accented letters costs what one of
# plain letters does.
_ANSI_TABLE = "".join(_ANSI_UPPER.get(byte, chr(byte)) for byte in range(256))


def ansi_text(data):
    return codecs.charmap_decode(data, "strict", _ANSI_TABLE)[0]


def ansi_bytes(text):
    return text.translate(_ANSI_BACK).encode("latin-1", errors="replace")


class Reply:
    def __init__(self, status, body=b"", content_type=TEXT_TYPE, headers=()):
        self.status = status
        self.body = ansi_bytes(body) if isinstance(body, str) else body
        self.content_type = content_type
        self.headers = list(headers)


def complaint(status, lines):
    """A refusal for a person to read: one complaint per CR LF ended line."""
    return Reply(status, "".join(line + "\r\n" for line in lines))


def json_reply(value, status=200):
    return Reply(status, json.dumps(value, indent=1).encode("utf-8"), JSON_TYPE)


def html_page(title, body_html, status=200):
    page = ("<!DOCTYPE html>\n<html><head><meta charset=\"utf-8\"><title>%s</title></head>\n"
            "<body>\n<h1>%s</h1>\n%s\n</body></html>\n"
            % (html.escape(title), html.escape(title), body_html))
    return Reply(status, page.encode("utf-8"), HTML_TYPE)


# ---------------------------------------------------------------------------
# Storage

SCHEMA = """
CREATE TABLE IF NOT EXISTS accounts (
    id INTEGER PRIMARY KEY,
    user_name TEXT NOT NULL UNIQUE COLLATE NOCASE,
    password_salt BLOB NOT NULL,
    password_hash BLOB NOT NULL,
    password_scheme TEXT NOT NULL,
    password_hint TEXT, email TEXT, first_name TEXT, last_name TEXT,
    gender TEXT, age_range INTEGER, zip TEXT, country INTEGER,
    industry INTEGER, occupation INTEGER, new_services INTEGER,
    phone TEXT, company_name TEXT, number_of_employees INTEGER,
    company_type TEXT, job_title TEXT, website TEXT,
    machine_id TEXT, time_zone TEXT, command TEXT,
    created TEXT NOT NULL, client TEXT
);
CREATE TABLE IF NOT EXISTS passports (
    token TEXT PRIMARY KEY,
    account_id INTEGER NOT NULL REFERENCES accounts(id),
    created TEXT NOT NULL
);
CREATE TABLE IF NOT EXISTS imports (
    id INTEGER PRIMARY KEY,
    account_id INTEGER NOT NULL REFERENCES accounts(id),
    received TEXT NOT NULL, shortcuts INTEGER NOT NULL, client TEXT
);
CREATE TABLE IF NOT EXISTS favorites (
    id INTEGER PRIMARY KEY,
    account_id INTEGER NOT NULL REFERENCES accounts(id),
    import_id INTEGER NOT NULL REFERENCES imports(id),
    path TEXT NOT NULL, url TEXT NOT NULL,
    UNIQUE (account_id, path, url)
);
"""

# Form key -> column, for the fields stored as the form gave them.
ACCOUNT_COLUMNS = (
    ("PasswordHint", "password_hint"), ("Email", "email"),
    ("FirstName", "first_name"), ("LastName", "last_name"), ("Gender", "gender"),
    ("AgeRange", "age_range"), ("Zip", "zip"), ("Country", "country"),
    ("Industry", "industry"), ("Occupation", "occupation"),
    ("NewServices", "new_services"), ("Phone", "phone"),
    ("company_name", "company_name"), ("number_of_employees", "number_of_employees"),
    ("company_type", "company_type"), ("JobTitle", "job_title"),
    ("website", "website"), ("MID", "machine_id"), ("TimeZone", "time_zone"),
)


class NameTaken(Exception):
    pass


def now_text():
    return time.strftime("%Y-%m-%dT%H:%M:%S")


def hash_password(password, salt):
    return hashlib.pbkdf2_hmac("sha256", password, salt, PBKDF2_ROUNDS)


class Store:
    """The accounts, their passports and their favorites in one SQLite file.
    One connection, used under a lock by all request threads."""

    def __init__(self, path):
        # The file holds the password hashes: it is its owner's alone, made
        # so, or made so if an earlier run left it open to others.
        os.close(os.open(path, os.O_RDWR | os.O_CREAT, 0o600))
        os.chmod(path, 0o600)
        self.db = sqlite3.connect(path, check_same_thread=False)
        self.db.row_factory = sqlite3.Row
        self.lock = threading.Lock()
        with self.lock, self.db:
            self.db.execute("PRAGMA foreign_keys = ON")
            self.db.executescript(SCHEMA)

    def close(self):
        with self.lock:
            self.db.close()

    def name_taken(self, user_name):
        with self.lock:
            row = self.db.execute("SELECT 1 FROM accounts WHERE user_name = ?",
                                  (user_name,)).fetchone()
        return row is not None

    def create_account(self, user_name, password, values, command, client):
        """Makes the account and its first passport; returns the passport."""
        salt = secrets.token_bytes(SALT_BYTES)
        digest = hash_password(password, salt)
        token = secrets.token_hex(20)
        columns = [column for _, column in ACCOUNT_COLUMNS]
        names = ["user_name", "password_salt", "password_hash", "password_scheme",
                 "command", "created", "client"] + columns
        row = [user_name, salt, digest, "pbkdf2-sha256:%d" % PBKDF2_ROUNDS,
               command, now_text(), client] + [values[key] for key, _ in ACCOUNT_COLUMNS]
        sql = "INSERT INTO accounts (%s) VALUES (%s)" % (", ".join(names),
                                                         ", ".join("?" * len(names)))
        with self.lock:
            try:
                with self.db:
                    account_id = self.db.execute(sql, row).lastrowid
                    self.db.execute("INSERT INTO passports (token, account_id, created)"
                                    " VALUES (?, ?, ?)", (token, account_id, now_text()))
            except sqlite3.IntegrityError:
                raise NameTaken(user_name) from None
        return token

    def account_of_passport(self, token):
        with self.lock:
            row = self.db.execute("SELECT account_id FROM passports WHERE token = ?",
                                  (token,)).fetchone()
        return row[0] if row else None

    def account(self, user_name):
        with self.lock:
            return self.db.execute("SELECT * FROM accounts WHERE user_name = ?",
                                   (user_name,)).fetchone()

    def passports(self, account_id):
        with self.lock:
            rows = self.db.execute("SELECT token FROM passports WHERE account_id = ?"
                                   " ORDER BY rowid", (account_id,)).fetchall()
        return [row[0] for row in rows]

    def store_import(self, account_id, count, shortcuts, client):
        """Adds the `count` shortcuts of one import, (path, URL) pairs taken one
        at a time; one already held is not doubled."""
        with self.lock, self.db:
            import_id = self.db.execute(
                "INSERT INTO imports (account_id, received, shortcuts, client)"
                " VALUES (?, ?, ?, ?)",
                (account_id, now_text(), count, client)).lastrowid
            self.db.executemany(
                "INSERT OR IGNORE INTO favorites (account_id, import_id, path, url)"
                " VALUES (?, ?, ?, ?)",
                ((account_id, import_id, path, url) for path, url in shortcuts))

    def favorites(self, account_id):
        with self.lock:
            rows = self.db.execute("SELECT path, url FROM favorites WHERE account_id = ?"
                                   " ORDER BY id", (account_id,)).fetchall()
        return [(row[0], row[1]) for row in rows]

    def import_count(self, account_id):
        with self.lock:
            return self.db.execute("SELECT COUNT(*) FROM imports WHERE account_id = ?",
                                   (account_id,)).fetchone()[0]


# ---------------------------------------------------------------------------
# The account form

_BROKEN_TAIL = re.compile(rb"%[0-9A-Fa-f]?\Z")
_BAD_ESCAPE = re.compile(rb"%(?![0-9A-Fa-f]{2})")


def unescape(raw):
    """Undoes the program's escaping: "+" is a blank, "%xx" a byte. The program
    cuts a long value at a fixed length, also inside an escape, so a broken
    escape at the very end of a value is dropped; one elsewhere is an error."""
    raw = _BROKEN_TAIL.sub(b"", raw)
    if _BAD_ESCAPE.search(raw):
        raise ValueError("broken escape")
    return unquote_to_bytes(raw.replace(b"+", b" "))


def parse_form(body):
    """Returns (values as bytes by key, complaints about the form's shape)."""
    values, order, problems = {}, [], []
    for number, piece in enumerate(body.split(b"&") if body else [], 1):
        name, equals, raw = piece.partition(b"=")
        key = ansi_text(name)
        if not equals:
            problems.append("Form part %d (%s) has no \"=\"" % (number, key[:40]))
            continue
        if key in values:
            problems.append("The form carries the field %s twice" % key)
            continue
        try:
            values[key] = unescape(raw)
        except ValueError:
            problems.append("The field %s holds a broken %%-escape" % key)
            values[key] = b""
        order.append(key)
    missing = [key for key in FORM_KEYS if key not in values]
    if missing:
        problems.append("The form lacks the field%s %s"
                        % ("s" if len(missing) > 1 else "", ", ".join(missing)))
    for key in order:
        if key not in FORM_KEYS:
            problems.append("The form has an unknown field %s" % key[:40])
    if not problems and tuple(order) != FORM_KEYS:
        place = next(i for i, (got, want) in enumerate(zip(order, FORM_KEYS)) if got != want)
        problems.append("The form's fields are out of order: field %d is %s, expected %s"
                        % (place + 1, order[place], FORM_KEYS[place]))
    return values, problems


def email_plausible(email):
    at = email.find("@")
    if at <= 0 or at == len(email) - 1 or email[at + 1] == ".":
        return False
    if any(ch in EMAIL_FORBIDDEN for ch in email):
        return False
    point = email.find(".", at)
    return point != -1 and point != len(email) - 1


class AccountForm:
    """One posted account form, decoded, with everything wrong about it."""

    def __init__(self, raw, business, store):
        self.raw = raw
        self.business = business
        self.text = {key: ansi_text(value) for key, value in raw.items()}
        self.numbers = {}
        self.complaints = []
        self.name_taken = False
        self._check(store)

    def _say(self, line):
        self.complaints.append(line)

    def _number(self, key):
        text = self.text[key]
        if not re.fullmatch(r"-?[0-9]{1,9}", text):
            self._say("%s must be a whole number, not \"%s\"" % (key, text[:40]))
            return None
        return int(text)

    def _check(self, store):
        t, say = self.text, self._say
        for key in FORM_KEYS:
            if len(self.raw[key]) > VALUE_LIMIT:
                say("%s is longer than %d characters" % (key, VALUE_LIMIT))
        for key in NUMBER_KEYS:
            self.numbers[key] = self._number(key)
        n = self.numbers

        # The login details, in the order in which the program itself checks them.
        name = t["UserCode"]
        if not name:
            say("Please provide a username for logging into your TavRin account")
        elif not USER_NAME.fullmatch(name):
            say("The username \"%s\" is not allowed: use 3 to 32 letters, digits,"
                " points, underscores or hyphens" % name[:40])
        elif store.name_taken(name):
            self.name_taken = True
            say("The username \"%s\" is already taken, please choose another" % name)
        password, repeat = self.raw["Password"], self.raw["RepeatPassword"]
        if not password:
            say("Please provide a password for logging into your TavRin account")
        if not repeat:
            say("Please repeat your password for verification")
        if not t["PasswordHint"]:
            say("Please provide a hint for remembering your password")
        if not t["Email"]:
            say("Please provide an email address")
        if repeat and password != repeat:
            say("Your repeat password does not match your password")
        if t["Email"] and not email_plausible(t["Email"]):
            say("The email address entered is not valid, please try again")
        if 0 < len(password) < 4:
            say("Your password must be at least 4 characters")

        # The details page of the form in use.
        if self.business:
            for key, what in (("FirstName", "enter your first name"),
                              ("LastName", "enter your last name"),
                              ("company_name", "enter your company name"),
                              ("JobTitle", "enter your title"),
                              ("company_type", "select your company type")):
                if not t[key]:
                    say("Please " + what)
            if n["number_of_employees"] == 0:
                say("Please select employee count")
            if not t["website"]:
                say("Please enter your website")
            if n["Country"] == 0:
                say("Please select your country")
            if not t["Phone"]:
                say("Please enter your phone number")
            if len(t["Zip"]) < 2:
                say("Please type in your zip code")
        else:
            if not t["Gender"]:
                say("Please select your gender")
            if n["AgeRange"] == 0:
                say("Please select your age range")
            if len(t["Zip"]) < 2:
                say("Please type in your zip code")
            if n["Country"] == 0:
                say("Please select your country")

        # Values that must come from the rows of the lists.
        for key, rows in (("Country", lists.COUNTRIES), ("Industry", lists.INDUSTRIES),
                          ("Occupation", lists.OCCUPATIONS)):
            if n[key] is not None and not 0 <= n[key] < len(rows):
                say("%s %d is not a row of the %s list (0 to %d)"
                    % (key, n[key], key.lower(), len(rows) - 1))
        if n["AgeRange"] is not None and n["AgeRange"] not in AGE_CODES:
            say("AgeRange %d is not one of the age range codes" % n["AgeRange"])
        if n["number_of_employees"] is not None and n["number_of_employees"] not in HEAD_COUNTS:
            say("number_of_employees %d is not one of the head counts"
                % n["number_of_employees"])
        if t["Gender"] not in GENDER_CODES:
            say("Gender must be M, F or empty, not \"%s\"" % t["Gender"][:40])
        if t["company_type"] and t["company_type"] not in lists.COMPANY_TYPES[1:]:
            say("\"%s\" is not a company type of the list" % t["company_type"][:60])
        if t["NewServices"] not in ("Y", "N"):
            say("NewServices must be Y or N")
        if not MACHINE_ID.fullmatch(t["MID"]):
            say("The machine identity \"%s\" is in no known form" % t["MID"][:40])
        if t["TimeZone"] and t["TimeZone"] not in TIME_ZONES:
            say("\"%s\" is not a known time zone" % t["TimeZone"][:40])

    def stored_values(self):
        values = {key: self.text[key] for key, _ in ACCOUNT_COLUMNS}
        values.update(self.numbers)
        values["NewServices"] = 1 if self.text["NewServices"] == "Y" else 0
        return values


SESSION_COOKIE = "session"


def registration(service, body, content_type, client, cookie_header=""):
    if not content_type.lower().startswith("application/x-www-form-urlencoded"):
        return complaint(415, ["The account form must be sent as "
                               "application/x-www-form-urlencoded"])
    raw, problems = parse_form(body)
    if problems:
        return complaint(400, problems)
    command = ansi_text(raw["Command"])
    action = ansi_text(raw["CommandAction"])
    if command.lower() == "cu":
        if action.lower() not in SIGNUP_COMMANDS:
            return complaint(400, ["CommandAction \"%s\" is not a sign-up command"
                                   " (Add or AddTrial)" % action[:40]])
        signup = None
        business = action.lower() == "addtrial"
    elif command.lower() in SIGNUP_COMMANDS:
        # The check and the sign-up carry the same CommandAction, and the
        # sign-up's Command is that same word.
        if action.lower() != command.lower():
            return complaint(400, ["CommandAction \"%s\" does not match Command \"%s\""
                                   % (action[:40], command)])
        signup = SIGNUP_COMMANDS[command.lower()]
        business = signup == "AddTrial"
    else:
        return complaint(400, ["Unknown command \"%s\": expected cu, Add or AddTrial"
                               % command[:40]])

    form = AccountForm(raw, business, service.store)
    if form.complaints:
        return complaint(409 if form.name_taken else 400, form.complaints)
    if signup is None:
        # As a web application's container does: the check opens a session,
        # by a cookie without an expiry, and the sign-up must come within it.
        if service.sessions_required:
            return Reply(200, headers=[("Set-Cookie", "%s=%s; path=/"
                                        % (SESSION_COOKIE, service.open_session()))])
        return Reply(200)
    if service.sessions_required and not service.has_session(
            cookies_of(cookie_header).get(SESSION_COOKIE, "")):
        return complaint(400, ["Your session has expired: please check your details again"])
    name = form.text["UserCode"]
    try:
        token = service.store.create_account(name, raw["Password"], form.stored_values(),
                                             signup, client)
    except NameTaken:
        return complaint(409, ["The username \"%s\" is already taken, please choose another"
                               % name])
    return Reply(200, headers=[
        ("Set-Cookie", "passport=%s; path=/" % token),
        ("Set-Cookie", "RegistrationInfo=%s; path=/" % quote(name, safe="")),
    ])


# ---------------------------------------------------------------------------
# The import of favorites

# A line's bytes as classes of a URL scheme ("a" a letter, "0" a digit, "+",
# "." or "-", then ":" and 0xFF as they are and "." for any other), in which the
# separator followed by a scheme is found by one search for a fixed start,
# "0xFF a", that a run of 0xFF bytes does not hold up.
_SCHEME_CLASSES = b"".join(
    b"a" if bytes([byte]).isalpha() else
    b"0" if bytes([byte]).isdigit() or byte in b"+.-" else
    bytes([byte]) if byte in b":\xff" else b"." for byte in range(256))
_SEPARATOR = re.compile(rb"\xffa[a0]*:")


def split_shortcut(line):
    """Splits "path 0xFF URL". A path may itself hold the byte 0xFF (the letter
    y with diaeresis), so the separator is the first 0xFF behind which a URL
    scheme or nothing follows; failing that, the first 0xFF."""
    first = line.find(b"\xff")
    if first < 0:
        return None
    found = _SEPARATOR.search(line.translate(_SCHEME_CLASSES), first)
    if found:
        at = found.start()
    else:
        at = len(line) - 1 if line.endswith(b"\xff") else first
    return line[:at], line[at + 1:]


SHOWN_BAD_LINES = 20  # the refusal of an import names so many, then counts the rest


def import_lines(body):
    """The lines of an import body without their CR LF, each with whether it
    had one: taken one at a time, so that no list of them is ever made."""
    start, size = 0, len(body)
    while start < size:
        end = body.find(b"\r\n", start)
        if end < 0:
            yield body[start:], False
            return
        yield body[start:end], True
        start = end + 2


def line_fault(line, ended):
    """What is wrong with a shortcut line, as a complaint with %d for its
    number, or None."""
    if not ended:
        return "Line %d does not end with CR LF"
    if not line:
        return "Line %d is empty: expected a path, the byte 0xFF and a URL"
    if b"\r" in line or b"\n" in line:
        return "Line %d holds a lone CR or LF byte"
    if b"\xff" not in line:
        return "Line %d has no 0xFF byte between path and URL"
    return None


def shortcuts_of(body):
    """(path, URL) of each line behind the passport line of a body whose lines
    are all good."""
    lines = import_lines(body)
    next(lines)
    for line, _ in lines:
        path, url = split_shortcut(line)
        yield ansi_text(path), ansi_text(url)


def import_favorites(service, body, client):
    if not body:
        return complaint(401, ["The import carries no passport: sign up first"])
    lines = import_lines(body)
    first, ended = next(lines)
    if not first.startswith(b"passport="):
        return complaint(401, ["The import carries no passport: its first line must be"
                               " passport=<value>"])
    account_id = service.store.account_of_passport(ansi_text(first[len(b"passport="):]))
    if account_id is None:
        return complaint(401, ["The passport of this import is unknown: sign up again"])

    # All lines are checked before any is kept. Only the complaints that are
    # shown are written; the rest are counted.
    problems, bad, good = [], 0, 0
    numbered = enumerate(lines, 2) if ended else [(1, (first, ended))]
    for number, (line, ended) in numbered:
        fault = line_fault(line, ended)
        if fault is None:
            good += 1
            continue
        bad += 1
        if bad <= SHOWN_BAD_LINES:
            problems.append(fault % number)
    if bad:
        if bad > SHOWN_BAD_LINES:
            problems.append("... and %d more bad lines" % (bad - SHOWN_BAD_LINES))
        return complaint(400, problems)
    service.store.store_import(account_id, good, shortcuts_of(body), client)
    return Reply(200)


# Windows paths hold no more folders than this; the folders of a deeper path
# beyond it are shown as one, named by the rest of its path.
FOLDER_DEPTH = 128


def favorites_tree(favorites):
    """Nested <ul> by folder: in each folder its shortcuts, then its folders.
    Walked with a stack of its own, so that no depth of folders is too deep."""
    root = ({}, [])
    for path, url in favorites:
        if path.startswith("\\"):
            path = path[1:]
        parts = path.split("\\", FOLDER_DEPTH)
        rest, slash, name = parts[-1].rpartition("\\")
        folders = parts[:-1] + [rest] if slash else parts[:-1]
        node = root
        for folder in folders:
            node = node[0].setdefault(folder, ({}, []))
        node[1].append((name, url))

    out = []

    def begin(node, depth):
        """Writes the start of a folder's list; returns its folders to go."""
        pad = "  " * depth
        out.append(pad + "<ul>")
        for name, url in node[1]:
            label = html.escape(name or "(no name)")
            if re.match(r"(?i)(https?|ftp)://", url):
                out.append('%s  <li><a href="%s">%s</a></li>' % (pad, html.escape(url), label))
            else:
                out.append("%s  <li>%s <code>%s</code></li>" % (pad, label, html.escape(url)))
        return iter(node[0].items())

    stack = [(begin(root, 0), 0)]
    while stack:
        folders, depth = stack[-1]
        pad = "  " * depth
        for folder, child in folders:
            out.append('%s  <li class="folder">%s' % (pad, html.escape(folder or "(no name)")))
            stack.append((begin(child, depth + 2), depth + 2))
            break
        else:
            stack.pop()
            out.append(pad + "</ul>")
            if stack:
                out.append("  " * stack[-1][1] + "  </li>")
    return "\n".join(out)


# ---------------------------------------------------------------------------
# Test mode: faults, and what the service stored and saw

class Fault:
    def __init__(self, fields):
        def number(key, default, low, high):
            text = fields.get(key, "")
            if text == "":
                return default
            if not re.fullmatch(r"[0-9]+", text) or not low <= int(text) <= high:
                raise ValueError("%s must be a number from %d to %d" % (key, low, high))
            return int(text)

        self.path = fields.get("path", "")
        self.method = fields.get("method", "").upper()
        self.status = number("status", None, 200, 599)
        self.body = fields.get("body", "").encode("latin-1")
        self.content_type = fields.get("content_type") or TEXT_TYPE
        self.delay_ms = number("delay_ms", 0, 0, 600_000)
        self.reset = fields.get("reset", "") in ("1", "true", "yes")
        # With reset: the request is carried out first, and only its answer lost.
        self.handled = fields.get("handled", "") in ("1", "true", "yes")
        self.count = number("count", 1, 0, 1_000_000)  # 0: until cleared
        # The answer's own shape: bytes as they stand, a body many times over
        # or without end, in slow pieces, or cut by a reset.
        self.raw = fields["raw"].encode("latin-1") if "raw" in fields else None
        self.repeat = number("repeat", 1, 0, 1_000_000)  # 0: without end
        self.piece_bytes = number("piece_bytes", 0, 0, 1 << 20)
        self.piece_ms = number("piece_ms", 0, 0, 10_000)
        self.reset_after = number("reset_after", None, 0, 1 << 30)
        if self.handled and not self.reset:
            raise ValueError("handled goes with reset")
        if self.status is None and self.raw is None and not self.reset and not self.delay_ms:
            raise ValueError("a fault needs status, raw, reset or delay_ms")
        if self.repeat == 0 and not self.body:
            raise ValueError("repeat=0 needs a body")
        if self.shaped and self.status is None and self.raw is None:
            raise ValueError("repeat, piece_bytes, piece_ms and reset_after need status or raw")

    @property
    def shaped(self):
        """True when the answer goes out through Handler._send_shaped."""
        return (self.raw is not None or self.repeat != 1 or self.piece_bytes or self.piece_ms
                or self.reset_after is not None)

    def answer_pieces(self):
        """The bytes of the answer, in pieces of piece_bytes (64 KB without it)."""
        if self.raw is not None:
            parts = [self.raw]
        else:
            length = "" if self.repeat == 0 else \
                "Content-Length: %d\r\n" % (len(self.body) * self.repeat)
            head = ("HTTP/1.1 %d %s\r\nContent-Type: %s\r\n%sConnection: close\r\n\r\n"
                    % (self.status, BaseHTTPRequestHandler.responses.get(self.status, ("Fault",))[0],
                       self.content_type, length)).encode("latin-1")
            # The body in runs of about 64 KB, so that a short one repeated is quick.
            unit = max(1, 65536 // max(1, len(self.body)))
            full, rest = divmod(self.repeat, unit)
            runs = itertools.repeat(self.body * unit) if self.repeat == 0 else \
                itertools.chain(itertools.repeat(self.body * unit, full), [self.body * rest])
            parts = itertools.chain([head], runs)
        step, pending = self.piece_bytes or 65536, b""
        for part in parts:
            pending += part
            while len(pending) >= step:
                yield pending[:step]
                pending = pending[step:]
        if pending:
            yield pending

    def describe(self):
        return {"path": self.path, "method": self.method, "status": self.status,
                "body": self.body.decode("latin-1"), "content_type": self.content_type,
                "delay_ms": self.delay_ms, "reset": self.reset, "handled": self.handled,
                "count": self.count,
                "raw": None if self.raw is None else self.raw.decode("latin-1"),
                "repeat": self.repeat, "piece_bytes": self.piece_bytes,
                "piece_ms": self.piece_ms, "reset_after": self.reset_after}


class Service:
    def __init__(self, store, test_mode=False, log=None):
        self.store = store
        self.test_mode = test_mode
        self.log_file = log or sys.stderr
        self.log_lock = threading.Lock()
        self.faults = []
        self.faults_lock = threading.Lock()
        self.requests = deque(maxlen=500)
        self.sessions_required = False
        self.sessions = set()
        self.sessions_lock = threading.Lock()

    def log(self, text):
        with self.log_lock:
            self.log_file.write("%s %s\n" % (now_text(), text))
            self.log_file.flush()

    def add_fault(self, fault):
        with self.faults_lock:
            self.faults.append(fault)

    def clear_faults(self):
        with self.faults_lock:
            count = len(self.faults)
            self.faults.clear()
        return count

    def take_fault(self, method, path):
        with self.faults_lock:
            for fault in self.faults:
                if path.startswith(fault.path) and fault.method in ("", method):
                    if fault.count == 1:
                        self.faults.remove(fault)
                    elif fault.count > 1:
                        fault.count -= 1
                    return fault
        return None

    def open_session(self):
        token = secrets.token_hex(16)
        with self.sessions_lock:
            self.sessions.add(token)
        return token

    def has_session(self, token):
        with self.sessions_lock:
            return token in self.sessions

    def account_report(self, user_name):
        row = self.store.account(user_name)
        if row is None:
            return None
        report = {key: row[key] for key in row.keys()
                  if key not in ("password_hash", "password_salt")}
        report["password_is_hashed"] = len(row["password_hash"]) == hashlib.sha256().digest_size
        report["salt_length"] = len(row["password_salt"])
        report["passports"] = self.store.passports(row["id"])
        report["imports"] = self.store.import_count(row["id"])
        report["favorites"] = [{"path": path, "url": url}
                               for path, url in self.store.favorites(row["id"])]
        return report


# ---------------------------------------------------------------------------
# HTTP

WELCOME = """<p>Your TavRin Personal side bar is installed. Open Internet Explorer's
side bar to reach your bookmarks from any machine.</p>
<p><a href="/UserInfo">Your account details</a> &middot;
<a href="/CustomerSupport">Customer support</a></p>"""

SUPPORT = """<p>Write to support@tavrin.example with your user name and the file
TavRinInstall.log from your Windows folder; it tells us what the setup did.</p>"""


def cookies_of(header):
    found = {}
    for piece in (header or "").split(";"):
        name, _, value = piece.strip().partition("=")
        if name:
            found.setdefault(name, value)
    return found


class Dropped(TimeoutError):
    """The connection gave way to one waiting for a place."""


class DeadlineReader(io.RawIOBase):
    """The bytes a client sends, for a request that must come whole by
    `deadline` (of time.monotonic()): each read waits only for the time left,
    so a byte now and then does not stretch a request. `began` is when the
    request now coming began, None while none is coming; `idle` tells a
    kept-alive connection waiting for its next request. The server reads both
    to choose which connection gives way, and ends its reading with drop()."""

    def __init__(self, sock, seconds):
        self.sock = sock
        self.seconds = seconds
        self.deadline = 0.0
        self.began = None
        self.idle = False
        self.dropped = False

    def readable(self):
        return True

    def start(self, began, idle=False):
        self.began, self.idle, self.deadline = began, idle, began + self.seconds

    def readinto(self, buffer):
        left = self.deadline - time.monotonic()
        try:
            if left <= 0:
                raise TimeoutError
            self.sock.settimeout(left)
            count = self.sock.recv_into(buffer)
        except TimeoutError:
            raise TimeoutError("the request did not come whole within %g s"
                               % self.seconds) from None
        finally:
            self.sock.settimeout(self.seconds)  # for the writes of the answer
        if not count and self.dropped:
            raise Dropped("the connection gave way to one waiting for a place")
        return count

    def drop(self):
        """Called by the server: the read waiting, and any after it, end at
        once. What was read whole is still answered."""
        self.dropped = True
        try:
            self.sock.shutdown(socket.SHUT_RD)
        except OSError:  # closed already
            pass


class Handler(BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def __init__(self, request, client_address, server, accepted=None):
        self.accepted = time.monotonic() if accepted is None else accepted
        self.requests_begun = 0
        super().__init__(request, client_address, server)

    def version_string(self):
        return "TavRin/1.0"

    def setup(self):
        self.timeout = self.server.deadline
        super().setup()
        # Headers and body go out in two writes: without this the second waits
        # for the client's delayed acknowledgement, some 40 ms a request.
        self.connection.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        self.rfile.close()
        self.reader = DeadlineReader(self.connection, self.server.deadline)
        self.rfile = io.BufferedReader(self.reader)
        self.server.enter(self.reader)

    def finish(self):
        self.server.leave(self.reader)
        super().finish()

    def handle_one_request(self):
        """One request, which must come whole by its deadline, else the
        connection is dropped without an answer."""
        reader = self.reader
        if self.requests_begun:
            # Kept alive: the clock starts at the answer before.
            reader.start(time.monotonic(), idle=True)
            try:
                begun = self.rfile.peek(1)
            except OSError:  # out of time, gave way, or the client went away
                begun = b""
            if not begun:
                self.close_connection = True
                return
            with self.server.places:
                reader.began, reader.idle = time.monotonic(), False
        else:
            reader.start(self.accepted)
        self.requests_begun += 1
        super().handle_one_request()

    @property
    def service(self):
        return self.server.service

    def log_request(self, code="-", size="-"):
        pass  # one line per request is written by _send

    def log_message(self, format, *args):
        self.service.log("%s %s" % (self.client_address[0], format % args))

    def send_error(self, code, message=None, explain=None):
        self.close_connection = True
        text = message or self.responses.get(code, ("Error",))[0]
        self._send(complaint(code, ["%d %s" % (code, text)]))

    def do_GET(self):
        self._serve()

    def do_POST(self):
        self._serve()

    def _send(self, reply):
        self.send_response(reply.status)
        self.send_header("Content-Type", reply.content_type)
        self.send_header("Content-Length", str(len(reply.body)))
        for name, value in reply.headers:
            self.send_header(name, value)
        if self.close_connection:
            self.send_header("Connection", "close")
        self.end_headers()
        self.wfile.write(reply.body)
        self._log(reply.status, len(reply.body))
        self._drop_unread()

    def _drop_unread(self):
        """After refusing a body that is too large: a body up to a few times the
        limit is read and dropped, so that a sender still writing gets to read
        the answer instead of a reset connection."""
        left, self._unread = getattr(self, "_unread", 0), 0
        if not left:
            return
        try:
            self.reader.deadline = time.monotonic() + 5
            while left > 0:
                chunk = self.rfile.read1(min(left, 65536))
                if not chunk:
                    break
                left -= len(chunk)
        except OSError:
            pass

    def _log(self, status, size):
        self.service.log("%s %s %s %s %s:%d" % (
            getattr(self, "command", None) or "-", getattr(self, "path", None) or "-",
            status, size, self.client_address[0], self.client_address[1]))

    def _read_body(self, limit):
        """The body, or a Reply that refuses it."""
        if self.headers.get("Transfer-Encoding"):
            self.close_connection = True
            return complaint(411, ["Send the body with a Content-Length"])
        length = self.headers.get("Content-Length", "0").strip()
        if not re.fullmatch(r"[0-9]{1,12}", length):
            self.close_connection = True
            return complaint(400, ["Bad Content-Length \"%s\"" % length[:40]])
        declared = length = int(length)
        if length > limit:
            self.close_connection = True
            self._unread = length if length <= 4 * limit else 0
            return complaint(413, ["The request body of %s bytes is over the limit of %d"
                                   " bytes for %s" % (declared, limit, self._route)])
        body = self.rfile.read(length)
        if len(body) < length:
            self.close_connection = True
            return None
        return body

    def _serve(self):
        try:
            url = urlsplit(self.path)
        except ValueError:  # a host in brackets left open, for one
            return self.send_error(400, "The request target cannot be read")
        self._route = url.path
        control = self.service.test_mode and url.path.startswith("/__")
        limit = {REGISTRATION_PATH: FORM_LIMIT, IMPORT_PATH: IMPORT_LIMIT}.get(url.path,
                                                                             OTHER_LIMIT)
        body = self._read_body(limit)
        self.reader.began = None  # read: whatever else comes, it is answered
        if body is None:  # the client went away in the middle of its body
            self._log("-", 0)
            return
        seen = None
        if self.service.test_mode and not control:
            # Only test mode can ask for them: without it no body is kept.
            seen = {"method": self.command, "path": url.path, "query": url.query,
                    "headers": [[name, value] for name, value in self.headers.items()],
                    "body": body.decode("latin-1") if isinstance(body, bytes) else None,
                    "client": "%s:%d" % self.client_address, "status": None}
            self.service.requests.append(seen)
        if isinstance(body, Reply):
            if seen is not None:
                seen["status"] = body.status
            return self._send(body)

        fault = None if control or not self.service.test_mode else \
            self.service.take_fault(self.command, url.path)
        if fault and fault.delay_ms:
            time.sleep(fault.delay_ms / 1000)
        if fault and fault.reset:
            if fault.handled and not control:
                try:
                    self._route_request(url, body)
                except Exception as error:
                    self.service.log("error on %s: %r" % (url.path, error))
            seen["status"] = "reset"
            self._reset()
            return
        if fault and fault.shaped:
            seen["status"] = fault.status if fault.raw is None else "raw"
            self._send_shaped(fault)
            return
        if fault and fault.status is not None:
            reply = Reply(fault.status, fault.body, fault.content_type)
        else:
            try:
                reply = (self._control if control else self._route_request)(url, body)
            except Exception as error:  # a fault of the service itself
                self.service.log("error on %s: %r" % (url.path, error))
                reply = complaint(500, ["The TavRin service failed on this request"])
        if seen is not None:
            seen["status"] = reply.status
        self._send(reply)

    def _send_shaped(self, fault):
        """A fault's answer as its fields shape it; the connection ends behind it."""
        self.close_connection = True
        sent = 0
        try:
            for piece in fault.answer_pieces():
                if fault.reset_after is not None and sent + len(piece) >= fault.reset_after:
                    self.wfile.write(piece[:fault.reset_after - sent])
                    self.wfile.flush()
                    self._reset()
                    return
                self.wfile.write(piece)
                self.wfile.flush()
                sent += len(piece)
                if fault.piece_ms:
                    time.sleep(fault.piece_ms / 1000)
        except OSError:  # the client went away, as it must from an answer without end
            self._log("gone", sent)
            return
        self._log(fault.status or "raw", sent)

    def _reset(self):
        """Drops the connection without an answer, with a TCP reset."""
        self.close_connection = True
        self.connection.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
        self.connection.close()
        self._log("reset", 0)

    def _wrong_method(self, allowed):
        return Reply(405, "Use %s on this path\r\n" % allowed, headers=[("Allow", allowed)])

    def _route_request(self, url, body):
        path, method = url.path, self.command
        client = self.client_address[0]
        if path in (REGISTRATION_PATH, IMPORT_PATH):
            if method != "POST":
                return self._wrong_method("POST")
            if path == REGISTRATION_PATH:
                return registration(self.service, body,
                                    self.headers.get("Content-Type", ""), client,
                                    self.headers.get("Cookie", ""))
            return import_favorites(self.service, body, client)
        pages = {"/welcome": self._welcome, "/CustomerSupport": self._support,
                 "/UserInfo": self._user_info, "/favorites": self._favorites}
        if path in pages:
            if method != "GET":
                return self._wrong_method("GET")
            return pages[path](url)
        return Reply(404, "Not found: %s\r\n" % path[:200])

    def _welcome(self, url):
        return html_page("Welcome to TavRin Personal", WELCOME)

    def _support(self, url):
        return html_page("TavRin Customer Support", SUPPORT)

    def _user_info(self, url):
        token = cookies_of(self.headers.get("Cookie")).get("passport", "")
        account_id = self.service.store.account_of_passport(token) if token else None
        if account_id is None:
            return html_page("Your TavRin Account",
                             "<p>Sign in from the TavRin side bar to see your details.</p>")
        with self.service.store.lock:
            row = self.service.store.db.execute(
                "SELECT user_name, email, zip FROM accounts WHERE id = ?",
                (account_id,)).fetchone()
        items = "".join("<dt>%s</dt><dd>%s</dd>" % (label, html.escape(row[key] or ""))
                        for label, key in (("Username", "user_name"), ("Email", "email"),
                                           ("Zip Code", "zip")))
        link = '<p><a href="/favorites?user=%s">Your favorites</a></p>' % quote(row["user_name"])
        return html_page("Your TavRin Account", "<dl>%s</dl>\n%s" % (items, link))

    def _favorites(self, url):
        user = dict(parse_qsl(url.query)).get("user", "")
        if not user:
            return Reply(400, "Name the account: /favorites?user=NAME\r\n")
        row = self.service.store.account(user)
        if row is None:
            return Reply(404, "No account is named \"%s\"\r\n" % user[:40])
        favorites = self.service.store.favorites(row["id"])
        tree = favorites_tree(favorites) if favorites else "<p>No favorites imported yet.</p>"
        return html_page("Favorites of %s" % row["user_name"], tree)

    def _control(self, url, body):
        path, method = url.path, self.command
        query = dict(parse_qsl(url.query))
        if path == "/__fault" and method == "POST":
            # Read as Latin-1 so that the fault's body goes out byte for byte as posted.
            form = dict(parse_qsl(body.decode("latin-1"), keep_blank_values=True,
                                  encoding="latin-1"))
            try:
                fault = Fault(form)
            except ValueError as error:
                return Reply(400, "%s\r\n" % error)
            self.service.add_fault(fault)
            return json_reply(fault.describe())
        if path == "/__clear" and method == "POST":
            return json_reply({"cleared": self.service.clear_faults()})
        if path == "/__sessions" and method == "POST":
            form = dict(parse_qsl(body.decode("latin-1")))
            if form.get("required") not in ("0", "1"):
                return Reply(400, "required must be 0 or 1\r\n")
            self.service.sessions_required = form["required"] == "1"
            return json_reply({"required": self.service.sessions_required})
        if path == "/__account" and method == "GET":
            report = self.service.account_report(query.get("user", ""))
            if report is None:
                return json_reply({"error": "no such account"}, 404)
            return json_reply(report)
        if path == "/__requests" and method == "GET":
            last = query.get("last", "10")
            if not re.fullmatch(r"[0-9]+", last):  # isdigit() takes "\u00b2" too
                return Reply(400, "last must be a number\r\n")
            seen = list(self.service.requests)
            return json_reply(seen[-int(last):] if int(last) else [])
        return Reply(404, "Not found: %s\r\n" % path[:200])


class Server(ThreadingHTTPServer):
    """Serves each connection on a thread of its own, at most max_connections
    at once; the ones over wait, without a thread, for a place."""
    daemon_threads = True
    request_queue_size = BACKLOG

    def __init__(self, port, service, deadline=DEADLINE, max_connections=MAX_CONNECTIONS):
        self.service = service
        self.deadline = deadline
        self.max_connections = max_connections
        self.places = threading.Lock()
        self.serving = 0
        self.waiting = deque()  # (socket, address, time accepted), oldest first
        self.readers = set()  # those of the connections served
        super().__init__(("127.0.0.1", port), Handler)

    def process_request(self, request, client_address):
        accepted = time.monotonic()
        with self.places:
            if self.serving >= self.max_connections:
                if len(self.waiting) < BACKLOG:
                    self.waiting.append((request, client_address, accepted))
                    self._make_room()
                else:
                    self._drop(request, client_address, "too many connections wait")
                return
            self.serving += 1
        threading.Thread(target=self._serve_connections, daemon=True,
                         args=(request, client_address, accepted)).start()

    def _serve_connections(self, request, client_address, accepted):
        """Serves a connection, then in its place the ones waiting, oldest first."""
        while True:
            try:
                self.RequestHandlerClass(request, client_address, self, accepted)
            except Exception:
                self.handle_error(request, client_address)
            finally:
                self.shutdown_request(request)
            with self.places:
                self._drop_late()
                if not self.waiting:
                    self.serving -= 1
                    return
                request, client_address, accepted = self.waiting.popleft()

    def enter(self, reader):
        with self.places:
            self.readers.add(reader)

    def leave(self, reader):
        with self.places:
            self.readers.discard(reader)

    def _make_room(self):
        """For each connection waiting, beyond those already given way to, an
        idle kept-alive connection gives way, else the request coming longest
        if it has been coming for the grace time. Called holding `places`."""
        owed = len(self.waiting) - sum(reader.dropped for reader in self.readers)
        if owed <= 0:
            return
        now, grace = time.monotonic(), min(YIELD_AFTER, self.deadline / 4)
        yielding = sorted((reader for reader in self.readers
                           if not reader.dropped and reader.began is not None
                           and (reader.idle or now - reader.began >= grace)),
                          key=lambda reader: (not reader.idle, reader.began))
        for reader in yielding[:owed]:
            reader.drop()

    def _drop_late(self):
        """Drops the waiting connections whose request is past its deadline."""
        now = time.monotonic()
        while self.waiting and now - self.waiting[0][2] >= self.deadline:
            request, client_address, _ = self.waiting.popleft()
            self._drop(request, client_address, "no place within %g s" % self.deadline)

    def _drop(self, request, client_address, why):
        self.service.log("%s:%d dropped: %s" % (client_address[0], client_address[1], why))
        self.shutdown_request(request)

    def service_actions(self):
        with self.places:
            self._drop_late()
            self._make_room()

    def server_close(self):
        super().server_close()
        with self.places:
            while self.waiting:
                self.shutdown_request(self.waiting.popleft()[0])


def make_server(db_path, port=0, test_mode=False, log=None, deadline=DEADLINE,
                max_connections=MAX_CONNECTIONS):
    return Server(port, Service(Store(db_path), test_mode, log), deadline, max_connections)


def main(argv=None):
    parser = argparse.ArgumentParser(description="The TavRin account and import service,"
                                     " on 127.0.0.1.")
    parser.add_argument("--port", type=int, required=True, help="port, 0 for a free one")
    parser.add_argument("--db", required=True, help="SQLite file of the accounts")
    parser.add_argument("--port-file", help="written with the port once listening")
    parser.add_argument("--test-mode", action="store_true",
                        help="take fault orders and answer questions under /__")
    parser.add_argument("--log", help="request log file (default: standard error)")
    parser.add_argument("--deadline", type=float, default=DEADLINE, metavar="SECONDS",
                        help="time for a request to come whole, head and body"
                        " (default %(default)g)")
    parser.add_argument("--max-connections", type=int, default=MAX_CONNECTIONS, metavar="N",
                        help="connections served at once (default %(default)d)")
    args = parser.parse_args(argv)
    if not 0 < args.deadline <= 86400:
        parser.error("--deadline must be more than 0 seconds and at most a day")
    if args.max_connections < 1:
        parser.error("--max-connections must be 1 or more")

    log = open(args.log, "a", encoding="utf-8") if args.log else sys.stderr
    server = make_server(args.db, args.port, args.test_mode, log, args.deadline,
                         args.max_connections)
    port = server.server_address[1]
    server.service.log("listening on 127.0.0.1:%d%s, a request within %g s, %d connections"
                       " at once" % (port, " in test mode" if args.test_mode else "",
                                     args.deadline, args.max_connections))
    if args.port_file:
        # Written whole under another name first, so a reader never sees half of it.
        partial = args.port_file + ".part"
        with open(partial, "w") as out:
            out.write("%d\n" % port)
        os.replace(partial, args.port_file)
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(0))
    try:
        server.serve_forever()
    except KeyboardInterrupt:
        pass
    finally:
        server.server_close()
        server.service.store.close()
        server.service.log("stopped")
        if args.port_file:
            try:
                os.remove(args.port_file)
            except OSError:
                pass


if __name__ == "__main__":
    main()
