"""The packer of the data files: what it writes, and that it refuses each kind of malformed source.

Runs from the top of the project: python3 -m unittest discover -s tests/data
"""

import contextlib
import io
import os
import re
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree
import zlib

TOP = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
DATA = os.path.join(TOP, "data")
sys.path.insert(0, DATA)

import healthyregistry  # noqa: E402
import pack  # noqa: E402
import problems  # noqa: E402

EXCLUSIONS = os.path.join(DATA, "exclusions.txt")
TYPICAL = os.path.join(DATA, "typicalproblems.txt")
TRACES = os.path.join(DATA, "adware-traces.tsv")
HEALTHY = os.path.join(TOP, "tests", "healthy", "healthy.reg")
UNSHIELDED = os.path.join(TOP, "tests", "healthy", "unshielded.expected")
BROKEN = os.path.join(TOP, "tests", "wine", "brokenregistry.expected")
HEADER = "program\tkind\ttrace\tsource\tconfidence\n"
CLASS_ID = "{0123ABCD-4567-89AB-CDEF-0123456789AB}"


def unpacked(content):
    """What a reader of a data file sees: two bytes skipped, one zlib stream, nothing after it."""
    stream = zlib.decompressobj()
    text = stream.decompress(content[2:])
    assert stream.eof and not stream.unused_data
    return text.decode("utf-8")


def entries_as_the_program_reads_them(text):
    """Trimmed lines, without empty ones, comments and remarks."""
    lines = (line.strip() for line in text.splitlines())
    return [line.split("//")[0].strip() for line in lines if line and not line.startswith(";")]


def traces_as_the_program_reads_them(xml):
    """(program, kind, trace) of every child of every group but its first, which is the name."""
    found = []
    for group in ElementTree.fromstring(xml.encode("utf-8")):
        program = group[0].text
        found.extend((program, child.tag, child.text) for child in group[1:])
    return found


def source_columns():
    with open(TRACES, encoding="utf-8") as file:
        return [tuple(line.rstrip("\n").split("\t")) for line in file][1:]


def probe_of(kind, trace):
    """The lower-case text that the scan compares the exclusions with, for a trace that was found."""
    if kind == "SERVICE":
        key, value = "HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Services\\" + trace, ""
    elif kind == "BHO":
        helpers = "\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Browser Helper Objects\\"
        key, value = "HKEY_LOCAL_MACHINE" + helpers + trace, ""
    elif kind == "TOOLBAR":
        key, value = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Internet Explorer\\Toolbar", trace
    else:
        # The scan joins root and key path of these two kinds without a backslash.
        root, path = trace.split("\\", 1)
        path, value = path.rsplit("\\", 1) if kind == "REGVALUE" else (path, "")
        key = root + path
    return (key + "\\" + value + "\\").lower()


class PackedExclusions(unittest.TestCase):
    def test_hold_the_entries_of_the_source_and_no_remark(self):
        with open(EXCLUSIONS, encoding="utf-8") as file:
            lines = [line.rstrip("\n") for line in file]
        expected = [line.split(" // ")[0] for line in lines if line and not line.startswith(";")]
        text = unpacked(pack.pack_exclusions(pack.read_source(EXCLUSIONS), pack.read_source(TYPICAL)))
        self.assertGreater(len(expected), 100)
        self.assertEqual(entries_as_the_program_reads_them(text), expected)

    def test_are_the_same_bytes_each_time(self):
        text = pack.read_source(EXCLUSIONS)
        self.assertEqual(pack.pack_exclusions(text), pack.pack_exclusions(text))


