"""Compares what the shared library exports with what the public headers mark with ZELTO_API.

    exported_symbols.py LIBRARY SOURCES

Every symbol has to belong to a marked class or to be a marked function, and every marked function has
to be there. Prints what does not agree, and fails then.
"""

import pathlib
import re
import subprocess
import sys

CLASS = re.compile(r"^(?:class|struct) ZELTO_API (\w+)", re.MULTILINE)
FUNCTION = re.compile(r"^ZELTO_API [^;{(]*?(\w+)\(", re.MULTILINE)
# "vtable for CLog", "CRasterBand::GetPixel", "bool CGeoGrid::GetPosByPoly<2>"
OF_A_CLASS = re.compile(r"^(?:typeinfo for |typeinfo name for |vtable for |(?:non-)?virtual thunk to )?"
                        r"(?:[\w:<>*& ]+ )?(\w+)\b(?:::|$)")


def marked_names(sources):
    classes, functions = set(), set()
    for header in pathlib.Path(sources, "zelto").glob("*/*.h"):
        text = header.read_text(encoding="utf-8")
        classes.update(CLASS.findall(text))
        functions.update(FUNCTION.findall(text))
    return classes, functions


def exported_symbols(library):
    listed = subprocess.run(["nm", "-D", "--defined-only", "-C", library], check=True, text=True,
                            capture_output=True).stdout
    return sorted({line.split(" ", 2)[2] for line in listed.splitlines()})


def owner(symbol):
    """The class that a symbol belongs to, or the function that it is."""
    function = re.match(r"^(\w+)\(", symbol)
    member = OF_A_CLASS.match(symbol.split("(")[0])
    found = function or member
    return found.group(1) if found else symbol


def main():
    library, sources = sys.argv[1:]
    classes, functions = marked_names(sources)
    owners = {symbol: owner(symbol) for symbol in exported_symbols(library)}
    stray = [symbol for symbol, name in owners.items() if name not in classes | functions]
    missing = sorted(functions - set(owners.values()))
    for symbol in stray:
        print(f"exported, but of nothing that ZELTO_API marks: {symbol}")
    for name in missing:
        print(f"marked with ZELTO_API, but not exported: {name}")
    print(f"{len(owners)} symbols of {len(classes)} classes and {len(functions)} functions")
    sys.exit(1 if stray or missing or not classes or not functions else 0)


if __name__ == "__main__":
    main()
