#!/usr/bin/env python3
"""Breaks the plug-in in one small way after another, and asks the contract tests to notice.

Each mutant is one edit of one source file. The Linux object is built from a copy of the tree, and the
contract tests run on it, each in a process of its own, until one fails: first those that noticed
earlier mutants of the same file, the nearest line's before others, then the others, the same folder's
before others and fastest first. Where none fails, they run once more under AddressSanitizer and
UndefinedBehaviorSanitizer. A mutant that no test notices survives. Mutants that no test can notice
stand in equivalent.txt, with the reason, and are passed over. Each job has a copy and a build of its own.

Outcomes are kept in build/mutate/outcomes. A later run starts with the tests that noticed something; with
--resume it also passes over a mutant that the same test noticed in the same text of the file, if there
still is a test of that name. What other files or the test itself have become meanwhile is not looked at.
"""

import argparse
import concurrent.futures
import dataclasses
import hashlib
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
FOLDERS = ("frame", "bridge", "convert", "processinfo")
TEST_TIMEOUT = 60  # seconds
NOT_SANITIZED = "DoubleFault|(Message|Allocation)Matrix"  # too many cells to be tried again


@dataclasses.dataclass(frozen=True)
class Mutant:
    path: str  # of the source file, from the root
    line: int
    what: str
    original: str  # the whole file
    text: str  # the same, mutated

    def __str__(self):
        return f"{self.path}:{self.line}: {self.what}"

    @property
    def key(self):
        return hashlib.sha1(f"{self.path}\n{self.text}".encode()).hexdigest()


# Finding places to break ---------------------------------------------------------------------------


def blank_comments_and_strings(text):
    """The text with comments and literals as spaces, so that positions stay."""
    pattern = r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])+\''
    blank = lambda match: re.sub(r"[^\n]", " ", match.group())
    return re.sub(pattern, blank, text, flags=re.S)


def line_of(text, position):
    return text.count("\n", 0, position) + 1


def closing(code, opening):
    """The position of the bracket that closes the one at the given position."""
    depth = 0
    for position in range(opening, len(code)):
        if code[position] in "([{":
            depth += 1
        elif code[position] in ")]}":
            depth -= 1
            if depth == 0:
                return position
    raise ValueError("unbalanced brackets")


def split_at_commas(code, begin, end):
    """Ranges of what stands between the commas of the outermost level."""
    parts, start, depth = [], begin, 0
    for position in range(begin, end):
        if code[position] in "([{":
            depth += 1
        elif code[position] in ")]}":
            depth -= 1
        elif code[position] == "," and depth == 0:
            parts.append((start, position))
            start = position + 1
    if code[start:end].strip():
        parts.append((start, end))
    return parts


def trimmed(code, begin, end):
    while begin < end and code[begin].isspace():
        begin += 1
    while end > begin and code[end - 1].isspace():
        end -= 1
    return begin, end


def short(text, limit=60):
    text = " ".join(text.split())
    return text if len(text) <= limit else text[: limit - 3] + "..."


def table_mutants(path, text):
    code = blank_comments_and_strings(text)
    for table in re.finditer(r"(\w+)(?:\[\])? ?(?:= )?\{(?=[\s{&])", code):
        opening = table.end() - 1
        if not re.search(r"(\w\[\] = |pluginClasses)$", code[: opening].rstrip("{")):
            continue
        rows = [trimmed(code, *row) for row in split_at_commas(code, opening + 1, closing(code, opening))]
        for index, (begin, end) in enumerate(rows):
            after_last = end + 1 if code[end: end + 1] == "," else end
            stop = rows[index + 1][0] if index + 1 < len(rows) else after_last
            yield Mutant(path, line_of(text, begin), f"row deleted: {short(text[begin:end])}",
                         text, text[:begin] + text[stop:])
            if index + 1 < len(rows):
                next_begin, next_end = rows[index + 1]
                yield Mutant(path, line_of(text, begin),
                             f"rows swapped: {short(text[begin:end], 40)} and "
                             f"{short(text[next_begin:next_end], 40)}",
                             text, text[:begin] + text[next_begin:next_end] + text[end:next_begin]
                             + text[begin:end] + text[next_end:])


