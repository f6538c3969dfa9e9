"""Runs what a page of the documentation shows, and compares what comes of it with the page.

    run_examples.py [--update] PROGRAMS SOURCES PAGE

PROGRAMS is the folder of the built programs, SOURCES the root of the sources. The examples of a page
run one after the other in an empty folder that has a copy of the sample scene as scene.tif:

- Blocks of `console`: lines after "$ " are commands of bash, those after "> " go on with them; what
  follows is all that they print. A line of "…" stands for any number of lines, "…" within a line
  for any part of it. A command that fails has to say so with a line that begins with "zelto: ".
- Blocks of `python` run, those of `pycon` do as well and are compared as in an interpreter.
- Blocks of `cpp` and `cmake` stand letter for letter, but for their indentation, in a file below
  examples/, which the tests of the installation build and run. "..." leaves lines out.
- Blocks of `sh` are not run; what they ask of ./dev is something that it does.
- Pictures of the page that lie in a folder `pictures` are files that its examples make.

With --update the page and its pictures are changed to what the examples give.
"""

import argparse
import doctest
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import textwrap
import traceback

BLOCK = re.compile(r"^(?P<indent> *)```(?P<kind>console|python|pycon|cpp|cmake|sh)\n"
                   r"(?P<text>.*?)^ *```$", re.MULTILINE | re.DOTALL)
PICTURE = re.compile(r"!\[[^\]]*\]\(((?:\S*/)?pictures/([^/)]+))\)")


class Page:
    """A page whose examples run in a folder of their own."""

    def __init__(self, path, programs, sources, folder):
        self.path, self.sources, self.folder = path, sources, folder
        self.text = path.read_text(encoding="utf-8")
        self.differences = []
        self.names = {"__name__": "__main__"}
        self.environment = {
            "PATH": f"{programs}:/usr/bin:{os.environ['PATH']}",
            "PYTHONPATH": os.environ.get("PYTHONPATH", ""),
            "HOME": str(folder), "LC_ALL": "C.UTF-8", "TZ": "UTC", "OMP_WAIT_POLICY": "passive",
        }

    def run(self):
        """The page as its examples would have it."""
        runs = {"console": self.run_commands, "python": self.run_python, "pycon": self.run_session,
                "cpp": self.find_source, "cmake": self.find_source, "sh": self.find_chores}

        def run_block(block):
            self.line = self.text.count("\n", 0, block.start()) + 2
            text = runs[block["kind"]](textwrap.dedent(block["text"]))
            return textwrap.indent(f"```{block['kind']}\n{text}```", block["indent"])

        return BLOCK.sub(run_block, self.text)

    def differ(self, what, detail):
        self.differences.append(f"{self.path.name}:{self.line}: {what}\n{detail}")

    def run_commands(self, text):
        shown = ""
        for command, lines, expected in examples_of(text):
            done = subprocess.run(["bash", "-c", command], cwd=self.folder, env=self.environment,
                                  text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                  stdin=subprocess.DEVNULL, timeout=60, check=False)
            if done.returncode != 0 and not re.search("^zelto: ", done.stdout, re.MULTILINE):
                self.differ(f"$ {command}", f"fails ({done.returncode}) and does not tell:\n"
                            f"{done.stdout}")
            if not agrees(done.stdout, expected):
                self.differ(f"$ {command}", f"--- shown\n{expected}--- printed\n{done.stdout}")
                expected = done.stdout
            shown += lines + expected
        return shown

    def run_python(self, text):
        try:
            exec(compile(text, f"{self.path.name}:{self.line}", "exec"), self.names)
        except Exception as error:  # whatever an example may raise
            self.differ("python", f"{type(error).__name__}: {error}")
        return text

    def run_session(self, text):
        session = Session(optionflags=doctest.ELLIPSIS, verbose=False)
        test = doctest.DocTestParser().get_doctest(text.replace("…", "..."), self.names,
                                                   self.path.name, None, self.line)
        test.globs = self.names
        printed = []
        session.run(test, out=printed.append, clear_globs=False)
        if not session.printed:
            return text
        self.differ("pycon", "".join(printed))
        return "".join(
            re.sub("^", "... ", example.source, flags=re.MULTILINE)[4:].join([">>> ", ""])
            .removesuffix("... ") + session.printed.get(example.lineno, example.want)
            for example in test.examples)

    def find_source(self, text):
        wanted = [line.strip() for line in text.splitlines() if line.strip()]
        examples = [file for file in sorted((self.sources / "examples").glob("*/*"))
                    if file.suffix in (".cpp", ".h", ".txt")]
        if not any(stands_in(wanted, file) for file in examples):
            self.differ("source", f"{text}--- stands in no file below examples/")
        return text

    def find_chores(self, text):
        script = (self.sources / "dev").read_text(encoding="utf-8")
        for chore in re.findall(r"^\./dev (\w+)", text, re.MULTILINE):
            if f"\ndo_{chore}() {{" not in script:
                self.differ("sh", f"./dev knows no {chore}")
        return text

    def compare_pictures(self, update):
        for reference, name in PICTURE.findall(self.text):
            made, shown = self.folder / name, self.path.parent / reference
            if not made.is_file():
                self.differences.append(f"{self.path.name}: no example makes {name}")
            elif update:
                shown.parent.mkdir(exist_ok=True)
                shutil.copyfile(made, shown)
            elif not shown.is_file() or made.read_bytes() != shown.read_bytes():
                self.differences.append(f"{self.path.name}: {reference} is not what the examples "
                                        "make; ./dev docs makes it anew")


