"""The panel program, with the built driver, against the simulated controller, and over TCP against
peers that misbehave on purpose.
"""
import socket
import unittest

from programs import HERE, PATIENCE, Panel, Plc, cases, find, run_panel, value_at_end

TAGS = (HERE / "tags.csv").read_text()
CALLBACKS = "^Callbacks: (.*)$"
SIX_WRITES = ("--write setpoint=321 --write reverse=1 --write free=5a --write ratio=-1.5 "
              "--write high_byte=0xc3 --write special=1")
SETPOINT_99 = bytes.fromhex("010600650063")


class Loop(unittest.TestCase):
    def test_reads_and_writes(self):
        for (controller, link), expected in cases("readsAndWrites", 2):
            with self.subTest(controller), Plc(controller) as plc:
                status, said, _ = run_panel(
                    f"{link} {plc.address()} --format text --duration 1 {SIX_WRITES} TAGS", TAGS)
                failed = find(r" good, (\d+) failed", said)
                self.assertEqual(f"{status}: {find(CALLBACKS, said)}; {failed} failed", expected)
                self.assertEqual(said.count("read back as written"), 6)
                for line in TAGS.splitlines():
                    tag, written = line.split(",")[0], line.split("#")[1].strip()
                    self.assertEqual(value_at_end(said, tag), written, tag)

    def listen(self):
        """A server and its address."""
        server = self.enterContext(socket.create_server(("127.0.0.1", 0)))
        server.settimeout(PATIENCE)
        return server, f"127.0.0.1:{server.getsockname()[1]}"

    def test_link_comes_back(self):
        # The peer closes each connection at its first request. Nothing queued is lost by that, and
        # it does not count as a failed reply: one of those would be the end of the write.
        server, address = self.listen()
        panel = self.enterContext(Panel(f"--tcp {address} --format text --duration 4 --timeout 500 "
                                        "--retries 0 --write setpoint=99 TAGS", TAGS))
        for _ in range(2):
            with server.accept()[0] as peer:
                # The write goes first, and goes out again after each loss.
                self.assertEqual(peer.recv(100)[:6], SETPOINT_99)
        server.close()
        with Plc(f"--tcp {address}") as plc:
            self.assertEqual(plc.address(), address)
            self.assertEqual(panel.wait(), 0, panel.said())
        self.assertEqual(find(r"link losses: (\d+)", panel.said()), "2")
        self.assertEqual(find(CALLBACKS, panel.said()),
                         "1 finished done, 0 finished failed, 0 fail")
        self.assertEqual(value_at_end(panel.said(), "setpoint"), "99")

    def test_peer_that_takes_nobody(self):
        # A device server in use by someone else takes a connection and closes it.
        server, address = self.listen()
        panel = self.enterContext(Panel(f"--tcp {address} --once TAGS", TAGS))
        for _ in range(3):
            server.accept()[0].close()
        self.assertEqual(panel.wait(), 4)

    def test_refused_use(self):
        for (options,), complaint in cases("refusedUse", 1):
            with self.subTest(options):
                status, _, complained = run_panel(options, TAGS)
                self.assertEqual(status, 1)
                self.assertIn(complaint, complained)


if __name__ == "__main__":
    unittest.main()
