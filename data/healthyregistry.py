"""The names in the registry of a healthy machine (tests/healthy/healthy.reg), which no trace of adware may be."""

import re

HELPER_OBJECTS = "hkey_local_machine\\software\\microsoft\\windows\\currentversion\\explorer\\browser helper objects\\"
TOOLBAR = "hkey_local_machine\\software\\microsoft\\internet explorer\\toolbar\\"
SERVICES = "hkey_local_machine\\system\\currentcontrolset\\services\\"
CLASSES = (
    ("hkey_local_machine\\software\\classes\\", "hkey_classes_root\\"),
    ("hkey_current_user\\software\\classes\\", "hkey_classes_root\\"),
)
# The same settings under another name: in a user's hive (the system's own accounts are users too), in the current
# hardware profile, in the view of 32-bit programs, and in the control set that is the current one.
OTHER_VIEWS = (
    (re.compile(r"^hkey_users\\(?:\.default|s-1-5-[0-9-]+)\\"), "hkey_current_user\\\\"),
    (
        re.compile(r"^hkey_current_config\\"),
        r"hkey_local_machine\\system\\currentcontrolset\\hardware profiles\\current\\",
    ),
    (re.compile(r"^(hkey_(?:local_machine|current_user)\\software\\(?:classes\\)?|hkey_classes_root\\)wow6432node\\"), r"\1"),
    (re.compile(r"^(hkey_local_machine\\system\\)controlset\d{3}\\"), r"\1currentcontrolset\\"),
)
QUOTED = re.compile(r'"((?:[^"\\]|\\.)*)"')


def unquoted(text):
    """The text between the quotes at the beginning, without its escapes."""
    return re.sub(r"\\(.)", r"\1", QUOTED.match(text).group(1))


def with_parents(path):
    names = path.split("\\")
    return {"\\".join(names[:count]) for count in range(1, len(names) + 1)}


def in_the_usual_view(path):
    for other, usual in OTHER_VIEWS:
        path = other.sub(usual, path)
    return path


class HealthyRegistry:
    def __init__(self, text):
        self.keys, self.values = set(), set()
        key = ""
        for line in text.split("\n"):
            if line.startswith("["):
                key = self._as_classes(line[1:-1].lower())
                self.keys |= with_parents(key)
            elif line.startswith('"'):
                self.values.add(key + "\\" + unquoted(line).lower())

    @staticmethod
    def _as_classes(path):
        for beginning, root in CLASSES:
            if path.startswith(beginning):
                return root + path[len(beginning) :]
        return path

    def holds(self, kind, trace):
        """Whether the trace would be found on the machine."""
        place = trace.lower()
        if kind == "SERVICE":
            return SERVICES + place in self.keys
        if kind == "BHO":
            return HELPER_OBJECTS + place in self.keys
        if kind == "TOOLBAR":
            return TOOLBAR + place in self.values
        held = self.keys if kind == "REGKEY" else self.values
        # A mapped key itself is found by its path with the separator.
        usual = self._as_classes(in_the_usual_view(place + "\\")).rstrip("\\")
        return place in held or usual in held