class PackedTraces(unittest.TestCase):
    def test_hold_the_traces_of_the_source_in_its_order(self):
        expected = [(program, kind, trace) for program, kind, trace, _, _ in source_columns()]
        xml = unpacked(pack.pack_traces(pack.read_source(TRACES), pack.read_source(HEALTHY)))
        self.assertGreater(len(expected), 2000)
        self.assertEqual(traces_as_the_program_reads_them(xml), expected)

    def test_have_each_a_source_that_can_be_looked_up(self):
        for program, _, trace, source, _ in source_columns():
            with self.subTest(program=program, trace=trace):
                self.assertRegex(source, r'\A(?!public )\S')
                self.assertNotIn("own knowledge", source)

    def test_have_one_group_a_program_and_its_name_first_under_a_name_that_is_no_kind(self):
        xml = unpacked(pack.pack_traces(pack.read_source(TRACES)))
        groups = list(ElementTree.fromstring(xml.encode("utf-8")))
        self.assertEqual(len(groups), len({program for program, *_ in source_columns()}))
        for group in groups:
            self.assertNotIn(group[0].tag.upper(), pack.KINDS)
            self.assertGreater(len(group), 1)

    def test_escape_what_xml_would_misread(self):
        line = "A & B <x>\tREGKEY\tHKEY_CURRENT_USER\\Software\\A&B <\"x\">]]>\tseen\thigh\n"
        xml = unpacked(pack.pack_traces(HEADER + line))
        trace = "HKEY_CURRENT_USER\\Software\\A&B <\"x\">]]>"
        self.assertEqual(traces_as_the_program_reads_them(xml), [("A & B <x>", "REGKEY", trace)])

    def test_of_an_empty_catalogue_are_a_root_without_groups(self):
        self.assertEqual(traces_as_the_program_reads_them(unpacked(pack.pack_traces(HEADER))), [])

    def test_are_the_same_bytes_each_time(self):
        text = pack.read_source(TRACES)
        self.assertEqual(pack.pack_traces(text), pack.pack_traces(text))


class ExclusionsAndTraces(unittest.TestCase):
    def test_only_the_logon_key_is_shielded_from_a_trace(self):
        with open(EXCLUSIONS, encoding="utf-8") as file:
            entries = [exclusion.entry for exclusion in pack.read_exclusions(file.read())]
        silenced = [
            (entry, program)
            for program, kind, trace, _, _ in source_columns()
            for entry in entries
            if entry in probe_of(kind, trace)
        ]
        self.assertEqual(silenced, [("\\windows nt\\currentversion\\winlogon", "Look2Me")])


class Refusals(unittest.TestCase):
    def assert_refused(self, read, text, line, part_of_message):
        with self.assertRaises(pack.Findings) as caught:
            read(text)
        matching = [found for found in caught.exception.found if part_of_message in found[1]]
        self.assertEqual([number for number, _ in matching], [line], caught.exception.found)


