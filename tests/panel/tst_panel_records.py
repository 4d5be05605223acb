"""What the panel tells another program: JSON records of what changed, and its exit status."""
import contextlib
import datetime
import json
import os
import pathlib
import tempfile
import unittest

from programs import Panel, Plc, cases, run_panel

# 1.5 and no number as float32, the low-order word first.
IMAGE = """1 memory 100 = 513 65535 0 0x3FC0 0 0x7FC0
1 input 0 = 1 0 1
2 special-word 5 = 7
"""
SHAPES = {"tag address station value quality time", "tag write state time", "event time"}


def compact(value):
    return json.dumps(value, separators=(",", ":"))


def run(device, options, tags):
    """@return exit status, the records, and what was said beside them"""
    status, said, complained = run_panel(f"--serial {device} {options} TAGS", tags)
    return status, [json.loads(line) for line in said.splitlines()], complained


def of_tag(records, name):
    return [record for record in records if record.get("tag") == name and "quality" in record]


def write_states(records):
    """The last state of each write, in the order of the first ones."""
    states = {f"{record['tag']}={record['write']}": record["state"]
              for record in records if "write" in record}
    return ", ".join(f"{write} {state}" for write, state in states.items())


class Records(unittest.TestCase):
    def test_tag_record(self):
        image = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()), "image")
        image.write_text(IMAGE)
        plc = self.enterContext(Plc(f"--pty --no-machine --load {image}"))
        for (tag,), expected in cases("tagRecord", 1):
            with self.subTest(tag):
                status, records, errors = run(plc.address(), "--once --retries 0", tag)
                (record,) = (record for record in records if "quality" in record)
                self.assertEqual(record["tag"], "x")
                self.assertEqual("{}: {address} {station} {quality} {shown}".format(
                    status, shown=compact([record["value"]]), **record), expected)
                self.assertEqual(errors, "")

    def test_commands(self):
        for (controller, options), expected in cases("commands", 2):
            with self.subTest((controller, options)), contextlib.ExitStack() as stack:
                plc = controller and stack.enter_context(Plc("--pty --no-machine " + controller))
                device = plc.address() if plc else "/no/such/device"
                status, records, _ = run(device, options, "a,MW101\nb,MW101,,,2\n")
                told = " ".join(f"{tag} {len(of_tag(records, tag))}" for tag in "ab")
                self.assertEqual(f"{status}: {told}; {write_states(records)}".strip(), expected)

    def test_changes_alone(self):
        plc = self.enterContext(Plc("--pty"))
        now = datetime.datetime.now(datetime.timezone.utc)
        before = now.isoformat(timespec="milliseconds").replace("+00:00", "Z")
        status, records, errors = run(plc.address(), "--duration 1 --write-at 0.5:free=90",
                                      "number,SW1\nticks,MW103\nfree,QB2\n")
        after = datetime.datetime.now(datetime.timezone.utc)
        self.assertEqual(status, 0)
        self.assertIn("\nRan 1.", errors)

        shapes = {frozenset(record) for record in records}
        self.assertEqual(shapes, {frozenset(shape.split()) for shape in SHAPES})
        times = [record["time"] for record in records]
        self.assertEqual(times, sorted(times))
        self.assertLessEqual(before, times[0])
        self.assertRegex("\n".join(times), r"\A(\S{10}T\S{12}Z\n?)+\Z")
        first, last = (datetime.datetime.fromisoformat(times[i]) for i in (0, -1))
        self.assertLessEqual(last, after)
        self.assertGreater((last - first).total_seconds(), 0.5)

        self.assertEqual(len(of_tag(records, "number")), 1)
        ticks = [int(record["value"]) for record in of_tag(records, "ticks")]
        self.assertGreaterEqual(len(ticks), 5)
        self.assertEqual(ticks, sorted(set(ticks)))
        self.assertEqual([(record["quality"], record["value"])
                          for record in of_tag(records, "free")],
                         [("good", 0), ("written", 90), ("good", 90)])
        self.assertEqual(write_states(records), "free=90 done")
        self.assertEqual([record["event"] for record in records if "event" in record],
                         [f"link to {plc.address()} open", "write free=90 queued",
                          "write free=90 done, finish callback state 1",
                          "read back free=90 (as written)"])

    def test_ends_with_its_reader(self):
        plc = self.enterContext(Plc("--pty"))
        for options in "", "--format text":
            with self.subTest(options):
                reader, writer = os.pipe()
                with Panel(f"--serial {plc.address()} {options} TAGS", "number,SW1\n",
                           stdout=writer) as panel:
                    os.close(writer)
                    with open(reader) as lines:
                        self.assertIn("link to ", lines.readline())
                    self.assertEqual(panel.wait(), 0)


if __name__ == "__main__":
    unittest.main()
