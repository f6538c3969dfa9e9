"""Which lines and branches of the library the tests have reached: report.py BUILD

Prints for each folder of zelto/ how many lines and branches there are, which share was reached,
how many have a stated reason not to be (reasons.txt beside this file says which) and how many are
missing; those go to BUILD/missing.txt. Names reasons that explain nothing any more.

Branches are those of conditions and loops. What the compiler adds is left out: the way that an
exception takes from a call and to its handler, destruction at the end of a block, the making of
static objects, the question whether there is something to delete, to cast or to fill. So are
conditions that a line which was reached never came to: destruction after an exception, and what
stands behind a condition that always decides, which is missing itself then.
"""

import collections
import fnmatch
import json
import multiprocessing
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
REASONS = pathlib.Path(__file__).with_name("reasons.txt")
CLOSING = re.compile(r"^\s*[\]}),;]*$")
OF_COMPILER = re.compile(
    r"^\s*(#pragma omp|(inline )?static |thread_local |(.*\{ )?delete(\[\])? |\} catch \(|"
    r"(?!.*\bif\b)[^?]*(dynamic_cast<|new \(std::nothrow\)))")
LAMBDA = "_clE"  # in the name that the compiler gives to the function of a lambda


class Line:
    """A line of the source in all functions that it is part of: instances of a template, and
    functions within it."""

    def __init__(self):
        self.count = 0
        self.branches = {}

    def add(self, count, function, branches):
        self.count += count
        if branches:
            shape = (len(branches), function.count(LAMBDA))
            former = self.branches.get(shape, [0] * len(branches))
            self.branches[shape] = [a + b for a, b in zip(former, branches)]

    def taken(self, text):
        """Of each branch, how often it was taken."""
        if OF_COMPILER.match(text):
            return []
        counts = [count for counts in self.branches.values() for count in counts]
        if not self.count or "switch" in text or len(counts) % 2:
            return counts
        pairs = zip(counts[::2], counts[1::2])
        return [count for pair in pairs if any(pair) for count in pair]


def of_conditions(branches):
    """The counts of the branches without the pairs that calls are: going on, or by exception."""
    counts = []
    for branch in branches:
        if not branch["throw"]:
            counts.append(branch["count"])
        elif counts:
            counts.pop()
    return counts


def read(notes):
    """What gcov says of one object file: (file, line, count, function, branches) for each
    line."""
    output = subprocess.run(
        ["gcov", "--json-format", "--stdout", "--branch-probabilities", notes],
        cwd=notes.parent, capture_output=True, check=True).stdout
    lines = []
    for text in output.splitlines():
        answer = json.loads(text)
        for file in answer["files"]:
            path = pathlib.Path(answer["current_working_directory"], file["file"]).resolve()
            if not path.is_relative_to(ROOT / "zelto"):
                continue
            name = str(path.relative_to(ROOT))
            for line in file["lines"]:
                lines.append((name, line["line_number"], line["count"],
                              line.get("function_name", ""), of_conditions(line["branches"])))
    return lines


def read_all(build):
    files = collections.defaultdict(lambda: collections.defaultdict(Line))
    with multiprocessing.Pool() as pool:
        for lines in pool.imap_unordered(read, sorted((build / "zelto").rglob("*.gcno"))):
            for name, number, *counts in lines:
                files[name][number].add(*counts)
    return files


def indentation(text):
    return len(text) - len(text.lstrip())


def header(source, number):
    """The lines of the condition that a line stands below, from the last to the first."""
    depth = indentation(source[number - 1])
    for above in range(number - 1, 0, -1):
        text = source[above - 1]
        if text.strip() and indentation(text) < depth:
            is_condition = re.match(r"\s*(\} else )?(if|for|while) ?\(", text)
            return range(above, number) if is_condition else range(0)
    return range(0)


class Reason:
    """Why some lines are not reached: those that contain a text, with what is indented below and
    the condition that they stand below."""

    def __init__(self, entry):
        self.files, self.text, self.why = (part.strip() for part in entry.split("|", 2))
        self.used = False

    def lines(self, name, source):
        if not fnmatch.fnmatch(name, self.files):
            return
        depth = None
        for number, text in enumerate(source, 1):
            if depth is not None and text.strip() and indentation(text) <= depth:
                depth = None
            if depth is None and self.text in text:
                depth = indentation(text)
                yield from header(source, number)
            if depth is not None:
                yield number


def read_reasons():
    entries = REASONS.read_text().splitlines()
    return [Reason(entry) for entry in entries if entry and not entry.startswith("#")]


def explained(reasons, name, source):
    """The reason of each line that has one."""
    lines = {}
    for reason in reasons:
        for number in reason.lines(name, source):
            lines.setdefault(number, reason)
    return lines


class Sum:
    """Lines or branches of a folder."""

    def __init__(self):
        self.all = self.reached = self.reasoned = 0

    def add(self, number, reached, reasoned):
        self.all += number
        self.reached += reached
        self.reasoned += reasoned

    def __str__(self):
        share = 100 * self.reached / self.all if self.all else 100
        missing = self.all - self.reached - self.reasoned
        return f"{self.all:7} {share:7.2f} % {self.reasoned:7} {missing:7}"


def add_up(files, reasons):
    """Sums of lines and branches per folder, and what is missing."""
    sums = collections.defaultdict(lambda: (Sum(), Sum()))
    missing = []
    for name, lines in sorted(files.items()):
        source = (ROOT / name).read_text().splitlines()
        whys = explained(reasons, name, source)
        for number, line in sorted(lines.items()):
            text = source[number - 1]
            if CLOSING.match(text):
                continue
            taken = line.taken(text)
            reached = sum(count > 0 for count in taken)
            if line.count and reached == len(taken):
                why = None
            else:
                why = whys.get(number)
            if why is not None:
                why.used = True
            elif not line.count:
                missing.append(f"{name}:{number}: line: {text.strip()}")
            elif reached < len(taken):
                missing.append(f"{name}:{number}: {len(taken) - reached} of {len(taken)} branches: "
                               f"{text.strip()}")
            for folder in (name.split("/")[1], "all"):
                of_lines, of_branches = sums[folder]
                of_lines.add(1, line.count > 0, why is not None and not line.count)
                of_branches.add(len(taken), reached,
                                len(taken) - reached if why is not None else 0)
    return sums, missing


def main(build):
    reasons = read_reasons()
    sums, missing = add_up(read_all(build), reasons)
    (build / "missing.txt").write_text("".join(line + "\n" for line in missing))
    head = "reached  reason missing"
    print(f"{'folder':12} {'lines':>7} {head}   {'branches':>7} {head}")
    for folder in sorted(sums, key=lambda name: (name == "all", name)):
        of_lines, of_branches = sums[folder]
        print(f"{folder:12} {of_lines}  {of_branches}")
    for reason in reasons:
        if not reason.used:
            print(f"explains nothing any more: {reason.files} | {reason.text}")


if __name__ == "__main__":
    main(pathlib.Path(sys.argv[1]).resolve())