class MalformedExclusions(Refusals):
    def assert_exclusion_refused(self, text, part_of_message, line=2):
        self.assert_refused(pack.read_exclusions, "\\aaa // sound | here\n" + text, line, part_of_message)

    def test_a_sound_entry_passes(self):
        text = "; remark\n\n\\aaa // sound | here\n\\bbb\\\\ // sound, too | here\n"
        self.assertEqual([exclusion.entry for exclusion in pack.read_exclusions(text)], ["\\aaa", "\\bbb\\\\"])

    def test_an_entry_without_a_reason(self):
        self.assert_exclusion_refused("\\bbb\n", "reason")
        self.assert_exclusion_refused("\\bbb // \n", "reason")

    def test_an_empty_entry(self):
        self.assert_exclusion_refused(" // why | where\n", "the entry is empty")

    def test_an_entry_between_blanks(self):
        self.assert_exclusion_refused("\\bbb  // why | where\n", "blank")
        self.assert_refused(pack.read_exclusions, " \\bbb // why | where\n", 1, "blank")

    def test_an_entry_that_holds_the_mark_of_a_remark(self):
        self.assert_exclusion_refused("\\bbb//ccc // why | where\n", "'//'")

    def test_an_entry_in_upper_case(self):
        self.assert_exclusion_refused("\\bbb\\Ccc // why | where\n", "lower case")

    def test_an_entry_with_a_control_character(self):
        self.assert_exclusion_refused("\\bbb\tccc // why | where\n", "control character")
        self.assert_exclusion_refused("\\bbb\x01ccc // why | where\n", "control character")

    def test_an_entry_that_stands_there_twice(self):
        self.assert_exclusion_refused("\\aaa // why | where\n", "already")

    def test_an_entry_that_holds_another(self):
        self.assert_exclusion_refused("\\bbb\\aaab // why | where\n", "needless")

    def test_an_entry_out_of_order(self):
        self.assert_exclusion_refused("\\ccc // why | where\n\\bbb // why | where\n", "not sorted", line=3)

    def test_an_entry_that_silences_what_a_section_is_for(self):
        typical = problems.read_problems(pack.read_source(TYPICAL))
        for place in (
            "\\imagepath\\",
            ":\\",
            "\\fileexts\\.",
            "\\clsid\\{",
            ".exe",
            "{",
            "\\helpdir\\\\",
            "\\explorer\\shell folders\\",
            "\\currentversion\\uninstall",
            "\\currentversion\\fonts",
            "\\services\\",
            "\\start menu2",
            "hkey_classes_root\\clsid",
            "\\appevents\\schemes",
            "\\*\\shell\\",
            "\\control panel\\desktop\\",
            "\\explorer\\",
            "hkey_users\\s-1-5-",
            "\\opensavemru",
            "arpcache",
            "%programfiles%",
        ):
            with self.subTest(place):
                source = place + " // why | where\n"
                self.assert_refused(
                    lambda text: pack.read_exclusions(text, typical), source, 1, "silence what the section"
                )

    def test_an_entry_that_silences_the_headers_of_sections(self):
        for entry in ("hkey_current_user", "hkey_users\\\\", "\\\\"):
            with self.subTest(entry):
                self.assert_refused(pack.read_exclusions, entry + " // why | where\n", 1, "headers")


class TypicalProblems(unittest.TestCase):
    def test_name_every_section_that_reports_anything(self):
        typical = {problem.section for problem in problems.read_problems(pack.read_source(TYPICAL))}
        with open(os.path.join(TOP, "scan", "catalogue.cpp"), encoding="utf-8") as file:
            catalogue = file.read()
        rows = re.findall(r'\{\d+, u"[^"]*", \d+, u"[^"]*",\s*u"([^"]*)"', catalogue)
        self.assertEqual(len(rows), len(re.findall(r"^    \{\d", catalogue, re.M)))
        self.assertEqual(typical, set(rows) - {"Device Drivers"})


