#!/usr/bin/env python3
"""Makes what is handed to users of a built bundle.

    package.py BUNDLE FOLDER

FOLDER is made anew. It receives NSProcessInfoZKT-VERSION-macos.zip, the same with -dSYM.zip for the
debug information beside the bundle, and SHA256SUMS. The same files give the same bytes: in order of
name, with one time (SOURCE_DATE_EPOCH, else that of the last commit), nobody's user number, and
stored as they are, since what compression gives depends on the version of zlib.
"""
import hashlib
import os
import pathlib
import plistlib
import shutil
import subprocess
import sys
import time
import zipfile

SOURCES = pathlib.Path(__file__).resolve().parent.parent
# Beside the bundle in the archive, where they exist.
DOCUMENTS = ("INSTALL.txt", "LICENSE", "docs/reference.html")
EARLIEST = (1980, 1, 1, 0, 0, 0)  # that a zip archive can tell


def timestamp():
    seconds = os.environ.get("SOURCE_DATE_EPOCH")
    if seconds is None:
        git = subprocess.run(["git", "-C", SOURCES, "log", "-1", "--format=%ct"],
                             capture_output=True, text=True, check=False)
        seconds = git.stdout.strip() or "0"
    return max(EARLIEST, time.gmtime(int(seconds))[:6])


def below(folder):
    """(path in the archive, file) of everything in a folder, the folder's own name included."""
    return [(path.relative_to(folder.parent).as_posix(), path)
            for path in sorted(folder.rglob("*")) if path.is_file()]


def write(archive, top, entries, moment):
    with zipfile.ZipFile(archive, "w", zipfile.ZIP_STORED) as out:
        for name, path in sorted(entries):
            entry = zipfile.ZipInfo(f"{top}/{name}", moment)
            entry.create_system = 3  # Unix: the mode below counts
            entry.external_attr = (0o100755 if path.stat().st_mode & 0o100 else 0o100644) << 16
            out.writestr(entry, path.read_bytes())


def main(arguments):
    if len(arguments) != 2:
        sys.exit("usage: package.py BUNDLE FOLDER")
    bundle, folder = (pathlib.Path(argument).resolve() for argument in arguments)
    debug_information = pathlib.Path(f"{bundle}.dSYM")
    for needed in (bundle / "Contents/Info.plist", debug_information):
        if not needed.exists():
            sys.exit(f"package.py: there is no {needed}; './dev package' builds what it needs")
    version = plistlib.loads((bundle / "Contents/Info.plist").read_bytes())["CFBundleShortVersionString"]
    documents = [(path.name, path) for path in map(SOURCES.joinpath, DOCUMENTS) if path.exists()]
    name = f"{bundle.stem}-{version}"
    archives = {
        f"{name}-macos.zip": below(bundle) + documents,
        f"{name}-macos-dSYM.zip": below(debug_information),
    }
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    sums = ""
    for archive, entries in sorted(archives.items()):
        write(folder / archive, name, entries, timestamp())
        sums += f"{hashlib.sha256((folder / archive).read_bytes()).hexdigest()}  {archive}\n"
    (folder / "SHA256SUMS").write_text(sums)
    print(sums, end="")


try:
    main(sys.argv[1:])
except OSError as error:
    sys.exit(f"package.py: {error.filename}: {error.strerror}")
