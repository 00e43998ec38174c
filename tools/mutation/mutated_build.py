"""A copy of the sources with all mutants in it at once, and its build."""
import json
import os
import re
import shlex
import subprocess
import sys

from places import ROOT

WORK = os.path.join(ROOT, "build", "mutate")
TREE = os.path.join(WORK, "tree")
BUILD = os.path.join(TREE, "build", "mingw")
RUNTIME = os.path.join(WORK, "runtime")

RUN = "_ZN7testing8UnitTest3RunEv"  # testing::UnitTest::Run()


def run(command, **options):
    return subprocess.run(command, check=True, **options)


def replace_if_other(path, content, mode=None):
    if not os.path.exists(path) or open(path, "rb").read() != content:
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as stream:
            stream.write(content)
    if mode:
        os.chmod(path, mode)


def copy_tree():
    """Copies everything. Code below src/ that is there already stays as write_mutants() wrote it."""
    files = run(["git", "ls-files", "-co", "--exclude-standard"], cwd=ROOT, capture_output=True,
                text=True).stdout.split("\n")
    for name in files:
        path = os.path.join(ROOT, name)
        copy = os.path.join(TREE, name)
        if name and os.path.isfile(path) and not (is_code(name) and os.path.exists(copy)):
            replace_if_other(copy, open(path, "rb").read(), os.stat(path).st_mode)
    for folder in ("codecs", "media", "wine"):
        link = os.path.join(TREE, "build", folder)
        os.makedirs(os.path.dirname(link), exist_ok=True)
        if not os.path.islink(link):
            os.symlink(os.path.join(ROOT, "build", folder), link)


def is_code(name):
    return name.startswith("src/") and name.endswith((".cpp", ".h"))


def write_mutants(mutants):
    by_file = {}
    for mutant in mutants:
        by_file.setdefault(mutant.file, []).append(mutant)
    for folder, _, names in os.walk(os.path.join(ROOT, "src")):
        for name in names:
            file = os.path.relpath(os.path.join(folder, name), ROOT)
            if is_code(file):
                text = open(os.path.join(ROOT, file), "rb").read()
                replace_if_other(os.path.join(TREE, file), mutated_text(text, by_file.get(file, [])))


def mutated_text(text, mutants):
    # The two mutants of a relation are one insertion.
    groups = {}
    for mutant in mutants:
        place = mutant.replaced[0] if mutant.replaced else (mutant.number,)
        groups.setdefault(place, []).append(mutant)
    inserts, constants = [], {}
    for group in groups.values():
        first = min(group, key=lambda mutant: mutant.number)
        extra = 1000000 if first.declared else 0
        numbers = [str(mutant.number + extra) for mutant in group]
        if first.replaced and re.match(r"mutants::(less|greater)", first.inserts[0][1]):
            numbers = ["-1", "-1"]
            for mutant in group:
                numbers[mutant.which] = str(mutant.number + extra)
        for offset, words, closing in first.inserts:
            if closing:
                order = (offset, 0, first.size, -first.number)
            else:
                order = (offset, 1, -first.size, first.number)
            inserts.append((order, offset, offset, words if closing else words % ", ".join(numbers)))
        if first.replaced:
            offset, operator, other = first.replaced
            inserts.append(((offset, 2, 0, 0), offset, offset + len(operator), other))
        if first.declared:
            constants[first.declared[0]] = first.declared[2]
    for offset, words in constants.items():
        inserts.append(((offset, 2, 0, 0), offset, offset + len("constexpr"), words))
    inserts.sort(key=lambda item: item[0])
    result, at = [], 0
    for _, start, end, words in inserts:
        result.append(text[at:start].decode("utf-8"))
        result.append(words)
        at = end
    result.append(text[at:].decode("utf-8"))
    return "".join(result).encode("utf-8")


# Read once for all sources, which most of a build's time goes to otherwise.
PREFIX = """#include "{tree}/tools/mutation/mutants.h"
#if __cplusplus >= 202002L
#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <span>
#include <string>
#include <vector>
#include <windows.h>
#if __has_include(<gmock/gmock.h>)
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#endif
#endif
"""
GOOGLETEST = "/usr/src/googletest"


