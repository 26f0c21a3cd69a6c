"""The TavRin service spoken to over HTTP as the setup program speaks to it."""

import http.client
import io
import json
import os
import select
import socket
import sqlite3
import sys
import tempfile
import threading
import time
import tracemalloc
import unittest
from urllib.parse import quote

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
import tavrin_service as ts  # noqa: E402

FORM_TYPE = "application/x-www-form-urlencoded"
ESCAPED = set(b'<>"#%{}|\\^~[]`&?')


def escape(value):
    """The setup program's escaping: blank to "+", "%xx" in lower case."""
    out = []
    for byte in value:
        if byte == 0x20:
            out.append("+")
        elif byte < 0x20 or byte >= 0x7F or byte in ESCAPED:
            out.append("%%%02x" % byte)
        else:
            out.append(chr(byte))
    return "".join(out)


def form(**changes):
    values = dict.fromkeys(ts.FORM_KEYS, b"")
    values.update(Command=b"cu", CommandAction=b"Add", Email=b"ann@mail.example",
                  Gender=b"F", Industry=b"4", NewServices=b"Y", Occupation=b"16",
                  Password=b"s3cr&t%\xe9", RepeatPassword=b"s3cr&t%\xe9",
                  PasswordHint=b"the usual", UserCode=b"ann", Zip=b"90210",
                  Country=b"238", AgeRange=b"68", number_of_employees=b"0",
                  MID=b"VS-1234", TimeZone=b"GMT")
    values.update({key: value.encode("latin-1") if isinstance(value, str) else value
                   for key, value in changes.items()})
    return "&".join(key + "=" + escape(values[key]) for key in ts.FORM_KEYS).encode("ascii")


class ServiceTest(unittest.TestCase):
    test_mode = True

    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.db = os.path.join(cls.folder.name, "tavrin.db")
        cls.server = ts.make_server(cls.db, 0, cls.test_mode, io.StringIO())
        cls.port = cls.server.server_address[1]
        threading.Thread(target=cls.server.serve_forever, daemon=True).start()

    @classmethod
    def tearDownClass(cls):
        cls.server.shutdown()
        cls.server.server_close()
        cls.server.service.store.close()
        cls.folder.cleanup()

    def own_server(self, **options):
        """A service of this test's own, with options of its own; returns its
        port and its database file."""
        db = os.path.join(self.folder.name, self._testMethodName + ".db")
        server = ts.make_server(db, 0, True, io.StringIO(), **options)
        threading.Thread(target=server.serve_forever, daemon=True).start()
        self.addCleanup(server.service.store.close)
        self.addCleanup(server.server_close)
        self.addCleanup(server.shutdown)
        return server.server_address[1], db

    def request(self, method, path, body=None, content_type=FORM_TYPE, port=None):
        connection = http.client.HTTPConnection("127.0.0.1", port or self.port, timeout=30)
        try:
            headers = {"Content-Type": content_type} if body is not None else {}
            connection.request(method, path, body, headers)
            reply = connection.getresponse()
            return reply.status, reply.getheaders(), reply.read()
        finally:
            connection.close()

    def register(self, body):
        return self.request("POST", ts.REGISTRATION_PATH, body)

    def import_(self, body):
        return self.request("POST", ts.IMPORT_PATH, body)

    def account(self, user):
        status, _, body = self.request("GET", "/__account?user=" + quote(user))
        return json.loads(body) if status == 200 else None

    def sign_up(self, user):
        status, headers, _ = self.register(form(Command="Add", UserCode=user))
        self.assertEqual(status, 200)
        return [value for name, value in headers if name == "Set-Cookie"]

    def passport_line(self, user):
        return self.sign_up(user)[0].split(";")[0].encode("ascii") + b"\r\n"

    def assertRefusal(self, reply, status, text):
        self.assertEqual(reply[0], status)
        body = reply[2].decode("cp1252")
        self.assertIn(text, body)
        self.assertTrue(body.endswith("\r\n"))


