#!/usr/bin/python3
"""Makes a scrambled file of correction data. Its content follows from its name alone.

usage: makeCaf.py OUTPUT

Before it is scrambled a file holds, in little-endian order: the letters "CAF1"; the identifier, 16
bytes filled up with zeros; the number of focal lengths and of apertures, 16 bits each; then 32-bit
floats. For each focal length: the length in millimetres, three coefficients of the radial
distortion r -> r (1 + k1 r^2 + k2 r^4 + k3 r^6), a scale of red and of blue; then for each aperture
the aperture and three coefficients of the fall of light to the corners. At the end stands the
CRC-32 of all that.

It is scrambled by adding, modulo 2, a stream of SHA-256 blocks over the identifier and a counter.
"""

import hashlib
import re
import struct
import sys
import zlib
from pathlib import Path

FOCAL_LENGTHS = 24
APERTURES = (2.8, 4.0, 5.6, 8.0, 11.0, 16.0)


def fail(text):
    sys.exit(f"makeCaf: {text}")


def share(identifier, purpose):
    """A number from 0 to 1 that belongs to the file and the purpose."""
    digest = hashlib.sha256(f"{identifier}/{purpose}".encode()).digest()
    return int.from_bytes(digest[:4], "big") / 0xFFFFFFFF


def table(identifier):
    shortest = round(12 + 16 * share(identifier, "shortest"))
    longest = shortest * (2 + 3 * share(identifier, "zoom"))
    barrel = -0.02 - 0.04 * share(identifier, "barrel")
    cushion = 0.01 + 0.02 * share(identifier, "cushion")
    fringe = 0.0004 * (share(identifier, "fringe") - 0.5)
    corner = -0.3 - 0.6 * share(identifier, "corner")

    data = struct.pack("<4s16sHH", b"CAF1", identifier.encode(), FOCAL_LENGTHS, len(APERTURES))
    for step in range(FOCAL_LENGTHS):
        # Barrel turns into cushion on the way from the wide end to the long one.
        way = step / (FOCAL_LENGTHS - 1)
        focal = shortest + way * (longest - shortest)
        k1 = barrel * (1 - way) * (1 - way) + cushion * way
        data += struct.pack("<6f", focal, k1, -k1 / 4, k1 / 20, 1 + fringe * (1 - way),
                            1 - fringe * (1 - way))
        for aperture in APERTURES:
            fall = corner * (APERTURES[0] / aperture) * (1 - way / 2)
            data += struct.pack("<4f", aperture, fall, -fall / 3, fall / 12)
    return data + struct.pack("<I", zlib.crc32(data))


def scrambled(identifier, data):
    stream = b"".join(hashlib.sha256(f"{identifier}:{block}".encode()).digest()
                      for block in range(len(data) // 32 + 1))
    return bytes(byte ^ key for byte, key in zip(data, stream))


def main():
    if len(sys.argv) != 2:
        fail("usage: makeCaf.py OUTPUT")
    output = Path(sys.argv[1])
    if not re.fullmatch(r"[A-Z]\d{5}[a-z]_\d{3}\.caf", output.name):
        fail(f"{output.name} isn't named like C24560b_001.caf")
    try:
        output.write_bytes(scrambled(output.stem, table(output.stem)))
    except OSError as error:
        fail(f"{output} can't be written: {error.strerror}")


if __name__ == "__main__":
    main()