def swapped_tests(path, text):
    """Neighbouring conditions that each decide the result, as a chain of tests has them."""
    tests = list(re.finditer(r"^    if \([^\n]*\)\n        return [^;{}]*;\n", text, flags=re.M))
    for first, second in zip(tests, tests[1:]):
        between = text[first.end(): second.start()]
        if re.fullmatch(r"(\s|//[^\n]*\n|    Class \w+ = [^;]*;\n)*", between):
            yield Mutant(path, line_of(text, first.start()),
                         f"tests swapped: {short(first.group(), 40)} and {short(second.group(), 40)}",
                         text, text[: first.start()] + between + second.group() + first.group()
                         + text[second.end():])


def statements(code):
    """Ranges of simple statements in functions."""
    for match in re.finditer(r"(?<=[;{}):])\n(?P<indent>    +)(?P<body>[^\s{}#][^;{}]*;)", code):
        begin, end = match.start("body"), match.end("body")
        if code.count("(", begin, end) == code.count(")", begin, end):
            yield begin, end


DECLARATION = re.compile(
    r"(return|using|static|constexpr|inline|extern|explicit|break|continue|case|const \w|[\w:<>*]+ \*?&?\w+( =|\{|;)"
    r"|std::\w+(<.*>)? \w+|auto |[\w ]+ \*?\(\*\w+\)\(|virtual|~|@|template|struct|enum|\w+ \w+\(.*\) (const|=)|HeldUntilReset)")


def deleted_statements(path, text):
    code = blank_comments_and_strings(text)
    for begin, end in statements(code):
        statement = text[begin:end]
        if not DECLARATION.match(statement) and not statement.endswith("= delete;"):
            yield Mutant(path, line_of(text, begin), f"deleted: {short(statement)}",
                         text, text[:begin] + ";" + text[end:])


def negated_conditions(path, text):
    code = blank_comments_and_strings(text)
    for match in re.finditer(r"\b(if|while) \(", code):
        begin = match.end()
        end = closing(code, begin - 1)
        condition = text[begin:end]
        at = condition.rfind(";") + 1 if ";" in code[begin:end] else 0
        if re.search(r"\b(auto|const|\w+) [*&]?\w+ = ", condition) and not at:
            continue  # a declaration: it is negated below, where it is used
        yield Mutant(path, line_of(text, begin), f"negated: {short(condition)}",
                     text, text[:begin] + condition[:at] + f" !({condition[at:].strip()})" + text[end:])


REPLACEMENTS = (
    (r" == ", " != "), (r" != ", " == "), (r" && ", " || "), (r" \|\| ", " && "),
    (r" < (?=[\w(])", " <= "), (r" <= ", " < "), (r" > (?=[\w(])", " >= "), (r" >= ", " > "),
    (r" \+ (?=\w)", " - "), (r" - (?=\w)", " + "), (r"\btrue\b", "false"), (r"\bfalse\b", "true"),
)


def replaced_operators(path, text):
    code = blank_comments_and_strings(text)
    for pattern, replacement in REPLACEMENTS:
        for match in re.finditer(pattern, code):
            line = code[code.rfind("\n", 0, match.start()) + 1: code.find("\n", match.end())]
            if re.match(r"\s*(template|static_assert|#)", line):
                continue
            yield Mutant(path, line_of(text, match.start()),
                         f"'{match.group().strip()}' became '{replacement.strip()}': {short(line)}",
                         text, text[: match.start()] + replacement + text[match.end():])


def changed_constants(path, text):
    code = blank_comments_and_strings(text)
    for match in re.finditer(r"(?<![\w.'\"])(0x[0-9A-Fa-f]+|\d+)(?![\w.'])", code):
        line = code[code.rfind("\n", 0, match.start()) + 1: code.find("\n", match.end())]
        if re.match(r"\s*(static_assert|#|template)", line):
            continue
        value = int(match.group(), 0) + 1
        new = hex(value) if match.group().startswith("0x") else str(value)
        yield Mutant(path, line_of(text, match.start()), f"{match.group()} became {new}: {short(line)}",
                     text, text[: match.start()] + new + text[match.end():])


def changed_texts(path, text):
    comments = {position for comment in re.finditer(r"//[^\n]*|/\*.*?\*/", text, flags=re.S)
                for position in range(*comment.span())}
    for match in re.finditer(r'(?<=[ ({,@])"((?:\\.|[^"\\\n])+)"', text):
        line = text[text.rfind("\n", 0, match.start()) + 1: text.find("\n", match.end())]
        if match.start() in comments or line.lstrip().startswith("#") or 'extern "C"' in line:
            continue
        yield Mutant(path, line_of(text, match.start()), f"text changed: {short(match.group())}",
                     text, text[: match.end() - 1] + "x" + text[match.end() - 1:])


