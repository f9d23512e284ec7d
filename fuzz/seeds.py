#!/usr/bin/env python3
"""Makes the first inputs of a fuzz target: seeds.py TARGET FOLDER."""

import pathlib
import shutil
import struct
import sys
import zlib


def configuration():
    yield "plain", b"[SDK]\ndose = 60\nflag = on\n"
    yield "comments", b"# first\n[SDK] # [not]\nflag = y # [x]\n#[a]\nname = a = b\r\n= empty\nname =\n"
    yield "brackets", b"  [abc]\nx = [1]\n]a[\n[open\nkey = value\n[abc]\nkey = TRUE\n"
    yield "blanks", b"before = lost\n[ s ]\n  two  = words  \n\tt\t=\toff\t\n no sign\n=\n"
    yield "twice", b"[a]\nn=1\n[b]\nn = false\n[a]\nn=0\nm=yes\nno newline at the end"
    yield "booleans", b"[b]\na=true\nb=1\nc=y\nd=ON\ne=False\nf=0\ng=N\nh=oFf\ni=yes\nj=2\n"
    yield "untrimmed", b"name =value#comment\nname =other\n=from the start\n#=\na#=b\nx=1"
    yield "long", b"[" + b"s" * 700 + b"]\n" + b"p" * 500 + b" = " + b"v" * 900 + b"\n"


