"""Builds and runs the project's checks; ./test is the command for it.

A check is a program with a name. Its output goes to build/logs/NAME.log and is read for the number of tests that passed
and failed. Builds come one after the other, each on all cores. Then each core works through the checks: those under Wine
stay on that core with a prefix and a display of their own, so that they don't meet.
"""

import argparse
import dataclasses
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import threading
import time
from collections.abc import Callable

TOP = pathlib.Path(__file__).resolve().parent.parent
LOGS = TOP / "build" / "logs"
PYTHON = sys.executable
TIME_LIMIT = 1800  # seconds, of one check
FAULTS = re.compile(r"error:|FAILED|Failure$|ERROR:|runtime error|faults?:")


@dataclasses.dataclass
class Result:
    passed: int
    failed: int
    remark: str = ""


# Readers of a check's output: exit code and text -> Result


def one_check(code, text):
    """Passed when the program's exit code is 0."""
    return Result(1, 0) if code == 0 else Result(0, 1, f"exit code {code}")


def last_number(pattern, text):
    """The number that the pattern finds last (a test may run its own program for a child), else 0."""
    found = re.findall(pattern, text, re.M)
    return int(found[-1]) if found else 0


def google_tests(code, text):
    """Without its summary a program counts as failed whatever its exit code: one that crashes half-way has none, and a
    32-bit one under a 64-bit Wine does nothing and exits with 0."""
    ran = last_number(r"^\[==========\] (\d+) tests? from .* ran\.", text)
    good = last_number(r"^\[  PASSED  \] (\d+) tests?\.", text)
    bad = last_number(r"^\[  FAILED  \] (\d+) tests?, listed below:", text)
    skipped = last_number(r"^\[  SKIPPED \] (\d+) tests?, listed below:", text)
    remark = f"{skipped} skipped" if skipped else ""
    if ran == 0:
        good = len(re.findall(r"^\[       OK \]", text, re.M))
        return Result(good, bad + 1, f"ended without a summary, exit code {code}")
    if good + bad + skipped != ran or (code != 0 and bad == 0):
        return Result(good, bad + 1, f"{ran} tests ran, exit code {code} {remark}")
    return Result(good, bad, remark)


def python_tests(code, text):
    ran = last_number(r"^Ran (\d+) tests?", text)
    bad = last_number(r"^FAILED \(.*failures=(\d+)", text) + last_number(r"^FAILED \(.*errors=(\d+)", text)
    if bad == 0 and (ran == 0 or code != 0):
        bad = 1
    return Result(max(ran - bad, 0), bad)


def faults(output):
    """The lines of an output that tell what went wrong, at most 20 and 40 of a script's: its failed checks, with what
    each printed."""
    told, of_check, in_check = [], [], False
    for line in output:
        in_check = line.startswith("FAIL  ") or (in_check and line.startswith("      "))
        if in_check:
            of_check.append(line)
        elif FAULTS.search(line):
            told.append(line)
    return told[:20] + of_check[:40]


def counting_script(code, text):
    """A script whose last line is "N passed, N failed"."""
    lines = text.splitlines()
    counts = re.fullmatch(r"(\d+) passed, (\d+) failed", lines[-1]) if lines else None
    good, bad = map(int, counts.groups()) if counts else (0, 0)
    if bad == 0 and (code != 0 or good == 0):
        bad = 1
    return Result(good, bad)


@dataclasses.dataclass
class Check:
    name: str
    command: list
    read: Callable = one_check
    builds: tuple = ()  # presets that must be built
    pinned: bool = False  # stays on one core
    thorough: bool = False  # runs the tests of large inputs at their full size


@dataclasses.dataclass
class Build:
    preset: str
    targets: tuple = ()

    def check(self):
        return Check(f"build-{self.preset}", ["tools/build", self.preset, *self.targets])


@dataclasses.dataclass
class Packages:
    """What users download, made of both Windows builds, and the installer that a 64-bit Wine runs."""

    def check(self):
        return Check("build-packages", ["./package", "--native64"])