class AccountTest(ServiceTest):
    def test_check_then_sign_up(self):
        self.assertEqual(self.register(form(UserCode="carol"))[::2], (200, b""))
        self.assertIsNone(self.account("carol"), "the check must not create the account")
        cookies = self.sign_up("carol")
        passport = cookies[0].split(";")[0].split("=", 1)[1]
        self.assertEqual(cookies, ["passport=%s; path=/" % passport,
                                   "RegistrationInfo=carol; path=/"])
        stored = self.account("CAROL")
        self.assertEqual((stored["user_name"], stored["email"], stored["country"],
                          stored["age_range"], stored["new_services"], stored["command"]),
                         ("carol", "ann@mail.example", 238, 68, 1, "Add"))
        self.assertEqual(stored["passports"], [passport])
        self.assertTrue(stored["password_is_hashed"])
        self.assertEqual(stored["salt_length"], 16)

    def test_password_stored_only_as_salted_hash(self):
        self.sign_up("dave")
        with sqlite3.connect(self.db) as db:
            salt, digest = db.execute("SELECT password_salt, password_hash FROM accounts"
                                      " WHERE user_name = 'dave'").fetchone()
        self.assertEqual(digest, ts.hash_password(b"s3cr&t%\xe9", salt))
        for name in os.listdir(self.folder.name):
            with open(os.path.join(self.folder.name, name), "rb") as data:
                self.assertNotIn(b"s3cr&t", data.read())
        # The file is its owner's alone, and one an earlier run left open becomes so.
        self.assertEqual(os.stat(self.db).st_mode & 0o777, 0o600)
        older = os.path.join(self.folder.name, "older.db")
        os.close(os.open(older, os.O_CREAT | os.O_WRONLY, 0o644))
        os.chmod(older, 0o644)
        ts.Store(older).close()
        self.assertEqual(os.stat(older).st_mode & 0o777, 0o600)

    def test_business_sign_up(self):
        business = dict(Command="AddTrial", CommandAction="AddTrial", UserCode="acme.co",
                        FirstName="Ann", LastName="Lee", company_name="Acme",
                        JobTitle="Boss", company_type="Home (Personal Use)",
                        number_of_employees="2000", website="www.acme.example",
                        Phone="555 0100", Gender="", AgeRange="0")
        self.assertEqual(self.register(form(**business))[0], 200)
        stored = self.account("acme.co")
        self.assertEqual((stored["company_type"], stored["number_of_employees"]),
                         ("Home (Personal Use)", 2000))

    def test_taken_name_refused(self):
        self.sign_up("erin")
        for command in ("cu", "Add"):
            self.assertRefusal(self.register(form(Command=command, UserCode="Erin")),
                               409, 'The username "Erin" is already taken')

    def test_refusals(self):
        # Each case is refused at the check and, with the same details, at the sign-up.
        cases = [
            (dict(Password="abc", RepeatPassword="abc"), "at least 4 characters"),
            (dict(RepeatPassword="other"), "does not match"),
            (dict(Email="ann@.example"), "email address entered is not valid"),
            (dict(Email="ann.b@example"), "email address entered is not valid"),
            (dict(Email="ann@mail."), "email address entered is not valid"),
            (dict(UserCode="an"), "is not allowed"),
            (dict(UserCode="ann smith"), "is not allowed"),
            (dict(Country="239"), "Country 239 is not a row"),
            (dict(Industry="17"), "Industry 17 is not a row"),
            (dict(Occupation="-1"), "Occupation -1 is not a row"),
            (dict(AgeRange="20"), "not one of the age range codes"),
            (dict(MID="MA00AABBCCDDEE"), "machine identity"),
            (dict(Gender="", AgeRange="0", Zip="9", Country="0"),
             "Please select your gender\r\nPlease select your age range\r\n"
             "Please type in your zip code\r\nPlease select your country\r\n"),
            (dict(CommandAction="AddTrial", FirstName="Ann"), "Please enter your last name"),
        ]
        for changes, text in cases:
            for command in ("cu", changes.get("CommandAction", "Add")):
                with self.subTest(changes, command=command):
                    self.assertRefusal(self.register(form(Command=command, **changes)),
                                       400, text)
        for changes, text in ((dict(Command="delete"), 'Unknown command "delete"'),
                              (dict(CommandAction="x"), "not a sign-up command"),
                              (dict(Command="AddTrial"), "does not match Command")):
            with self.subTest(changes):
                self.assertRefusal(self.register(form(**changes)), 400, text)
        self.assertIsNone(self.account("ann"))

    def test_malformed_forms(self):
        good = form().decode("ascii")
        fields = good.split("&")
        cases = [
            (good.replace("&Zip=90210", ""), "lacks the field Zip"),
            (good.replace("Email=", "Emial="), "unknown field Emial"),
            (good + "&Zip=1", "carries the field Zip twice"),
            ("&".join([fields[1], fields[0]] + fields[2:]), "out of order"),
            (good.replace("Zip=90210", "Zip=90%2g10"), "broken %-escape"),
        ]
        for body, text in cases:
            with self.subTest(text):
                self.assertRefusal(self.register(body.encode("ascii")), 400, text)
        # The program cuts a long value inside an escape: the broken tail is dropped.
        self.register(form(Command="Add", UserCode="ivy").replace(b"the+usual", b"the+usual%e"))
        self.assertEqual(self.account("ivy")["password_hint"], "the usual")

    def test_no_proxy_statuses_for_bad_requests(self):
        replies = [self.request("GET", ts.REGISTRATION_PATH),
                   self.request("POST", "/welcome", b""),
                   self.request("GET", "/no/such/page"),
                   self.request("POST", ts.REGISTRATION_PATH, form(), "text/plain"),
                   self.request("GET", "/favorites?user=nobody")]
        self.assertEqual([reply[0] for reply in replies], [405, 405, 404, 415, 404])


