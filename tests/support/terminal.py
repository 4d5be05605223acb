"""A terminal that a test types at and looks at: a session of tmux with a shell in it."""
import os
import subprocess

from programs import PATIENCE, eventually, find

TMUX = [os.environ["KP410_TMUX"], "-L", "test"]


class Terminal:
    """It ends with its `with` block, and with the test, however that ends.

    @param directory of its own, $D in the shell
    """

    def __init__(self, directory, columns, rows):
        self.environment = {**os.environ, "TMUX_TMPDIR": directory, "D": directory,
                            "LC_ALL": "C.UTF-8", "ENV": ""}
        self.environment.pop("TMUX", None)
        self.server = subprocess.Popen(["setpriv", "--pdeathsig", "TERM", *TMUX, "-u",
                                        "-f", "/dev/null", "-D"], env=self.environment)
        new_session = "new-session", "-d", "-x", columns, "-y", rows, "exec sh"
        eventually(lambda: self.ask(*new_session).returncode == 0)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.ask("kill-server")
        self.server.wait(PATIENCE)

    def ask(self, *command):
        """Has the server do it."""
        return subprocess.run([*TMUX, "-N", *map(str, command)], env=self.environment,
                              capture_output=True, text=True, timeout=PATIENCE, check=False)

    def press(self, *keys):
        """Names of keys such as Enter, NPage and C-c stand for these."""
        self.ask("send-keys", *keys)

    def type(self, what):
        """As if by hand."""
        self.ask("send-keys", "-l", what)

    def enter(self, line):
        """Types a line."""
        self.type(line)
        self.press("Enter")

    def resize(self, columns, rows):
        """As a person does a window."""
        self.ask("resize-window", "-x", columns, "-y", rows)

    def look(self, *options):
        """What is on the screen now; with -e and its control sequences for colours, with -S - and
        all that has scrolled away."""
        return self.ask("capture-pane", "-p", *options).stdout

    def state(self, name):
        """A format of tmux, such as alternate_on."""
        return self.ask("display-message", "-p", f"#{{{name}}}").stdout.strip()

    def read(self, pattern, *options):
        """What find() makes of the screen now."""
        return find(pattern, self.look(*options))

    def sees(self, pattern, *options):
        """Waits until the screen shows the pattern. @return what find() makes of it"""
        return eventually(lambda: self.read(pattern, *options),
                          lambda: f"{pattern}\nin {self.look(*options)}")
