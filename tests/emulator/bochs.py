"""Runs a bootable CD in Bochs until its serial output says that the end is reached."""
import os
import re
import subprocess
import time

from boot_image import Unavailable

EMULATOR = "/usr/bin/bochs-bin"  # what the script "bochs" starts

# Bochs 2.7 loses a fused multiply-add whose terms cancel until the highest bit that is left is the highest
# of the low half of its 128-bit sum: it shifts that half left by -1, which the processor takes for 63, and
# the result is zero. A rotation does what was meant (right by one place; the lowest bits are zeros), and
# is the same as the shift for all other counts, where only zeros leave at the top. The two instructions
# differ in one byte. The code is float64_muladd's "zSig0 = zSig1 << shiftcount" as Debian built it.
LOST_BIT = bytes.fromhex("4c89ca 418d4c0aff 48d3e2 29ce 0fbff6")
REPAIRED = bytes.fromhex("4c89ca 418d4c0aff 48d3c2 29ce 0fbff6")

CONFIGURATION = """\
megs: 256
cpu: model={processor}, ips=10000000, reset_on_triple_fault=0
romimage: file=/usr/share/bochs/BIOS-bochs-latest
vgaromimage: file=/usr/share/vgabios/vgabios.bin
display_library: rfb, options="timeout=0"
sound: waveoutdrv=dummy
plugin_ctrl: unmapped=1
clock: sync=none
ata0-master: type=cdrom, path="{image}", status=inserted
boot: cdrom
com1: enabled=1, mode=file, dev="{serial}"
log: "{log}"
panic: action=fatal
error: action=ignore
info: action=ignore
"""


def repaired(folder):
    """A copy of the emulator that computes fused multiply-add right."""
    if not os.path.exists(EMULATOR):
        raise Unavailable("Bochs is not installed")
    with open(EMULATOR, "rb") as file:
        code = file.read()
    if code.count(LOST_BIT) != 1:
        raise Unavailable(f"{EMULATOR} is not the Bochs 2.7 whose fused multiply-add is known")
    copy = os.path.join(folder, "bochs-repaired")
    with open(copy, "wb") as file:
        file.write(code.replace(LOST_BIT, REPAIRED))
    os.chmod(copy, 0o755)
    return copy


def run(folder, image, processor, end, seconds):
    """The serial output up to a match of `end`. Raises TimeoutError, with what there is, when the
    emulator ends before it or runs for more than `seconds`."""
    serial = os.path.join(folder, "serial.txt")
    output_path = os.path.join(folder, "bochs.out")
    configuration, commands = os.path.join(folder, "bochsrc"), os.path.join(folder, "commands")
    open(serial, "w", encoding="ascii").close()
    with open(configuration, "w", encoding="ascii") as file:
        file.write(CONFIGURATION.format(processor=processor, image=image, serial=serial,
                                        log=os.path.join(folder, "bochs.log")))
    with open(commands, "w", encoding="ascii") as file:
        file.write("c\n")  # leave the debugger's prompt
    with open(output_path, "w", encoding="ascii") as output:
        emulator = subprocess.Popen([repaired(folder), "-q", "-f", configuration, "-rc", commands],
                                    stdin=subprocess.DEVNULL, stdout=output, stderr=subprocess.STDOUT, cwd=folder,
                                    env={**os.environ, "GUEST": "guest"})
    try:
        return _wait_for(emulator, serial, output_path, re.compile(end), time.monotonic() + seconds)
    finally:
        emulator.kill()
        emulator.wait()


def _wait_for(emulator, serial, output, end, deadline):
    while True:
        stopped = emulator.poll() is not None
        with open(serial, encoding="utf-8", errors="replace") as file:
            text = file.read()
        if end.search(text):
            return text
        if stopped or time.monotonic() > deadline:
            with open(output, encoding="utf-8", errors="replace") as file:
                raise TimeoutError(file.read()[-2000:] + text)
        time.sleep(0.1)
