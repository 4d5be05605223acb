"""A Modbus server with RTU framing over TCP, on a free port of 127.0.0.1, for one station.

    pymodbus_server.py STATION

The first line of its output is the port. Each line of input is an image to hold from now on, a JSON
object with the cells of every area; it is answered with a line that has the image held until then
and, as "codes", the function codes served since the last one. The end of input ends the server.
"""
import asyncio
import json
import sys

from pymodbus.datastore import (
    ModbusSequentialDataBlock,
    ModbusServerContext,
    ModbusSlaveContext,
)
from pymodbus.server.async_io import ModbusTcpServer
from pymodbus.transaction import ModbusRtuFramer

EXCEPTION_FLAG = 0x80


async def input_lines():
    """Yield the lines of standard input as they come."""
    reader = asyncio.StreamReader()
    protocol = asyncio.StreamReaderProtocol(reader)
    await asyncio.get_running_loop().connect_read_pipe(lambda: protocol, sys.stdin)
    while line := await reader.readline():
        yield line


async def main(station):
    """Serve until the end of input."""
    areas = {name: ModbusSequentialDataBlock(0, [0]) for name in ("coil", "input", "register")}
    codes = []

    def note_code(response):
        codes.append(response.function_code & ~EXCEPTION_FLAG)
        return response, False

    memory = ModbusSlaveContext(
        co=areas["coil"], di=areas["input"], hr=areas["register"], zero_mode=True
    )
    server = ModbusTcpServer(
        ModbusServerContext({station: memory}, single=False),
        framer=ModbusRtuFramer,
        address=("127.0.0.1", 0),
        response_manipulator=note_code,
    )
    serving = asyncio.create_task(server.serve_forever())
    await server.serving
    print(server.server.sockets[0].getsockname()[1], flush=True)

    async for line in input_lines():
        answer = {name: [int(cell) for cell in area.values] for name, area in areas.items()}
        answer["codes"] = list(codes)
        codes.clear()
        for name, cells in json.loads(line).items():
            areas[name].values = cells
        print(json.dumps(answer), flush=True)
    serving.cancel()


asyncio.run(main(int(sys.argv[1])))
