"""The bundle as a user gets it: property list, licence, signature, nothing of the machine it was
built on.

    shipped.py BUNDLE SOURCES VERSION TOOLS
"""
import pathlib
import plistlib
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest

from signature import Refused, load_commands, slices_of, verify

bundle, sources, version, tools = (pathlib.Path(argument) for argument in sys.argv[1:5])
version = str(version)
executable = bundle / "Contents/MacOS/NSProcessInfoZKT"
dsym = pathlib.Path(f"{bundle}.dSYM")


def files(folder):
    return sorted(path for path in folder.rglob("*") if path.is_file())


# What Mach-O files say of their processor, and in words.
X86_64, ARM64 = 0x01000007, 0x0100000C
PROCESSORS = {X86_64: "x86_64", ARM64: "arm64"}


def output_of(tool, *arguments):
    return subprocess.run([tools / tool, *arguments], check=True, capture_output=True, text=True).stdout


class Contents(unittest.TestCase):
    def test_holds_these_files_and_no_other(self):
        self.assertEqual([path.relative_to(bundle).as_posix() for path in files(bundle)], [
            "Contents/Info.plist", "Contents/MacOS/NSProcessInfoZKT",
            "Contents/Resources/INSTALL.txt", "Contents/Resources/LICENSE",
            "Contents/_CodeSignature/CodeResources"])

    def test_holds_licence_and_instructions_of_the_project(self):
        for name in ("LICENSE", "INSTALL.txt"):
            self.assertEqual((bundle / "Contents/Resources" / name).read_bytes(), (sources / name).read_bytes())

    def test_property_list_says_what_the_bundle_is(self):
        plist = plistlib.loads((bundle / "Contents/Info.plist").read_bytes())
        self.assertEqual(plist, {
            "CFBundleDevelopmentRegion": "English",
            "CFBundleDisplayName": "NSProcessInfoZKT",
            "CFBundleExecutable": "NSProcessInfoZKT",
            "CFBundleIdentifier": "zkt.NSProcessInfoZKT",
            "CFBundleInfoDictionaryVersion": "6.0",
            "CFBundleName": "NSProcessInfoZKT",
            "CFBundlePackageType": "BNDL",
            "CFBundleShortVersionString": version,
            "CFBundleSignature": "????",
            "CFBundleSupportedPlatforms": ["MacOSX"],
            "CFBundleVersion": version,
            "LSMinimumSystemVersion": "10.9",
            "NSHumanReadableCopyright": "Copyright © 2026 The NSProcessInfoZKT authors",
        })

    def test_the_licence_names_the_same_holder(self):
        plist = plistlib.loads((bundle / "Contents/Info.plist").read_bytes())
        holder = plist["NSHumanReadableCopyright"].replace("©", "(c)")
        self.assertIn(holder, (sources / "LICENSE").read_text())

    def test_the_changelog_has_the_version(self):
        self.assertRegex((sources / "CHANGELOG.md").read_text(), rf"(?m)^## {re.escape(version)}$")


