#!/usr/bin/env python3
"""Lists the attached scanners and shows a live frame as an array: scanners_and_frame.py [PLUG-IN]"""
import array
import ctypes
import queue
import sys
from ctypes import POINTER, byref, c_char, c_char_p, c_int, c_uint, c_ulong, c_void_p

# Where the operations stand in the table of virtual functions, in the order of framegrabber.h. The
# first two places are the destructor's.
GET_LAST_ERROR, START_CAPTURE, STOP_CAPTURE, AVAILABLE_DEVICES = 5, 8, 9, 25

HANDLE, CHANNEL, CAPTURE_LIVE = 1, 1, 0
REPORTED_BIT = 0x10000000


class Failure(Exception):
    """A failed operation, or the end of a capture."""


class DeviceInfo(ctypes.Structure):
    _fields_ = [("serial", c_char * 100), ("reserved", c_char * 100), ("interface", c_uint)]


class ImageHeader(ctypes.Structure):
    _fields_ = [("size", c_uint), ("width", c_int), ("height", c_int), ("planes", ctypes.c_ushort),
                ("bits", ctypes.c_ushort), ("compression", c_uint), ("image_size", c_uint),
                ("x_pixels_per_metre", c_int), ("y_pixels_per_metre", c_int),
                ("palette_entries", c_uint), ("important", c_uint)]


# Callbacks come on the plug-in's thread; ctypes takes Python's lock for each. The bytes are a
# pointer, not c_char_p: Python would take a c_char_p for a text that ends at the first zero.
ImageCallback = ctypes.CFUNCTYPE(None, c_int, c_uint, c_void_p, c_void_p)
FingerCallback = ctypes.CFUNCTYPE(None, c_int, c_uint, c_int, c_void_p, c_void_p)
TextCallback = ctypes.CFUNCTYPE(None, c_int, c_uint, c_char_p, c_void_p)


class Frame:
    """A copy of a delivered image: `pixels` has its gray levels from the top, row by row."""

    def __init__(self, block):
        header = ImageHeader.from_address(block)
        self.width, self.height = header.width, header.height
        stride = (self.width + 3) // 4 * 4
        rows = block + header.size + 4 * (header.palette_entries or 256)
        self.pixels = array.array("B")
        for y in reversed(range(self.height)):  # the lowest row of the picture is the first
            self.pixels.frombytes(ctypes.string_at(rows + y * stride, self.width))


class Grabber:
    """The frame grabber of a loaded plug-in."""

    def __init__(self, path):
        self._library = ctypes.CDLL(path)
        self._library.GetFrameGrabber.restype = c_void_p
        self._object = c_void_p(self._library.GetFrameGrabber())

    def close(self):
        self._library.DestroyFrameGrabber()

    def _call(self, slot, types, *arguments):
        table = c_void_p.from_address(self._object.value).value
        function = c_void_p.from_address(table + slot * ctypes.sizeof(c_void_p)).value
        operation = ctypes.CFUNCTYPE(c_ulong, c_void_p, *types)(function)
        return operation(self._object, *arguments)

    def _check(self, result):
        if result != 0:
            text, size = ctypes.create_string_buffer(1200), c_ulong(1200)
            self._call(GET_LAST_ERROR, (c_void_p, POINTER(c_ulong)), text, byref(size))
            number = ctypes.c_long(result).value  # negative ones are the calibration engine's
            number = number if number < 0 else number & ~REPORTED_BIT
            raise Failure(f"error {number}: {text.value.decode('latin-1')}")

    def scanners(self):
        records, count = (DeviceInfo * 128)(), c_ulong(128)
        self._check(self._call(AVAILABLE_DEVICES, (c_void_p, POINTER(c_ulong)), records,
                               byref(count)))
        return records[:count.value]

    def live_frame(self):
        """Waits for a frame; an error of the capture is an exception."""
        arrivals = queue.Queue()
        image = ImageCallback(lambda handle, channel, block, user: arrivals.put(Frame(block)))
        error = TextCallback(lambda handle, channel, text, user:
                             arrivals.put(Failure(text.decode("latin-1"))))
        self._check(self._call(
            START_CAPTURE,
            (c_int, c_uint, c_uint, ImageCallback, FingerCallback, TextCallback, TextCallback,
             c_void_p),
            HANDLE, CHANNEL, CAPTURE_LIVE, image, FingerCallback(0), error, TextCallback(0), None))
        try:
            arrival = arrivals.get()
        finally:  # `image` and `error` have to live until no callback can come any more
            self._check(self._call(STOP_CAPTURE, (c_uint,), CHANNEL))
        if isinstance(arrival, Failure):
            raise arrival
        return arrival


def main(path="libostrevanhvk3.so"):
    grabber = Grabber(path)
    try:
        for scanner in grabber.scanners():
            print(f"interface {scanner.interface}: {scanner.serial.decode('latin-1')}")
        frame = grabber.live_frame()
        middle = frame.height // 2 * frame.width
        print(f"{frame.width} x {frame.height}, {len(frame.pixels)} pixels,",
              "in the middle", frame.pixels[middle + frame.width // 2:][:8].tolist())
    finally:
        grabber.close()


if __name__ == "__main__":
    try:
        main(*sys.argv[1:])
    except (Failure, OSError) as failure:
        sys.exit(f"{failure}")