def swapped_arguments(path, text):
    code = blank_comments_and_strings(text)
    for match in re.finditer(r"[\w>\]]\(", code):
        opening = match.end() - 1
        try:
            end = closing(code, opening)
        except ValueError:
            continue
        parts = [trimmed(code, *part) for part in split_at_commas(code, opening + 1, end)]
        line = code[code.rfind("\n", 0, match.start()) + 1: match.start()]
        if re.match(r"(\S|\s*(static_assert|template|struct|explicit|inline))", line):
            continue  # a declaration
        for (begin, stop), (next_begin, next_stop) in zip(parts, parts[1:]):
            if text[begin:stop] != text[next_begin:next_stop]:
                yield Mutant(path, line_of(text, begin),
                             f"arguments swapped: {short(text[match.start():end + 1])}",
                             text, text[:begin] + text[next_begin:next_stop] + text[stop:next_begin]
                             + text[begin:stop] + text[next_stop:])


ORDER_OPERATORS = (table_mutants, swapped_tests)
CODE_OPERATORS = (deleted_statements, negated_conditions, replaced_operators, changed_constants,
                  changed_texts, swapped_arguments)


def mutants(tables_only, pattern):
    found = {}
    for folder in FOLDERS:
        for file in sorted((ROOT / folder).iterdir()):
            path = f"{folder}/{file.name}"
            if file.suffix not in (".cpp", ".mm", ".h"):
                continue
            text = file.read_text()
            for operator in ORDER_OPERATORS if tables_only else ORDER_OPERATORS + CODE_OPERATORS:
                for mutant in operator(path, text):
                    if mutant.text != text and re.search(pattern, str(mutant)):
                        found.setdefault(mutant.text, mutant)
    return list(found.values())


# Building and testing ------------------------------------------------------------------------------


def configure(source, build, *options):
    # Without warnings: what a mutant leaves unused must not save it from the tests. And without debug
    # information, which takes time.
    flags = "-w -O2 -DNDEBUG"
    subprocess.run(["cmake", "--preset", "linux", "-B", build, "-DBUILD_TESTING=OFF",
                    "-DBUILD_BENCHMARKS=OFF", "-DCMAKE_BUILD_TYPE=None",
                    f"-DCMAKE_CXX_FLAGS={flags}", f"-DCMAKE_OBJCXX_FLAGS={flags}", *options],
                   cwd=source, check=True, stdout=subprocess.DEVNULL)


def compiles(build):
    return subprocess.run(["ninja", "-j1", "-C", build, "NSProcessInfoZKT"],
                          capture_output=True).returncode == 0


