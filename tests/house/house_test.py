"""Proves that the checks of this folder find what they look for."""

import pathlib
import tempfile
import unittest

import importaudit
import includerules
import manifestaudit


class IncludeRules(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.root = pathlib.Path(self.folder.name)
        self.put("base/text.h", "#include <string>\n")
        self.put("formats/inflate.cpp", "#include <zlib.h>\n")
        self.put("scan/problem.h", '#include "base/text.h"\n')
        self.put("platform/memory/store.h", '#include "base/text.h"\n')
        self.put("platform/windows/store.h", '#include <windows.h>\n#include "base/text.h"\n')
        self.put("ui/windows/main.cpp", '#include <commctrl.h>\n#include "platform/windows/store.h"\n')

    def tearDown(self):
        self.folder.cleanup()

    def put(self, path, text):
        file = self.root / path
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text)

    def assert_one_fault(self, beginning):
        found = includerules.faults(self.root)
        self.assertEqual(len(found), 1, found)
        self.assertTrue(found[0].startswith(beginning), found)

    def test_a_tree_within_the_rules_has_no_fault(self):
        self.assertEqual(includerules.faults(self.root), [])

    def test_a_folder_may_not_include_one_above_it(self):
        self.put("core/upward.cpp", '\n#include "scan/problem.h"\n')
        self.assert_one_fault("core/upward.cpp:2:")

    def test_logic_may_not_include_a_platform(self):
        self.put("scan/real.cpp", '#include "platform/memory/store.h"\n')
        self.assert_one_fault("scan/real.cpp:1:")

    def test_windows_header_outside_its_folders(self):
        self.put("scan/real.cpp", "  #  include <Windows.h>\n")
        self.assert_one_fault("scan/real.cpp:1: <windows.h>")

    def test_other_system_headers_are_no_way_around(self):
        self.put("platform/memory/files.cpp", "#include <unistd.h>\n")
        self.assert_one_fault("platform/memory/files.cpp:1:")

    def test_zlib_is_for_the_formats(self):
        self.put("repair/packed.cpp", "#include <zlib.h>\n")
        self.assert_one_fault("repair/packed.cpp:1:")

    def test_repair_sees_the_problems_of_a_scan_but_no_scanner(self):
        self.put("scan/scanproblem.h", "")
        self.put("scan/scanner.h", "")
        self.put("repair/clean.cpp", '#include "scan/scanproblem.h"\n#include "scan/scanner.h"\n')
        self.assert_one_fault("repair/clean.cpp:2:")

    def test_a_path_that_does_not_begin_at_the_top(self):
        self.put("core/near.cpp", '#include "text.h"\n')
        self.assert_one_fault("core/near.cpp:1:")

    def test_a_computed_include(self):
        self.put("core/odd.cpp", "#include HEADER\n")
        self.assert_one_fault("core/odd.cpp:1:")

    def test_a_folder_that_the_house_does_not_know(self):
        self.put("misc/thing.cpp", "")
        self.assert_one_fault("misc/thing.cpp:")

    def test_a_test_for_every_platform_may_not_use_one(self):
        self.put("tests/unit/store.cpp", '#include <gtest/gtest.h>\n#include "platform/windows/store.h"\n')
        self.assert_one_fault("tests/unit/store.cpp:2:")


DUMP = """
corvalt.exe:     file format pei-x86-64

MajorOSystemVersion	4
MajorSubsystemVersion	5
MinorSubsystemVersion	2
	DLL Name: KERNEL32.dll
	vma:  Hint/Ord Member-Name Bound-To
	fda80	   20  CloseHandle
	fda9e	  141  %s

 000fd014	000fd2a8 00000000 00000000 000fe6c0 000fd7c8

	DLL Name: %s
	vma:  Hint/Ord Member-Name Bound-To
	fe050	   64  memcpy
"""


class ImportAudit(unittest.TestCase):
    def setUp(self):
        self.allowed = importaudit.read_allowed("[kernel32.dll]\nCloseHandle Sleep # and more\n[msvcrt.dll]\nmemcpy\n")

    def faults(self, routine, library):
        return importaudit.faults(DUMP % (routine, library), self.allowed)

    def test_imports_that_xp_has(self):
        self.assertEqual(self.faults("Sleep", "msvcrt.dll"), [])

    def test_a_routine_newer_than_xp(self):
        self.assertEqual(len(self.faults("GetTickCount64", "msvcrt.dll")), 1)

    def test_a_library_of_the_toolchain(self):
        self.assertEqual(len(self.faults("Sleep", "libstdc++-6.dll")), 1)

    def test_a_subsystem_newer_than_xp(self):
        dump = (DUMP % ("Sleep", "msvcrt.dll")).replace("SubsystemVersion	5", "SubsystemVersion	6")
        self.assertEqual(len(importaudit.faults(dump, self.allowed)), 1)

    def test_a_dump_without_imports_is_no_pass(self):
        self.assertEqual(len(importaudit.faults("corvalt.exe: file format pei-i386\n", self.allowed)), 1)


class ManifestAudit(unittest.TestCase):
    def setUp(self):
        resources = pathlib.Path(__file__).resolve().parent.parent.parent / "app" / "resources"
        self.window = (resources / "corvalt.manifest").read_text(encoding="utf-8")
        self.console = (resources / "corvaltc.manifest").read_text(encoding="utf-8")

    def assert_fault(self, old, new, expected):
        self.assertIn(old, self.window)
        found = manifestaudit.audit("window", self.window.replace(old, new).encode())
        self.assertEqual(len(found), 1, found)
        self.assertIn(expected, found[0])

    def test_both_manifests_are_whole(self):
        self.assertEqual(manifestaudit.audit("window", self.window.encode()), [])
        self.assertEqual(manifestaudit.audit("console", self.console.encode()), [])

    def test_another_level(self):
        self.assert_fault("highestAvailable", "requireAdministrator", "levels")

    def test_a_system_that_is_not_listed(self):
        self.assert_fault('<supportedOS Id="{35138b9a-5d96-4fbd-8e2d-a2440225f93a}"/>', "", "Windows 7")

    def test_older_common_controls(self):
        self.assert_fault('version="6.0.0.0"', 'version="5.82.0.0"', "common controls")

    def test_a_scale_that_the_system_must_fake(self):
        self.assert_fault(">true</dpiAware>", ">false</dpiAware>", "scale")

    def test_paths_of_260_units_at_most(self):
        self.assert_fault(">true</longPathAware>", ">false</longPathAware>", "long paths")

    def test_another_code_page(self):
        page = '<activeCodePage xmlns="urn:x">UTF-8</activeCodePage></windowsSettings>'
        self.assert_fault("</windowsSettings>", page, "code page")

    def test_no_manifest(self):
        self.assertEqual(len(manifestaudit.audit("window", b"")), 1)


if __name__ == "__main__":
    unittest.main()
