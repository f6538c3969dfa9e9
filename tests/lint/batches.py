"""Checks that no two sources of a folder give the same name to things of their own: batches.py SOURCES

Where there is no compiler cache, the sources of a folder are compiled together. Two variables or
types of one name then end the build, and of two functions the wrong one may be taken in silence.
Another name for the same type is no harm.
"""

import collections
import pathlib
import re
import subprocess
import sys

CHECKED = ("zelto", "host", "cli", "python/src", "tests")
# All sources below these are compiled together.
TOGETHER = ("host", "cli")
# Each source of these is a program of its own.
APART = ("tests/fuzz", "tests/viewer")
TYPE = re.compile(r"(?:class|struct|enum(?: class)?|union)\s+(\w+)")
VARIABLE = re.compile(r"(?:[\w:<>,*&]+\s+)+[*&]?(\w+)(?:\[[^\]]*\])*\s*(?:=|;|\{)")
FUNCTION = re.compile(r"[^=(]*?(\w+)\(")
ALIAS = re.compile(r"^using (\w+) = ([^;]+);", re.MULTILINE)
# GoogleTest finds these by the type of their argument.
SHARED = {"PrintTo"}


def own_names(text):
    """The names that a source defines in its anonymous namespaces, at the beginning of a line."""
    inside = False
    for line in text.split("\n"):
        if line.startswith(("namespace {", "} // namespace")):
            inside = line.startswith("namespace {")
        elif inside and line[:1].isalpha() and not re.match(
                r"using |namespace |template|friend |[A-Z][A-Z_0-9]*\(", line):
            found = TYPE.match(line) or VARIABLE.match(line) or FUNCTION.match(line)
            if found:
                yield found.group(1)


def main():
    sources = pathlib.Path(sys.argv[1])
    listed = subprocess.run(["git", "ls-files", *(f"{folder}/*.cpp" for folder in CHECKED)],
                            cwd=sources, check=True, text=True, capture_output=True).stdout.split()
    owners = collections.defaultdict(set)
    aliases = collections.defaultdict(dict)
    for source in listed:
        path = pathlib.PurePosixPath(source)
        folder = str(path.parent).removesuffix("/internal")
        if path.parts[0] in TOGETHER:
            folder = path.parts[0]
        if not folder.startswith(APART):
            text = (sources / source).read_text(encoding="utf-8")
            for name in own_names(text):
                owners[folder, name].add(source)
            for name, meaning in ALIAS.findall(text):
                aliases[folder, name].setdefault(" ".join(meaning.split()), source)
    clashes = [f"{name}: {', '.join(sorted(files))}" for (_, name), files in sorted(owners.items())
               if len(files) > 1 and name not in SHARED]
    clashes += [f"{name}: {', '.join(sorted(meanings.values()))}"
                for (_, name), meanings in sorted(aliases.items()) if len(meanings) > 1]
    print("\n".join(clashes) or f"{len(owners)} names in anonymous namespaces, each in one source")
    sys.exit(1 if clashes else 0)


if __name__ == "__main__":
    main()