class Explanation(unittest.TestCase):
    SOURCE = "\\aaa // shields | here\n\\bbb // nothing | here | stays: as a guard\n\\ccc // nothing | here\n"
    PROBLEMS = (
        "# remark\n[Obsolete software | null | 5]\n"
        "key -1 HKLM\\software\\AAA | | | 11044\nkey -1 HKCU\\software\\AAAB | | | 11044\n"
    )

    def test_names_section_text_and_number_of_what_an_entry_shields(self):
        lines, idle = problems.explained(pack.read_exclusions(self.SOURCE), problems.read_problems(self.PROBLEMS))
        self.assertEqual(
            lines,
            [
                "\\aaa",
                "    Obsolete software, text 11044: 2, such as HKLM\\software\\AAA",
                "\\bbb",
                "    stays: as a guard",
                "\\ccc",
                "    matches nothing",
            ],
        )
        self.assertEqual([exclusion.entry for exclusion in idle], ["\\ccc"])

    def test_reads_a_place_with_and_without_its_separator_an_escape_and_a_text_of_its_own(self):
        value = "value 0 HKCU Run | a\\u0000 | C:\\X | 11042($name|$data)\n"
        text = "[S | null | 1]\n" + value + 'key 0 HKCR\\* | | | " name (x)"\n'
        first, second = problems.read_problems(text)
        self.assertEqual((first.probe, first.text), ("hkey_current_userrun\\a\0\\c:\\x", "11042"))
        self.assertEqual(second.probe, "hkey_classes_root\\*\\\\")

    def test_finds_no_idle_entry_in_the_shipped_list(self):
        written_down = [
            problem for path in (UNSHIELDED, BROKEN) for problem in problems.read_problems(pack.read_source(path))
        ]
        _lines, idle = problems.explained(pack.read_exclusions(pack.read_source(EXCLUSIONS)), written_down)
        self.assertEqual(idle, [])

    def test_the_class_of_shortcuts_is_shielded_wherever_a_section_names_it(self):
        entries = [exclusion.entry for exclusion in pack.read_exclusions(pack.read_source(EXCLUSIONS))]
        name = "{00021401-0000-0000-C000-000000000046}"
        for place, data in (
            (f"HKCR\\CLSID\\{name}", "C:\\gone.dll"),
            (f"HKCR\\lnkfile\\shellex\\ContextMenuHandlers{name}", ""),
            (f"HKCR\\lnkfile\\shellex\\PropertySheetHandlers\\{name}", ""),
            ("HKCR\\lnkfile\\CLSID", name),
        ):
            with self.subTest(place):
                probe = problems.probe_of(place, "", data)
                self.assertTrue(any(entry in probe for entry in entries), probe)

    def test_every_shipped_entry_has_a_source_that_can_be_looked_up(self):
        words = r'text "[^"]{5,}"|MicrosoftDocs/|wine\.inf|reactos|how the check|this program'
        for exclusion in pack.read_exclusions(pack.read_source(EXCLUSIONS)):
            _reason, _separator, source = exclusion.reason.partition(" | ")
            self.assertRegex(source, words, exclusion.entry)
            self.assertNotIn("own knowledge", source, exclusion.entry)

    def test_no_shipped_entry_shields_what_is_broken(self):
        broken = problems.read_problems(pack.read_source(BROKEN))
        shielded = [
            (exclusion.entry, found[0].place)
            for exclusion, found in problems.explanation(pack.read_exclusions(pack.read_source(EXCLUSIONS)), broken)
            if found
        ]
        self.assertEqual(shielded, [])