# The checks of the project

# Scripts that install what users download.
INSTALLING = {"package", "healthy"}
# The script that is run once for each language, and the languages that are looked at every time: the original texts,
# made-up long ones, and texts whose characters come from another font.
LANGUAGE_SCRIPT = TOP / "tests" / "wine" / "language.sh"
USUAL_LANGUAGES = ("english", "long", "japanese")


def house_checks():
    yield Check("format", ["tools/format", "--check"])
    yield Check("include-rules", [PYTHON, "tests/house/includerules.py", "."])
    for script in sorted(TOP.glob("tests/*/*_test.py")):
        yield Check(script.stem, [PYTHON, str(script.relative_to(TOP))], python_tests)


def test_program(preset, name):
    return f"build/{preset}/tests/corvalt_{name}_tests" + (".exe" if preset.startswith("windows") else "")


def less_spread_addresses():
    """Where addresses are spread too widely the thread sanitizer finds no room; some containers forbid to ask for
    less."""
    command = ["setarch", "-R"]
    allowed = subprocess.run([*command, "true"], stderr=subprocess.DEVNULL).returncode == 0
    return command if allowed else []


def native_checks(thorough):
    for name in ("unit", "contract", "thread"):
        program = test_program("native-debug", name)
        yield Check(f"native-debug-{name}", [program], google_tests, ("native-debug",), thorough=thorough)
    program = test_program("native-tsan", "thread")
    yield Check("native-tsan-thread", [*less_spread_addresses(), program], google_tests, ("native-tsan",))


def audits(machine):
    preset = f"windows-{machine}"
    folder = f"build/{preset}/Corvalt"
    window, console = f"{folder}/corvalt.exe", f"{folder}/corvaltc.exe"
    commands = {
        "imports": ["tests/house/importaudit.py", "x86_64-w64-mingw32-objdump", window, console],
        "manual": ["tests/help/chmaudit.py", f"{folder}/help.chm"],
        "pictures": ["tests/art/pictureaudit.py", "window", window],
        "picturesc": ["tests/art/pictureaudit.py", "console", console],
        "manifest": ["tests/house/manifestaudit.py", "window", window],
        "manifestc": ["tests/house/manifestaudit.py", "console", console],
    }
    for name, command in commands.items():
        yield Check(f"{name}-{machine}", [PYTHON, *command], builds=(preset,))


def language_checks(languages):
    for language in languages:
        command = ["bash", str(LANGUAGE_SCRIPT.relative_to(TOP)), language]
        yield Check(f"wine-language-{language}", command, counting_script, ("windows-x64",), pinned=True)


def windows_checks():
    preset = "windows-x64"
    scripts = set(TOP.glob("tests/wine/*.sh")) - {LANGUAGE_SCRIPT}
    for script in sorted(scripts, key=lambda script: -script.stat().st_size):
        command = ["bash", str(script.relative_to(TOP))]
        builds = (preset, "windows-x86", "packages") if script.stem in INSTALLING else (preset,)
        yield Check(f"wine-{script.stem}", command, counting_script, builds, pinned=True)
    yield from language_checks(USUAL_LANGUAGES)
    # The optimised build takes the large inputs, the sanitized one smaller ones.
    for name in ("unit", "contract", "thread"):
        command = ["tools/emulator", "--fresh", test_program(preset, name)]
        yield Check(f"{preset}-{name}", command, google_tests, (preset,), pinned=True, thorough=True)
    yield from audits("x64")
    yield from audits("x86")


def x86_checks():
    # One prefix serves all, so they are one after the other: tree32 waits for itself.
    preset = "windows-x86"
    for name in ("unit", "contract", "thread"):
        yield Check(f"{preset}-{name}", ["tools/tree32", test_program(preset, name)], google_tests, (preset,))
    installer = ["tools/tree32", "tests/wine32/installer.sh"]
    yield Check("windows-x86-installer", installer, counting_script, (preset, "packages"))


