"""Holds the pages of the documentation against what is there: runs their commands and programs, and looks up what they name.

    check.py BUILD      BUILD is the folder that the project was built in

Fragments and programs in C and C++ are compiled with the tests (pages.py), what the kit reads itself is read by DocsTests. Commands
are run, those that show a window on one that nobody sees; those that install or build the whole are held against what they name:
packages, targets, presets, options.
"""

import pathlib
import re
import sys
import tempfile

import pages
from commands import Runner, Sources
from pages import REPOSITORY

problems = []


def complain(place, what):
    problems.append(f"{place}: {what}")


def text_of(path):
    return (REPOSITORY / path).read_text()


# Blocks.

#: Stands for lines that a quotation leaves out.
LEFT_OUT = ("// …", "# …", "/* … */")


def check_quote(block):
    """The lines stand in the file that the block names, in their order."""
    source = block.rules["from"]
    if not (REPOSITORY / source).is_file():
        return complain(block.place, f"there is no {source}")
    file = [line.strip() for line in text_of(source).splitlines()]
    start, part = 0, []
    for line in [line.strip() for line in block.text.splitlines()] + [LEFT_OUT[0]]:
        if line not in LEFT_OUT:
            part.append(line)
            continue
        places = (at for at in range(start, len(file) - len(part) + 1) if file[at:at + len(part)] == part)
        found = next(places, None)
        if found is None:
            return complain(block.place, f"{source} has no such lines from \"{part[0]}\" on")
        start, part = found + len(part), []


def check_block(block, runner):
    rules = block.rules
    for rule in rules:
        if rule not in pages.RULES:
            complain(block.place, f"there is no rule \"{rule}\"")
    if "by" in rules and block.page.name not in text_of(rules["by"]):
        complain(block.place, f"{rules['by']} does not follow this page")
    if "says" in rules and not (REPOSITORY / rules["says"]).is_file():
        complain(block.place, f"there is no {rules['says']}")
    if "from" in rules:
        check_quote(block)
    if "file" in rules:
        path = runner.folder / rules["file"]
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(block.text)
    if block.language == "sh":
        for line in pages.commands(block):
            if wrong := runner.perform(line):
                complain(block.place, f"{line}: {wrong}")
    elif block.language == "python" and not rules.keys() & {"from", "by"}:
        if wrong := runner.run([sys.executable, "-c", block.text]):
            complain(block.place, wrong)
    elif block.language in pages.DATA:
        check_data(block, runner)
    elif not rules:
        complain(block.place, "this block has no rule")
    elif block.language in ("cpp", "c") and "program" not in rules and not rules.keys() & {"from", "in"} and not block.is_program():
        complain(block.place, "this code is neither compiled nor anybody's")


def check_data(block, runner):
    if block.language != "script":
        return
    path = runner.folder / f"{block.name}.script"
    path.write_text(block.text)
    game = runner.program("flarebox-hostgame")
    if wrong := runner.run([game, "--headless", "--clock", "virtual", "--no-logging", "--script", str(path)]):
        complain(block.place, wrong)


def check_program(block, build, runner):
    name = block.rules.get("program", block.page.stem)
    if wrong := runner.run_until_asked([str(build / "Tests" / f"docs-{name}")]):
        complain(block.place, wrong)


# Prose.

def anchors(path):
    """Of a page's headings, as web pages of it name them."""
    titles = re.findall(r"^#+ (.+)$", re.sub(r"```.*?```", "", path.read_text(), flags=re.S), re.M)
    return {re.sub(r"[^\w\- ]", "", title.lower()).replace(" ", "-") for title in titles}


def check_links(page, number, line):
    place = f"{page.path.relative_to(REPOSITORY)}:{number}"
    for target in re.findall(r"\]\(([^)\s]+)\)", re.sub(r"`[^`]*`", "`", line)):
        if re.match(r"https?://|mailto:", target):
            continue
        path, _, anchor = target.partition("#")
        file = (page.path.parent / path).resolve() if path else page.path
        if not file.exists():
            complain(place, f"there is no {target}")
        elif anchor and anchor not in anchors(file):
            complain(place, f"{file.name} has no heading for #{anchor}")


def names_nothing(path):
    """For a text that looks like a path of the repository: whether there is none; words in capitals stand for any."""
    parts = path.rstrip("/").split("/")
    if parts[0] == "build" or not (REPOSITORY / parts[0]).exists():
        return False
    pattern = "/".join(re.sub(r"\b[A-Z]{2,}\b", "*", part) if not (REPOSITORY / part).exists() else part for part in parts)
    return not (REPOSITORY / path).exists() and not any(REPOSITORY.glob(pattern))


