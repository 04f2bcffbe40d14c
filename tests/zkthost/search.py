"""The search field of the reference's page, in a browser without a window.

    search.py BROWSER PAGE
"""
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

browser, page = sys.argv[1:3]
if not pathlib.Path(browser).exists():
    print("no browser: install chromium, and configure again")
    sys.exit(77)


def shown(search):
    """The entries that the page shows, by id, and whether it says that there are none."""
    with tempfile.TemporaryDirectory() as profile:
        document = subprocess.run(
            [browser, "--headless", "--no-sandbox", "--disable-gpu", f"--user-data-dir={profile}",
             "--dump-dom", pathlib.Path(page).resolve().as_uri() + search],
            check=True, capture_output=True, text=True, timeout=120).stdout
    entries = re.findall(r'<(?:article|tr) class="entry" id="([^"]*)"( hidden="")?>', document)
    says_nothing = re.search(r'<p id="nothing"( hidden="")?>', document).group(1) is None
    return [name for name, hidden in entries if not hidden], says_nothing


class Search(unittest.TestCase):
    def test_without_words_shows_everything(self):
        everything = re.findall(r'class="entry" id="([^"]*)"', pathlib.Path(page).read_text())
        self.assertGreater(len(everything), 50)
        self.assertEqual(shown(""), (everything, False))
        self.assertEqual(shown("#NSProcessInfoZKT.hostName"), (everything, False))

    def test_shows_what_has_all_words(self):
        entries, says_nothing = shown("#search=HEAT%20slows")
        self.assertEqual((entries, says_nothing), (["NSProcessInfoZKT.thermalState"], False))

    def test_says_that_nothing_has_them(self):
        self.assertEqual(shown("#search=heat+xyzzy"), ([], True))


unittest.main(argv=sys.argv[:1])