def configure():
    here = os.path.dirname(os.path.abspath(__file__))
    prefix = os.path.join(RUNTIME, "prefix.h")
    # No optimisation that merges what the mutants keep apart, no warnings about the changed code.
    flags = ("-march=pentium4 -mfpmath=sse -mstackrealign -w -Wno-error -Wno-narrowing "
             "-fpermissive -O1")
    include = ["-I%s/%s/include" % (GOOGLETEST, name) for name in ("googletest", "googlemock")]
    os.makedirs(RUNTIME, exist_ok=True)
    replace_if_other(prefix, PREFIX.format(tree=TREE).encode())
    objects = []
    for name in ("State", "Runner"):
        objects.append(os.path.join(RUNTIME, name + ".o"))
        run(["i686-w64-mingw32-g++-posix", "-std=c++20", *flags.split(), "-include",
             os.path.join(here, "mutants.h"), "-DNDEBUG", *include, "-c",
             os.path.join(here, name + ".cpp"), "-o", objects[-1]])
    archive = os.path.join(RUNTIME, "libmutants.a")
    run(["i686-w64-mingw32-ar", "rcs", archive] + objects)
    if os.path.exists(os.path.join(BUILD, "build.ninja")):
        # Test programs may have been added.
        run(["ninja", "-C", BUILD, "build.ninja"], stdout=subprocess.DEVNULL)
        return
    # The libraries behind it are those that CMake names by itself.
    run(["cmake", "--preset", "mingw",
         "-DCMAKE_CXX_FLAGS=%s -include %s" % (flags, prefix),
         "-DCMAKE_CXX_FLAGS_RELEASE=-DNDEBUG",
         "-DCMAKE_EXE_LINKER_FLAGS=-static -static-libgcc -static-libstdc++ -Wl,--wrap=" + RUN,
         "-DCMAKE_CXX_STANDARD_LIBRARIES=" + archive + " -lkernel32 -luser32 -lgdi32 -lwinspool "
         "-lshell32 -lole32 -loleaut32 -luuid -lcomdlg32 -ladvapi32"],
        cwd=TREE, stdout=subprocess.DEVNULL)
    # With the very options of the sources, or the compiler does not use it.
    commands = json.load(open(os.path.join(BUILD, "compile_commands.json")))
    command = next(shlex.split(entry["command"]) for entry in commands
                   if entry["file"].endswith("src/player/Player.cpp"))
    options = [word for word in command[command.index(next(w for w in command if w.startswith("-D"))):]
               if word.startswith(("-D", "-f", "-m", "-O", "-std", "-w", "-W"))]
    run(["i686-w64-mingw32-g++-posix", *options, *include, "-x", "c++-header", prefix, "-o",
         prefix + ".gch"])


def ninja(programs):
    return subprocess.run(["ninja", "-C", BUILD, "-k", "0"] + programs, capture_output=True, text=True)


def build(mutants, programs):
    """Builds the programs; the mutants that are left, without those that do not compile."""
    left = list(mutants)
    for _ in range(30):
        write_mutants(left)
        done = ninja(programs)
        if done.returncode == 0:
            return left
        kept = without_errors(left, done.stdout)
        if len(kept) == len(left):
            open(os.path.join(WORK, "failed.log"), "w").write(done.stdout)
            sys.stderr.write(done.stdout[-3000:])
            raise SystemExit("mutate: the build failed for a reason that is no mutant")
        print("  %d do not compile" % (len(left) - len(kept)), flush=True)
        left = kept
    raise SystemExit("mutate: too many mutants do not compile")


def without_errors(mutants, output):
    def places(pattern):
        return {(os.path.relpath(os.path.normpath(os.path.join(BUILD, path)), TREE), int(line))
                for path, line in re.findall(pattern, output, re.M)}

    # A template complains in the header; the place that needed it is named below.
    errors = places(r"^(\S+?):(\d+):\d+: (?:fatal )?error:") | places(
        r"^(\S+?):(\d+):\d+:\s+(?:required from|in .constexpr. expansion)")
    # A constant that must be one is named in a note, or by its name in the error.
    notes = errors | places(r"^(\S+?):(\d+):\d+: note:")
    lines = {}
    for file, line in errors:
        lines.setdefault(file, set()).add(line)
    kept = [mutant for mutant in mutants
            if not any(mutant.line <= line <= mutant.last for line in lines.get(mutant.file, ()))
            and not (mutant.declared and (mutant.file, mutant.declared[1]) in notes)]
    if len(kept) == len(mutants):
        words = set(re.findall(r"\w+", " ".join(re.findall(r"error: (.*)", output))))
        kept = [mutant for mutant in mutants if not mutant.declared or mutant.name not in words]
    return kept
