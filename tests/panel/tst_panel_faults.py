"""A bad controller: whatever it does, each value shown is one that its memory held, each write ends
once, and one that is said to be done is in the memory.
"""
import json
import pathlib
import re
import tempfile
import unittest

from programs import Plc, cases, find, run_panel

# Words that are only read hold their own address. Each word has a request of its own, all of one
# shape: a reply mixed up would show.
READ = range(1000, 1012, 2)
WRITTEN = range(2000, 2006, 2)
WRITES = [(f"w{WRITTEN[i % 3]}", 5000 + i) for i in range(12)]  # tag and value
TAGS = "".join([f"r{at},MW{at}\n" for at in READ] + [f"w{at},MW{at}\n" for at in WRITTEN])
IMAGE = "".join(f"1 memory {at} = {at}\n" for at in READ)
OPTIONS = " ".join(f"--write-at {0.1 * (i + 1):.1f}:{tag}={value}"
                   for i, (tag, value) in enumerate(WRITES))


def is_possible(record):
    """Whether a tag may ever have the value of its record."""
    tag, value = record["tag"], record["value"]
    return value in (None, 0 if tag[0] == "w" else int(tag[1:])) or (tag, value) in WRITES


def saved_words(image):
    """The words of the memory area in a saved image, by their address."""
    words = {}
    for first, values in re.findall(r"^1 memory (\d+) = ([^#\n]*)", image, re.M):
        words.update(enumerate(map(int, values.split()), int(first)))
    return words


class Faults(unittest.TestCase):
    def test_never_a_wrong_value(self):
        for (controller, panel), expected in cases("neverAWrongValue", 2):
            with self.subTest(controller), tempfile.TemporaryDirectory() as directory:
                before, after = pathlib.Path(directory, "before"), pathlib.Path(directory, "after")
                before.write_text(IMAGE)
                with Plc(f"--pty --no-machine --load {before} --save {after} {controller}") as plc:
                    status, said, statistics = run_panel(
                        f"--block 1 --duration 4 --serial {plc.address()} TAGS {panel} {OPTIONS}",
                        TAGS)
                self.check(said, saved_words(after.read_text()))
                failures = int(find(r"^Ran .* good, (\d+) failed", statistics))
                self.assertEqual("failures" if failures else "none", expected)
                if not failures:
                    self.assertEqual(status, 0)

    def check(self, said, words):
        """What the panel's records say against the controller's memory."""
        records = [json.loads(line) for line in said.splitlines()]
        values = [record for record in records if "value" in record]
        self.assertEqual([record for record in values if not is_possible(record)], [])
        self.assertGreaterEqual(sum(record["value"] is not None for record in values), len(READ))
        ended = [record for record in records if record.get("state", "queued") != "queued"]
        self.assertEqual(len(ended), len(WRITES))
        last = {record["tag"]: record for record in ended}
        self.assertEqual(words[READ[0]], READ[0])
        for tag, record in last.items():
            if record["state"] == "done":
                self.assertEqual(words[int(tag[1:])], int(record["write"]), tag)


if __name__ == "__main__":
    unittest.main()
