"""Digit files for tests of the viewer, written here independently of the program."""

import os

# Of pi, in both radices.
DECIMAL = (
    "14159265358979323846264338327950288419716939937510" "58209749445923078164062862089986280348253421170679"
    "82148086513282306647093844609550582231725359408128" "48111745028410270193852110555964462294895493038196"
    "44288109756659334461284756482337867831652712019091")
HEXADECIMAL = (
    "243f6a8885a308d313198a2e03707344a4093822299f31d008" "2efa98ec4e6c89452821e638d01377be5466cf34e90c6cc0ac"
    "29b7c97c50dd3f84d5b5b5470917")


def write_file(folder, name, content):
    path = os.path.join(folder, name)
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "wb") as file:
        file.write(content)


def compressed(digits, radix, digits_per_file, number, total):
    """The bytes of one compressed file; `digits` are its own."""
    header = (
        "#Compressed Digit File\r\n\r\n"
        "FileVersion:\t1.1.0\r\n\r\n"
        f"Base:\t{radix}\r\n\r\n"
        "FirstDigits:\t3.\r\n\r\n"
        f"TotalDigits:\t{total:020}\r\n\r\n"
        f"Blocksize:\t{digits_per_file}\r\n"
        f"BlockID:\t{number}\r\n\r\n"
        "EndHeader\r\n\r\n\0")
    in_word = 19 if radix == 10 else 16
    words = [digits[at:at + in_word].ljust(in_word, "0") for at in range(0, len(digits), in_word)]
    return header.encode() + b"".join(int(word, radix).to_bytes(8, "little") for word in words)


def write_result(folder, name, digits, radix, digits_per_file, numbers=None):
    """The files of a result, or those with the given numbers. The last one knows the total unless it is full."""
    for number, at in enumerate(range(0, len(digits), digits_per_file)):
        if numbers is not None and number not in numbers:
            continue
        own = digits[at:at + digits_per_file]
        total = len(digits) if len(own) < digits_per_file else 0
        write_file(folder, f"{name}{number}.qcd", compressed(own, radix, digits_per_file, number, total))


def write_digit_files(folder):
    """Text and compressed files. Those in "full" know no total; those in "here" and "there" belong together."""
    write_file(folder, "pi.txt", b"3." + DECIMAL.encode())
    write_file(folder, "hex.txt", b"3." + HEXADECIMAL.encode())
    write_result(folder, "pi/pi - ", DECIMAL, 10, 100)
    write_result(folder, "few/pi", DECIMAL, 10, 100)
    write_result(folder, "full/pi - ", DECIMAL[:200], 10, 100)
    write_result(folder, "here/pi - ", DECIMAL, 10, 100, numbers=[0, 2])
    write_result(folder, "there/pi - ", DECIMAL, 10, 100, numbers=[1])
    write_result(folder, "hex/hex - ", HEXADECIMAL, 16, 1000)
