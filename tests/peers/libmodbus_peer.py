"""libmodbus' RTU server, in a thread of its own, on the master side of a pseudo-terminal."""
import ctypes
import os
import threading
import tty

LIBRARY = ctypes.CDLL(os.environ["KP410_LIBMODBUS"], use_errno=True)
LONGEST_REQUEST = 256
FUNCTION_OFFSET = 1


class Mapping(ctypes.Structure):
    """modbus_mapping_t"""
    _fields_ = [(f"{kind}_{area}", ctypes.c_int)
                for area in ("bits", "input_bits", "input_registers", "registers")
                for kind in ("nb", "start")] + [
        ("coil", ctypes.POINTER(ctypes.c_uint8)), ("input", ctypes.POINTER(ctypes.c_uint8)),
        ("input_register", ctypes.POINTER(ctypes.c_uint16)),
        ("register", ctypes.POINTER(ctypes.c_uint16))]


LIBRARY.modbus_new_rtu.restype = ctypes.c_void_p
LIBRARY.modbus_mapping_new.restype = ctypes.POINTER(Mapping)


class Peer:
    """Serves until the end of the test. Each area has `cells` cells.

    link: the panel's options that lead to it
    """

    def __init__(self, station, cells):
        # The slave side is held open: with the last panel gone the terminal would report its
        # hang-up without end.
        master, slave = os.openpty()
        tty.setraw(slave)
        self.link = f"--serial {os.ttyname(slave)}"
        # The device is open already, libmodbus never opens the one that it is given by name.
        self.context = ctypes.c_void_p(LIBRARY.modbus_new_rtu(
            os.ttyname(slave).encode(), 19200, ctypes.c_char(b"N"), 8, 1))
        self.mapping = LIBRARY.modbus_mapping_new(cells, cells, cells, 0)
        assert LIBRARY.modbus_set_slave(self.context, station) == 0
        assert LIBRARY.modbus_set_socket(self.context, master) == 0
        self.lock = threading.Lock()  # of the mapping and the codes
        self.codes = []
        threading.Thread(target=self.serve, daemon=True).start()

    def serve(self):
        request = (ctypes.c_ubyte * LONGEST_REQUEST)()
        while True:
            size = LIBRARY.modbus_receive(self.context, request)
            if size > 0:
                with self.lock:
                    self.codes.append(request[FUNCTION_OFFSET])
                    LIBRARY.modbus_reply(self.context, request, size, self.mapping)

    def replace(self, image):
        """Lets it hold an image, the cells of the areas "coil", "input" and "register".

        @return what it held until then, and the function codes of the requests since the last call
        """
        with self.lock:
            held, codes = {}, self.codes
            for area, values in image.items():
                cells = getattr(self.mapping.contents, area)
                held[area] = cells[:len(values)]
                for address, value in enumerate(values):
                    cells[address] = value
            self.codes = []
        return held, codes
