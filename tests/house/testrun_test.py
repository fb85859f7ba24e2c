"""The runner of ./test reads a check's output as it is meant, and never takes a broken program for a passed one."""

import pathlib
import sys
import unittest

TOP = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(TOP / "tools"))

import testrun  # noqa: E402

SUMMARY = "[==========] {} tests from 2 test suites ran. (5 ms total)\n[  PASSED  ] {} tests.\n"


def counts(result):
    return result.passed, result.failed


class Readers(unittest.TestCase):
    def test_a_summary_counts(self):
        self.assertEqual(counts(testrun.google_tests(0, SUMMARY.format(7, 7))), (7, 0))

    def test_failed_tests_count(self):
        text = SUMMARY.format(7, 5) + "[  FAILED  ] 2 tests, listed below:\n"
        self.assertEqual(counts(testrun.google_tests(1, text)), (5, 2))

    def test_skipped_tests_are_said(self):
        text = SUMMARY.format(7, 6) + "[  SKIPPED ] 1 test, listed below:\n"
        result = testrun.google_tests(0, text)
        self.assertEqual(counts(result), (6, 0))
        self.assertIn("1 skipped", result.remark)

    def test_a_program_that_does_nothing_has_failed(self):
        self.assertEqual(counts(testrun.google_tests(0, "")), (0, 1))

    def test_a_crash_half_way_has_failed(self):
        self.assertEqual(counts(testrun.google_tests(139, "[       OK ] A.b (0 ms)\n")), (1, 1))

    def test_an_exit_code_without_a_failed_test_has_failed(self):
        self.assertEqual(counts(testrun.google_tests(1, SUMMARY.format(7, 7))), (7, 1))

    def test_tests_that_are_missing_from_the_summary_have_failed(self):
        self.assertEqual(counts(testrun.google_tests(0, SUMMARY.format(7, 6))), (6, 1))

    def test_a_script_is_counted_by_its_last_line(self):
        self.assertEqual(counts(testrun.counting_script(0, "ok  a\n3 passed, 0 failed\n")), (3, 0))
        self.assertEqual(counts(testrun.counting_script(1, "FAIL  a\n3 passed, 2 failed\n")), (3, 2))

    def test_a_script_that_ends_early_has_failed(self):
        self.assertEqual(counts(testrun.counting_script(0, "3 passed, 0 failed\nmore\n")), (0, 1))
        self.assertEqual(counts(testrun.counting_script(143, "3 passed, 0 failed\n")), (3, 1))
        self.assertEqual(counts(testrun.counting_script(0, "")), (0, 1))

    def test_a_failed_check_is_shown_with_what_it_printed(self):
        output = ["ok    a", "FAIL  b", "      first", "      last", "ok    c", "ran", "x.cpp:1: error: y", "FAIL  d"]
        self.assertEqual(testrun.faults(output), ["x.cpp:1: error: y", "FAIL  b", "      first", "      last", "FAIL  d"])

    def test_python_tests(self):
        self.assertEqual(counts(testrun.python_tests(0, "Ran 4 tests in 0.1s\n\nOK\n")), (4, 0))
        self.assertEqual(
            counts(testrun.python_tests(1, "Ran 4 tests in 0.1s\n\nFAILED (failures=1, errors=2)\n")), (1, 3)
        )
        self.assertEqual(counts(testrun.python_tests(1, "Traceback\n")), (0, 1))


class Plan(unittest.TestCase):
    def checks(self, *words):
        sys.argv = ["testrun.py", *words]
        return testrun.plan(testrun.parsed_arguments())

    def test_every_mode_lies_within_all(self):
        everything = {check.name for check in self.checks("--all")[0]}
        for mode in ([], ["--quick"], ["--x86"]):
            names = {check.name for check in self.checks(*mode)[0]}
            self.assertTrue(names)
            self.assertLessEqual(names, everything)

    def test_names_are_unique(self):
        names = [check.name for check in self.checks("--all")[0]]
        self.assertEqual(len(names), len(set(names)))

    def test_one_check_and_the_build_it_needs(self):
        checks, builds = self.checks("wine-window")
        self.assertEqual([check.name for check in checks], ["wine-window"])
        self.assertTrue(all(preset in builds for preset in checks[0].builds))

    def test_the_optimised_build_takes_large_inputs_whole(self):
        thorough = {check.name for check in self.checks()[0] if check.thorough}
        self.assertEqual(thorough, {"windows-x64-unit", "windows-x64-contract", "windows-x64-thread"})
        self.assertIn("native-debug-unit", {check.name for check in self.checks("--all")[0] if check.thorough})

    def test_what_runs_under_wine_stays_on_a_core(self):
        for check in self.checks()[0]:
            self.assertEqual(check.pinned, check.name.startswith(("wine-", "windows-x64-")), check.name)

    def languages(self, *words):
        return {check.name for check in self.checks(*words)[0] if check.name.startswith("wine-language-")}

    def test_three_languages_are_looked_at_every_time(self):
        self.assertEqual(
            self.languages(), {"wine-language-english", "wine-language-long", "wine-language-japanese"}
        )

    def test_all_looks_at_every_language(self):
        names = [path.stem for path in TOP.glob("languages/*.lng")] + ["long"]
        self.assertEqual(self.languages("--all"), {f"wine-language-{name}" for name in names})


if __name__ == "__main__":
    unittest.main()
