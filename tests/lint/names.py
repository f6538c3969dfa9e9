"""Checks that the files and functions that docs/architecture.md names are still there: names.py SOURCES"""

import pathlib
import re
import subprocess
import sys

FILE = re.compile(r"`((?:[\w-]+/)+[\w.-]+\.(?:h|cpp|py|map))`")
NAME = re.compile(r"`(?:\w+::)*([A-Za-z]\w*)`")
ROOTS = ("", "zelto/", "viewer/", "docs/")


def main():
    sources = pathlib.Path(sys.argv[1])
    page = (sources / "docs/architecture.md").read_text(encoding="utf-8")
    code = "".join(
        (sources / file).read_text(encoding="utf-8") for file in subprocess.run(
            ["git", "ls-files", "zelto/*.h", "zelto/*.cpp", "host/*", "cli/*", "viewer/*", "python/*"],
            cwd=sources, check=True, text=True, capture_output=True).stdout.split()
        if file.endswith((".h", ".cpp", ".py")))
    words = set(re.findall(r"\w+", code))
    roads = "".join(section for section in page.split("\n## ") if section.startswith("The road"))
    gone = [file for file in FILE.findall(page)
            if not any((sources / root / file).is_file() for root in ROOTS)]
    gone += [name for name in NAME.findall(roads) if name not in words]
    for name in gone:
        print(f"docs/architecture.md: there is no {name}")
    sys.exit(1 if gone or not roads else 0)


if __name__ == "__main__":
    main()