class ImportTest(ServiceTest):
    def test_import_with_odd_paths(self):
        body = (self.passport_line("fay")
                + b"\\Links\\News\xffhttp://news.example/\r\n"
                + b"\\a\\b\\c\\d\\Deep \x80 \xe9\xffhttp://deep.example/\r\n"
                + b"\\Caf\xe9\\\xff\xffhttp://y.example/?a=1&b=2\r\n"
                + b"\\No URL\xff\r\n"
                + b"\xffhttp://root.example/\r\n")
        self.assertEqual(self.import_(body)[::2], (200, b""))
        self.assertEqual(self.import_(body)[0], 200)  # a repeat adds nothing
        self.assertEqual(self.account("fay")["favorites"], [
            {"path": "\\Links\\News", "url": "http://news.example/"},
            {"path": "\\a\\b\\c\\d\\Deep \u20ac \u00e9", "url": "http://deep.example/"},
            {"path": "\\Caf\u00e9\\\u00ff", "url": "http://y.example/?a=1&b=2"},
            {"path": "\\No URL", "url": ""},
            {"path": "", "url": "http://root.example/"},
        ])
        page = self.request("GET", "/favorites?user=fay")[2].decode("utf-8")
        self.assertIn('<li class="folder">d\n', page)
        self.assertIn('<a href="http://y.example/?a=1&amp;b=2">\u00ff</a>', page)

    def test_favorites_page_of_deep_folders(self):
        self.import_(self.passport_line("deep")
                     + b"\\d" * 5000 + b"\\Bottom\xffhttp://deep.example/\r\n")
        status, _, page = self.request("GET", "/favorites?user=deep")
        self.assertEqual(status, 200)
        self.assertIn(b'<a href="http://deep.example/">Bottom</a>', page)
        # The folders beyond those a Windows path can hold make one, named by their path.
        self.assertEqual(page.count(b"<ul>"), ts.FOLDER_DEPTH + 2)
        self.assertIn(b'<li class="folder">' + b"\\".join([b"d"] * (5000 - ts.FOLDER_DEPTH))
                      + b"\n", page)

    def test_passport_required(self):
        for body, text in ((b"", "carries no passport"),
                           (b"\\News\xffhttp://x.example/\r\n", "carries no passport"),
                           (b"passportX=abc\r\n", "carries no passport"),
                           (b"passport=feedface\r\n", "passport of this import is unknown")):
            with self.subTest(body):
                self.assertRefusal(self.import_(body), 401, text)

    def test_malformed_lines_named_and_nothing_stored(self):
        body = (self.passport_line("gus") + b"\\Good\xffhttp://g.example/\r\n"
                + b"\\No separator\r\n\r\n\\Lone\nLF\xffhttp://x/\r\n\\Tail\xffhttp://t/")
        self.assertRefusal(self.import_(body), 400,
                           "Line 3 has no 0xFF byte between path and URL\r\n"
                           "Line 4 is empty: expected a path, the byte 0xFF and a URL\r\n"
                           "Line 5 holds a lone CR or LF byte\r\n"
                           "Line 6 does not end with CR LF\r\n")
        self.assertEqual(self.account("gus")["favorites"], [])


