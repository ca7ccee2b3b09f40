"""The pages of the documentation and their code blocks.

    pages.py extract FOLDER     writes what is to be compiled and read into FOLDER: `in-HARNESS.cpp`, every fragment in its
                                harness; `program-NAME.cpp`, every whole program; `data/*`, what the kit itself reads; `says/*`, what it
                                says of files that are wrong
    pages.py walk PAGE          prints the steps of a page that is followed from top to bottom, as JSON: files and commands

A block says what becomes of it in a comment above it, unless its language says so already:

    <!-- from: FILE -->         the lines stand in FILE, in their order; a line "// …" or "# …" leaves some out
    <!-- in: HARNESS -->        compiled in Tests/Docs/Harness/HARNESS.cpp.in
    <!-- program: NAME -->      a whole program, compiled and run
    <!-- file: NAME -->         a file that the reader makes; programs among them are compiled and run as well
    <!-- by: FILE -->           FILE, a script or a test, follows this page: it names it
    <!-- says: FILE -->         what the log says when the kit reads FILE, a layout or a theme
    <!-- shows: WHAT -->        nothing that anybody types: what a program prints, a form, a folder
"""

import json
import pathlib
import re
import sys
from dataclasses import dataclass, field

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
HARNESSES = REPOSITORY / "Tests/Docs/Harness"
RULES = ("from", "in", "program", "file", "by", "says", "shows")
#: Languages that the kit's own readers, or its sample game, are given.
DATA = ("json", "xml", "plist", "strings", "script", "theme")


@dataclass
class Block:
    page: pathlib.Path
    #: Of its first line of text, from 1.
    line: int
    language: str
    rules: dict
    text: str

    @property
    def place(self):
        return f"{self.page.relative_to(REPOSITORY)}:{self.line}"

    @property
    def name(self):
        return re.sub(r"\W", "_", f"{self.page.stem}_{self.line}")

    def is_program(self):
        return self.language in ("cpp", "c") and bool(re.search(r"^int main\(", self.text, re.M))


@dataclass
class Page:
    path: pathlib.Path
    #: Number and text of every line outside of blocks.
    prose: list = field(default_factory=list)
    blocks: list = field(default_factory=list)


def page_paths():
    pages = [*REPOSITORY.glob("*.md"), *(REPOSITORY / "Docs").glob("*.md")]
    return sorted(pages)


def read_page(path):
    page = Page(path)
    rules, block = {}, None
    for number, line in enumerate(path.read_text().splitlines(), 1):
        fence = re.match(r"```(\S*)\s*$", line)
        if block and fence:
            block.text = "\n".join(block.text) + "\n"
            page.blocks.append(block)
            block, rules = None, {}
        elif block:
            block.text.append(line)
        elif fence:
            block = Block(path, number + 1, fence[1], rules, [])
        else:
            comment = re.match(r"<!-- (.+) -->$", line)
            if comment:
                rules = dict(part.split(": ", 1) for part in comment[1].split(", ") if ": " in part)
            elif line.strip():
                rules = {}
            page.prose.append((number, line))
    if block:
        raise SystemExit(f"{block.place}: this block never ends")
    return page


def pages():
    return [read_page(path) for path in page_paths()]


def harnessed(name, blocks):
    """One source: the harness's head once, then its body around each block."""
    harness = HARNESSES / f"{name}.cpp.in"
    if not harness.exists():
        raise SystemExit(f"{blocks[0].place}: there is no harness {harness.relative_to(REPOSITORY)}")
    head, body = harness.read_text().split("// Each block:\n")
    parts = [head]
    for block in blocks:
        text = f'#line {block.line} "{block.page}"\n{block.text}'
        parts.append(body.replace("BLOCK_NAME", block.name).replace("// BLOCK\n", text))
    return "\n".join(parts)


def sources():
    """Name and text of every file that `extract` writes."""
    harnesses = {}
    for page in pages():
        for block in page.blocks:
            ending = {"cpp": "cpp", "c": "c"}.get(block.language)
            if "in" in block.rules:
                harnesses.setdefault(block.rules["in"], []).append(block)
            elif "program" in block.rules or ("file" in block.rules and block.is_program()):
                name = block.rules.get("program", page.path.stem)
                yield f"program-{name}.{ending}", f'#line {block.line} "{block.page}"\n{block.text}'
            elif "says" in block.rules:
                yield f"says/{pathlib.Path(block.rules['says']).name}", block.text
            elif block.language in DATA:
                yield f"data/{block.name}.{block.language}", block.text
    for name, blocks in harnesses.items():
        yield f"in-{name}.cpp", harnessed(name, blocks)


def extract(folder):
    written = set()
    for name, text in sources():
        path = folder / name
        written.add(path)
        path.parent.mkdir(parents=True, exist_ok=True)
        if not path.exists() or path.read_text() != text:
            path.write_text(text)
    for path in folder.rglob("*"):
        if path.is_file() and path not in written:
            path.unlink()


def commands(block):
    """The block's command lines, without comments; what a backslash divides is one."""
    text = block.text.replace("\\\n", " ")
    lines = (re.sub(r"(^|\s)#.*", "", line).strip() for line in text.splitlines())
    return [line for line in lines if line]


def walk(path):
    steps = []
    for block in read_page(path).blocks:
        if "file" in block.rules:
            steps.append({"file": block.rules["file"], "text": block.text, "line": block.line})
        elif block.language == "sh":
            steps.append({"commands": block.text, "line": block.line})
    return steps


def main(arguments):
    if len(arguments) == 2 and arguments[0] == "extract":
        return extract(pathlib.Path(arguments[1]))
    if len(arguments) == 2 and arguments[0] == "walk":
        return print(json.dumps(walk(pathlib.Path(arguments[1]).resolve())))
    raise SystemExit(__doc__)


if __name__ == "__main__":
    main(sys.argv[1:])
