"""What the pages' commands are held against, and how they are performed."""

import functools
import os
import pathlib
import re
import shlex
import shutil
import signal
import subprocess
import time

from pages import REPOSITORY

PATIENCE = 120
#: What a reader puts something for.
PLACEHOLDER = r"\[?[A-Z]{2,}[.\]]*"


def tracked(*patterns):
    return [path for pattern in patterns for path in REPOSITORY.glob(pattern) if "/build/" not in str(path)]


class Sources:
    """What the repository offers, read once."""

    def __init__(self):
        scripts = [path for path in tracked("*", "scripts/*") if path.is_file() and path.suffix in ("", ".sh", ".py")]
        self.scripts = "\n".join(path.read_text() for path in scripts)
        self.cmake = "\n".join(path.read_text() for path in tracked("CMakeLists.txt", "*/CMakeLists.txt", "*/*/CMakeLists.txt", "*/*/*/CMakeLists.txt", "cmake/**/*.*"))
        self.packages = set("\n".join(path.read_text() for path in tracked("scripts/packages*.txt")).split())
        self.examples = "\n".join(path.read_text() for path in tracked("Examples/**/*.cpp", "Examples/**/*.c", "Examples/**/*.py"))
        self.headers = "\n".join(path.read_text() for path in tracked("Flarebox/**/*.h", "Platform/**/*.h"))
        self.code = self.headers + self.examples + "\n".join(
            path.read_text() for path in tracked("Flarebox/**/*.cpp", "Platform/**/*.cpp", "Tests/**/*.cpp", "Tests/**/*.h", "Benchmarks/**/*.cpp", "Benchmarks/**/*.h"))


