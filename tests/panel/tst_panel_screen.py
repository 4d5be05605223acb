"""The panel at a terminal, as a person sees it: what is typed, and what the screen shows then."""
import os
import pathlib
import re
import signal
import tempfile
import unittest

from programs import Plc, cases, eventually, find
from terminal import Terminal

COLUMNS, ROWS = 120, 30
FASTEST = 1 / 0.045  # reads a second with --delay 45
KEYS_LINE = "^p pause   w write   s station off/on   q quit   arrows scroll$"
RED = "\033\\[31m(?:\033\\[49m)?"

# The demo's tags, and three more; `mirror` shows what the controller has in `free`.
DEMO_TAGS = (pathlib.Path(os.environ["KP410_EXAMPLES"], "demo.csv").read_text() +
             "free,QB2,,,,hex\nmirror,IB2,,,,hex\nsetpoint_2,MW101,,,2\n")
MANY_TAGS = "".join(f"word_{i},MW{1000 + i}\n" for i in range(60))


class Desk(Terminal):
    """A controller, and a shell at which the panel can be started."""

    def __init__(self, tags, plc_options=""):
        self.directory = tempfile.TemporaryDirectory()
        pathlib.Path(self.directory.name, "tags.csv").write_text(tags)
        super().__init__(self.directory.name, COLUMNS, ROWS)
        self.start_plc(plc_options)

    def __exit__(self, *_):
        super().__exit__()
        self.plc.__exit__()
        self.directory.cleanup()

    def start_plc(self, options=""):
        self.plc = Plc(f"--pty {options} --link {self.directory.name}/line")
        self.plc.address()

    def start_panel(self, options=""):
        """Leaves the number of the panel's process in the file "pid", says its status when it ends.
        """
        self.enter("sh -c 'echo $$ > $D/pid; exec $KP410_PANEL --library $KP410_DRIVER "
                   f"--timeout 100 --serial $D/line {options} $D/tags.csv'; echo status $?")

    def file(self, name):
        return pathlib.Path(self.directory.name, name).read_text()

    def good(self, station):
        """Replies of the station that were good."""
        return int(self.read(rf"station {station}: .*?, (\d+) good"))

    def goes_on(self, station, count):
        eventually(lambda: self.good(station) > count, self.look)

    def input(self, key, line):
        self.press(key)
        self.enter(line)