def deep_checks():
    languages = sorted(file.stem for file in TOP.glob("languages/*.lng"))
    yield from language_checks(language for language in languages if language not in USUAL_LANGUAGES)
    yield Check("fuzz", ["tools/fuzz", "20"], counting_script, ("fuzz",))
    yield Check("packages-twice", ["bash", "tests/package/twice.sh"], counting_script, ("packages",))
    yield Check("tidy", [PYTHON, "tools/tidy.py"], counting_script, ("native-debug", "fuzz", "windows-x64"))


BUILDS = {
    "native-debug": Build("native-debug"),
    "native-tsan": Build("native-tsan", ("corvalt_thread_tests",)),
    "windows-x64": Build("windows-x64", ("programs", "test_programs")),
    "windows-x86": Build("windows-x86", ("programs",)),
    "packages": Packages(),
    "fuzz": Build("fuzz"),
}


def plan(arguments):
    """The checks that the arguments ask for, and what each preset builds for them."""
    builds = dict(BUILDS)
    everything = [
        *house_checks(),
        *native_checks(arguments.all),
        *windows_checks(),
        *x86_checks(),
        *deep_checks(),
    ]
    names = {check.name for check in everything}
    if arguments.names:
        unknown = [name for name in arguments.names if name not in names]
        if unknown:
            sys.exit(f"no such check: {', '.join(unknown)}; ./test --list names them")
        chosen = [check for check in everything if check.name in arguments.names]
    elif arguments.quick:
        chosen = [*house_checks(), *native_checks(False)]
    elif arguments.x86:
        chosen = [*x86_checks()]
    elif arguments.all or arguments.list:
        chosen = everything
        builds["windows-x64"] = Build("windows-x64")
    else:
        chosen = [*house_checks(), *native_checks(False), *windows_checks()]
    if any(check.name.startswith("windows-x86-") for check in chosen):
        builds["windows-x86"] = Build("windows-x86")
    return chosen, builds


# Running


class Runner:
    def __init__(self):
        self.passed = 0
        self.failed = 0
        self.stopping = False
        self.processes = set()
        self.lock = threading.Lock()

    def run(self, check, core=None):
        """Whether the check passed whole; counts and prints it."""
        begin = time.monotonic()
        log = LOGS / f"{check.name}.log"
        command = ["taskset", "-c", str(core), *check.command] if core is not None and check.pinned else check.command
        environment = dict(os.environ, CORVALT_THOROUGH="1") if check.thorough else None
        with open(log, "wb") as output:
            code = self.wait_for(command, environment, output)
        if self.stopping:
            return False
        text = log.read_text(encoding="utf-8", errors="replace").replace("\r", "")
        result = check.read(code, text)
        self.report(check.name, result, time.monotonic() - begin, text)
        return result.failed == 0

    def wait_for(self, command, environment, output):
        """The exit code. Each program has a session of its own, so that it ends with all that it started."""
        with self.lock:
            if self.stopping:
                return -1
            process = subprocess.Popen(
                command, cwd=TOP, env=environment, stdin=subprocess.DEVNULL, stdout=output, stderr=subprocess.STDOUT,
                start_new_session=True,
            )
            self.processes.add(process)
        try:
            return process.wait(None if command[0] in ("tools/build", "./package") else TIME_LIMIT)
        except subprocess.TimeoutExpired:
            self.end(process)
            return f"none within {TIME_LIMIT} s"
        finally:
            with self.lock:
                self.processes.discard(process)

    @staticmethod
    def end(process):
        """Ends a program and what it started; scripts get time to end Wine."""
        for how in (signal.SIGTERM, signal.SIGKILL):
            try:
                os.killpg(process.pid, how)
                process.wait(20)
                return
            except ProcessLookupError:
                return
            except subprocess.TimeoutExpired:
                pass

    def stop(self):
        with self.lock:
            self.stopping = True
            running = list(self.processes)
        for process in running:
            self.end(process)

    def report(self, name, result, seconds, text):
        lines = []
        if result.failed == 0:
            lines.append(f"ok    {name:24} {result.passed:5} passed  {seconds:4.0f} s  {result.remark}")
        else:
            lines.append(f"FAIL  {name:24} {result.passed:5} passed, {result.failed} failed  {seconds:4.0f} s  {result.remark}")
            output = text.splitlines()
            lines += ["      " + line for line in faults(output)]
            lines += ["    | " + line for line in output[-15:]]
            lines.append(f"    The whole output is in build/logs/{name}.log")
        with self.lock:
            self.passed += result.passed
            self.failed += result.failed
            print("\n".join(line.rstrip() for line in lines), flush=True)

    def not_built(self, check):
        self.report(check.name, Result(0, 1, "not built"), 0, "")

    def run_on_all_cores(self, checks):
        waiting = list(checks)

        def work(core):
            while not self.stopping:
                with self.lock:
                    if not waiting:
                        return
                    check = waiting.pop(0)
                self.run(check, core)

        threads = [threading.Thread(target=work, args=(core,)) for core in sorted(os.sched_getaffinity(0))]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()


