"""The panel program, with the built driver, against a Modbus server that was written elsewhere.

Usage: tst_peers.py NAME, of the server that NAME_peer.py starts
"""
import importlib
import json
import re
import sys
import unittest

from programs import cases, run_panel

STATION = 17
CELLS = 256  # of each area; a peer refuses what lies beyond
SETTINGS = "--once --timeout 2000 --block 16"  # a busy machine; cases longer than a block


def background():
    """No cell of the register area is like another, and no byte of bits like the next."""
    return {"coil": [int(i % 3 == 0) for i in range(CELLS)],
            "input": [int(i % 5 == 0) for i in range(CELLS)],
            "register": [0x1234 + 0x0101 * i & 0xFFFF for i in range(CELLS)]}


def set_cells(text, image):
    """Those written in the text, such as "coil8=0110 register10=7,0xffff", from an address on."""
    for token in text.split():
        area, first, values = re.fullmatch(r"(coil|input|register)(\d+)=(.+)", token).groups()
        values = [int(value, 0) for value in (values.split(",") if area == "register" else values)]
        assert int(first) + len(values) <= CELLS, token
        image[area][int(first):int(first) + len(values)] = values
    return image


def values_of(records):
    """The last value of each tag as "name=value" in JSON, "-" when it is not good."""
    values = {}
    for record in map(json.loads, records.splitlines()):
        if "value" in record:
            good = record["quality"] == "good"
            values[record["tag"]] = (json.dumps(record["value"], separators=(",", ":")) if good
                                     else "-")
    return " ".join(f"{tag}={value}" for tag, value in sorted(values.items()))


class Peers(unittest.TestCase):
    peer = importlib.import_module(f"{sys.argv.pop()}_peer").Peer(STATION, CELLS)
    codes_seen = set()

    @classmethod
    def tearDownClass(cls):
        assert cls.codes_seen == {1, 2, 3, 6, 15, 16}, cls.codes_seen

    def run_on(self, image, tags, writes=""):
        """Runs the panel against the peer while it holds the image.

        @return the exit status, the function codes served, the values, and what the peer held then
        """
        self.peer.replace(image)
        options = f"{self.peer.link} {SETTINGS} TAGS".split()
        for write in writes.split():
            options += "--write", write
        status, said, _ = run_panel(" ".join(options), "\n".join(tags.split()))
        held, codes = self.peer.replace(background())
        self.codes_seen.update(codes)
        return status, " ".join(map(str, codes)), values_of(said), held

    def test_reads(self):
        for (cells, tags), expected in cases("reads", 2):
            with self.subTest((cells, tags)):
                image = set_cells(cells, background())
                status, codes, values, held = self.run_on(image, tags)
                self.assertEqual(f"{codes}: {values}", expected)
                self.assertEqual(status, 0)
                self.assertEqual(held, image)

    def test_writes(self):
        for (cells, tags, writes), expected in cases("writes", 3):
            with self.subTest((cells, tags, writes)):
                image = set_cells(cells, background())
                status, codes, _, held = self.run_on(image, tags, writes)
                expected_codes, changes = expected.split(": ")
                self.assertEqual(codes, expected_codes)
                self.assertEqual(held, set_cells(changes, image))
                self.assertEqual(status, 0)  # read back as written, too

    def test_refused(self):
        for (cells, tags, writes), expected in cases("refused", 3):
            with self.subTest((cells, tags, writes)):
                image = set_cells(cells, background())
                status, _, values, held = self.run_on(image, tags, writes)
                self.assertEqual(f"{status}: {values}", expected)
                self.assertEqual(held, image)


if __name__ == "__main__":
    unittest.main()