class Workbench:
    """A copy of the tree with a build of its own, and the contract tests of the tree itself."""

    def __init__(self, number):
        folder = ROOT / f"build/mutate/{number}"
        self.source = folder / "source"
        self.build = folder / "linux"
        self.image = self.build / "NSProcessInfoZKT.so"
        self.tests = folder / "contract_tests"
        self.sanitized_build = folder / "sanitized"
        self.sanitized_tests = folder / "contract_tests_sanitized"
        self.order = folder / "order.txt"

    def prepare(self):
        shutil.rmtree(self.source, ignore_errors=True)
        files = subprocess.run(["git", "ls-files", "-co", "--exclude-standard"], cwd=ROOT, check=True,
                               capture_output=True, text=True).stdout.split("\n")
        for name in filter(None, files):
            if (ROOT / name).is_file():
                (self.source / name).parent.mkdir(parents=True, exist_ok=True)
                # Newer than what an earlier run has left built.
                shutil.copy(ROOT / name, self.source / name)
        # A copy, so that the tree can be built meanwhile.
        shutil.copy2(ROOT / "build/linux/tests/contract/contract_tests", self.tests)
        shutil.copy2(ROOT / "build/linux/sanitized/contract_tests", self.sanitized_tests)
        configure(self.source, self.build)
        if not compiles(self.build):
            sys.exit("mutate: the unchanged plug-in does not build")

    def apply(self, path, text):
        (self.source / path).write_text(text)

    def run(self, *options, sanitized=False):
        """Runs contract tests, each in a process of its own; gives the names of those that fail."""
        tests, image = ((self.sanitized_tests, self.sanitized_build / self.image.name) if sanitized
                        else (self.tests, self.image))
        output = subprocess.run(
            [tests, "--isolate", f"--image={image}", f"--seconds-per-test={TEST_TIMEOUT}",
             *options], capture_output=True).stdout.decode(errors="replace")
        failed = re.findall(r"^FAILED (\S+) (?:died|ended|did not end)", output, flags=re.M)
        if not failed and not re.search(r"^contract tests of .* 0 failed", output, flags=re.M):
            sys.exit(f"mutate: the tests did not come to their end:\n{output[-2000:]}")
        return failed

    def first_failing(self, names):
        """The first of these tests that fails, or None."""
        self.order.write_text("".join(name + "\n" for name in names))
        failed = self.run(f"--order={self.order}", "--jobs=1", "--stop-at-first-failure")
        return failed[0] if failed else None

    def first_failing_sanitized(self):
        """The same, in the same order, under the sanitizers: for what reads or writes where it must not."""
        configure(self.source, self.sanitized_build, "-DSANITIZE=ON")
        if not compiles(self.sanitized_build):
            sys.exit("mutate: the plug-in does not build under the sanitizers")
        failed = self.run(f"--order={self.order}", "--jobs=1", "--stop-at-first-failure", "--few-faults",
                          f"--except={NOT_SANITIZED}", sanitized=True)
        return failed[0] if failed else None

    def folders(self):
        """The folder of each test's source, which has the name of a folder of the plug-in or none."""
        listing = self.order.with_name("tests.json")
        subprocess.run([self.tests, "--gtest_list_tests", f"--gtest_output=json:{listing}"], check=True,
                       stdout=subprocess.DEVNULL)
        return {f"{suite['name']}.{test['name']}": pathlib.PurePath(test["file"]).parent.name
                for suite in json.loads(listing.read_text())["testsuites"] for test in suite["testsuite"]}

    def timed_run(self):
        """Runs every test on the unchanged plug-in, unless it is known that none of them fails there;
        gives their durations."""
        known = hashlib.sha1(self.tests.read_bytes())
        known.update(self.image.read_bytes())
        durations = ROOT / f"build/mutate/durations-{known.hexdigest()}"
        if not durations.exists():
            running = durations.with_suffix(".running")
            failed = self.run(f"--durations={running}")
            if failed:
                sys.exit("mutate: tests fail on the unchanged plug-in: " + ", ".join(failed[:10]))
            running.rename(durations)
        lines = (line.split() for line in durations.read_text().splitlines())
        return {name: float(seconds) for seconds, name in lines}


NOTICED, SANITIZED = "noticed by ", ", sanitized"
REJECTED, SURVIVED = "does not compile", "SURVIVED"


class Outcomes:
    """What came of mutants, in this run and in earlier ones: a line each, the last of a mutant holds."""

    def __init__(self, file):
        self.file = file
        self.lines = {}  # by the mutant's key
        if file.exists():
            for line in file.read_text().splitlines():
                if len(fields := line.split("\t")) == 5:  # a killed run may have left half a line
                    self.lines[fields[0]] = (fields[1], int(fields[2]), fields[3])

    def noticing(self):
        """Where and by which test something was noticed, oldest first."""
        for path, line, outcome in self.lines.values():
            if outcome.startswith(NOTICED):
                yield path, line, outcome.removeprefix(NOTICED)

    def holds(self, mutant, tests):
        """The outcome, if it can be taken over."""
        outcome = self.lines.get(mutant.key, ("", 0, ""))[2]
        test = outcome.removeprefix(NOTICED).removesuffix(SANITIZED)
        return outcome if outcome == REJECTED or test in tests else None

    def add(self, mutant, outcome):
        with self.file.open("a") as file:
            file.write(f"{mutant.key}\t{mutant.path}\t{mutant.line}\t{outcome}\t{mutant.what}\n")


