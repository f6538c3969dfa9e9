"""Checks the #include lines of the sources against the table "What may use what" of
docs/architecture.md: includes.py SOURCES

A row gives a folder, or a single source, what it may include beside itself: folders, or single
headers. A header in an `internal` folder is for the library's folders; others name it. Prints what
the table does not allow, and what it allows without need.
"""

import pathlib
import re
import subprocess
import sys

ROW = re.compile(r"^\| (`[^|]*`) \| ([^|]*) \|$", re.MULTILINE)
NAME = re.compile(r"`([^`]+)`")
INCLUDE = re.compile(r'^#include "([^"]+)"', re.MULTILINE)
CHECKED = ("zelto", "host", "cli", "viewer", "python/src")
FOR_ALL = ("zelto/Export.h", "zelto/Zelto.h")


def table(page):
    section = page.split("## What may use what\n")[1].split("\n## ")[0]
    rows = {}
    for left, right in ROW.findall(section):
        for user in NAME.findall(left):
            rows[user] = NAME.findall(right)
    return rows


def folder_of(path, rows):
    """The nearest folder of a file that has a row."""
    for folder in pathlib.PurePosixPath(path).parents:
        if str(folder) in rows:
            return str(folder)
    return None


def is_in(header, place):
    return header == place or header.startswith(place + "/")


def allowing(source, header, rows):
    """What of the table allows an include: a pair of user and used; None where nothing does."""
    own = folder_of(source, rows)
    if own == folder_of(header, rows) or header in FOR_ALL:
        return own, own
    for user in (source, own):
        for used in rows.get(user, []):
            hidden = "/internal/" in header and used != header and not source.startswith("zelto/")
            if is_in(header, used) and not hidden:
                return user, used
    return None


def main():
    sources = pathlib.Path(sys.argv[1])
    rows = table((sources / "docs/architecture.md").read_text(encoding="utf-8"))
    listed = subprocess.run(["git", "ls-files", *CHECKED], cwd=sources, check=True, text=True,
                            capture_output=True).stdout.split()
    wrong, used = [], set()
    for source in listed:
        if not source.endswith((".h", ".cpp")) or source in FOR_ALL:
            continue
        if folder_of(source, rows) is None:
            wrong.append(f"{source}: its folder is not in the table")
            continue
        for header in INCLUDE.findall((sources / source).read_text(encoding="utf-8")):
            found = allowing(source, header, rows)
            if found is None:
                wrong.append(f"{source} includes {header}")
            used.add(found)
    for user, others in rows.items():
        wrong += [f"{user} may use {other}, and does not" for other in others
                  if (user, other) not in used]
    print("\n".join(wrong) or f"{len(listed)} files as docs/architecture.md says")
    sys.exit(1 if wrong else 0)


if __name__ == "__main__":
    main()
