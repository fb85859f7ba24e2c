"""Prints what a scan found, section by section: problems.py FILE, where FILE is what corvaltc's --json wrote."""

import json
import sys


def place(problem):
    """Where the problem lies, as a reader would look for it."""
    key = (problem["rootKey"] or "") + problem["keyPath"]
    return f"{key} : {problem['valueName']}" if problem["valueName"] else key


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        sections = json.load(file)["sections"]
    found = 0
    for section in sections:
        print(f"{section['caption']}: {len(section['problems'])}")
        for problem in section["problems"]:
            found += 1
            print(f"  {place(problem)}\n      {problem['description']}".encode("utf-8", "replace").decode())
    print(f"{found} problems found")


if __name__ == "__main__":
    main()
