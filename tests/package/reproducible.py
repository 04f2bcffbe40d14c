"""Builds and packages a clean copy of the sources in another folder, in another time zone and with
other permissions, and compares the archives with those of the bundle under test.

    reproducible.py BUNDLE SOURCES LIPO
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile


def run(*command, **options):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False,
                          **options)
    if done.returncode:
        sys.exit(f"{' '.join(map(str, command))}:\n{done.stdout}")


def sdk_of(build):
    """The real SDK that a build folder was configured with, if any."""
    found = re.search(r"^APPLE_SDK:\w+=(.+)$", (build / "CMakeCache.txt").read_text(), re.MULTILINE)
    return [f"-DAPPLE_SDK={found[1]}"] if found else []


def main(arguments):
    bundle, sources, lipo = map(pathlib.Path, arguments)
    # Nothing compiled before may take the place of what is compiled here.
    environment = {key: value for key, value in os.environ.items() if not key.endswith("_COMPILER_LAUNCHER")}
    environment.update(SOURCE_DATE_EPOCH="1700000000", CCACHE_DISABLE="1")
    elsewhere = {**environment, "TZ": "Pacific/Auckland", "LC_ALL": "C"}

    with tempfile.TemporaryDirectory() as scratch:
        copy = pathlib.Path(scratch) / "a folder of another name" / "sources"
        os.umask(0o077)
        shutil.copytree(sources, copy, symlinks=True, copy_function=shutil.copyfile,
                        ignore=shutil.ignore_patterns("build*", "dist", ".git", "fuzz"))
        (copy / "build").mkdir()
        if (sources / "build/sdk.download").exists():
            (copy / "build/sdk.download").symlink_to(sources / "build/sdk.download")
        run("cmake", "-P", "cmake/AppleSdk.cmake", cwd=copy, env=elsewhere)
        slices = []
        for processor in ("x86_64", "arm64"):
            build = f"build/macos-{processor}"
            run("cmake", "--preset", f"macos-{processor}", *sdk_of(sources / build), cwd=copy, env=elsewhere)
            run("cmake", "--build", build, cwd=copy, env=elsewhere)
            slices.append(f"{build}/{bundle.name}")
        run(sys.executable, "bundle/universal.py", lipo, f"build/macos/{bundle.name}", *slices, cwd=copy,
            env=elsewhere)

        made = []
        for root, built, variables in ((sources, bundle, environment),
                                       (copy, copy / "build/macos" / bundle.name, elsewhere)):
            folder = pathlib.Path(scratch) / f"dist{len(made)}"
            run(sys.executable, root / "bundle/package.py", built, folder, env=variables)
            made.append({path.name: path.read_bytes() for path in folder.iterdir()})
        different = sorted(name for name in made[0].keys() | made[1].keys()
                           if made[0].get(name) != made[1].get(name))
        if different:
            kept = sources / "build/not-reproducible"
            shutil.rmtree(kept, ignore_errors=True)
            for number in range(2):
                shutil.copytree(pathlib.Path(scratch) / f"dist{number}", kept / str(number))
            sys.exit(f"made elsewhere, {', '.join(different)} came out differently; both are kept in {kept}")
        print("the same bytes:", ", ".join(sorted(made[0])))


main(sys.argv[1:])