def run_all(runner, checks, builds):
    runner.run_on_all_cores([check for check in checks if not check.builds])
    broken = set()
    for preset, build in builds.items():
        if not runner.stopping and any(preset in check.builds for check in checks) and not runner.run(build.check()):
            broken.add(preset)
    ready = []
    for check in checks:
        if broken.intersection(check.builds):
            runner.not_built(check)
        elif check.builds:
            ready.append(check)
    # What stays on one core takes longest and comes first.
    runner.run_on_all_cores(sorted(ready, key=lambda check: not check.pinned))


def set_environment():
    # Windows of the tests never come up on the screen of who runs them.
    os.environ.pop("DISPLAY", None)
    os.environ["UBSAN_OPTIONS"] = "print_stacktrace=1"
    if shutil.which("ccache"):
        os.environ["CMAKE_C_COMPILER_LAUNCHER"] = os.environ["CMAKE_CXX_COMPILER_LAUNCHER"] = "ccache"
        os.environ["CCACHE_BASEDIR"] = str(TOP)
        os.environ["CCACHE_NOHASHDIR"] = "1"
        # Precompiled headers are kept too; the compiler tells itself when one is outdated.
        os.environ["CCACHE_SLOPPINESS"] = "pch_defines,time_macros"


def parsed_arguments():
    parser = argparse.ArgumentParser(prog="./test", description="Runs checks; the last line is \"N passed, N failed\".")
    parser.add_argument("names", nargs="*", metavar="NAME", help="only the checks of these names")
    modes = parser.add_mutually_exclusive_group()
    modes.add_argument("--quick", action="store_true", help="the format, the house's rules and the native tests")
    modes.add_argument("--all", action="store_true", help="also all languages, the fuzz targets, clang-tidy and the 32-bit tests")
    modes.add_argument("--x86", action="store_true", help="the 32-bit tests, in a Debian tree below build/ (needs root)")
    modes.add_argument("--list", action="store_true", help="names the checks and runs none")
    return parser.parse_args()


def main():
    arguments = parsed_arguments()
    checks, builds = plan(arguments)
    if arguments.list:
        print("\n".join(check.name for check in checks))
        return
    set_environment()
    LOGS.mkdir(parents=True, exist_ok=True)
    runner = Runner()
    begin = time.monotonic()

    def interrupted(number, frame):
        threading.Thread(target=runner.stop).start()

    signal.signal(signal.SIGINT, interrupted)
    signal.signal(signal.SIGTERM, interrupted)
    run_all(runner, checks, builds)
    if runner.stopping:
        sys.exit(130)
    took = int(time.monotonic() - begin)
    print(f"Took {took // 60} min {took % 60} s")
    print(f"{runner.passed} passed, {runner.failed} failed")
    sys.exit(runner.failed > 0)


if __name__ == "__main__":
    main()