class Session(doctest.DocTestRunner):
    """Notes what the examples print that print something else than what is shown."""

    def __init__(self, **options):
        super().__init__(**options)
        self.printed = {}

    def report_failure(self, out, test, example, got):
        self.printed[example.lineno] = got
        super().report_failure(out, test, example, got)

    def report_unexpected_exception(self, out, test, example, exc_info):
        self.printed[example.lineno] = ("Traceback (most recent call last):\n"
                                        + "".join(traceback.format_exception_only(*exc_info[:2])))
        super().report_unexpected_exception(out, test, example, exc_info)


def examples_of(text):
    """Command, the lines of the page that it stands in, and what is shown of its output."""
    found = []
    going_on = False
    for line in text.splitlines(keepends=True):
        if line.startswith("$ "):
            found.append([line[2:], line, ""])
        elif going_on:
            found[-1][0] += line
            found[-1][1] += line
        elif found and line.startswith("> "):
            found[-1][0] += line[2:]
            found[-1][1] += line
        elif found:
            found[-1][2] += line
        else:
            sys.exit(f"output before the first command: {line}")
        going_on = (going_on or line.startswith("$ ")) and line.endswith("\\\n")
    return found


def agrees(printed, expected):
    pattern = "".join(
        "(?:.*\n)*?" if line == "…" else
        ".*?".join(re.escape(part) for part in line.split("…")) + "\n"
        for line in expected.splitlines())
    return re.fullmatch(pattern, printed) is not None


def stands_in(wanted, file):
    """Whether the lines stand in a file one after the other, "..." for any between them."""
    lines = [line.strip() for line in file.read_text(encoding="utf-8").splitlines() if line.strip()]
    whole = "\n" + "\n".join(lines) + "\n"
    at = 0
    for part in "\n".join(wanted).split("\n...\n"):
        at = whole.find(f"\n{part}\n", at)
        if at < 0:
            return False
        at += len(part) + 1
    return True


def main():
    options = argparse.ArgumentParser()
    options.add_argument("--update", action="store_true")
    options.add_argument("programs", type=pathlib.Path)
    options.add_argument("sources", type=pathlib.Path)
    options.add_argument("page", type=pathlib.Path)
    given = options.parse_args()
    sources = given.sources.resolve()
    with tempfile.TemporaryDirectory(prefix="zelto-docs-") as name:
        folder = pathlib.Path(name)
        shutil.copyfile(sources / "samples/L7_ETMs.tif", folder / "scene.tif")
        page = Page(given.page.resolve(), given.programs.resolve(), sources, folder)
        os.chdir(folder)
        text = page.run()
        page.compare_pictures(given.update)
    if given.update and text != page.text:
        page.path.write_text(text, encoding="utf-8")
    print("\n".join(page.differences))
    sys.exit(1 if page.differences and not given.update else 0)


if __name__ == "__main__":
    main()