class Executable(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.slices = slices_of(executable.read_bytes())

    def slice_files(self):
        for processor, code in self.slices.items():
            file = self.folder / PROCESSORS[processor]
            file.write_bytes(code)
            with self.subTest(processor=PROCESSORS[processor]):
                yield file

    def test_is_for_both_processors(self):
        self.assertEqual(list(self.slices), [X86_64, ARM64])

    def test_carries_the_property_list(self):
        for file in self.slice_files():
            section = self.folder / "section"
            output_of("llvm-objcopy", f"--dump-section=__TEXT,__info_plist={section}", file,
                      self.folder / "copy")
            self.assertEqual(section.read_bytes(), (bundle / "Contents/Info.plist").read_bytes())

    def test_names_no_path_but_those_of_macos_libraries(self):
        for file in self.slice_files():
            text = file.read_bytes().replace((bundle / "Contents/Info.plist").read_bytes(), b"")
            # Up to a zero: what else looks like a path, in a hash or in code, is none.
            strings = b"\n".join(re.findall(rb"[ -~]{4,}(?=\0)", text))
            paths = {match.decode() for match in re.findall(rb"[\w.+-]*/[\w./+-]{3,}", strings)}
            libraries = {path for path in paths
                         if re.fullmatch(r"/System/Library/Frameworks/\w+\.framework/Versions/[AC]/\w+"
                                         r"|/usr/lib/lib[\w+.]+\.dylib", path)}
            self.assertEqual(paths - libraries, set())
            self.assertEqual(len(libraries), 7)

    def test_segments_are_whole_pages_of_the_processor(self):
        for processor, code in self.slices.items():
            page = 0x4000 if processor == ARM64 else 0x1000
            segments = [struct.unpack("<2Q", body[24:40]) for command, body in load_commands(code)
                        if command == 0x19]
            self.assertGreaterEqual(len(segments), 3)
            self.assertEqual([(start % page, size % page) for start, size in segments],
                             [(0, 0)] * len(segments))

    def test_keeps_local_symbols_and_no_debug_entries(self):
        for file in self.slice_files():
            symbols = output_of("llvm-nm", "--debug-syms", file)
            self.assertEqual(re.findall(r"^\w+ - .*", symbols, re.MULTILINE), [])
            self.assertGreater(len(re.findall(r"^\w+ [a-z] .*", symbols, re.MULTILINE)), 300)


class DebugInformation(unittest.TestCase):
    def test_belongs_to_the_executable(self):
        uuids = [re.findall(r"UUID: (\S+) \((\w+)\)", output_of("llvm-dwarfdump", "--uuid", path))
                 for path in (executable, dsym)]
        self.assertEqual(uuids[0], uuids[1])
        self.assertEqual([processor for _, processor in uuids[0]], list(PROCESSORS.values()))

    def test_names_functions_by_the_paths_of_the_project(self):
        for processor in PROCESSORS.values():
            start = re.search(r"^0*(\w+) t __ZN11processinfo8hostNameE",
                              output_of("llvm-nm", f"--arch={processor}", executable), re.MULTILINE)
            self.assertIsNotNone(start)
            place = output_of("llvm-symbolizer", f"--obj={dsym}/Contents/Resources/DWARF/NSProcessInfoZKT",
                              f"--default-arch={processor}", f"0x{start[1]}").splitlines()
            self.assertRegex(place[0], r"^processinfo::hostName\(")
            self.assertRegex(place[1], r"^(\./)*processinfo/Properties\.mm:\d+")

    def test_names_no_folder_of_the_checkout(self):
        naming = [path.name for path in [*files(dsym), *files(bundle)]
                  if str(sources).encode() in path.read_bytes()]
        self.assertEqual(naming, [])


class Signature(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.copy = pathlib.Path(folder.name) / "copy.bundle"
        shutil.copytree(bundle, self.copy)

    def damage(self, name, at):
        path = self.copy / "Contents" / name
        data = bytearray(path.read_bytes())
        data[at] ^= 1
        path.write_bytes(data)

    def refused(self, problem):
        with self.assertRaisesRegex(Refused, problem):
            verify(self.copy)

    def test_is_whole(self):
        directories = verify(bundle)
        self.assertEqual(list(directories), [X86_64, ARM64])
        for of_slice in directories.values():
            self.assertEqual([directory.hash_type for directory in of_slice], [1, 2])
            for directory in of_slice:
                self.assertEqual(directory.identifier, "zkt.NSProcessInfoZKT")
                self.assertEqual(directory.page_size, 4096)

    def test_tells_that_code_was_changed(self):
        file = executable.read_bytes()
        for code in slices_of(file).values():
            at = file.index(code) + 0x5123
            self.damage("MacOS/NSProcessInfoZKT", at)
            self.refused("page 5 was changed")
            self.damage("MacOS/NSProcessInfoZKT", at)  # as it was
        verify(self.copy)

    def test_tells_that_the_property_list_was_changed(self):
        self.damage("Info.plist", 600)
        self.refused("slot -1 was changed")

    def test_tells_that_a_resource_was_changed(self):
        self.damage("Resources/LICENSE", 50)
        self.refused("Resources/LICENSE was changed")

    def test_tells_that_a_resource_was_added(self):
        (self.copy / "Contents/Resources/more").write_text("x")
        self.refused("Resources/more")

    def test_tells_that_the_seal_was_changed(self):
        self.damage("_CodeSignature/CodeResources", 300)
        self.refused("slot -3 was changed")

    def test_tells_that_the_seal_was_taken_away(self):
        (self.copy / "Contents/_CodeSignature/CodeResources").unlink()
        self.refused("no CodeResources")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
