"""The simulated controller as a program, over its links."""
import contextlib
import os
import pathlib
import re
import select
import signal
import socket
import tempfile
import termios
import time
import unittest

from programs import Plc, cases, eventually

SETPOINT, CYCLES = 101, 103  # words of the machine
READ_1, READ_2 = "01 03 0000 0001", "01 03 0000 0002"
ZERO_1, ZERO_2 = "01 03 02 0000", "01 03 04 00000000"
REMOTE_WRITE = "18 07 01 01 01 0008 0000000A 0001 00000000 00000000 3412 7B"
REMOTE_READ = "16 07 00 01 01 0008 0000000A 0001 00000000 00000000 32"


def framed(text):
    """The bytes of hexadecimal digits, and their CRC."""
    frame = bytes.fromhex(text)
    crc = 0xFFFF
    for byte in frame:
        crc ^= byte
        for _ in range(8):
            crc = crc >> 1 ^ (0xA001 if crc & 1 else 0)
    return frame + crc.to_bytes(2, "little")


class Line:
    """The panel's end of a link."""

    def __init__(self, descriptor):
        self.descriptor = descriptor

    def __enter__(self):
        return self

    def __exit__(self, *_):
        os.close(self.descriptor)

    def send(self, *requests):
        for request in requests:
            os.write(self.descriptor, request)

    def take(self, count, silence=5):
        """Up to `count` bytes, as long as the next comes within so many seconds."""
        taken = b""
        while len(taken) < count and select.select([self.descriptor], [], [], silence)[0]:
            taken += os.read(self.descriptor, count - len(taken))
        return taken

    def ask(self, request, reply, silence=5):
        """Whether it replies so."""
        self.send(request)
        return self.take(len(reply), silence) == reply

    def read_word(self, address, station=1):
        """None when there is no answer for a while."""
        self.send(framed(f"{station:02x} 03 {address:04x} 0001"))
        reply = self.take(7, 0.3)
        return int.from_bytes(reply[3:5], "big") if reply else None

    def write_word(self, address, value, station=1):
        request = framed(f"{station:02x} 06 {address:04x} {value:04x}")
        assert self.ask(request, request)


def open_terminal(path):
    return Line(os.open(path, os.O_RDWR | os.O_NOCTTY))


def connect(address):
    host, port = address.split(":")
    return Line(socket.create_connection((host, int(port))).detach())