class Screen(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        """A panel for tests that leave it as they found it."""
        cls.desk = cls.enterClassContext(Desk(DEMO_TAGS))
        cls.desk.start_panel()
        cls.desk.sees("^setpoint_2 .* 500 .* good ")

    def start(self, tags, options=""):
        desk = self.enterContext(Desk(tags))
        desk.start_panel(options)
        return desk

    def test_tag_is_shown(self):
        for (tag, address), value in cases("tagIsShown", 2):
            with self.subTest(tag):
                self.desk.sees(rf"^{tag} +{address} +(?:{value}) +0\.\d\d s  good +\d+\.\d$")

    def test_lines_beside_the_table(self):
        desk = self.start(DEMO_TAGS)
        desk.sees(r"^\d+\.\d\d s  link \S+/line up \| scan \d+\.\d ms \| "
                  "queued: 0 writes, 0 reads$")
        desk.sees(r"^station 1: on, \d+ good, 0 failed  station 2: on, \d+ good, 0 failed$")
        desk.sees("^last fail callback: none$")
        desk.sees("^TAG +ADDRESS +VALUE +AGE +QUALITY +READS/S$")
        desk.sees(r"^ *\d+\.\d\d s  link to \S+/line open$")
        self.assertRegex(desk.look().strip(), r"arrows scroll\Z")
        self.assertEqual(desk.state("alternate_on"), "1")
        uptime = r"^uptime_ms .* (\d+) +0"
        before = int(desk.sees(uptime))
        eventually(lambda: int(desk.sees(uptime)) >= before + 500)

    def test_refused_input(self):
        for (key, typed), complaint in cases("refusedInput", 2):
            with self.subTest(typed):
                self.desk.input(key, typed)
                screen = self.desk.sees(rf"(?s)\A.*\n{re.escape(complaint)}\n*\Z")
                self.assertIn("queued: 0 writes, 0 reads\n", screen)
                self.assertNotIn(f"write {typed}", screen)

    def test_edited_input(self):
        desk = self.desk
        desk.press("w")
        desk.type("qps setpoint=45")
        desk.press("BSpace")
        desk.sees("^write NAME=VALUE: qps setpoint=4$")
        desk.press("Escape")
        desk.sees(KEYS_LINE)
        desk.sees(r"^\d+\.\d\d s  link")  # not paused by the p

        desk.press("w", "BSpace")
        desk.sees("^write NAME=VALUE:$")
        desk.enter("free=5a")
        desk.sees("^free .* 0x5a .* good ")
        desk.sees("^mirror .* 0x5a .* good ")
        desk.sees(" s  write free=0x5a done, finish callback state 1$")
        desk.sees(r" s  read back free=0x5a \(as written\)$")
        desk.sees("^setpoint .* 500 .* good ")

    def test_station_off_and_on(self):
        desk = self.desk
        desk.input("s", "2")
        desk.sees(r"station 2: OFF by hand, \d+ good")
        desk.sees("^level_2 .* off ")
        desk.sees(" s  station 2 switched off by hand$")
        standing, going = desk.good(2), desk.good(1)
        desk.input("w", "setpoint_2=123")
        desk.sees("queued: 1 writes")
        desk.goes_on(1, going + 50)
        desk.sees("^level .* good ")
        self.assertEqual(desk.good(2), standing)

        desk.input("s", "2")
        desk.sees(r"station 2: on, \d+ good")
        desk.sees("^setpoint_2 .* 123 .* good ")
        desk.sees("queued: 0 writes")
        desk.goes_on(2, standing + 5)

    def test_pause(self):
        desk = self.desk
        desk.press("p")
        desk.sees(r"^PAUSED \d")
        standing = desk.good(1)
        self.assertGreater(standing, 0)
        desk.sees(r"^level .* 1\.\d\d s  good ")
        self.assertEqual(desk.good(1), standing)
        desk.press("p")
        desk.sees(r"^\d+\.\d\d s  link")
        desk.goes_on(1, standing + 5)
        desk.sees(r"^level .* 0\.\d\d s  good ")

    def test_reads_per_second(self):
        # One tag, one block: it is read once for each good exchange.
        desk = self.start("word,MW1000\n", "--delay 45")
        desk.sees(r"^word .* good +[1-9]\d*\.\d$")

        def times_and_reads():
            time, reads, shown = re.search(
                r"^(\d+\.\d\d) s (?s:.*?), (\d+) good(?s:.*)^word .* ([0-9.]+)$", desk.look(),
                re.M).groups()
            return float(time), int(reads), float(shown)

        before, reads_before, _ = times_and_reads()
        eventually(lambda: times_and_reads()[0] > before + 2)
        after, reads, shown = times_and_reads()
        counted = (reads - reads_before) / (after - before)
        self.assertLessEqual(shown, FASTEST)
        self.assertAlmostEqual(shown, counted, delta=counted / 4)

    def test_scrolling(self):
        desk = self.start(MANY_TAGS)
        for (keys,), rows in cases("scrolling", 1):
            with self.subTest(keys):
                desk.press("PPage", "PPage", "PPage")
                desk.sees("^TAG 1-20/60 +ADDRESS ")
                desk.press(*keys.split())
                desk.sees(rf"^TAG {rows}/60 +ADDRESS .*\nword_{int(rows.split('-')[0]) - 1} ")

    def test_resizing(self):
        desk = self.start(MANY_TAGS)
        desk.sees("^TAG 1-20/60 ")
        desk.press("NPage", "NPage")
        desk.sees("^TAG 41-60/60 ")
        desk.resize(COLUMNS, 40)  # which leaves no room below the last row
        desk.sees("^TAG 31-60/60 .*\nword_30 ")
        desk.resize(40, 20)
        desk.sees("^TAG 31-40/60 .*\nword_30 ")
        desk.sees(r"^\d.*(?:\n.*){18}\np pause   w write   s station off/on   q$")
        self.assertNotIn("\nword_40 ", desk.look())

    def test_link_down(self):
        desk = self.start(DEMO_TAGS)
        desk.sees("^setpoint .* 500 .* good ")
        self.assertIsNone(desk.read(RED, "-e"))

        desk.plc.__exit__()
        desk.sees(r" s  link to \S+/line lost: the device is gone$")
        desk.sees(r"line DOWN \(No such file or directory\), next try in [0-8]\.\d\d s \| scan")
        desk.sees("^setpoint .* 500 .* stale ")
        for row in r"\d+\.\d\d s  link", "level ":
            self.assertIsNotNone(desk.read(RED + row, "-e"), row)
        # What is written meanwhile waits.
        desk.input("w", "free=66")
        desk.sees(" s  write free=0x66 queued$")
        desk.sees(r" s  cannot open \S+/line: No such file or directory$")

        desk.start_plc()
        desk.sees(r"line up \| scan")
        desk.sees("^setpoint .* 500 .* good ")
        desk.sees("^mirror .* 0x66 .* good ")
        desk.sees(" s  write free=0x66 done, finish callback state 1$")
        desk.sees("^last fail callback: none$")

    def test_gives_the_terminal_back(self):
        for (plc_options, how), expected in cases("givesTheTerminalBack", 2):
            with self.subTest((plc_options, how)), Desk(DEMO_TAGS, plc_options) as desk:
                self.end(desk, *how.split(), expected)

    def end(self, desk, kind, how, expected):
        """By a key or a signal."""
        desk.enter("stty -a > $D/before; echo typed before")
        desk.sees("^typed before$")
        desk.start_panel()
        desk.sees("^level .* good ")
        self.assertEqual(desk.state("alternate_on"), "1")
        desk.input("w", "setpoint=70000")
        desk.sees("^not written: ")

        if kind == "key":
            desk.press(how)
        else:
            os.kill(int(desk.file("pid")), signal.Signals[f"SIG{how}"])
        self.assertEqual(desk.sees(r"^status (\d+)$", "-S", "-"), expected)
        back = desk.look("-S", "-")
        for line in "^typed before$", r"^Ran \d", "^Writes: 0: ", "^Tags at the end: 17$":
            self.assertIsNotNone(find(line, back), back)
        self.assertIsNone(find(KEYS_LINE, back), back)
        self.assertEqual(desk.state("alternate_on"), "0")
        self.assertEqual(desk.state("cursor_flag"), "1")
        desk.enter("stty -a > $D/after; echo typed $((40 + 2))")
        desk.sees(r"^[#$] stty -a .*typed \$\(\(40 \+ 2\)\)\ntyped 42$")
        self.assertIn(" echo ", desk.file("before"))
        self.assertEqual(desk.file("after"), desk.file("before"))


if __name__ == "__main__":
    unittest.main()