class LimitAndFaultTest(ServiceTest):
    def announce_only(self, path, length):
        """Sends the headers of a POST with a body it never sends."""
        connection = http.client.HTTPConnection("127.0.0.1", self.port, timeout=30)
        try:
            connection.putrequest("POST", path)
            connection.putheader("Content-Type", FORM_TYPE)
            connection.putheader("Content-Length", str(length))
            connection.endheaders()
            reply = connection.getresponse()
            return reply.status, reply.read()
        finally:
            connection.close()

    def test_size_limits(self):
        self.assertEqual(self.announce_only(ts.REGISTRATION_PATH, 64 * 1024 + 1)[0], 413)
        self.assertEqual(self.announce_only(ts.IMPORT_PATH, 16 * 1024 * 1024 + 1)[0], 413)
        self.assertEqual(self.register(form() + b"&" + b"x" * 66000)[0], 413)

    def test_fault_answers_then_clears(self):
        self.request("POST", "/__fault", ("path=%s&method=POST&status=500&content_type="
                                          "text/html&body=%%3Cb%%3EDown%%3C%%2Fb%%3E%%e9"
                                          % ts.REGISTRATION_PATH).encode())
        self.assertEqual(self.request("GET", "/welcome")[0], 200)
        status, headers, body = self.register(form(UserCode="hal"))
        self.assertEqual((status, dict(headers)["Content-Type"], body),
                         (500, "text/html", b"<b>Down</b>\xe9"))
        self.assertEqual(self.register(form(UserCode="hal"))[0], 200)

    def test_fault_reset_and_clear(self):
        self.request("POST", "/__fault", b"reset=1&count=2")
        self.request("POST", "/__fault", b"path=/CustomerSupport&status=502&count=0")
        with self.assertRaises(ConnectionError):
            self.request("GET", "/welcome")
        with self.assertRaises(ConnectionError):
            self.request("GET", "/welcome")
        self.assertEqual(self.request("GET", "/welcome")[0], 200)
        self.assertEqual(self.request("GET", "/CustomerSupport")[0], 502)
        self.assertEqual(self.request("GET", "/CustomerSupport")[0], 502)
        self.request("POST", "/__clear", b"")
        self.assertEqual(self.request("GET", "/CustomerSupport")[0], 200)

    def test_fault_handled_reset_keeps_what_was_done(self):
        self.request("POST", "/__fault", ("path=%s&reset=1&handled=1" % ts.REGISTRATION_PATH).encode())
        with self.assertRaises(ConnectionError):
            self.register(form(Command="Add", UserCode="lostanswer"))
        self.assertEqual(self.account("lostanswer")["user_name"], "lostanswer")
        self.assertEqual(self.request("POST", "/__fault", b"handled=1&status=500")[0], 400)

    def raw_exchange(self, fault, path="/welcome"):
        """The fault set, then every byte of the answer to a GET of `path`, and
        whether the connection ended with a reset."""
        self.request("POST", "/__fault", fault)
        with socket.create_connection(("127.0.0.1", self.port), timeout=30) as connection:
            connection.sendall(("GET %s HTTP/1.1\r\nHost: x\r\n\r\n" % path).encode())
            data = b""
            try:
                while True:
                    piece = connection.recv(65536)
                    if not piece:
                        return data, False
                    data += piece
                    if len(data) > 3_000_000:
                        return data, False
            except ConnectionResetError:
                return data, True

    def test_shaped_answers(self):
        data, reset = self.raw_exchange(b"raw=HTTP/1.1+299+X%0d%0aSet-Cookie:%00%ff%0d%0a%0d%0abody")
        self.assertEqual((data, reset), (b"HTTP/1.1 299 X\r\nSet-Cookie:\x00\xff\r\n\r\nbody", False))

        data, reset = self.raw_exchange(b"status=500&body=ab%00&repeat=3000&piece_bytes=1000")
        head, _, body = data.partition(b"\r\n\r\n")
        self.assertIn(b"Content-Length: 9000\r\n", head)
        self.assertEqual((body, reset), (b"ab\x00" * 3000, False))

        data, reset = self.raw_exchange(b"status=200&body=xyz&reset_after=50")
        self.assertEqual((len(data), reset), (50, True))

        # Without end: the client's own limit stops it, and the service goes on.
        data, reset = self.raw_exchange(b"status=200&body=%ff&repeat=0&piece_bytes=65536")
        self.assertGreater(len(data), 3_000_000)
        self.assertNotIn(b"Content-Length", data.partition(b"\r\n\r\n")[0])
        started = time.monotonic()
        data, _ = self.raw_exchange(b"status=201&body=s&repeat=4&piece_bytes=40&piece_ms=100")
        self.assertTrue(data.endswith(b"\r\n\r\nssss"))
        self.assertGreater(time.monotonic() - started, 0.3, "slow pieces")
        self.assertEqual(self.request("GET", "/welcome")[0], 200)

        for bad in (b"repeat=5", b"status=200&repeat=0", b"reset_after=1"):
            self.assertEqual(self.request("POST", "/__fault", bad)[0], 400, bad)

    def test_unreadable_questions_refused(self):
        for path in ("/__requests?last=%C2%B2", "/__requests?last=-1"):
            self.assertEqual(self.request("GET", path)[0], 400, path)
        with socket.create_connection(("127.0.0.1", self.port), timeout=30) as connection:
            connection.sendall(b"GET http://[bad/welcome HTTP/1.1\r\nHost: x\r\n\r\n")
            self.assertTrue(connection.makefile("rb").read().startswith(b"HTTP/1.1 400 "))

    def test_requests_seen_byte_for_byte(self):
        body = b"passport=nope\r\n\\\xe9\xff\x00http://z/\r\n"
        self.import_(body)
        seen = json.loads(self.request("GET", "/__requests?last=1")[2])
        self.assertEqual(len(seen), 1)
        self.assertEqual((seen[0]["path"], seen[0]["body"].encode("latin-1"), seen[0]["status"]),
                         (ts.IMPORT_PATH, body, 401))
        self.assertIn(["Content-Type", FORM_TYPE], seen[0]["headers"])