class Program(unittest.TestCase):
    def setUp(self):
        self.directory = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))

    def start(self, options):
        """@return the program and the address of its first link"""
        plc = self.enterContext(Plc(options))
        return plc, plc.address()

    def assert_ends(self, plc, status, *reports):
        """With these lines on standard error."""
        self.assertEqual(plc.wait(), status)
        self.assertEqual(plc.complained(), "".join(f"kp410-plc: {line}\n" for line in reports))

    def test_panels_come_and_go(self):
        link = self.directory / "line"
        plc, terminal = self.start(f"--pty --deaf-ms 700 --link {link}")
        self.assertEqual(terminal, os.readlink(link))
        for count in range(1, 4):
            with open_terminal(link) as line:
                settings = termios.tcgetattr(line.descriptor)[3]
                self.assertFalse(settings & (termios.ICANON | termios.ECHO))
                self.assertEqual(line.read_word(1000), count - 1)
                line.write_word(1000, count)
        with open_terminal(terminal) as line:
            plc.send(signal.SIGUSR1)
            plc.says("deaf for 700 ms")
            self.assertIsNone(line.read_word(1000))
            self.assertIsNone(line.read_word(1000))
            plc.says("hears again")
            self.assertEqual(line.read_word(1000), 3)
        plc.send(signal.SIGTERM)
        self.assert_ends(plc, 0, "deaf for 700 ms", "hears again, 2 requests swallowed",
                         "7 requests, 7 replies, 0 exceptions, 2 swallowed")
        self.assertFalse(link.is_symlink())

    def test_serves_tcp_clients(self):
        _, address = self.start("--tcp 127.0.0.1:0 --remote")
        write, read = map(bytes.fromhex, (REMOTE_WRITE, REMOTE_READ))
        held = framed("01 03 02 1234")
        with connect(address) as stays:
            self.assertTrue(stays.ask(write, framed("01 10 000A 0001")))
            with connect(address) as leaves:
                self.assertTrue(leaves.ask(read, held))
                leaves.send(read[:5])
            self.assertTrue(stays.ask(read, held))

    def test_serves_a_serial_port(self):
        master, slave = os.openpty()
        name = os.ttyname(slave)
        plc, address = self.start(f"--serial {name} --parity N --tcp 127.0.0.1:0")
        self.assertEqual(plc.says("^serial (.*)\n"), name)
        with Line(master) as line, connect(address) as client:
            line.write_word(1000, 0x1234)
            self.assertEqual(client.read_word(1000), 0x1234)
        os.close(slave)

    def test_a_lost_serial_port_ends_it(self):
        master, slave = os.openpty()
        name = os.ttyname(slave)
        plc = self.enterContext(Plc(f"--serial {name}"))
        self.assertEqual(plc.says("^serial (.*)\n"), name)
        os.close(slave)
        os.close(master)
        self.assert_ends(plc, 1, f"{name} is lost",
                         "0 requests, 0 replies, 0 exceptions, 0 swallowed")

    def test_memory_outlives_the_program(self):
        image = self.directory / "image"
        plc, terminal = self.start(f"--pty --no-machine --save {image}")
        with open_terminal(terminal) as line:
            line.write_word(101, 700, station=2)
            plc.send(signal.SIGUSR2)
            plc.says(f"^kp410-plc: saved {image}$")
            self.assertRegex(image.read_text(), r"\n2 memory 101 = 700\n\Z")
            line.write_word(101, 701, station=2)
        plc.send(signal.SIGINT)
        self.assertEqual(plc.wait(), 0)
        self.assertRegex(image.read_text(), r"\n2 memory 101 = 701\n\Z")

        # The machine keeps what it does not write itself, here the setpoint.
        plc, terminal = self.start(f"--pty --load {image}")
        with open_terminal(terminal) as line:
            self.assertEqual(line.read_word(SETPOINT, station=2), 701)
            eventually(lambda: line.read_word(CYCLES, station=2))
        plc.send(signal.SIGUSR2)
        plc.says("^kp410-plc: nothing saved: --save FILE says where$")

    def test_unsaved_memory_is_a_failure(self):
        inner = self.directory / "inner"
        inner.mkdir()
        plc, _ = self.start(f"--pty --save {inner}/image")
        inner.rmdir()
        plc.send(signal.SIGTERM)
        self.assertEqual(plc.wait(), 1)
        self.assertIn(f"kp410-plc: cannot save {inner}/image: ", plc.complained())

    def test_wrong_images_end_it(self):
        image = self.directory / "image"
        image.write_text("1 memory 1 = x\n\n9 input 1 = 1\n")
        with Plc(f"--pty --load {image}") as plc:
            self.assertEqual(plc.wait(), 2)
            self.assertRegex(plc.complained(),
                             rf"\Akp410-plc: {image}:1:14: expected a word, .*\n"
                             rf"kp410-plc: {image}:3:1: expected a station, .*\n\Z")
            self.assertEqual(plc.said(), "")

    def test_options(self):
        for (options,), expected in cases("options", 1):
            with self.subTest(options), Plc(options) as plc:
                status = plc.wait()
                complaint = re.sub(r"(?<=/pts/)\d+", "N", plc.complained())
                self.assertEqual(f"{status} {complaint}".strip(), expected)

    def test_bytes_and_times_of_faults(self):
        plc, address = self.start("--tcp 127.0.0.1:0 --no-machine --fault echo@1 "
                                  "--fault delay:300@2 --fault slow:300@4 --fault babble:300@6")
        read_1, read_2, zero_1, zero_2 = map(framed, (READ_1, READ_2, ZERO_1, ZERO_2))
        with connect(address) as line:
            self.assertTrue(line.ask(read_1, read_1 + zero_1))
            # Late: what is asked later is answered first.
            with self.takes_longer():
                self.assertTrue(line.ask(read_1 + read_2, zero_2 + zero_1))
            # Slow: what is asked meanwhile is lost.
            with self.takes_longer():
                self.assertTrue(line.ask(read_1 + read_2, zero_1))
            self.assertTrue(line.ask(read_2, zero_2))
            # Babble: noise comes as long as it lasts, and what is asked meanwhile is lost.
            with self.takes_longer(than=0.6):
                line.send(read_1 + read_2)
                noise = line.take(10000, silence=0.3)
            self.assertGreaterEqual(len(noise), 100)
            self.assertLess(len(noise), 10000)
            self.assertNotIn(zero_2, noise)
            self.assertTrue(line.ask(read_2, zero_2))
        plc.send(signal.SIGTERM)
        self.assert_ends(plc, 0, "7 requests, 6 replies, 0 exceptions, 2 swallowed; "
                                 "faults: babble 1, echo 1, delay 1, slow 1")

    @contextlib.contextmanager
    def takes_longer(self, than=0.3):
        """Seconds, as those faults last."""
        start = time.monotonic()
        yield
        self.assertGreaterEqual(time.monotonic() - start, than)


if __name__ == "__main__":
    unittest.main()
