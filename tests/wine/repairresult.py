"""repairresult.py FOUND AGAIN: whether the scan after a repair finds only what the repair could not know or touch.

Left over may be keys that a deletion in or below them changed (they are empty now, or the last of their branch), and an
entry whose key path, by the scan's rules, names no key.
"""

import json
import sys


def problems(path):
    with open(path, encoding="utf-8") as file:
        for section in json.load(file)["sections"]:
            for problem in section["problems"]:
                yield section["caption"], problem


def place(problem):
    return (problem["rootKey"], problem["keyPath"].lower(), problem["valueName"].lower())


def was_changed(problem, found):
    root, path, _ = place(problem)
    below = [key for other, key, _ in found if other == root and (key + "\\").startswith(path + "\\")]
    return problem["kind"] == 1 and bool(below) and place(problem) not in found


def main():
    found = {place(problem) for _, problem in problems(sys.argv[1])}
    faults = 0
    for caption, problem in problems(sys.argv[2]):
        names_no_key = "Handlers{" in problem["keyPath"]
        print(f"left: {caption}: {problem['rootKey']}{problem['keyPath']}: {problem['description']}")
        if not was_changed(problem, found) and not names_no_key:
            print("  and it should be gone")
            faults += 1
    sys.exit(1 if faults or not found else 0)


if __name__ == "__main__":
    main()
