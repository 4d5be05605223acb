"""The controller as a Modbus client finds it that is neither ours nor made for it."""
import os
import pathlib
import signal
import subprocess
import tempfile
import unittest

from programs import HERE, PATIENCE, Plc, cases

POLL = [os.environ["KP410_MBPOLL"], *"-m rtu -b 19200 -P none -a 1 -0 -1 -v -o 2".split()]
MEMORY = """# station area first = values
1 input 4 = 1 0 1 1
1 output 3 = 1 1 0 1
1 memory 20 = 4660
1 memory 30 = 1 2 65535
1 memory 100 = 200 500 16
"""


class Mbpoll(unittest.TestCase):
    def test_polls(self):
        saved = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()), "saved")
        plc = self.enterContext(
            Plc(f"--pty --no-machine --load {HERE}/mbpoll_image.txt --save {saved}"))
        # In the order of the file: what one writes another reads.
        for (arguments,), expected in cases("polls", 1):
            with self.subTest(arguments):
                client = subprocess.run(
                    POLL + arguments.replace("LINE", plc.address()).split(), text=True,
                    stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=PATIENCE, check=False)
                for part in expected.split(" & "):
                    self.assertIn(part, " ".join(client.stdout.split()))
        plc.send(signal.SIGUSR2)
        plc.says(f"^kp410-plc: saved {saved}$")
        self.assertEqual(saved.read_text(), MEMORY)


if __name__ == "__main__":
    unittest.main()