class Runner:
    """Performs the commands of one page in a folder of its own."""

    def __init__(self, build, sources, folder):
        self.build, self.sources, self.folder = build, sources, folder
        self.services = []
        self.ports = {}
        self.variables = {}

    def close(self):
        for process in self.services:
            process.terminate()
            process.wait(PATIENCE)

    def environment(self):
        hidden = ("DISPLAY", "WAYLAND_DISPLAY", "XDG_CONFIG_HOME", "XDG_DATA_HOME")
        kept = {name: value for name, value in os.environ.items() if name not in hidden}
        return {**kept, "HOME": str(self.folder), "SDL_VIDEODRIVER": "dummy", **self.variables}

    def program(self, name):
        found = [path for path in self.build.glob(f"Examples/*/{name}") if path.is_file() and os.access(path, os.X_OK)]
        return str(found[0]) if found else None

    def run(self, words):
        """What went wrong; None when nothing did."""
        result = subprocess.run(words, cwd=self.folder, env=self.environment(), stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                stderr=subprocess.STDOUT, timeout=PATIENCE, text=True, errors="replace")
        return f"ended with {result.returncode}: {result.stdout[-800:]}" if result.returncode else None

    def run_until_asked(self, words):
        """Runs a program with a window: it starts, runs some frames, and ends by itself when it is asked to."""
        process = subprocess.Popen(words, cwd=self.folder, env=self.environment(), stdin=subprocess.DEVNULL,
                                   stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace")
        deadline = time.monotonic() + PATIENCE
        while process.poll() is None and not handles_termination(process.pid) and time.monotonic() < deadline:
            time.sleep(0.005)
        time.sleep(0.1)
        process.send_signal(signal.SIGTERM)
        try:
            output, _ = process.communicate(timeout=PATIENCE)
        except subprocess.TimeoutExpired:
            process.kill()
            output, _ = process.communicate()
        return f"ended with {process.returncode}: {output[-800:]}" if process.returncode else None

    # Commands.

    def perform(self, line):
        """What is wrong with a command line; None when nothing is."""
        if "|" in line or "&&" in line:
            return "one command a line, please"
        words = shlex.split(line.removesuffix("&"))
        while words and re.match(r"[A-Z_]+=", words[0]):
            name, value = words.pop(0).split("=", 1)
            if name not in self.sources.code and name not in self.sources.scripts:
                return f"nothing reads {name}"
            self.variables[name] = value
        if words[:1] == ["sudo"]:
            words.pop(0)
        if not words:
            return None
        known = {"apt-get": self.apt, "cpack": self.cmake, "g++": self.compiler, "objcopy": self.installed, "strip": self.installed, "git": self.git, "cd": self.cd, "cmake": self.cmake, "ctest": self.ctest, "mkdir": self.run,
                 "export": lambda words: self.perform(" ".join(words[1:]))}
        if words[0] in known:
            return known[words[0]](words)
        if words[0].rpartition("/")[2].startswith("flarebox-"):
            return self.sample(words)
        return self.script(words)

    def apt(self, words):
        packages = [word for word in words[1:] if not word.startswith("-") and word not in ("install", "update")]
        unknown = [word for word in packages if not word.startswith(("./", "build/")) and word not in self.sources.packages | {"git"}]
        return f"not in scripts/packages.txt: {' '.join(unknown)}" if unknown else None

    def compiler(self, words):
        """What pkg-config is asked for is one of the kit's modules."""
        modules = [word.strip("$()") for word in words if word.startswith("flarebox")]
        unknown = [word for word in modules if word.removeprefix("flarebox-") not in ("flarebox", "sdl", "opengl", "headless")]
        return f"no module {' '.join(unknown)}" if unknown else None

    def installed(self, words):
        return None if shutil.which(words[0]) else f"{words[0]} is not installed"

    def git(self, words):
        if words[1] in ("clone", "config", "add", "commit"):
            return None
        return f"no rule for git {words[1]}"

    def cd(self, words):
        return None if len(words) == 2 else "one folder, please"

    def cmake(self, words):
        for word in words:
            option = re.match(r"-D(FLAREBOX_\w+)", word)
            if option and not re.search(rf"\b{option[1]}\b", self.sources.cmake):
                return f"no option {option[1]}"
        kind = "test" if words[0] == "ctest" else "build" if "--build" in words else "configure"
        for option, value in zip(words, words[1:]):
            if option == "--preset" and value not in presets(kind):
                return f"no {kind} preset {value}"
        return self.configure(words) if (self.folder / "CMakeLists.txt").exists() and "-S" in words else None

    def configure(self, words):
        """The reader's own project, with the kit where the page has put it."""
        (self.folder / "flarebox").symlink_to(REPOSITORY)
        return self.run(words)

    def ctest(self, words):
        return self.cmake(words)

    def sample(self, words):
        """One of the project's own programs."""
        name = words[0].rpartition("/")[2]
        program = self.program(name)
        if not program:
            return f"{name} is not built"
        words = [program] + [self.in_repository(self.with_port(word)) for word in words[1:]]
        if any(re.fullmatch(PLACEHOLDER, word) for word in words):
            return self.run([program, "--help"])
        if name == "flarebox-service":
            return self.start_service(words)
        if "--headless" in words or "--help" in words:
            return self.run(words) or self.lacks_file(words)
        return self.run_until_asked(words) or self.lacks_file(words)

    def start_service(self, words):
        """On a free port, whatever the page says: `with_port` makes up for it."""
        port = words[words.index("--port") + 1] if "--port" in words else "8080"
        words = [word if word != port else "0" for word in words] + ([] if "--port" in words else ["--port", "0"])
        process = subprocess.Popen(words, stdout=subprocess.PIPE, text=True, env=self.environment())
        self.services.append(process)
        address = process.stdout.readline().strip()
        self.ports[port] = address.rpartition(":")[2]
        return None if address else "the service does not start"

    def with_port(self, word):
        for port, real in self.ports.items():
            word = word.replace(f"127.0.0.1:{port}", f"127.0.0.1:{real}")
        return word

    def in_repository(self, word):
        """The reader is in the repository's folder; what the command writes goes elsewhere."""
        return str(REPOSITORY / word) if word.startswith(("Examples/", "Flarebox/")) else word

    def lacks_file(self, words):
        for option, value in zip(words, words[1:]):
            if option in ("--screenshot", "--record") and not (self.folder / value).exists():
                return f"{value} was not written"
        return None

    def script(self, words):
        """A script of the repository: ./run is done here, of the others each argument has to be one that it explains."""
        path = words[0].removeprefix("./").removeprefix("flarebox/")
        if path == "run" and words[1:2] == ["service"]:
            return self.sample(["flarebox-service", *words[2:]])
        if path == "run":
            return self.sample(["flarebox-hostgame", *words[1:]][:1] + [word for word in words[1:] if word != "--"])
        project = self.folder / "CMakeLists.txt"
        if path.startswith("build/") and project.exists() and path.removeprefix("build/") in project.read_text():
            return None  # compiled and run by itself
        file = REPOSITORY / path
        if not file.is_file():
            return f"no rule for {words[0]}"
        if not os.access(file, os.X_OK):
            return f"{path} cannot be executed"
        explained = file.read_text()
        for word in words[1:]:
            is_part = any((REPOSITORY / folder / word).exists() for folder in ("Benchmarks", "Tests"))
            if not is_part and not re.fullmatch(rf"[\d.]+|{PLACEHOLDER}", word) and not re.search(rf"(?<![\w-]){re.escape(word)}(?!\w)", explained):
                return f"{path} says nothing of {word}"
        return None


@functools.cache
def presets(kind):
    """Those that CMake itself finds."""
    listed = subprocess.run(["cmake", f"--list-presets={kind}"], cwd=REPOSITORY, check=True, stdout=subprocess.PIPE, text=True).stdout
    return re.findall(r'^ +"([^"]+)"', listed, re.M)


def handles_termination(process):
    try:
        caught = re.search(r"SigCgt:\s*(\w+)", pathlib.Path(f"/proc/{process}/status").read_text())
    except OSError:
        return False
    return bool(int(caught[1], 16) >> (signal.SIGTERM - 1) & 1)
