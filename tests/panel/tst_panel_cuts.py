"""The link cut again and again under load: every write ends once, and the values are right."""
import asyncio
import collections
import random
import re
import unittest

from programs import Plc, find, run_panel, value_at_end

CUTS = 10
WRITES = [(f"word{i % 30}", 1000 + i) for i in range(90)]  # three of each tag, over five seconds
SEED = 20


class Cable:
    """Carries bytes between the panel and the controller, and cuts both off after a number of bytes
    that comes from a seed: in a request, in a reply, or between.
    """

    def __init__(self, controller):
        self.controller = controller  # host and port
        self.random = random.Random(SEED)
        self.left = None
        self.cuts = 0

    async def connect(self, panel_says, panel):
        controller_says, controller = await asyncio.open_connection(*self.controller)
        self.left = self.random.randrange(100, 300) if self.cuts < CUTS else None
        await asyncio.gather(self.carry(panel_says, controller, panel),
                             self.carry(controller_says, panel, controller))

    async def carry(self, source, target, other):
        while self.left != 0:
            data = await source.read(1000)
            if not data or self.left == 0:  # the other direction was cut meanwhile
                break
            target.write(data[:self.left])
            if self.left is not None:
                self.left = max(0, self.left - len(data))
                self.cuts += self.left == 0
        target.close()
        other.close()


async def run_with_cuts(plc, tags):
    """@return the cuts made, and what run_panel() does"""
    cable = Cable(plc.address().split(":"))
    server = await asyncio.start_server(cable.connect, "127.0.0.1", 0)
    port = server.sockets[0].getsockname()[1]
    writes = [f"--write-at {0.2 + i / 18}:{tag}={value}" for i, (tag, value) in enumerate(WRITES)]
    options = f"--tcp 127.0.0.1:{port} --format text --retries 20 --block 2 --duration 10 TAGS "
    run = await asyncio.to_thread(run_panel, options + " ".join(writes), tags)
    server.close()
    return cable.cuts, *run


class Cuts(unittest.TestCase):
    def test_ten_cuts_of_the_connection(self):
        tags = "".join(f"word{i},MW{1000 + 3 * i}\n" for i in range(30))
        with Plc("--tcp 127.0.0.1:0") as plc:
            cuts, status, said, _ = asyncio.run(run_with_cuts(plc, tags))
        self.assertEqual(status, 0, said)
        self.assertEqual(cuts, CUTS)
        self.assertEqual(find(r"link losses: (\d+)", said), str(CUTS))
        self.assertEqual(find("^Callbacks: (.*), ", said), "90 finished done, 0 finished failed")
        ends = collections.Counter(re.findall(r"  write (\S+) (?:done|failed)", said))
        self.assertEqual(ends, {f"{tag}={value}": 1 for tag, value in WRITES})
        for tag, value in dict(WRITES).items():
            self.assertEqual(value_at_end(said, tag), str(value), tag)


if __name__ == "__main__":
    unittest.main()
