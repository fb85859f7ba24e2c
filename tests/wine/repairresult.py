"""repairresult.py FOUND AGAIN: whether the scan after a repair finds only what the repair could not know or touch.

Left over may be keys that the deletions emptied, and entries whose key path, by the scan's rules, names no key.
"""

import json
import sys

EMPTY_KEY = "This key is empty."


def problems(path):
    with open(path, encoding="utf-8") as file:
        for section in json.load(file)["sections"]:
            for problem in section["problems"]:
                yield section["caption"], problem


def place(problem):
    return (problem["rootKey"], problem["keyPath"].lower(), problem["valueName"].lower())


def main():
    found = {place(problem) for _, problem in problems(sys.argv[1])}
    faults = 0
    for caption, problem in problems(sys.argv[2]):
        emptied = problem["description"] == EMPTY_KEY and place(problem) not in found
        names_no_key = "Handlers{" in problem["keyPath"]
        print(f"left: {caption}: {problem['rootKey']}{problem['keyPath']}: {problem['description']}")
        if not emptied and not names_no_key:
            print("  and it should be gone")
            faults += 1
    sys.exit(1 if faults or not found else 0)


if __name__ == "__main__":
    main()
