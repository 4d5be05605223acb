"""One of eight stations is dead: the others are scanned as if it were not there."""
import re
import signal
import statistics
import unittest

from programs import HERE, Panel, Plc, find, run_panel, value_at_end

TAGS = (HERE / "tags.csv").read_text()
TIMEOUT = 0.3  # seconds


def run_stations(plc, stations, options):
    """@return the statistics, and the seconds between the requests to station 1"""
    tags = "".join(f"level{station},MW100,,1,{station}\n" for station in stations)
    _, said, trace = run_panel(
        f"--serial {plc.address()} --format text --trace --timeout 300 {options} TAGS", tags)
    times = [float(time) for time in re.findall(r"^ *([0-9.]+) > 01 ", trace, re.M)]
    return said, [after - before for before, after in zip(times, times[1:])]


class Stations(unittest.TestCase):
    def test_one_of_eight_is_dead(self):
        plc = self.enterContext(Plc("--pty --stations 1,2,3,4,6,7,8"))
        _, without = run_stations(plc, [1, 2, 3, 4, 6, 7, 8], "--duration 2")
        said, times = run_stations(plc, range(1, 9), "--duration 6 --fails 2 --retries 1")
        self.assertIn("station 5 switched off, probed again in 0.50 s", said)

        # Two reads of the dead station are given up before it is switched off, then each probe is
        # one request: at 0.5 s, 1 s, 2 s. Each delays one scan, no other is slower than without it.
        given_up = int(find(r"finished failed, (\d+) fail", said))
        self.assertIn(given_up, (4, 5, 6))
        self.assertEqual(int(find(r"^Station 5: (\d+) turns", said)), 2 * 2 + (given_up - 2))
        self.assertEqual(sum(time > TIMEOUT for time in times), given_up)
        quick = [time for time in times if time <= TIMEOUT]
        self.assertLess(statistics.median(quick), 1.25 * statistics.median(without))

    def test_an_exception_is_an_answer(self):
        # Station 1 has no such address: its other tag goes on being read.
        with Plc("--pty") as plc:
            status, said, _ = run_panel(
                f"--serial {plc.address()} --format text --duration 2 --retries 0 --fails 1 TAGS",
                "good,MW100\nbad,MW60000\n")
        self.assertEqual(status, 3)
        self.assertNotIn("switched off", said)
        self.assertGreater(int(find(r"finished failed, (\d+) fail", said)), 10)
        self.assertRegex(said, r"\n  good +MW100 .* good ")

    def test_a_station_comes_back(self):
        plc = self.enterContext(Plc("--pty --stations 1,2 --deaf-ms 1500"))
        panel = self.enterContext(Panel(
            f"--serial {plc.address()} --format text --duration 6 --retries 0 --fails 1 "
            "--write-at 1.6:setpoint_2=61 --write-at 1.6:setpoint=44 "
            "--write-at 1.6:setpoint_2=62 TAGS", TAGS))
        panel.says("1 good")
        plc.send(signal.SIGUSR1)
        status, said = panel.wait(), panel.said()
        for station in 1, 2:
            self.assertIn(f"station {station} switched off", said)
            self.assertIn(f"station {station} answers again", said)
        # Writes to a station that is off wait for it and keep their order.
        self.assertEqual(status, 0, said)
        self.assertEqual(find("^Callbacks: (.*), ", said), "3 finished done, 0 finished failed")
        self.assertEqual(value_at_end(said, "setpoint"), "44")
        self.assertEqual(value_at_end(said, "setpoint_2"), "62")


if __name__ == "__main__":
    unittest.main()
