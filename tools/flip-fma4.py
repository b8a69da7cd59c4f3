#!/usr/bin/env python3
"""Prepares an executable for Bochs 2.7, which reads one bit of some instructions the wrong way round.

    flip-fma4.py PROGRAM COPY

The W bit of FMA4, VPCMOV, VPPERM and of the variable VPROT and VPSHL says which operand may be in memory,
and so the order of the last two. Bochs takes it inverted for all of these (it computes a * c + b where
a * b + c was asked for). COPY is PROGRAM with that bit inverted in every such instruction; only Bochs
runs it right. VPPERM stays wrong there in another way: a program that has one is refused.

Exit status: 0, or 1 with a message. The number of instructions goes to standard output.
"""
import re
import struct
import subprocess
import sys

FLIPPED = re.compile(r"vfn?m(add|sub)[ps][sd]|vfm(addsub|subadd)p[sd]|vpcmov|v(prot|pshl)[bwdq]")
REFUSED = "vpperm"
THREE_BYTE_PREFIXES = (0xC4, 0x8F)  # VEX and XOP; the W bit is the highest of their third byte


def fail(message):
    sys.exit(f"flip-fma4.py: {message}")


def instructions(program):
    """(address, bytes, mnemonic, operands) of every instruction that may have to be flipped."""
    listing = subprocess.run(["objdump", "-d", "-w", "--no-show-raw-insn", program], check=True, text=True,
                             stdout=subprocess.PIPE).stdout
    line_of = re.compile(r"^\s*([0-9a-f]+):\s+(\S+)\s*(.*)$", re.MULTILINE)
    for match in line_of.finditer(listing):
        address, mnemonic, operands = match.groups()
        if FLIPPED.fullmatch(mnemonic) or mnemonic == REFUSED:
            yield int(address, 16), mnemonic, operands


def segments(image):
    """(virtual address, file offset, size) of the loaded parts of a 64-bit ELF file."""
    if image[:5] != b"\x7fELF\x02":
        fail("not a 64-bit ELF file")
    table, = struct.unpack_from("<Q", image, 32)
    entry_size, count = struct.unpack_from("<HH", image, 54)
    for i in range(count):
        kind, _flags, offset, address, _physical, size = struct.unpack_from("<IIQQQQ", image, table + i * entry_size)
        if kind == 1:
            yield address, offset, size


def file_offset(loaded, address):
    for start, offset, size in loaded:
        if start <= address < start + size:
            return offset + address - start
    fail(f"no file offset for address {address:#x}")


def flip(program, copy):
    with open(program, "rb") as file:
        image = bytearray(file.read())
    loaded = list(segments(image))
    count = 0
    for address, mnemonic, operands in instructions(program):
        if mnemonic == REFUSED:
            fail(f"{mnemonic} at {address:#x}: Bochs does not run it right")
        if operands.startswith("$"):
            continue  # a rotation by a constant: its W bit is read right
        at = file_offset(loaded, address)
        if image[at] not in THREE_BYTE_PREFIXES:
            fail(f"{mnemonic} at {address:#x} starts with {image[at]:#x}")
        image[at + 2] ^= 0x80
        count += 1
    with open(copy, "wb") as file:
        file.write(image)
    return count


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    print(flip(sys.argv[1], sys.argv[2]), "instructions")