def check_span(place, span, runner):
    """A text in backticks that looks like something of the project is there."""
    sources = runner.sources
    if re.fullmatch(r"[\w.+*-]+(/[\w.+*-]+)+/?", span) and names_nothing(span):
        complain(place, f"there is no {span}")
    if re.match(r"(\./\w|scripts/\w+\.sh|flarebox-\w+ -)", span):
        if wrong := runner.perform(span):
            complain(place, f"{span}: {wrong}")
    for option in re.findall(r"(?<![\w-])--[a-z][a-z-]*", span):
        if option not in sources.examples and option not in sources.scripts and option not in FOREIGN_OPTIONS:
            complain(place, f"nothing knows {option}")
    for option in re.findall(r"-D(FLAREBOX_\w+)", span):
        if option not in sources.cmake:
            complain(place, f"there is no option {option}")
    member = re.fullmatch(r"(?:flarebox::)?([A-Z]\w+)(?:::|\.)([a-z]\w+)(?:\(.*\))?", span)
    if member and re.search(rf"(class|struct) (\w+ )?{member[1]}\b", sources.code) and not re.search(rf"\b{member[2]}\b", sources.code):
        complain(place, f"{member[1]} has no {member[2]}")


#: Of programs that are not ours.
FOREIGN_OPTIONS = {"--preset", "--target", "--build", "--install", "--prefix", "--cflags", "--libs", "--static", "--component", "--config",
                   "--strip", "--enable-gpl"}


def check_prose(page, runner):
    for number, line in page.prose:
        if re.match(r" {4,}\S", line) and not re.match(r" +([-*|]|\d+\.) ", line) and not is_continued(page, number):
            complain(f"{page.path.relative_to(REPOSITORY)}:{number}", "an indented block: put it between fences")
        check_links(page, number, line)
        for span in re.findall(r"`([^`]+)`", line):
            check_span(f"{page.path.relative_to(REPOSITORY)}:{number}", span, runner)


def is_continued(page, number):
    """Whether the line goes on with a list."""
    before = [text for at, text in page.prose if at < number and text.strip()]
    return any(re.match(r" *([-*]|\d+\.) ", text) for text in before[-6:])


def check_log_lines(page, runner):
    """The first column of a table of log lines: what the code says, with "…" for what differs."""
    rows = iter(page.prose)
    for _, line in rows:
        if line.strip().lower().startswith("| the log says"):
            break
    for number, line in rows:
        if not line.startswith("|"):
            break
        for message in re.findall(r"`([^`]+)`", line.split("|")[1]):
            for part in filter(str.strip, message.split("…")):
                if part.strip() not in runner.sources.code.replace('"\n', "") and not in_literals(part.strip(), runner):
                    complain(f"{page.path.name}:{number}", f"nothing says \"{part.strip()}\"")


def in_literals(text, runner):
    joined = re.sub(r'"\s*\n\s*"', "", runner.sources.code)
    return text in joined


# The reference.

INCLUDE = re.compile(r"^#include <((?:Flarebox|AVFoundation|Foundation|Host|Networking|SceneKit|UIKit)/\S+)>", re.M)
#: A macro of ours, and nothing to look up.
WITHOUT_REFERENCE = {"Foundation/Export.h"}


def headers_of_games():
    """What games include, by where that is said: the pages and their harnesses, and what comes with the hosts and with Flarebox.h."""
    hosts = ["Flarebox/Flarebox.h", "Platform/UIKit/UIHost.h", *REPOSITORY.glob("Platform/Host/*/*Host.h")]
    for path in [*pages.page_paths(), *pages.HARNESSES.iterdir(), REPOSITORY / "Tests/Docs/PageTesting.h", *hosts]:
        text = (REPOSITORY / path).read_text()
        for header in INCLUDE.findall(text) + re.findall(r"\]\((?:\.\./)?(?:Platform/)?([\w/+]+\.h)\)", text):
            yield path, header


def check_reference():
    listed = re.findall(r"^ +(\S+)", text_of("Docs/Doxyfile").partition("\nINPUT =")[2], re.M)
    for path, header in headers_of_games():
        known = any(folder + header == entry or (folder + header).startswith(entry + "/") for folder in ("", "Platform/") for entry in listed)
        if not known and header not in WITHOUT_REFERENCE:
            complain(f"{(REPOSITORY / path).relative_to(REPOSITORY)}", f"{header} is not in the INPUT of Docs/Doxyfile")


def main(build):
    check_reference()
    sources = Sources()
    for page in pages.pages():
        with tempfile.TemporaryDirectory() as folder:
            runner = Runner(build, sources, pathlib.Path(folder))
            try:
                for block in page.blocks:
                    check_block(block, runner)
                    if block.is_program() and block.rules.keys() & {"program", "file"}:
                        check_program(block, build, runner)
                check_prose(page, runner)
                check_log_lines(page, runner)
            finally:
                runner.close()
    for problem in problems:
        print(problem)
    return 1 if problems else 0


if __name__ == "__main__":
    if len(sys.argv) != 2:
        raise SystemExit(__doc__)
    sys.exit(main(pathlib.Path(sys.argv[1]).resolve()))