def bitmap(width, height, bits=8, compression=0, used=0, gap=0, pixels=None):
    """A bitmap file."""
    entries = used or (1 << bits if bits <= 8 else 0)
    stride = ((width * bits + 7) // 8 + 3) // 4 * 4
    palette = b"".join(bytes((i % 256, i % 256, i % 256, 0)) for i in range(entries))
    if pixels is None:
        pixels = bytes(i * 7 % 256 for i in range(stride * height))
    begin = 14 + 40 + len(palette) + gap
    header = struct.pack("<IiiHHIIiiII", 40, width, height, 1, bits, compression, len(pixels), 19685, 19685, used, 0)
    return b"BM" + struct.pack("<IHHI", begin + len(pixels), 0, 0, begin) + header + palette + bytes(gap) + pixels


def bitmap_file():
    def with_file(content, operations=bytes(range(3, 67))):
        return b"\0" + operations + content

    whole = bitmap(10, 6)
    yield "gray", with_file(whole)
    yield "doubled", with_file(whole, b"\x09\x09\1".ljust(64, b"\1"))
    yield "scaled", with_file(bitmap(31, 17), bytes((120, 90, 0)).ljust(64, b"\2"))
    yield "to one", with_file(bitmap(31, 17), bytes((1, 90, 0)).ljust(64, b"\2"))
    yield "to nothing", with_file(bitmap(31, 17), bytes((0, 90, 0)).ljust(64, b"\2"))
    yield "without height", with_file(bitmap(31, 17), bytes((9, 0, 0)).ljust(64, b"\2"))
    yield "unknown mode", with_file(bitmap(31, 17), bytes((9, 9, 2)).ljust(64, b"\2"))
    yield "few colours", with_file(bitmap(5, 3, used=7))
    yield "gap", with_file(bitmap(4, 4, gap=20))
    yield "far gap", with_file(bitmap(4, 4, used=1)[:10] + struct.pack("<I", 1 << 30) + bitmap(4, 4, used=1)[14:])
    yield "24 bits", with_file(bitmap(3, 3, bits=24))
    yield "compressed", with_file(bitmap(3, 3, compression=1))
    yield "cut pixels", with_file(whole[:-20])
    yield "cut palette", with_file(whole[:500])
    yield "cut header", with_file(whole[:30])
    yield "cut file header", with_file(whole[:10])
    yield "no bitmap", with_file(b"PNG" + whole[3:])
    yield "empty", with_file(b"")
    yield "no rows", with_file(bitmap(9, 0))
    yield "no columns", with_file(bitmap(0, 9))
    for height in (0x3FFFFFFF, 0x7FFFFFFF):
        endless = bitmap(0, 9)[:22] + struct.pack("<i", height) + bitmap(0, 9)[26:]
        for mode in range(2):
            yield f"rows of no columns {height} {mode}", with_file(endless, bytes((90, 90, mode)).ljust(64, b"\1"))
    yield "negative", with_file(bitmap(4, 4)[:18] + struct.pack("<ii", -4, -4) + bitmap(4, 4)[26:])
    yield "huge", with_file(bitmap(4, 4)[:18] + struct.pack("<ii", 65536, 65537) + bitmap(4, 4)[26:])
    for depth in range(8):
        for masks in range(2):
            yield f"depth {depth} {masks}", bytes((1, depth, masks, 90, 17, 11, 20, 30, masks)) + bytes(range(200))


def calibration_block(description=b"unit", payload=b"CAL\0GEO\0" + b"payload" * 4):
    return (
        bytes((1, 7, 3, 111)) + b"revision 0000001" + bytes((len(description),)) + description
        + struct.pack("<I", len(payload)) + payload
    )


def calibration_memory():
    def family(block, flags=0, model=1, size=None, change=b""):
        size = len(block) if size is None else size
        return bytes((0, flags)) + change + bytes((model,)) + struct.pack("<i", size) + block

    block = calibration_block()
    yield "member", family(block)
    yield "other member", family(block, model=4)
    yield "foreign", family(block, model=9)
    yield "no model", family(block, flags=1)
    yield "no size", family(block, flags=2)
    yield "base", family(block, flags=16)
    yield "unreadable", family(block, flags=4)
    yield "second unreadable", family(calibration_block(b"a longer description"), flags=12)
    yield "long", family(calibration_block(b"d" * 127))
    yield "negative", family(calibration_block(b"d" * 250))
    yield "changed", family(calibration_block(b"d" * 60), flags=32, change=b"\1")
    yield "exact", family(block[:37], size=37)
    yield "version", family(b"\2" + block[1:])
    yield "signature", family(calibration_block(payload=b"CAL GEO" + bytes(30)))
    for name, content in (
        ("read", block), ("empty payload", calibration_block(payload=b"")), ("long description", calibration_block(b"d" * 255)),
        ("other version", b"\0" + block[1:]), ("cut", block[:30]), ("short", block[:12]), ("nothing", b""),
        ("wrong size", block[:25] + b"\xff\xff\xff\xff" + block[29:]),
    ):
        for new in range(2):
            yield f"{name} {new}", b"\1" + struct.pack("<HB", len(content), new) + content
    yield "beyond", b"\1" + struct.pack("<HB", 2000, 0) + block
    for length in (0, 9, 255, 256, 299):
        yield f"write {length}", b"\2" + struct.pack("<H", length) + b"d" * length + b"revision 0000002" + b"payload"


def frame(width, height, gray, noise=0, form=3):
    """A frame of 8 bits and 500 dots per inch."""
    side = lambda pixels: bytes((pixels * 2,)) if pixels < 125 else struct.pack("<BH", 255, pixels)
    rows = bytes((height,)) if width > 300 else side(height)
    return bytes((form,)) + side(width) + rows + bytes((gray, noise, 0))


def detection():
    empty, finger, dark = (frame(80, 60, gray, noise) for gray, noise in ((250, 0), (200, 150), (90, 0)))
    go = b"\1"
    for mode in range(6):
        yield f"roll {mode}", bytes((mode,)) + go.join((empty, finger, dark, finger, empty, finger, empty)) + go
        yield f"sizes {mode}", bytes((mode,)) + go.join((empty, frame(33, 90, 60), frame(120, 20, 10, 9), frame(1, 1, 0), frame(0, 9, 0), frame(9, 0, 0), empty)) + go
        yield f"wide {mode}", bytes((mode,)) + go.join((frame(4100, 3, 250), frame(4100, 3, 100, 90), frame(2049, 2, 90, 80), frame(4100, 3, 250))) + go
        yield f"deep {mode}", bytes((mode,)) + go.join((frame(40, 30, 250, form=form) for form in (3, 203, 205, 207, 210, 5, 6))) + go
        yield f"tall {mode}", bytes((mode,)) + go.join((frame(20, 520, 250), frame(20, 520, 60, 50), frame(20, 520, 250))) + go
        yield f"black {mode}", bytes((mode,)) + go.join((frame(80, 60, 0), finger, frame(80, 60, 255), finger, empty)) + go


def feature_records():
    # form, feature number less 50, count, size, the data's presence, data
    for form in (16, 17, 19, 46, 47):
        for feature in range(2, 7):
            for count, size in ((7, 1), (14, 1), (1, 1), (0, 1), (1, 2), (1, 4), (15, 1), (1, 8)):
                yield f"feature {form} {feature} {count} {size}", bytes((0, form, feature, count, size, 1)) + b"\1\0\0\0codeseven byte"
    yield "no data", bytes((0, 17, 4, 14, 1, 0))
    yield "no data read", bytes((0, 16, 4, 14, 1, 0))
    yield "no format", bytes((0, 17, 5, 1, 1, 0))
    yield "bad format", bytes((0, 17, 5, 1, 1, 1, 9))
    yield "other format", bytes((0, 17, 5, 1, 1, 1, 2))
    yield "other format read", bytes((0, 16, 5, 1, 1, 1))
    yield "other channel", bytes((0, 30, 4, 14, 1, 1)) + bytes(14)
    for number in range(60):
        yield f"schema {number}", bytes((1, number, 0))
        yield f"schema {number} with a condition", bytes((1, number, 1))
    yield "copies", bytes((2,)) + b"0123456789abcdef" + bytes((5,)) + bytes((7, 1, 4, 2, 8, 0, 0, 0, 9, 2, 15, 15, 1, 1, 0, 0, 3, 0, 5, 5))
    yield "unit", b"\3" + struct.pack("<I264xI510x", 5, 1) + b"n" * 255 + bytes(255) + b"s" * 100 + b"\2"
    yield "plain unit", b"\3" + struct.pack("<I264xI510x", 5, 1) + b"HVK30001".ljust(255, b"\0") + bytes(255) + b"HVK30001"
    for form in list(range(8)) + [192, 193, 195, 224, 225, 231]:
        width = struct.pack("<i", -5) if form >= 192 else b"\x1f"
        height = struct.pack("<i", -5) if form >= 224 else b"\x0b"
        depth = b"\x08\0" if form % 8 == 7 else b""
        yield f"sample {form}", bytes((4, form)) + width + height + depth + bytes((0,)) + bytes(60)
    for version in (257, 513, 0, 65535):
        for options in (0, 1, 8, 16, 32, 48, 64, 9):
            yield f"numbers {version} {options}", b"\5" + struct.pack("<HI", version, options)


def device():
    every = bytes(value for operation in range(27) for value in (operation, operation * 9 % 256))

    def script(operations, faults=(), absent=0, memory=b""):
        content = bytes((absent, 0, 12, 9, len(memory))) + memory + bytes((len(operations) // 2,)) + operations
        return content + b"".join(struct.pack("<BBI", *fault) for fault in faults)

    yield "every", script(every)
    yield "every twice", script(every + every)
    yield "with a block", script(every, memory=calibration_block(b"d" * 60))
    for absent in (1, 2, 4):
        yield f"without {absent}", script(every, absent=absent)
    for kind in range(4):
        for calls in range(0, 40, 3):
            yield f"fault {kind} at {calls}", script(every + every, [(calls, kind, calls * 4), (4, kind, 8), (7, 0, 28)])


# Operations of a session by their place in its client's table.
(
    INFO, VERSION, LAST_ERROR, CAMERA, IMAGE, START, STOP, FILTER, SET, GET, SET_EX, GET_EX, FREEZE, GO_ON, LISTS, EVENTS,
    UNSUPPORTED, DEVICES, CHOOSE, ACTIVE, CALLBACKS, DIRT, FRAME_INFO, GET_FEATURE, SET_FEATURE, ANEW,
) = range(26)
FAIL, ODD, LASTING, UNPLUG = range(4)


def session():
    def script(operations, faults=(), absent=0, attached=0, size=(40, 30), memory=b""):
        content = bytes((absent, attached)) + bytes(size) + bytes((len(memory),)) + memory + bytes((len(operations),))
        content += b"".join(bytes((operation, first, second)) for operation, first, second in operations)
        return content + b"".join(struct.pack("<BBI", *fault) for fault in faults)

    every = [
        (LISTS, 1, 7), (LISTS, 0, 0), (DEVICES, 5, 1), (DEVICES, 0, 1), (DEVICES, 3, 0), (INFO, 0, 0), (INFO, 1, 0),
        (VERSION, 0, 0), (VERSION, 1, 1), (CAMERA, 0, 8), (CAMERA, 1, 9), (FILTER, 0, 0), (FILTER, 0, 1),
        (UNSUPPORTED, 1, 1), (CHOOSE, 0, 1), (CHOOSE, 0, 0), (CHOOSE, 7, 40), (CHOOSE, 0, 4), (ACTIVE, 0, 0),
        (DIRT, 0, 1), (DIRT, 0, 0), (FRAME_INFO, 0, 1), (FRAME_INFO, 1, 1), (FRAME_INFO, 2, 1), (FRAME_INFO, 0, 0),
        (LAST_ERROR, 0, 0), (LAST_ERROR, 1, 0), (CAMERA, 7, 8), (IMAGE, 7, 1), (ANEW, 0, 0),
    ]
    properties = [(operation, number, value) for number in (3, 6, 7, 8, 12, 13, 1) for operation, value in ((SET, 1), (GET, 0))]
    features = [(operation, number, 1) for number in range(5) for operation in (GET_FEATURE, SET_FEATURE)]
    live = [(START, 0, 20), (LAST_ERROR, 1, 1), (IMAGE, 1, 1), (GO_ON, 0, 5), (STOP, 0, 0)]
    plain = [(START, 1, 21), (IMAGE, 1, 1), (STOP, 0, 0)]
    inside = [(START, 1, 23), (STOP, 0, 0), (START, 0, 1), (FREEZE, 0, 0), (IMAGE, 0, 1), (SET, 6, 1), (CHOOSE, 0, 2), (DIRT, 0, 1), (GO_ON, 0, 1), (CALLBACKS, 0, 0), (STOP, 0, 0)]
    fake = [(EVENTS, 1, 0), (SET, 6, 2), (GET, 12, 0), (IMAGE, 0, 1), (START, 1, 23), (GET_EX, 6, 0), (GET_EX, 12, 0), (STOP, 0, 0), (SET_EX, 12, 99), (IMAGE, 0, 1), (IMAGE, 0, 1), (SET, 6, 1), (SET, 6, 0)]
    whole = live + plain + fake
    sessions = {"every": every, "properties": properties, "features": features, "live": live, "plain": plain, "inside": inside, "fake": fake}
    for name, operations in sessions.items():
        yield name, script(operations)
        yield f"{name} without log", script(operations, absent=1)
        yield f"{name} of odd size", script(operations, size=(120, 37))
    for absent in (2, 4, 8, 16):
        yield f"without {absent}", script(features + fake, absent=absent)
    yield "none attached", script(every, attached=15)
    yield "without pixels", script(live, size=(0, 9))
    yield "wide", script(plain + fake, size=(180, 150))
    # Two frames of other grays than all the rest: a finger that comes and goes.
    finger = [(START, 1, 23), (GO_ON, 0, 5), (GO_ON, 0, 5), (STOP, 0, 0)]
    yield "finger", script(finger, [(45, ODD, 216), (25, ODD, 97)], size=(160, 20))
    for name, memory in (("bad memory", b"\1" * 60), ("block", calibration_block()), ("empty payload", calibration_block(payload=b"")), ("cut", calibration_block()[:40])):
        yield name, script(live, memory=memory)
    for calls in range(0, 60, 2):
        for kind, value in ((FAIL, calls * 4), (ODD, calls * 7), (LASTING, calls * 4), (UNPLUG, 256 * calls)):
            operations = list(sessions.values())[calls // 2 % len(sessions)]
            yield f"fault {kind} at {calls}", script(operations + whole[:10], [(calls, kind, value)])
    for error in range(14):
        yield f"error {error}", script(live + fake, [(36, FAIL, error * 4), (20, LASTING, error * 4)])
    for value in range(16):
        yield f"odd {value}", script(fake + live, [(30 + value, ODD, value), (5 + value, ODD, value * 257), (60, ODD, value)])


SCENARIO = """finger on
finger off
finger comes and goes
roll right over 40 frames
roll left and back over 2 frames
print 7 rolled
print 4294967295
kind moulded
skin wet
pressure 50
dirt on
dirt off
dirt 100
pace 0
plug 0
plug 127 blank
plug 3 foreign
plug 3 bare
unplug 3
unplug all
led green on at 0
led red off at 0
authorization 0123456789abcd at 0
secret 0123456789ABCD at 0
busy for 3 frames
fault Calibrate call 2 fails with -21
faults off
release
show
help
"""
FAULTS = """ftrScanGetImageByVariableDose call 3 fails with 121
ftrScanOpenDeviceOnInterface call 1 gives a null handle
ftrScanGetImageSize gives -1 x 480
ftrScanGetExtMemorySize from call 2 on gives 0x10
ftrScanGetDeviceInfo calls 2 to 5 answers 1 with error 0x20000001
Calibrate answers 0 with size 0; Calibrate always answers -21
CalibrateGetOption of 'SensitiveMode' answers text 'Enabled;X'
CalibrateGetOption of 'SensitiveMode' answers 0 with length 9
CalibrateGetErrorDescription gives no text
ContaminationDetection gives 12.5
FakeFingerDetectionEvaluateLiveliness gives nan
FakeFingerDetectionEvaluateLiveliness answers -768
"""


def scenario():
    yield "scenario", b"\0" + SCENARIO.encode()
    yield "said", b"\1" + SCENARIO.encode()
    yield "faults", b"\2" + FAULTS.encode()
    yield "unrecorded faults", b"\3" + FAULTS.encode()
    for number, line in enumerate(SCENARIO.splitlines()):
        waits = b"wait 2 calls of ftrScanGetInterfaces\nwait 1 frame\n"
        yield f"line {number}", bytes((number % 2,)) + waits + line.encode() + b"\n# a comment\nshow"
    for number, line in enumerate(FAULTS.splitlines()):
        yield f"fault {number}", b"\2" + line.encode()
        yield f"fault line {number}", b"\0fault " + line.split("; ")[0].encode()
    for number, line in enumerate((
        "frobnicate", "roll up over 3 frames", "roll right over 0 frames", "print", "pace 1001", "plug 128", "secret 0123 at 0",
        "unplug 9", "led green on at 9", "picture nothing.png", "picture 'no thing'", "wait 3 calls of nothing", "fault nonsense", "kind 'live'",
        "show 'unended", "finger on 'x", "wait 1 call of Calibrate", "busy for 1 frame", "pace 1\0", "dirt 101",
        "pace 99999999999999999999", "print 4294967296",
    )):
        yield f"bad {number}", b"\0" + line.encode()
        yield f"bad said {number}", b"\1" + line.encode()
    for number, line in enumerate((
        "Calibrate", "Calibrate of 'x' answers 1", "Calibrate call 0 fails with 1", "ftrScanGetLastError fails with 1",
        "ftrScanGetLastError answers 1 with error 1", "Calibrate answers 99999999999999999999", "ftrScanGetFrame answers 4294967296",
        "Calibrate gives 5", "Calibrate answers 0 with length 1", "ContaminationDetection gives inf", "ftrScanGetImageSize gives 5 x",
        "CalibrateGetOption of x answers 1", "CalibrateGetOption of 'x answers 1", "Calibrate fails with 0x", "Calibrate fails with 1 2",
        "ftrScanGetFrame calls 5 to 2 fails with 1", "CalibrateCreate gives a handle", "Calibrate fails with 1\0",
    )):
        yield f"bad fault {number}", b"\2" + line.encode()


def png(width, height, depth=8, colour=0):
    def chunk(kind, content):
        return struct.pack(">I", len(content)) + kind + content + struct.pack(">I", zlib.crc32(kind + content))

    rows = b"".join(b"\0" + bytes((x * 9 + y) % 256 for x in range(width)) for y in range(height))
    header = struct.pack(">IIBBBBB", width, height, depth, colour, 0, 0, 0)
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b"")


def picture_file():
    yield "png", png(9, 7)
    yield "cut png", png(9, 7)[:60]
    yield "broken png", png(9, 7)[:44] + b"broken" + png(9, 7)[50:]
    yield "coloured png", png(4, 4, colour=2)
    yield "wide png", png(4097, 1)
    yield "no png", b"\x89PNG"
    yield "bmp", bitmap(9, 7)
    yield "top down", bitmap(9, 7)[:22] + struct.pack("<i", -7) + bitmap(9, 7)[26:]
    yield "few colours", bitmap(9, 7, used=3)
    yield "coloured", bitmap(9, 7)[:60] + b"\1\2\3" + bitmap(9, 7)[63:]
    yield "24 bits", bitmap(9, 7, bits=24)
    yield "compressed", bitmap(9, 7, compression=1)
    yield "cut pixels", bitmap(9, 7)[:-9]
    yield "cut palette", bitmap(9, 7)[:300]
    yield "cut header", bitmap(9, 7)[:40]
    yield "far pixels", bitmap(9, 7)[:10] + struct.pack("<I", 1 << 31) + bitmap(9, 7)[14:]
    yield "no size", bitmap(0, 7)
    yield "huge", bitmap(9, 7)[:18] + struct.pack("<ii", 4096, -(1 << 31)) + bitmap(9, 7)[26:]
    yield "nothing", b""
    yield "text", b"no picture"


LINES = """list
list --json
list -v --simulate --scanners 3
list --simulate --scanners 129
info --device 5
info --device 128
doctor
snap --out image.png
snap --out image.gif
snap --out image.fir --record-compression png --record-position left-index --record-quality 80
snap --out image.fir --record-device 65536
snap --out image.png --record-quality 80
snap --show --shades 256
snap --shades plain
snap --show --json
capture --simulate --pace unlimited --mode live --count 3 --settle 5 --timeout 0.5
capture --simulate --pace 1001
capture --simulate --pace 30 --empty
capture --simulate --empty --finger x
capture --mode rolled
capture --set liveness=level-2 --set red-led=on --set 13=1
capture --set liveness
capture --set nothing=1
capture --set red-led=maybe
capture --count 0
capture --timeout -1
capture --timeout 1e400
liveness --level 2 --count 5
liveness --level 3
roll --simulate --script scene.txt --timeout 3
contamination --simulate --faults nonsense
leds --red on --green off --hold 2
leds --red blue --hold 1
leds --red on
property get
property get threshold 99 liveness
property get nothing
property set threshold 50
property set 4294967296 5
property set red-led
feature list
feature get 55
feature set 55 1
feature set 55
secret read --code - --print
secret read --code file --hex --out secret
secret write --code a --secret b
secret authorize --code a --new b
completion bash
property
--help
capture --help
secret --help
--version
list --plugin other.so --log x
list --simulate --log x --simulator y
--json list
list list
-
--
list -- x
"""


def tool_arguments():
    for number, line in enumerate(LINES.splitlines()):
        yield f"line {number}", b"\0" + "\n".join(line.split()).encode()
    yield "nothing", b"\0"
    yield "empty words", b"\0list\n\n\n"
    for hex_digits in range(2):
        for name, content in (
            ("secret", b"7 bytes"), ("short", b"6 byte"), ("long", b"8 bytes!"), ("hex", b"01 23 45 67 89 ab CD\n"), ("no hex", b"0123456789abcx"),
            ("odd hex", b"0123456789abc"), ("long hex", b"0123456789abcdef"), ("sign", b"-123456789abcd"), ("empty", b""), ("huge", b"0" * 5000),
        ):
            yield f"{name} {hex_digits}", bytes((3, hex_digits)) + content


def recording_block(content, size=None, stored=None, check=None):
    """A block of a recording, its content not compressed any further."""
    frame = struct.pack("<IBI", 0xFD2FB528, 0xA0, len(content))
    frame += struct.pack("<I", 1 | len(content) << 3)[:3] + content
    sizes = struct.pack("<II", len(content) if size is None else size, len(frame) if stored is None else stored)
    return sizes + struct.pack("<I", zlib.crc32(sizes + frame) if check is None else check) + frame


def recorded_call(function, thread=1, arguments=b"", answer=b""):
    return struct.pack("<BHIQQH", 2, function, thread, 5, 6, len(arguments)) + arguments + answer


RECORDING = b"HVK3REC\n\1\0\0\0"
RECORDING_HEADER = b"\1\1" + bytes(8) + bytes((1,)) * 56


def recording():
    number, handle = b"\1" + bytes(8), b"\0\1\0\0\0"
    arguments = handle + number + b"\2\3" + b"\4\2\0ab" + b"\5\2\0abSUMS" + b"\6" + bytes(12) + b"\7" + bytes(8)
    calls = [recorded_call(3, 1, arguments, b"answer"), recorded_call(4, 2), b"\3a full disk"]
    whole = RECORDING + b"".join(recording_block(entry) for entry in [RECORDING_HEADER, *calls])
    first = RECORDING + recording_block(RECORDING_HEADER)
    files = {
        "whole": whole, "torn": whole[:-3], "torn head": first + b"\1\2", "header": first, "nothing": b"", "magic": RECORDING[:8],
        "version": RECORDING[:8] + b"\2\0\0\0", "other": b"PK" + whole, "twice": first + recording_block(RECORDING_HEADER),
        "huge": first + recording_block(calls[0], size=1 << 31), "huge store": first + recording_block(calls[0], stored=1 << 31),
        "larger": first + recording_block(calls[0], size=1 << 22), "sum": first + recording_block(calls[0], check=1),
        "no frame": first + struct.pack("<III", 4, 4, zlib.crc32(struct.pack("<II", 4, 4) + b"abcd")) + b"abcd",
    }
    for name, content in files.items():
        yield name, b"\0" + content
    entries = {
        "entries": [*calls], "unknown": [b"\7"], "empty": [b""], "function": [recorded_call(900)], "argument": [recorded_call(3, 1, b"\x63")],
        "cut": [calls[0][:30]], "long": [struct.pack("<BHIQQH", 2, 3, 1, 0, 0, 5000) + bytes(200)], "flag": [b"\1\7"],
    }
    for name, contents in entries.items():
        for begin in range(2):
            yield f"{name} {begin}", bytes((1, begin)) + b"".join(bytes((len(each),)) + each for each in contents)
    header = b"\0" + bytes(8) + b"\x55" * 8 + b"\2no libengine.so, says the loader" + b"\x27" + b"x" * 624 + b"\0\0"
    arguments = [b"\0\1", b"\0\xff", b"\0\0", b"\1" + bytes(8), b"\2\0", b"\2\1", b"\3\1sixteen letters!", b"\3\x3f" + b"y" * 1008, b"\4", b"\5\4data", b"\6\7"]
    call = lambda *these: b"\3" + bytes(20) + bytes((len(these),)) + b"".join(these) + b"\6answer"
    yield "written", b"\2" + header + call() + b"".join(call(each) for each in arguments) + call(*arguments[:4]) + call(*arguments[-4:]) + b"\x64"
    yield "too large", b"\xff\1"


def replay():
    # By their places: open, size, frame, memory, serial, secret, close, create, calibrate, option, text, delete, create, score, property, destroy;
    # then the others of the scanner, five that can't be played, the engine, the detector and the log.
    status, code, some = struct.pack("<i", 1), bytes(8), lambda size: struct.pack("<Q", size) + b"x" * size
    good = [
        struct.pack("<I", 1), status + struct.pack("<ii", 4, 3), status + some(12), status + some(64), status + b"HVK30001", status + b"\1", status,
        struct.pack("<I", 1), code + struct.pack("<Q", 60) + some(60), code + struct.pack("<QQ", 8, 8) + b"Enabled\0", b"\4\0text", b"\1",
        code + struct.pack("<I", 1), code + bytes(8), code + struct.pack("<Q", 64) + some(64), code + b"\1",
    ]
    length = lambda answer: bytes((len(answer),)) if len(answer) < 255 else b"\xff" + struct.pack("<H", len(answer))
    call = lambda operation, answer, differs=0, thread=0: bytes((operation, differs, thread)) + length(answer) + answer
    others = [
        status, status + b"flag", status + bytes(9), *[status + some(12)] * 3, status, status, status + b"control", status, status + bytes(512), status, status,
        b"\2\0\0\0", b"", status + b"\4\0\0\0", status, status + bytes(28), status, status, *[b"\1" + bytes(7)] * 5,
        code, code + bytes(8), code, *[code] * 5, b"\4\0text", b"", b"",
    ]
    session = [call(operation, answer) for operation, answer in enumerate(good)]
    opened = b"".join(session[place] for place in (0, 1, 7, 12))
    for pixels in range(2):
        yield f"session {pixels}", bytes((pixels,)) + b"".join(session)
        for operation, answer in enumerate(good):
            front = b"".join(session[:operation])
            for name, wrong in (("failed", bytes(len(answer))), ("cut", answer[:-1]), ("long", answer + b"x"), ("large", answer[:4] + b"\xff" * 16), ("text", b"\xff\xff")):
                yield f"{name} {operation} {pixels}", bytes((pixels,)) + front + call(operation, wrong) + session[0]
            yield f"other {operation} {pixels}", bytes((pixels,)) + front + call(operation, answer, 7)
        for operation, answer in enumerate(others, len(good)):
            for name, content in (("good", answer), ("failed", bytes(len(answer))), ("cut", answer[:-1]), ("long", answer + b"x"), ("code", b"\xfb" + b"\xff" * 7)):
                yield f"{name} {operation} {pixels}", bytes((pixels,)) + opened + call(operation, content) + session[6]
    frames = b"".join(call(2, good[2], 0, 1) for _ in range(3))
    size = lambda width, height: call(1, status + struct.pack("<ii", width, height))
    frame = call(2, status + some(96))
    yield "grown", b"\0" + session[0] + session[1] + size(12, 8) + frame
    yield "opened twice", b"\0" + session[0] + session[1] + session[0] + size(12, 8) + frame
    yield "opened again", b"\0" + session[0] + session[1] + session[6] + session[0] + size(12, 8) + frame
    yield "threads", b"\0" + session[0] + session[1] + frames + session[6] + frames
    yield "endless", b"\0" + session[7] + call(9, code + struct.pack("<Q", 8) + some(8))
    yield "short", b"\0" + session[12] + call(14, code + struct.pack("<Q", 64) + some(8))
    yield "black", b"\1" + session[0] + session[1] + call(2, status + struct.pack("<QQ", 12, 0)) + call(8, code + struct.pack("<QQQ", 60, 60, 4) + b"head")


TARGETS = {
    "bitmap_file": bitmap_file,
    "calibration_memory": calibration_memory,
    "configuration": configuration,
    "detection": detection,
    "device": device,
    "feature_records": feature_records,
    "picture_file": picture_file,
    "recording": recording,
    "replay": replay,
    "scenario": scenario,
    "session": session,
    "tool_arguments": tool_arguments,
}


def main():
    target, folder = sys.argv[1], pathlib.Path(sys.argv[2])
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    for name, content in TARGETS[target]():
        (folder / name).write_bytes(content)


if __name__ == "__main__":
    main()
