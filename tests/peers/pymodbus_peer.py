"""pymodbus' asynchronous TCP server with RTU framing, in a thread of its own."""
import asyncio
import concurrent.futures
import logging
import threading

from pymodbus.datastore import (
    ModbusSequentialDataBlock,
    ModbusServerContext,
    ModbusSlaveContext,
)
from pymodbus.server.async_io import ModbusTcpServer
from pymodbus.transaction import ModbusRtuFramer

from programs import PATIENCE

EXCEPTION_FLAG = 0x80
logging.getLogger("pymodbus").setLevel(logging.CRITICAL)  # that a panel goes is no error


class Peer:
    """As that of libmodbus_peer."""

    def __init__(self, station, cells):
        self.areas = {area: ModbusSequentialDataBlock(0, [0] * cells)
                      for area in ("coil", "input", "register")}
        self.codes = []
        port = concurrent.futures.Future()
        threading.Thread(target=lambda: asyncio.run(self.serve(station, port)), daemon=True).start()
        self.link = f"--tcp 127.0.0.1:{port.result(PATIENCE)}"

    async def serve(self, station, port):
        memory = ModbusSlaveContext(co=self.areas["coil"], di=self.areas["input"],
                                    hr=self.areas["register"], zero_mode=True)
        server = ModbusTcpServer(ModbusServerContext({station: memory}, single=False),
                                 framer=ModbusRtuFramer, address=("127.0.0.1", 0),
                                 response_manipulator=self.note_code)
        serving = asyncio.create_task(server.serve_forever())
        await server.serving
        port.set_result(server.server.sockets[0].getsockname()[1])
        await serving

    def note_code(self, response):
        self.codes.append(response.function_code & ~EXCEPTION_FLAG)
        return response, False

    def replace(self, image):
        """As that of libmodbus_peer."""
        held = {area: [int(cell) for cell in self.areas[area].values] for area in image}
        for area, values in image.items():
            self.areas[area].values = list(values)
        codes, self.codes = self.codes, []
        return held, codes