class TestOrder:
    """The tests that noticed something in the same file first, by line. Then those in the folder of that
    name, then those that noticed something elsewhere, then the others; each fastest first."""

    def __init__(self, durations, folders, noticing):
        self.durations, self.folders = durations, folders
        self.noticing = {name: {} for name in durations}  # by test and path: the lines
        for path, line, name in noticing:
            if name in durations:
                self.noticed(path, line, name)

    def of(self, mutant):
        folder = mutant.path.split("/")[0]

        def distance(name):
            known = self.noticing[name]
            if mutant.path in known:
                return min(abs(line - mutant.line) for line in known[mutant.path])
            return FAR + (0 if self.folders.get(name) == folder else 1 if known else 2)

        return sorted(self.durations, key=lambda name: (distance(name), self.durations[name]))

    def noticed(self, path, line, name):
        known = self.noticing[name]
        # Another dictionary, as other jobs may be reading this one.
        self.noticing[name] = {**known, path: known.get(path, frozenset()) | {line}}


FAR = 1_000_000  # lines


class Score:
    """What has come of the mutants so far."""

    def __init__(self, total):
        self.total, self.done = total, 0
        self.noticed, self.rejected, self.explained, self.survivors = 0, 0, 0, []

    def add(self, mutant, outcome, note=""):
        self.done += 1
        if outcome == REJECTED:
            self.rejected += 1
        elif outcome == SURVIVED:
            self.survivors.append(mutant)
        else:
            self.noticed += 1
        print(f"[{self.done}/{self.total}] {mutant}: {outcome}{note}", flush=True)

    def report(self):
        tested = self.total - self.rejected - self.explained
        print(f"\n{self.total} mutants: {self.rejected} do not compile, {self.noticed} noticed, "
              f"{self.explained} equivalent, {len(self.survivors)} survived"
              + (f" ({100 * self.noticed / tested:.1f} % noticed)" if tested else ""))
        for mutant in self.survivors:
            print(f"  survived: {mutant}")


def outcome_of(bench, mutant, order):
    bench.apply(mutant.path, mutant.text)
    try:
        if not compiles(bench.build):
            return REJECTED
        name = bench.first_failing(order.of(mutant))
        if name is None:
            name = bench.first_failing_sanitized()
            return SURVIVED if name is None else NOTICED + name + SANITIZED
        order.noticed(mutant.path, mutant.line, name)
        return NOTICED + name
    finally:
        bench.apply(mutant.path, mutant.original)


def known_equivalents():
    """Mutants that no test can notice, from equivalent.txt: a line each, its reason behind ' -- '.
    Line numbers are left out, as they change."""
    file = pathlib.Path(__file__).with_name("equivalent.txt")
    lines = file.read_text().splitlines() if file.exists() else []
    return {line.split(" -- ")[0].strip() for line in lines if " -- " in line}


def without_line(mutant):
    return f"{mutant.path}: {mutant.what}"


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--tables", action="store_true", help="only what has an order: rows of tables deleted and swapped, "
                        "neighbouring tests swapped")
    parser.add_argument("--match", default="", metavar="REGEX",
                        help="only mutants whose line in the list matches")
    parser.add_argument("--list", action="store_true", help="print the mutants and stop")
    parser.add_argument("--every", type=int, default=1, metavar="N", help="only each N-th mutant")
    parser.add_argument("--from", dest="first", type=int, default=0, metavar="K",
                        help="the first of them, from 0")
    parser.add_argument("--resume", action="store_true",
                        help="take over what an earlier run has found, and try the others")
    parser.add_argument("--jobs", type=int, default=os.cpu_count(), help="mutants at a time")
    options = parser.parse_args()

    todo = mutants(options.tables, options.match)[options.first:: options.every]
    if options.list:
        print(*todo, sep="\n")
        print(f"{len(todo)} mutants")
        return 0

    benches = [Workbench(number) for number in range(options.jobs)]
    for bench in benches:
        bench.prepare()
    durations = benches[0].timed_run()
    outcomes = Outcomes(ROOT / "build/mutate/outcomes")
    order = TestOrder(durations, benches[0].folders(), outcomes.noticing())
    equivalent = known_equivalents()
    score = Score(len(todo))
    waiting = iter(todo)

    def work(bench):
        # A generator of its own would be entered by two threads; a list's iterator may be.
        for mutant in waiting:
            if without_line(mutant) in equivalent:
                score.explained += 1
            elif options.resume and (outcome := outcomes.holds(mutant, durations)):
                score.add(mutant, outcome, ", earlier")
            else:
                outcome = outcome_of(bench, mutant, order)
                outcomes.add(mutant, outcome)
                score.add(mutant, outcome)

    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        for finished in [pool.submit(work, bench) for bench in benches]:
            finished.result()
    score.report()
    return 1 if score.survivors else 0


if __name__ == "__main__":
    sys.exit(main())
