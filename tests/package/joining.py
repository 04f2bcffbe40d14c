"""What joins the slices: it takes those that belong together, and says which do not.

    joining.py BUNDLE SOURCES TOOLS
"""
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

bundle, sources, tools = (pathlib.Path(argument) for argument in sys.argv[1:4])
PROCESSORS = ("x86_64", "arm64")


class Joining(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.slices = [self.folder / processor / bundle.name for processor in PROCESSORS]
        for processor, slice_ in zip(PROCESSORS, self.slices):
            for suffix in ("", ".dSYM"):
                shutil.copytree(sources / f"build/macos-{processor}" / f"{bundle.name}{suffix}",
                                f"{slice_}{suffix}")
        self.joined = self.folder / "joined" / bundle.name

    def join(self):
        return subprocess.run([sys.executable, sources / "bundle/universal.py", tools / "llvm-lipo", self.joined,
                               *self.slices], capture_output=True, text=True, check=False)

    def refused(self, message):
        done = self.join()
        self.assertEqual((done.returncode, done.stderr), (1, f"universal.py: {message}\n"))
        self.assertFalse(self.joined.exists())

    def test_gives_the_bundle_under_test(self):
        self.assertEqual(self.join().returncode, 0)
        for suffix in ("", ".dSYM"):
            made, wanted = (pathlib.Path(f"{path}{suffix}") for path in (self.joined, bundle))
            names = sorted(path.relative_to(wanted) for path in wanted.rglob("*"))
            self.assertEqual(sorted(path.relative_to(made) for path in made.rglob("*")), names)
            for name in names:
                if (wanted / name).is_file():
                    self.assertEqual((made / name).read_bytes(), (wanted / name).read_bytes(), name)

    def test_does_nothing_twice(self):
        self.join()
        times = [path.stat().st_mtime_ns for path in self.joined.rglob("*")]
        self.join()
        self.assertEqual([path.stat().st_mtime_ns for path in self.joined.rglob("*")], times)

    def test_begins_anew_where_a_slice_changed(self):
        self.join()
        for slice_ in self.slices:
            (slice_ / "Contents/Resources/LICENSE").write_text("another")
        self.join()
        self.assertEqual((self.joined / "Contents/Resources/LICENSE").read_text(), "another")

    def test_refuses_slices_with_different_resources(self):
        different = self.slices[1] / "Contents/Resources/LICENSE"
        different.write_text("another")
        self.refused(f"{different} differs from {self.slices[0] / 'Contents/Resources/LICENSE'}")

    def test_refuses_slices_with_more_files(self):
        (self.slices[1] / "Contents/Resources/more").write_text("x")
        self.refused(f"{self.slices[1]} has other files than {self.slices[0]}")

    def test_refuses_a_slice_that_is_missing(self):
        shutil.rmtree(self.slices[1])
        self.refused(f"there is no {self.slices[1]}")

    def test_refuses_a_slice_twice(self):
        self.slices[1] = self.slices[0]
        done = self.join()
        self.assertEqual(done.returncode, 1)
        self.assertIn("same architecture", done.stderr)
        self.assertTrue(done.stderr.endswith("universal.py: the executables cannot be joined\n"), done.stderr)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
