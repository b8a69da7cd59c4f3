"""A bootable CD that runs one static program as the first process of a Linux kernel, without root."""
import glob
import os
import shutil
import stat
import subprocess
import tempfile

ISOLINUX = "/usr/lib/ISOLINUX/isolinux.bin"
LOADER_MODULE = "/usr/lib/syslinux/modules/bios/ldlinux.c32"
KERNEL_PACKAGE = "linux-image-cloud-amd64"  # small, and decompresses fast


class Unavailable(Exception):
    """Something that this machine lacks and may not be able to get."""


def _run(command, **options):
    result = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False,
                            **options)
    if result.returncode != 0:
        raise Unavailable(f"{' '.join(command)}:\n{result.stdout[-2000:]}")
    return result.stdout


def kernel(cache):
    """The newest cloud kernel of the distribution, downloaded once and never installed."""
    def found():
        return sorted(glob.glob(os.path.join(cache, "kernel", "boot", "vmlinuz-*")))

    if not found():
        depends = _run(["apt-cache", "depends", KERNEL_PACKAGE])
        packages = [line.split()[-1] for line in depends.splitlines() if "Depends: linux-image" in line]
        if not packages:
            raise Unavailable(f"no kernel package behind {KERNEL_PACKAGE}")
        os.makedirs(cache, exist_ok=True)
        _run(["apt-get", "download", packages[0]], cwd=cache)
        archives = glob.glob(os.path.join(cache, "linux-image-*.deb"))
        # Under its name only when it is complete.
        unpacked = tempfile.mkdtemp(dir=cache)
        _run(["dpkg-deb", "-x", archives[0], unpacked])
        os.rename(unpacked, os.path.join(cache, "kernel"))
        os.remove(archives[0])
    if not found():
        raise Unavailable("the kernel package holds no kernel")
    return found()[-1]


def _archive_entry(name, mode, data=b"", device=(0, 0)):
    """One file of a cpio archive in the "newc" form, which the kernel unpacks at start."""
    name_bytes = name.encode() + b"\0"
    fields = (0, mode, 0, 0, 1, 0, len(data), 0, 0, device[0], device[1], len(name_bytes), 0)
    header = b"070701" + b"".join(b"%08X" % field for field in fields)
    padded_name = header + name_bytes
    padded_name += b"\0" * (-len(padded_name) % 4)
    return padded_name + data + b"\0" * (-len(data) % 4)


def _contents(path):
    with open(path, "rb") as file:
        return file.read()


def initial_files(first_process, program):
    """The archive with the programs and the console that they write to."""
    archive = _archive_entry("dev", stat.S_IFDIR | 0o755)
    archive += _archive_entry("dev/console", stat.S_IFCHR | 0o600, device=(5, 1))
    archive += _archive_entry("tmp", stat.S_IFDIR | 0o777)
    archive += _archive_entry("first_process", stat.S_IFREG | 0o755, _contents(first_process))
    archive += _archive_entry("program", stat.S_IFREG | 0o755, _contents(program))
    archive += _archive_entry("TRAILER!!!", 0)
    return archive


def build(folder, first_process, program, arguments, cache):
    """Writes the image into `folder` and returns its path.

    The program's output goes to the first serial port, then a line on how it ended (first_process.cpp).
    """
    root = os.path.join(folder, "cd")
    os.makedirs(root, exist_ok=True)
    for source, name in ((ISOLINUX, "isolinux.bin"), (LOADER_MODULE, "ldlinux.c32"), (kernel(cache), "kernel")):
        if not os.path.exists(source):
            raise Unavailable(f"{source} is missing")
        shutil.copyfile(source, os.path.join(root, name))
    with open(os.path.join(root, "files.cpio"), "wb") as file:
        file.write(initial_files(first_process, program))
    with open(os.path.join(root, "isolinux.cfg"), "w", encoding="ascii") as file:
        file.write("default test\nprompt 0\nlabel test\n  kernel kernel\n  append initrd=files.cpio console=ttyS0 "
                   "rdinit=/first_process quiet nokaslr mitigations=off cryptomgr.notests random.trust_cpu=on lpj=200000 "
                   f"GTEST_COLOR=no -- {' '.join(arguments)}\n")
    image = os.path.join(folder, "boot.iso")
    _run(["xorriso", "-as", "mkisofs", "-quiet", "-o", image, "-b", "isolinux.bin", "-no-emul-boot",
          "-boot-load-size", "4", "-boot-info-table", "-c", "boot.cat", root])
    return image