class MalformedTraces(Refusals):
    def assert_trace_refused(self, columns, part_of_message):
        self.assert_refused(pack.read_traces, HEADER + "\t".join(columns) + "\n", 2, part_of_message)

    def assert_place_refused(self, kind, trace, part_of_message):
        self.assert_trace_refused(("A", kind, trace, "seen", "high"), part_of_message)

    def test_a_sound_trace_of_each_kind_passes(self):
        text = HEADER + "".join(
            f"A\t{kind}\t{trace}\tseen\thigh\n"
            for kind, trace in (
                ("SERVICE", "aservice"),
                ("REGKEY", "HKEY_CURRENT_USER\\Software\\Adware"),
                ("REGVALUE", "HKEY_CURRENT_USER\\Software\\A\\name"),
                ("BHO", CLASS_ID),
                ("TOOLBAR", CLASS_ID),
            )
        )
        self.assertEqual([trace.kind for trace in pack.read_traces(text)], list(pack.KINDS))

    def test_another_first_line(self):
        self.assert_refused(pack.read_traces, "program\tkind\ttrace\n", 1, "first line")

    def test_a_missing_column(self):
        self.assert_trace_refused(("A", "SERVICE", "a", "seen"), "columns")

    def test_an_unknown_kind(self):
        self.assert_trace_refused(("A", "DRIVER", "a", "seen", "high"), "kind")
        self.assert_trace_refused(("A", "service", "a", "seen", "high"), "kind")

    def test_an_unknown_confidence(self):
        self.assert_trace_refused(("A", "SERVICE", "a", "seen", "low"), "confidence")

    def test_an_empty_program(self):
        self.assert_trace_refused(("", "SERVICE", "a", "seen", "high"), "the program is empty")

    def test_an_empty_trace(self):
        self.assert_trace_refused(("A", "SERVICE", "", "seen", "high"), "the trace is empty")

    def test_a_missing_source(self):
        self.assert_trace_refused(("A", "SERVICE", "a", "", "high"), "the source is empty")

    def test_a_program_or_trace_between_blanks(self):
        self.assert_trace_refused((" A", "SERVICE", "a", "seen", "high"), "the program begins or ends with a blank")
        self.assert_trace_refused(("A", "SERVICE", "a ", "seen", "high"), "the trace begins or ends with a blank")

    def test_a_control_character(self):
        self.assert_trace_refused(("A\x01", "SERVICE", "a", "seen", "high"), "control character")

    def test_a_class_identifier_of_another_shape(self):
        for kind in ("BHO", "TOOLBAR"):
            for trace in (CLASS_ID[1:-1], CLASS_ID.lower(), CLASS_ID[:-2] + "}", CLASS_ID.replace("0", "G")):
                with self.subTest(kind + trace):
                    self.assert_place_refused(kind, trace, "class identifier")

    def test_a_service_name_with_a_backslash(self):
        self.assert_place_refused("SERVICE", "a\\b", "backslash")

    def test_an_unknown_root(self):
        self.assert_place_refused("REGKEY", "HKLM\\SOFTWARE\\A", "root")
        self.assert_place_refused("REGVALUE", "hkey_local_machine\\SOFTWARE\\A\\b", "root")

    def test_a_key_without_a_path(self):
        self.assert_place_refused("REGKEY", "HKEY_LOCAL_MACHINE", "key path")

    def test_a_value_without_a_key_path_or_without_a_name(self):
        self.assert_place_refused("REGVALUE", "HKEY_LOCAL_MACHINE", "key path")
        self.assert_place_refused("REGVALUE", "HKEY_LOCAL_MACHINE\\name", "key path")
        self.assert_place_refused("REGVALUE", "HKEY_LOCAL_MACHINE\\SOFTWARE\\A\\", "is empty")

    def test_an_empty_name_inside_a_path(self):
        self.assert_place_refused("REGKEY", "HKEY_LOCAL_MACHINE\\SOFTWARE\\\\A", "is empty")
        self.assert_place_refused("REGKEY", "HKEY_LOCAL_MACHINE\\SOFTWARE\\A\\", "is empty")

    def test_a_key_that_many_programs_share(self):
        self.assert_place_refused("REGKEY", "HKEY_LOCAL_MACHINE\\SOFTWARE", "share")
        self.assert_place_refused("REGKEY", "HKEY_CURRENT_USER\\software\\microsoft", "share")
        self.assert_place_refused("REGKEY", "HKEY_CLASSES_ROOT\\CLSID", "share")

    def test_classes_under_the_machine_root(self):
        self.assert_place_refused("REGKEY", "HKEY_LOCAL_MACHINE\\Software\\Classes\\A.B", "HKEY_CLASSES_ROOT")

    def test_a_trace_that_stands_there_twice_under_any_program_and_in_any_letter_case(self):
        text = HEADER + "A\tSERVICE\tone\tseen\thigh\nB\tSERVICE\tOne\tseen\thigh\n"
        self.assert_refused(pack.read_traces, text, 3, "already")

    def test_a_program_in_two_spellings(self):
        text = HEADER + "Abc\tSERVICE\tone\tseen\thigh\nABC\tSERVICE\ttwo\tseen\thigh\n"
        self.assert_refused(pack.read_traces, text, 3, "spelled")

    def test_traces_out_of_order(self):
        text = HEADER + "B\tSERVICE\tone\tseen\thigh\nA\tSERVICE\ttwo\tseen\thigh\n"
        self.assert_refused(pack.read_traces, text, 3, "not sorted")


