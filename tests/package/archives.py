"""The archives for users: what is in them, and that it is the bundle that the tests run on.

    archives.py BUNDLE SOURCES VERSION ZKTHOST
"""
import hashlib
import pathlib
import subprocess
import sys
import tempfile
import unittest
import zipfile

bundle, sources, version, zkthost = (pathlib.Path(argument) for argument in sys.argv[1:5])
name = f"NSProcessInfoZKT-{version}"


def modes_and_hashes(folder):
    return {path.relative_to(folder).as_posix():
            (path.stat().st_mode & 0o111 != 0, hashlib.sha256(path.read_bytes()).hexdigest())
            for path in folder.rglob("*") if path.is_file()}


class Archives(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        scratch = tempfile.TemporaryDirectory()
        cls.addClassCleanup(scratch.cleanup)
        cls.folder = pathlib.Path(scratch.name) / "dist"
        subprocess.run([sys.executable, sources / "bundle/package.py", bundle, cls.folder],
                       check=True, capture_output=True)
        cls.unpacked = pathlib.Path(scratch.name) / "somewhere else"
        cls.unpacked.mkdir()
        for archive in cls.folder.glob("*.zip"):
            # Keeps modes, as a Mac does and Python's own unpacking does not.
            subprocess.run(["cmake", "-E", "tar", "xf", archive], cwd=cls.unpacked, check=True)

    def test_are_two_and_their_sums(self):
        self.assertEqual(sorted(path.name for path in self.folder.iterdir()),
                         [f"{name}-macos-dSYM.zip", f"{name}-macos.zip", "SHA256SUMS"])

    def test_sums_are_those_of_the_archives(self):
        check = subprocess.run(["sha256sum", "--strict", "-c", "SHA256SUMS"], cwd=self.folder,
                               capture_output=True, text=True, check=False)
        self.assertEqual((check.returncode, check.stdout),
                         (0, f"{name}-macos-dSYM.zip: OK\n{name}-macos.zip: OK\n"))

    def test_hold_the_bundle_under_test(self):
        self.assertEqual(modes_and_hashes(self.unpacked / name / "NSProcessInfoZKT.bundle"),
                         modes_and_hashes(bundle))

    def test_hold_its_debug_information(self):
        self.assertEqual(modes_and_hashes(self.unpacked / name / "NSProcessInfoZKT.bundle.dSYM"),
                         modes_and_hashes(pathlib.Path(f"{bundle}.dSYM")))

    def test_hold_the_documents(self):
        with zipfile.ZipFile(self.folder / f"{name}-macos.zip") as archive:
            beside = {entry for entry in archive.namelist() if ".bundle/" not in entry}
        reference = {f"{name}/reference.html"} if (sources / "docs/reference.html").exists() else set()
        self.assertEqual(beside, {f"{name}/INSTALL.txt", f"{name}/LICENSE"} | reference)
        for document in ("INSTALL.txt", "LICENSE"):
            self.assertEqual((self.unpacked / name / document).read_bytes(),
                             (sources / document).read_bytes())

    def test_give_a_plug_in_that_runs_wherever_it_is_unpacked(self):
        image = self.unpacked / name / "NSProcessInfoZKT.bundle"
        report = subprocess.run([zkthost, "--image", image, "report"], cwd="/", capture_output=True,
                                text=True, check=False)
        self.assertEqual((report.returncode, report.stderr), (0, ""))
        self.assertIn(str(image / "Contents/MacOS/NSProcessInfoZKT"), report.stdout)
        self.assertRegex(report.stdout, r"processName +String +zkthost\n")

    def test_are_not_made_without_saying_why(self):
        below_a_file = self.folder / "SHA256SUMS" / "dist"
        refused = subprocess.run([sys.executable, sources / "bundle/package.py", bundle, below_a_file],
                                 capture_output=True, text=True, check=False)
        self.assertEqual((refused.returncode, refused.stdout, refused.stderr),
                         (1, "", f"package.py: {below_a_file}: Not a directory\n"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
