"""The import check fails on what would stop the program on Windows 95 or NT 4."""
import os
import unittest

import check_imports

OBJDUMP = """
MajorOSystemVersion\t4
MinorOSystemVersion\t0
MajorSubsystemVersion\t{major}
MinorSubsystemVersion\t0

\tDLL Name: KERNEL32.dll
\tvma:  Hint/Ord Member-Name Bound-To
\t46cf2\t  640  CloseHandle
\t46cf8\t  641  GetTickCount64

 00046064\t00046314 00000000 00000000 00047878 000466a8

\tDLL Name: WININET.DLL
\tvma:  Hint/Ord Member-Name Bound-To
\t47000\t  12  InternetOpenA
\t47008\t  77

 00000000\t00000000 00000000 00000000 00000000 00000000
"""


class ImportCheck(unittest.TestCase):
    def setUp(self):
        self.allowed = check_imports.read_allowed(os.path.join(check_imports.HERE, "windows4.txt"))

    def test_every_fault_is_named_and_nothing_else(self):
        header, imports = check_imports.parse_objdump(OBJDUMP.format(major=6))
        self.assertEqual(imports, [("KERNEL32.dll", "CloseHandle"), ("KERNEL32.dll", "GetTickCount64"),
                                   ("WININET.DLL", "InternetOpenA"), ("WININET.DLL", "#77")])
        found = check_imports.faults(header, imports, self.allowed)
        self.assertEqual(len(found), 4, found)
        self.assertIn("SubsystemVersion 6.0", found[0])
        self.assertIn("GetTickCount64", found[1])
        self.assertTrue(all("WININET.DLL: not a DLL" in f for f in found[2:]), found)

    def test_the_allowed_list_names_a_source_for_each_function(self):
        sources = {source for names in self.allowed.values() for source in names.values()}
        self.assertEqual(sources, {"sdk", "sdk-nt", "nt-w", "crt"})
        self.assertNotIn("wininet.dll", self.allowed)


if __name__ == "__main__":
    unittest.main()