class InnocentTraces(Refusals):
    """Traces that a machine without any unwanted program would have."""

    def assert_innocent(self, kind, trace, part_of_message):
        healthy = healthyregistry.HealthyRegistry(pack.read_source(HEALTHY))
        line = "\t".join(("A", kind, trace, "seen", "high"))
        self.assert_refused(lambda text: pack.read_traces(text, healthy), HEADER + line + "\n", 2, part_of_message)

    def test_what_every_windows_holds(self):
        for kind, trace in (
            ("SERVICE", "RpcSs"),
            ("SERVICE", "rpcss"),
            ("REGVALUE", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon\\Userinit"),
            ("REGKEY", "HKEY_CLASSES_ROOT\\exefile"),
            ("REGKEY", "HKEY_CLASSES_ROOT\\exefile\\shell"),
            ("REGKEY", "HKEY_CURRENT_USER\\Environment"),
            ("REGKEY", "HKEY_LOCAL_MACHINE\\SYSTEM\\Setup"),
            ("REGKEY", "HKEY_CLASSES_ROOT\\CLSID\\{86CA1AA0-34AA-4E8B-A509-50C905BAE2A2}"),
            ("BHO", "{1FD49718-1D00-4B19-AF5F-070AF6D5D54C}"),
            ("TOOLBAR", "{2318C2B1-4965-11D4-9B18-009027A5CD4F}"),
        ):
            with self.subTest(trace):
                self.assert_innocent(kind, trace, "a healthy machine holds this")

    def assert_all_innocent(self, kind, traces):
        for trace in traces:
            with self.subTest(trace):
                self.assert_innocent(kind, trace, "a healthy machine holds this")

    def test_a_service_that_every_windows_has(self):
        self.assert_all_innocent(
            "SERVICE",
            "Winmgmt Spooler Dnscache BFE wuauserv AudioSrv SamSs Schedule CryptSvc DcomLaunch Dhcp LanmanWorkstation "
            "mpssvc WSearch wscsvc SecurityHealthService VSS TermService WpnService UsoSvc edgeupdate".split(),
        )

    def test_the_template_of_a_service_of_each_user(self):
        self.assert_all_innocent("SERVICE", "CDPUserSvc WpnUserService OneSyncSvc cbdhsvc UnistoreSvc".split())

    def test_a_driver_that_every_windows_has(self):
        self.assert_all_innocent(
            "SERVICE",
            "NTFS disk atapi storahci stornvme volsnap pci ACPI kbdclass i8042prt HidUsb USBSTOR partmgr volmgr FltMgr "
            "NDIS Tcpip AFD mouclass fastfat cdrom usbhub USBXHCI Wdf01000 HDAudBus Null".split(),
        )

    def test_a_class_of_folders_and_drives(self):
        self.assert_all_innocent(
            "REGKEY",
            [
                "HKEY_CLASSES_ROOT\\" + name
                for name in (
                    *("Directory", "Folder", "Drive", "Unknown", "AllFilesystemObjects", "DesktopBackground"),
                    *("LibraryFolder", "directory\\background", "Component Categories", "MIME", "PROTOCOLS", "https"),
                )
            ],
        )

    def test_a_hive_or_a_key_of_the_system(self):
        control = "SYSTEM\\CurrentControlSet\\Control\\"
        self.assert_all_innocent(
            "REGKEY",
            [
                "HKEY_LOCAL_MACHINE\\" + name
                for name in (
                    *("SAM", "SECURITY", "HARDWARE", "BCD00000000", "SYSTEM\\MountedDevices", "SYSTEM\\DriverDatabase"),
                    *("SYSTEM\\CurrentControlSet\\Enum", "SYSTEM\\CurrentControlSet\\Hardware Profiles"),
                    *(
                        control + name
                        for name in ("SafeBoot", "Lsa", "Class", "Session Manager", "Print", "Nls", "NetworkProvider")
                    ),
                    control + "Session Manager\\SubSystems",
                    *(
                        "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\" + name
                        for name in ("Svchost", "Svchost\\netsvcs", "Windows", "Perflib", "IniFileMapping", "Ports")
                    ),
                    "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Shell Extensions",
                )
            ],
        )

    def test_a_key_of_every_user(self):
        self.assert_all_innocent(
            "REGKEY",
            [
                "HKEY_CURRENT_USER\\" + name
                for name in ("Volatile Environment", "Printers", "Network", "EUDC", "System", "Keyboard Layout")
            ],
        )

    def test_a_value_that_windows_starts_with(self):
        control = "HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Control\\"
        self.assert_all_innocent(
            "REGVALUE",
            (
                control + "Session Manager\\BootExecute",
                control + "Session Manager\\SubSystems\\Windows",
                control + "Lsa\\Authentication Packages",
                control + "NetworkProvider\\Order\\ProviderOrder",
                control + "SecurityProviders\\SecurityProviders",
                control + "SafeBoot\\AlternateShell",
                control + "ServiceGroupOrder\\List",
                "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Windows\\AppInit_DLLs",
                "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Svchost\\netsvcs",
                "HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Services\\Tcpip\\Parameters\\DataBasePath",
            ),
        )

    def test_what_every_windows_holds_named_in_another_view(self):
        for kind, trace in (
            ("REGKEY", "HKEY_LOCAL_MACHINE\\SOFTWARE\\WOW6432Node\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon"),
            ("REGKEY", "HKEY_CLASSES_ROOT\\WOW6432Node\\CLSID\\{00021401-0000-0000-C000-000000000046}"),
            ("REGKEY", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Classes"),
            ("REGKEY", "HKEY_LOCAL_MACHINE\\SOFTWARE\\WOW6432Node\\Classes"),
            ("REGKEY", "HKEY_LOCAL_MACHINE\\SYSTEM\\ControlSet001"),
            ("REGKEY", "HKEY_LOCAL_MACHINE\\SYSTEM\\ControlSet001\\Services\\RpcSs"),
            ("REGVALUE", "HKEY_LOCAL_MACHINE\\SYSTEM\\ControlSet002\\Services\\Schedule\\ImagePath"),
            ("REGKEY", "HKEY_USERS\\S-1-5-21-1004336348-1177238915-682003330-1001\\Keyboard Layout"),
            ("REGKEY", "HKEY_USERS\\.DEFAULT\\Software\\Wow6432Node\\Microsoft\\Windows\\CurrentVersion\\Explorer"),
            ("REGVALUE", "HKEY_USERS\\S-1-5-19\\Software\\Microsoft\\Windows\\CurrentVersion\\Run\\OneDriveSetup"),
            ("REGKEY", "HKEY_CURRENT_CONFIG\\Software\\Fonts"),
        ):
            with self.subTest(trace):
                self.assert_innocent(kind, trace, "a healthy machine holds this")

    def test_a_key_outside_the_classes_and_software(self):
        for trace in ("HKEY_LOCAL_MACHINE\\HARDWARE\\Sly", "HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Services\\Sly"):
            with self.subTest(trace):
                self.assert_innocent("REGKEY", trace, "a REGKEY lies below HKEY_CLASSES_ROOT or Software")

    def test_an_identifier_of_zeros(self):
        for kind in ("BHO", "TOOLBAR"):
            self.assert_innocent(kind, "{00000000-0000-0000-0000-000000000000}", "zeros")
        self.assert_innocent("REGKEY", "HKEY_CLASSES_ROOT\\CLSID\\{00000000-0000-0000-0000-000000000000}", "zeros")

    def test_a_name_that_many_programs_could_bear(self):
        run = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run\\"
        for kind, trace in (
            ("REGVALUE", run + "Sentry"),
            ("REGVALUE", run + "winnet"),
            ("SERVICE", "agent"),
            ("SERVICE", "svc"),
            ("REGKEY", "HKEY_CURRENT_USER\\Software\\PAV"),
            ("REGKEY", "HKEY_LOCAL_MACHINE\\SOFTWARE\\AV1"),
            ("REGKEY", "HKEY_LOCAL_MACHINE\\SOFTWARE\\WOW6432Node\\IST"),
            ("REGKEY", "HKEY_CURRENT_USER\\Software\\Conduit"),
            ("REGKEY", "HKEY_CURRENT_USER\\Software\\Spigot"),
        ):
            with self.subTest(trace):
                self.assert_innocent(kind, trace, "says too little")

    def test_a_key_above_another_programs_trace(self):
        text = HEADER + "".join(
            f"{program}\t{kind}\tHKEY_CURRENT_USER\\Software\\{trace}\tseen\thigh\n"
            for program, kind, trace in (("A", "REGKEY", "Vendor"), ("B", "REGVALUE", "Vendor\\Deep\\name"))
        )
        self.assert_refused(pack.read_traces, text, 2, "above a trace of B in line 3")

    def test_a_key_above_a_trace_of_its_own_program_passes(self):
        text = HEADER + "".join(
            f"A\tREGKEY\tHKEY_CURRENT_USER\\Software\\{trace}\tseen\thigh\n" for trace in ("Vendor", "Vendor\\Deep")
        )
        self.assertEqual(len(pack.read_traces(text)), 2)


class CommandLine(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.source = os.path.join(folder.name, "source.txt")
        self.target = os.path.join(folder.name, "target.dat")
        self.against = os.path.join(folder.name, "against.txt")
        with open(self.against, "w", encoding="utf-8") as file:
            file.write("[Obsolete software]\nkey -1 HKCU\\software\\Gone Tool | | | 11044\n")

    def run_packer(self, content, what="exclusions"):
        with open(self.source, "wb") as file:
            file.write(content)
        errors = io.StringIO()
        with contextlib.redirect_stderr(errors):
            code = pack.main([what, self.source, self.against, self.target])
        return code, errors.getvalue()

    def test_writes_two_bytes_and_a_zlib_stream(self):
        code, errors = self.run_packer(b"\\aaa // why | where\n")
        self.assertEqual((code, errors), (0, ""))
        with open(self.target, "rb") as file:
            self.assertEqual(unpacked(file.read()), "\\aaa // why | where\n")

    def test_a_refusal_names_file_and_line_and_writes_nothing(self):
        code, errors = self.run_packer(b"\\aaa // why | where\n\\bBB // why | where\n")
        self.assertEqual(code, 1)
        self.assertEqual(errors, f"{self.source}:2: the entry is not in lower case\n")
        self.assertFalse(os.path.exists(self.target))

    def test_a_source_with_other_line_ends_a_byte_order_mark_or_no_utf_8_is_refused(self):
        for content in (b"\\aaa // why | where\r\n", b"\xef\xbb\xbf\\aaa // why | where\n", b"\\\xff // a | b\n"):
            with self.subTest(content):
                code, errors = self.run_packer(content)
                self.assertEqual(code, 1)
                self.assertIn(f"{self.source}:1: ", errors)
                self.assertFalse(os.path.exists(self.target))

    def test_holds_the_exclusions_against_the_typical_problems(self):
        code, errors = self.run_packer(b"gone tool // why | where\n")
        self.assertEqual(code, 1)
        self.assertIn(f"{self.source}:1: the entry would silence what the section Obsolete software is for", errors)

    def test_explains_what_each_entry_shields_and_fails_for_an_idle_one(self):
        for entry, code in ((b"gone", 0), (b"\\idle", 1)):
            with open(self.source, "wb") as file:
                file.write(entry + b" // why | where\n")
            output, errors = io.StringIO(), io.StringIO()
            with contextlib.redirect_stdout(output), contextlib.redirect_stderr(errors):
                self.assertEqual(pack.main(["--explain", self.source, self.against]), code)
            self.assertEqual("Obsolete software, text 11044: 1" in output.getvalue(), code == 0)
            self.assertEqual("shields nothing that is written down" in errors.getvalue(), code == 1)

    def test_wrong_usage(self):
        for arguments in ([], ["pictures", "a", "b", "c"], ["exclusions", "a", "b"], ["--explain", "a"]):
            with contextlib.redirect_stderr(io.StringIO()):
                self.assertEqual(pack.main(arguments), 2)


if __name__ == "__main__":
    unittest.main()
