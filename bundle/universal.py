#!/usr/bin/env python3
"""Joins bundles of one processor each to a universal one, their debug information too.

    universal.py LIPO BUNDLE SLICE...

Each slice is a bundle, with its .dSYM beside it. All but the executable must be the same in each:
the slices' signatures seal it. Nothing is written where BUNDLE is newer than what it is made of.
"""
import pathlib
import shutil
import subprocess
import sys


def files_of(folder):
    return {path.relative_to(folder): path for path in sorted(folder.rglob("*")) if path.is_file()}


def is_for_one_processor(path):
    return path.parent.name in ("MacOS", "DWARF")


def join(lipo, output, slices):
    """Makes the folder `output` of folders that differ in executable files only."""
    trees = [files_of(slice_) for slice_ in slices]
    for tree, slice_ in zip(trees, slices):
        if tree.keys() != trees[0].keys():
            sys.exit(f"universal.py: {slice_} has other files than {slices[0]}")
    for name, first in trees[0].items():
        target = output / name
        target.parent.mkdir(parents=True, exist_ok=True)
        if is_for_one_processor(first):
            if subprocess.run([lipo, "-create", *(tree[name] for tree in trees), "-output", target],
                              check=False).returncode:
                sys.exit("universal.py: the executables cannot be joined")
            target.chmod(first.stat().st_mode)
            continue
        for tree in trees[1:]:
            if tree[name].read_bytes() != first.read_bytes():
                sys.exit(f"universal.py: {tree[name]} differs from {first}")
        shutil.copy2(first, target)


def newest(folders):
    return max((path.stat().st_mtime for folder in folders for path in files_of(folder).values()), default=0)


def main(arguments):
    if len(arguments) < 3:
        sys.exit("usage: universal.py LIPO BUNDLE SLICE...")
    lipo, bundle, *slices = arguments
    for suffix in ("", ".dSYM"):
        output = pathlib.Path(bundle + suffix)
        parts = [pathlib.Path(slice_ + suffix) for slice_ in slices]
        for part in parts:
            if not part.is_dir():
                sys.exit(f"universal.py: there is no {part}")
        stamp = output.with_name(output.name + ".joined")
        if output.is_dir() and stamp.exists() and stamp.stat().st_mtime >= newest(parts):
            continue
        partial = output.with_name(output.name + ".partial")
        for stale in (partial, output):
            shutil.rmtree(stale, ignore_errors=True)
        join(lipo, partial, parts)
        partial.rename(output)
        stamp.touch()


main(sys.argv[1:])
