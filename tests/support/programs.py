"""What the tests of whole programs share: the cases of their text files, and the programs as
processes. The built files are KP410_PANEL, KP410_PLC and KP410_DRIVER of the environment.
"""
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import time

PATIENCE = 30  # seconds for what takes a few at most on an idle machine
MOST_OUTPUT = 1 << 26  # bytes
HERE = pathlib.Path(sys.argv[0]).resolve().parent


def cases(section, count):
    """Each line "GIVEN | GIVEN -> EXPECTED" under [section] in the text file named like the test.

    @return for each the list of its `count` parts given, and what is expected; there must be one
    """
    lines = pathlib.Path(sys.argv[0]).with_suffix(".txt").read_text(encoding="utf-8").splitlines()
    found = []
    for line in lines[lines.index(f"[{section}]") + 1:]:
        if line.startswith("["):
            break
        if not line.strip() or line.startswith("#"):
            continue
        given, expected = line.rsplit(" -> ", 1)
        parts = [part.strip() for part in given.split("|")]
        assert len(parts) == count, f"not {count} parts: {line}"
        found.append((parts, expected.strip()))
    assert found, f"no cases [{section}]"
    return found


def find(pattern, text):
    """What the pattern's last group, or else all of it, matches first; None when nothing does."""
    match = re.search(pattern, text, re.M)
    return match and match[match.lastindex or 0]


def eventually(condition, seen=lambda: "nothing seen"):
    """The first true value of condition(), which must come in time; `seen` is for the complaint."""
    end = time.monotonic() + PATIENCE
    while not (value := condition()):
        assert time.monotonic() < end, f"waited in vain: {seen()}"
        time.sleep(0.02)
    return value


class Program:
    """A process whose output can be read as it comes; it has ended when its `with` block has."""

    def __init__(self, *command, **streams):
        self.output, self.errors = tempfile.TemporaryFile(), tempfile.TemporaryFile()
        streams = {"stdout": self.output, "stderr": self.errors, **streams}
        self.process = subprocess.Popen(command, stdin=subprocess.DEVNULL, **streams)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.terminate()
        try:
            self.wait()
        finally:
            self.process.kill()
        self.output.close()
        self.errors.close()

    def said(self):
        """All of standard output so far."""
        return os.pread(self.output.fileno(), MOST_OUTPUT, 0).decode()

    def complained(self):
        """All of standard error so far."""
        return os.pread(self.errors.fileno(), MOST_OUTPUT, 0).decode()

    def says(self, pattern):
        """Waits until one of both has the pattern. @return what find() makes of it"""
        return eventually(lambda: find(pattern, self.said() + self.complained()),
                          lambda: f"{pattern}\nin {self.said()}{self.complained()}")

    def send(self, signal):
        """Sends a signal."""
        self.process.send_signal(signal)

    def wait(self):
        """The exit status, of a process that ends by itself; below 0 when a signal ended it."""
        return self.process.wait(PATIENCE)


class Plc(Program):
    """The simulated controller."""

    def __init__(self, options):
        super().__init__(os.environ["KP410_PLC"], *options.split())

    def address(self):
        """Of the link that it announces."""
        return self.says(r"^(?:pty|tcp) (.*)\n")


class Panel(Program):
    """The panel with the built driver.

    @param options in which the word TAGS stands for the name of a file with the lines `tags`
    """

    def __init__(self, options, tags, **streams):
        self.tags = tempfile.NamedTemporaryFile("w", suffix=".csv")
        self.tags.write(tags)
        self.tags.flush()
        words = [self.tags.name if word == "TAGS" else word for word in options.split()]
        super().__init__(os.environ["KP410_PANEL"], "--library", os.environ["KP410_DRIVER"],
                         "--timeout", "100", *words, **streams)

    def __exit__(self, *_):
        super().__exit__()
        self.tags.close()


def run_panel(options, tags):
    """Runs the panel to its end. @return its exit status, standard output and standard error"""
    with Panel(options, tags) as panel:
        return panel.wait(), panel.said(), panel.complained()


def value_at_end(statistics, tag):
    """The value that the panel's statistics give a tag."""
    return find(rf"^  {tag} +\S+ @\d+ +(\S+) ", statistics)
