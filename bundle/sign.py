#!/usr/bin/env python3
"""Signs a bundle ad hoc, as `codesign --sign -` does on a Mac, where there is no codesign.

    sign.py BUNDLE

An ad hoc signature names nobody: it lets a Mac notice that a file was changed. It has two parts.
Contents/_CodeSignature/CodeResources lists the hashes of the bundle's other files; macOS refuses
a signed bundle without it ("code has no resources but signature indicates they must be present").
The code directory, at the end of the executable, holds the hashes of the executable's pages, of
Info.plist and of CodeResources. Both come in SHA-1 and in SHA-256, since macOS before 10.11.4 reads
SHA-1 alone.
"""
import hashlib
import pathlib
import plistlib
import struct
import sys

PAGE = 4096  # of the hashes, whatever the processor's is
ARM64 = 0x0100000C
LC_SEGMENT_64 = 0x19
LC_CODE_SIGNATURE = 0x1D

# What codesign writes for a bundle with a Resources folder; a Mac reads the rules from the file.
LOCALIZED = {
    r"^Resources/.*\.lproj/": {"optional": True, "weight": 1000.0},
    r"^Resources/Base\.lproj/": {"weight": 1010.0},
    r"^Resources/.*\.lproj/locversion.plist$": {"omit": True, "weight": 1100.0},
}
RULES = {"^Resources/": True, "^version.plist$": True, **LOCALIZED}
RULES2 = {
    "^.*": True,
    "^[^/]+$": {"nested": True, "weight": 10.0},
    "^(Frameworks|SharedFrameworks|PlugIns|Plug-ins|XPCServices|Helpers|MacOS"
    "|Library/(Automator|Spotlight|LoginItems))/": {"nested": True, "weight": 10.0},
    r".*\.dSYM($|/)": {"weight": 11.0},
    r"^(.*/)?\.DS_Store$": {"omit": True, "weight": 2000.0},
    r"^Info\.plist$": {"omit": True, "weight": 20.0},
    r"^PkgInfo$": {"omit": True, "weight": 20.0},
    r"^embedded\.provisionprofile$": {"weight": 20.0},
    r"^version\.plist$": {"weight": 20.0},
    "^Resources/": {"weight": 20.0},
    **LOCALIZED,
}


def sha1(data):
    return hashlib.sha1(data).digest()


def sha256(data):
    return hashlib.sha256(data).digest()


def seal(contents, executable):
    """The text of CodeResources: the hash of every file but the executable and Info.plist."""
    files = {}
    files2 = {}
    for path in sorted(contents.rglob("*")):
        name = path.relative_to(contents).as_posix()
        if path.is_dir() or path == executable or name in ("Info.plist", "_CodeSignature/CodeResources"):
            continue
        if not name.startswith("Resources/") or ".lproj/" in name or path.is_symlink():
            sys.exit(f"sign.py: {path}: only plain files in Resources can be sealed")
        data = path.read_bytes()
        files[name] = sha1(data)
        files2[name] = {"hash": sha1(data), "hash2": sha256(data)}
    return plistlib.dumps({"files": files, "files2": files2, "rules": RULES, "rules2": RULES2})


def blob(magic, body):
    return struct.pack(">II", magic, 8 + len(body)) + body


def code_directory(hashed, hash_type, code, text, identifier, special):
    """`special`: what the slots below 0 hash, from slot -1 downwards. `text`: offset and size."""
    ident = identifier.encode() + b"\0"
    pages = [code[at:at + PAGE] for at in range(0, len(code), PAGE)]
    size = len(hashed(b""))
    ident_offset = 88
    hash_offset = ident_offset + len(ident) + size * len(special)
    fields = struct.pack(
        ">7I4B4IQ3Q", 0x20400, 2, hash_offset, ident_offset, len(special), len(pages), len(code),  # 2: ad hoc
        size, hash_type, 0, PAGE.bit_length() - 1, 0, 0, 0, 0, 0, text[0], text[1], 0)
    slots = b"".join(hashed(part) for part in [*reversed(special), *pages])
    return blob(0xFADE0C02, fields + ident + slots)


def signature(code, text, identifier, plist, resources):
    requirements = blob(0xFADE0C01, struct.pack(">I", 0))
    special = [plist, requirements, resources]
    blobs = {
        0: code_directory(sha1, 1, code, text, identifier, special),
        2: requirements,
        0x1000: code_directory(sha256, 2, code, text, identifier, special),
        0x10000: blob(0xFADE0B01, b""),  # where a certificate's signature would be
    }
    offset = 12 + 8 * len(blobs)
    index = struct.pack(">I", len(blobs))
    for slot, data in blobs.items():
        index += struct.pack(">II", slot, offset)
        offset += len(data)
    return blob(0xFADE0CC0, index + b"".join(blobs.values()))


def aligned(size, to):
    return -(-size // to) * to


def sign_executable(path, identifier, plist, resources):
    code = bytearray(path.read_bytes())
    magic, processor, _, _, count, commands_size = struct.unpack_from("<6I", code)
    if magic != 0xFEEDFACF:
        sys.exit(f"sign.py: {path} is no 64-bit Mach-O file of one architecture")
    commands_end = 32 + commands_size
    at = 32
    text = linkedit = None
    first_section = len(code)
    for _ in range(count):
        command, size = struct.unpack_from("<II", code, at)
        if command == LC_CODE_SIGNATURE:
            sys.exit(f"sign.py: {path} is signed already")
        if command == LC_SEGMENT_64:
            name = bytes(code[at + 8:at + 24]).rstrip(b"\0")
            offset, length = struct.unpack_from("<QQ", code, at + 40)
            if name == b"__TEXT":
                text = (offset, length)
                sections, = struct.unpack_from("<I", code, at + 64)
                first_section = min(struct.unpack_from("<I", code, at + 72 + 80 * section + 48)[0]
                                    for section in range(sections))
            elif name == b"__LINKEDIT":
                linkedit = (at, offset)
        at += size
    if not text or not linkedit:
        sys.exit(f"sign.py: {path} has no __TEXT or no __LINKEDIT segment")
    if commands_end + 16 > first_section:
        sys.exit(f"sign.py: {path} has no room for another load command")

    code += bytes(aligned(len(code), 16) - len(code))
    # Its size depends on the number of pages only, so that a first one tells it.
    size = aligned(len(signature(code, text, identifier, plist, resources)), 16)
    struct.pack_into("<II", code, 16, count + 1, commands_size + 16)
    struct.pack_into("<4I", code, commands_end, LC_CODE_SIGNATURE, 16, len(code), size)
    length = len(code) + size - linkedit[1]
    struct.pack_into("<Q", code, linkedit[0] + 32, aligned(length, 0x4000 if processor == ARM64 else 0x1000))
    struct.pack_into("<Q", code, linkedit[0] + 48, length)
    path.write_bytes(code + signature(code, text, identifier, plist, resources).ljust(size, b"\0"))


def main(arguments):
    if len(arguments) != 1:
        sys.exit("usage: sign.py BUNDLE")
    contents = pathlib.Path(arguments[0]) / "Contents"
    plist = (contents / "Info.plist").read_bytes()
    information = plistlib.loads(plist)
    executable = contents / "MacOS" / information["CFBundleExecutable"]
    resources = seal(contents, executable)
    sign_executable(executable, information["CFBundleIdentifier"], plist, resources)
    (contents / "_CodeSignature").mkdir(exist_ok=True)
    (contents / "_CodeSignature" / "CodeResources").write_bytes(resources)


main(sys.argv[1:])
