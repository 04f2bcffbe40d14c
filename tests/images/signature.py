"""Reads the ad hoc signature of a bundle and holds it against the bundle's files, as macOS does.

Nothing here is shared with what signs on Linux, so that the two have to agree.
"""
import hashlib
import pathlib
import plistlib
import struct

HASHES = {1: hashlib.sha1, 2: hashlib.sha256}
RESOURCE_HASHES = {"hash": hashlib.sha1, "hash2": hashlib.sha256}


class Refused(Exception):
    """What is wrong, in a sentence."""


def require(condition, problem):
    if not condition:
        raise Refused(problem)


def slices_of(file):
    """Processor and bytes of each part of a universal file; of any other, the file."""
    if file[:4] != b"\xca\xfe\xba\xbe":
        return {struct.unpack("<I", file[4:8])[0]: file}
    count, = struct.unpack(">I", file[4:8])
    parts = [struct.unpack(">5I", file[8 + 20 * part:28 + 20 * part]) for part in range(count)]
    return {processor: file[offset:offset + size] for processor, _, offset, size, _ in parts}


def load_commands(code):
    magic, _, _, _, count, _, _, _ = struct.unpack("<8I", code[:32])
    require(magic == 0xFEEDFACF, "not a 64-bit Mach-O file")
    at = 32
    for _ in range(count):
        command, size = struct.unpack("<2I", code[at:at + 8])
        yield command, code[at:at + size]
        at += size


def signature_of(code):
    """The signature's bytes, and where they begin."""
    found = [body for command, body in load_commands(code) if command == 0x1D]
    require(len(found) == 1, "not signed")
    offset, size = struct.unpack("<2I", found[0][8:16])
    require(offset + size == len(code), "the signature does not end the file")
    linkedit = [body for command, body in load_commands(code)
                if command == 0x19 and body[8:24].rstrip(b"\0") == b"__LINKEDIT"]
    start, length = struct.unpack("<2Q", linkedit[0][40:56])
    require(start + length == len(code), "__LINKEDIT does not end with the file")
    return code[offset:], offset


def blobs_of(signature):
    magic, length, count = struct.unpack(">3I", signature[:12])
    require(magic == 0xFADE0CC0, "no embedded signature")
    blobs = {}
    for entry in range(count):
        slot, at = struct.unpack(">2I", signature[12 + 8 * entry:20 + 8 * entry])
        size, = struct.unpack(">I", signature[at + 4:at + 8])
        require(at + size <= length, f"slot {slot:#x} ends behind the signature")
        blobs[slot] = signature[at:at + size]
    return blobs


class CodeDirectory:
    def __init__(self, data):
        (magic, _, self.version, self.flags, hashes, ident, special, pages,
         self.code_limit) = struct.unpack(">9I", data[:36])
        size, self.hash_type, _, page = data[36:40]
        require(magic == 0xFADE0C02, "no code directory")
        require(self.hash_type in HASHES, f"unknown kind of hash {self.hash_type}")
        self.hash = HASHES[self.hash_type]
        require(self.hash().digest_size == size, "a hash of another size")
        self.page_size = 1 << page
        self.identifier = data[ident:data.index(b"\0", ident)].decode()
        self.slots = {slot: data[hashes + slot * size:hashes + (slot + 1) * size]
                      for slot in range(-special, pages)}
        self.executable_segment = struct.unpack(">3Q", data[64:88])

    def pages(self):
        return sum(slot >= 0 for slot in self.slots)


def check_code_directory(directory, code, signature_at, special):
    require(directory.flags == 2, "not an ad hoc signature")
    require(directory.code_limit == signature_at, "not all code is hashed")
    require(directory.pages() == -(-signature_at // directory.page_size), "pages are missing")
    for slot, data in special.items():
        require(directory.slots.get(-slot) == directory.hash(data).digest(), f"slot {-slot} was changed")
    for page in range(directory.pages()):
        data = code[page * directory.page_size:min((page + 1) * directory.page_size, signature_at)]
        require(directory.slots[page] == directory.hash(data).digest(), f"page {page} was changed")


def check_resources(contents, sealed):
    resources = plistlib.loads(sealed)
    found = {path.relative_to(contents).as_posix() for path in (contents / "Resources").rglob("*")
             if not path.is_dir()}
    for kind in ("files", "files2"):
        require(set(resources[kind]) == found,
                f"{kind}: {sorted(set(resources[kind]) ^ found)} is missing or was added")
    for name in found:
        data = (contents / name).read_bytes()
        require(resources["files"][name] == hashlib.sha1(data).digest(), f"{name} was changed")
        for key, function in RESOURCE_HASHES.items():
            require(resources["files2"][name][key] == function(data).digest(), f"{name} was changed")
    for kind in ("rules", "rules2"):
        require(resources[kind], f"no {kind}")


def check_slice(code, plist, resources):
    """The code directories of one processor's part."""
    signature, at = signature_of(code)
    blobs = blobs_of(signature)
    require(blobs.keys() == {0, 2, 0x1000, 0x10000}, f"slots {sorted(blobs)}")
    directories = [CodeDirectory(blobs[slot]) for slot in (0, 0x1000)]
    for directory in directories:
        check_code_directory(directory, code, at, {1: plist, 2: blobs[2], 3: resources})
    return directories


def verify(bundle):
    """By processor, the code directories of a bundle that is as it was signed; else Refused."""
    contents = pathlib.Path(bundle) / "Contents"
    plist = (contents / "Info.plist").read_bytes()
    sealed = contents / "_CodeSignature" / "CodeResources"
    require(sealed.exists(), "no CodeResources")
    file = (contents / "MacOS" / plistlib.loads(plist)["CFBundleExecutable"]).read_bytes()
    directories = {processor: check_slice(code, plist, sealed.read_bytes())
                   for processor, code in slices_of(file).items()}
    check_resources(contents, sealed.read_bytes())
    return directories
