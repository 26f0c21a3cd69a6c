"""The stamping tool: a partner's copy is the program and the trailer, and the
program itself stays as it was; a signed program's copy stays signed; bad input
is refused with a message and writes nothing. (The program's reading of the
trailer is tested under Wine.)"""
import contextlib
import io
import os
import struct
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import stamp  # noqa: E402

BUILT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "build", "x64", "SETUP.EXE")


def bitmap(width=4, height=2, bits=24, cut=0):
    pixels = bytes(((width * bits + 31) // 32) * 4 * abs(height) - cut)
    info = struct.pack("<IiiHHIIiiII", 40, width, height, 1, bits, 0, 0, 2835, 2835, 0, 0)
    return struct.pack("<2sIHHI", b"BM", 54 + len(pixels), 0, 0, 54) + info + pixels


class Stamp(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        # A program-like file with "tvd" in its last bytes, as a program may have.
        self.program = self.write("SETUP.EXE", b"MZ" + bytes(6000) + b"tvd..")
        self.logo = self.write("logo.bmp", bitmap())
        self.output = os.path.join(self.folder.name, "SETUP_partner.EXE")

    def tearDown(self):
        self.folder.cleanup()

    def write(self, name, data):
        path = os.path.join(self.folder.name, name)
        with open(path, "wb") as f:
            f.write(data)
        return path

    def read(self, path):
        with open(path, "rb") as f:
            return f.read()

    def run_tool(self, *arguments, program=None):
        """main() on these options; its result and what it said."""
        said = io.StringIO()
        with contextlib.redirect_stderr(said):
            result = stamp.main([program or self.program, "-o", self.output, *arguments])
        return result, said.getvalue()

    def test_copy_is_the_program_and_the_trailer(self):
        original = self.read(self.program)
        done = subprocess.run([sys.executable, stamp.__file__, self.program, "-o", self.output,
                               "--partner-a", "1201", "--partner-b", "0", "--label", "Caf\u00e9",
                               "--link", "http://www.partner.example/?from=setup", "--logo", self.logo],
                              capture_output=True, text=True)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(self.read(self.program), original)
        copy = self.read(self.output)
        self.assertEqual(copy[:len(original)], original)
        self.assertEqual(copy[-3:], b"tvd")
        self.assertEqual(struct.unpack_from("<I", copy, len(copy) - 7)[0], len(copy) - len(original))
        self.assertEqual(stamp.read_trailer(copy), {
            "partner_a": 1201, "partner_b": 0, "label": b"Caf\xe9",
            "link": b"http://www.partner.example/?from=setup", "extra": 0, "logo": bitmap()})
        # Empty fields give the shortest trailer: six words, the length and the marker.
        self.assertEqual(self.run_tool("--partner-a", "1", "--partner-b", "2")[0], 0)
        self.assertEqual(len(self.read(self.output)) - len(original), 31)

    def test_refusals_say_why_and_write_nothing(self):
        stamped = os.path.join(self.folder.name, "stamped.exe")
        self.assertEqual(self.run_tool("--partner-a", "5", "--partner-b", "6", "-o", stamped)[0], 0)
        good = ["--partner-a", "5", "--partner-b", "6", "--link", "http://p.example/"]
        cases = [
            (["--logo", self.write("logo.png", b"\x89PNG\r\n\x1a\n" + bytes(64))], "not a Windows bitmap (.bmp)"),
            (["--logo", self.write("cut.bmp", bitmap(cut=5))], "its pixels are cut short"),
            (["--logo", self.write("odd.bmp", bitmap(bits=7))], "7 bits per pixel is no bitmap format"),
            (["--logo", self.write("tall.bmp", bitmap(height=-33))], "it is 4 x 33 pixels; the frame's corner"),
            (["--partner-a", "-1"], "partner number A -1 is out of range (0 to 2147483647)"),
            (["--partner-b", "2147483648"], "partner number B 2147483648 is out of range"),
            (["--partner-a", "12x"], "partner number A '12x' is not a whole number"),
            (["--label", "L" * 256], "the label is 256 bytes long; its field holds at most 255"),
            (["--label", "\u65e5\u672c"], "code page 1252"),
            (["--link", "http://p.example/" + "x" * 1007], "the link is 1024 bytes long"),
            (["--link", "file:///C:/windows/system32/cmd.exe"], "is no web address"),
            (["--link", "", "--logo", self.logo], "a logo needs a link"),
        ]
        for extra, message in cases:
            with self.subTest(extra=extra):
                result, said = self.run_tool(*good, *extra)
                self.assertEqual((result, message in said), (1, True), said)
                self.assertFalse(os.path.exists(self.output))
        for program, message in [(self.write("notes.txt", b"plain text" * 600), "is not a Windows program"),
                                 (stamped, "is a partner's copy already"),
                                 (self.program, "would overwrite the program itself")]:
            with self.subTest(program=program):
                original = self.read(program)
                result, said = self.run_tool(*good, "-o", self.program, program=program)
                self.assertEqual((result, message in said), (1, True), said)
                self.assertEqual(self.read(program), original)

    def test_signed_program_stays_signed_in_its_copy(self):
        if not os.path.exists(BUILT):
            self.skipTest("no build/x64/SETUP.EXE to sign (make build)")
        cert, key, signed = (os.path.join(self.folder.name, name) for name in ("t.crt", "t.key", "signed.exe"))
        for command in (["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj",
                         "/CN=Stamp test", "-addext", "extendedKeyUsage=codeSigning", "-keyout", key, "-out", cert],
                        ["osslsigncode", "sign", "-certs", cert, "-key", key, "-in", BUILT, "-out", signed]):
            subprocess.run(command, check=True, capture_output=True)

        def verify(data):
            checked = self.write("checked.exe", data)
            done = subprocess.run(["osslsigncode", "verify", "-CAfile", cert, "-in", checked],
                                  capture_output=True, text=True)
            return done.returncode == 0 and "invalid PE checksum" not in done.stdout, done.stdout

        self.assertEqual(self.run_tool("--partner-a", "9", "--partner-b", "3", "--label", "Signed",
                                       program=signed), (0, ""))
        program, copy = self.read(signed), self.read(self.output)
        self.assertEqual((verify(program)[0], verify(copy)[0]), (True, True), verify(copy)[1])
        self.assertEqual(stamp.read_trailer(copy)["label"], b"Signed")
        damaged = bytearray(copy)
        damaged[struct.unpack_from("<I", copy, copy.index(b".text\0\0\0") + 20)[0] + 100] ^= 1
        self.assertIn("MISMATCH", verify(damaged)[1])
        # The table must end the file, and its certificate's length fit it. Its
        # place: data directory entry 4 of the x64 program's (PE32+) optional header.
        table = struct.unpack_from("<I", program, struct.unpack_from("<I", program, 0x3C)[0] + 24 + 112 + 32)[0]
        for bad, message in [(copy, "is a partner's copy already"), (program + b"\0", "does not end the file"),
                             (program[:table] + b"\xff" + program[table + 1:], "does not fit its table")]:
            with self.subTest(message=message):
                result, said = self.run_tool("--partner-a", "1", "--partner-b", "2", program=self.write("bad.exe", bad))
                self.assertEqual((result, message in said), (1, True), said)


if __name__ == "__main__":
    unittest.main()