class HostileClientTest(ServiceTest):
    """Requests a hostile client makes cost what plain ones of their size do."""

    def test_line_of_separators_costs_a_plain_line(self):
        passport = self.passport_line("sep")
        size = 256 * 1024
        lines = {"plain": b"\xe9" * size + b"\xffhttp://plain.example/",
                 "separators": b"\xff" * size}
        cost = dict.fromkeys(lines, 1e9)
        for _ in range(5):  # taken in turns, the quickest of each kind
            for kind, line in lines.items():
                started = time.perf_counter()
                self.assertEqual(self.import_(passport + line + b"\r\n")[0], 200)
                cost[kind] = min(cost[kind], time.perf_counter() - started)
        self.assertLess(cost["separators"], 4 * cost["plain"])

    def test_body_of_bad_lines_costs_little_memory(self):
        body = self.passport_line("mem") + b"\r\n" * (256 * 1024)
        tracemalloc.start()
        try:
            reply = self.import_(body)
            peak = tracemalloc.get_traced_memory()[1]
        finally:
            tracemalloc.stop()
        # The body itself is held a few times over (sent, read, seen); a
        # complaint or a list entry for each of its lines would be many times more.
        self.assertLess(peak, 6 * len(body))
        self.assertRefusal(reply, 400, "Line 21 is empty")
        self.assertEqual(reply[2].count(b"\r\n"), 21)
        self.assertIn(b"... and %d more bad lines" % (256 * 1024 - 20), reply[2])


    def test_burst_of_sign_ups_all_answered(self):
        port, db = self.own_server(max_connections=8)
        names = ["burst%d" % number for number in range(40)]
        together = threading.Barrier(len(names))
        statuses = {}

        def sign_up(name):
            together.wait()
            try:
                statuses[name] = self.request("POST", ts.REGISTRATION_PATH,
                                              form(Command="Add", UserCode=name), port=port)[0]
            except OSError as error:
                statuses[name] = repr(error)

        threads = [threading.Thread(target=sign_up, args=(name,)) for name in names]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(statuses, dict.fromkeys(names, 200))
        with sqlite3.connect(db) as data:
            stored = [row[0] for row in data.execute("SELECT user_name FROM accounts")]
        self.assertEqual(sorted(stored), sorted(names))

    def test_slow_clients_dropped_while_pages_served(self):
        deadline = 2.0  # a slow request gives way to one waiting after 0.5 s
        port, _ = self.own_server(deadline=deadline, max_connections=4)
        opened, dropped = {}, {}

        def connect(count):  # clients that send the head of a request and no more
            for _ in range(count):
                began = time.monotonic()
                connection = socket.create_connection(("127.0.0.1", port), timeout=30)
                self.addCleanup(connection.close)
                connection.sendall(b"POST /welcome HTTP/1.1\r\nContent-Length: 99\r\n\r\n")
                opened[connection] = began

        def watch(seconds):  # each slow client sends a byte of its body every 0.2 s
            until = time.monotonic() + seconds
            while True:
                for connection in [kept.sock, *opened]:
                    try:
                        if connection not in dropped:
                            if select.select([connection], [], [], 0)[0] \
                                    and not connection.recv(99):
                                raise ConnectionError("closed")
                            if connection is not kept.sock:
                                connection.send(b"x")
                    except OSError:
                        dropped[connection] = time.monotonic()
                if time.monotonic() >= until or len(dropped) > len(opened):
                    return
                time.sleep(0.2)

        kept = http.client.HTTPConnection("127.0.0.1", port, timeout=30)
        self.addCleanup(kept.close)
        kept.request("GET", "/welcome")
        reply = kept.getresponse()
        self.assertEqual((reply.status, reply.read()[:1]), (200, b"<"))  # then kept alive
        connect(4)  # the fourth waits, and the idle kept-alive connection gives way
        watch(1)
        self.assertEqual(list(dropped), [kept.sock])
        # The places are all held by slow clients; a page is served all the same,
        # before their deadline, and only one of them gives way to it.
        self.assertEqual(self.request("GET", "/welcome", port=port)[0], 200)
        self.assertLess(time.monotonic(), min(opened.values()) + deadline)
        watch(0)
        self.assertEqual(len(dropped), 2)
        watch(deadline + 3)
        self.assertEqual(len(dropped), len(opened) + 1)
        for connection, when in opened.items():
            self.assertLess(dropped[connection] - when, deadline + 1.5)
        self.assertEqual(self.request("GET", "/welcome", port=port)[0], 200)


class PlainModeTest(ServiceTest):
    test_mode = False

    def test_test_paths_absent(self):
        self.assertEqual(self.request("POST", "/__fault", b"status=500")[0], 404)
        self.assertEqual(self.request("GET", "/__account?user=x")[0], 404)
        self.assertEqual(self.request("GET", "/welcome")[0], 200)

if __name__ == "__main__":
    unittest.main()
