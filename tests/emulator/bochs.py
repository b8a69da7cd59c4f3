"""Runs a bootable CD in Bochs until its serial output says that the end is reached."""
import os
import re
import shutil
import subprocess
import time

from boot_image import Unavailable

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


def run(folder, image, processor, end, seconds):
    """The serial output up to a match of `end`. Raises TimeoutError, with what there is, when the
    emulator ends before it or runs for more than `seconds`."""
    if not shutil.which("bochs"):
        raise Unavailable("Bochs is not installed")
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
        emulator = subprocess.Popen(["bochs", "-q", "-f", configuration, "-rc", commands],
                                    stdin=subprocess.DEVNULL, stdout=output, stderr=subprocess.STDOUT, cwd=folder)
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
