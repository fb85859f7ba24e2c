"""Compiles the manual: compile.py CHMCMD PROJECT TARGET, in the project's folder.

The compiler writes the time of day into the file. Where the system lets one program watch another, the clock that the
compiler reads is held still, so that the same pages give the same bytes; elsewhere the file works just as well.
The project has no binary index, because the compiler leaves some of its bytes as the memory was; the list of keywords
(help.hhk) is read in its place.
"""

import os
import shutil
import subprocess
import sys

# struct timeval of 64-bit Linux, all zero: the midnight of 1 January 1970.
MIDNIGHT = "00" * 16


def compile_project(words):
    return subprocess.run(words, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)


def main():
    compiler, project, target = sys.argv[1:4]
    made = os.path.splitext(project)[0] + ".chm"
    clock = ["strace", "-f", "-o", os.devnull, "-e", "trace=gettimeofday"]
    clock += ["-e", f"inject=gettimeofday:poke_exit=@arg1={MIDNIGHT}", "-E", "TZ=UTC"]
    finished = compile_project([*clock, compiler, project]) if shutil.which("strace") else None
    if finished is None or finished.returncode != 0 or not os.path.exists(made):
        print("compile.py: the clock can't be held still here; the manual will hold the time of its compilation")
        finished = compile_project([compiler, project])
    if finished.returncode != 0 or not os.path.exists(made):
        sys.exit(finished.stdout)
    os.replace(made, target)


if __name__ == "__main__":
    main()
