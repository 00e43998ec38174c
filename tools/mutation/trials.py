"""The test programs of a mutated build, and what they say to each mutant."""
import collections
import glob
import os
import re
import signal
import subprocess
import time

from mutated_build import BUILD, TREE, WORK

MOST = 3000  # milliseconds of tests of one program for one mutant

# What the tests of a module are, if they are not those of its own folder alone.
TEST_FOLDERS = {"com": ["control"], "library": ["control"], "control": ["control"],
                "graph": ["control"], "player": ["control"],
                "platform": ["unit/stream", "unit/subclass"], "stream": ["unit/sources"]}

Case = collections.namedtuple("Case", "name milliseconds reached")


def programs_of(module):
    names = []
    for folder in ["unit/" + module] + TEST_FOLDERS.get(module, []):
        for path in glob.glob(os.path.join(TREE, "tests", folder, "CMakeLists.txt")):
            names += re.findall(r"^\s*corvina_(?:test|control_test)\((\w+)", open(path).read(), re.M)
            names += [name + "_test" for names_of in re.findall(
                r"foreach\(part IN ITEMS ([\w\s]+)\)", open(path).read()) for name in names_of.split()]
    known = subprocess.run(["ninja", "-C", BUILD, "-t", "targets", "all"], capture_output=True, text=True,
                           check=True).stdout
    return sorted({name for name in names if re.search(r"^%s: phony" % name, known, re.M)})


def start(program, environment, limit):
    process = subprocess.Popen(
        ["wine", os.path.join(".", program + ".exe")], cwd=os.path.join(BUILD, "tests"),
        env={**os.environ, **environment}, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
        stderr=subprocess.DEVNULL, start_new_session=True)
    try:
        process.wait(limit)
    except subprocess.TimeoutExpired:
        os.killpg(process.pid, signal.SIGKILL)
        process.wait()


class Program:
    """A test program: its cases, with the time that each takes and the mutants that it reaches."""

    def __init__(self, name, longest):
        self.name = name
        self.cases, self.before, self.again = [], set(), None
        log = os.path.join(WORK, "learnt.txt")
        if os.path.exists(log):
            os.remove(log)
        start(name, {"CORVINA_MUTANT_LEARN": "Z:" + log}, 400)
        for line in open(log) if os.path.exists(log) else []:
            case, milliseconds, passed, numbers = line.rstrip("\n").split("\t")
            reached = {int(number) for number in numbers.split()}
            if case == "before":
                self.before = reached
            elif case == "again":
                self.again = reached
            elif passed != "1":
                print("  %s: %s fails without a mutant and is left out" % (name, case), flush=True)
            elif int(milliseconds) > 1000 * longest:
                print("  %s: %s takes %s ms and is left out" % (name, case, milliseconds), flush=True)
            else:
                self.cases.append(Case(case, int(milliseconds), reached))
        self.cases.sort(key=lambda case: case.milliseconds)

    def reaches_once(self, number):
        """What runs before the first test, or only the first time in a process."""
        return number in self.before or self.again is not None and number not in self.again

    def reaching(self, number):
        """The cases that reach it, the quickest first. What runs before the first may matter to each."""
        cases = [case for case in self.cases if number in self.before or number in case.reached]
        chosen, took = [], 0
        for case in cases:
            took += case.milliseconds
            if took <= MOST or not chosen:
                chosen.append(case)
        return chosen

    def leave_out(self, names):
        self.cases = [case for case in self.cases if case.name not in names]


class Job:
    def __init__(self, number, cases):
        self.number = number
        self.names = [case.name for case in cases]
        self.limit = 2000 + 4 * sum(case.milliseconds for case in cases)
        self.alone = False  # is the first of its process
        self.longer = False
        self.failed = ""  # the case that failed once


def try_with(program, numbers, settle, fresh=False):
    """Tries the mutants with a program. settle(number, case) is called for each that it kills."""
    jobs = [Job(number, program.reaching(number)) for number in numbers]
    jobs = [job for job in jobs if job.names]
    if fresh:
        for job in [job for job in jobs if program.reaches_once(job.number)]:
            again = [job]
            while again:
                again = run_jobs(program, again, settle, {"CORVINA_MUTANT": str(job.number)})
        return
    while jobs:
        jobs = run_jobs(program, jobs, settle, {})


def run_jobs(program, jobs, settle, environment):
    """One process; the jobs that are left to do."""
    path, results = os.path.join(WORK, "jobs.txt"), os.path.join(WORK, "results.txt")
    jobs[0].alone = True
    with open(path, "w") as stream:
        for job in jobs:
            stream.write("%d %d %s\n" % (job.number, job.limit, ":".join(job.names)))
    open(results, "w").close()
    limit = 60 + sum(3 * job.limit for job in jobs) / 1000
    start(program.name, {"CORVINA_MUTANT_JOBS": "Z:" + path, "CORVINA_MUTANT_RESULTS": "Z:" + results,
                         **environment}, limit)
    events = {}
    for line in open(results, errors="replace"):
        what, number, case = (line.rstrip("\n").split("\t") + ["", ""])[:3]
        events[int(number or 0)] = what, case
    left, broken = [], []
    for job in jobs:
        what, case = events.get(job.number, ("", ""))
        if what == "failed":
            settle(job.number, case)
        elif what == "unsure" and environment:
            # What is made once in a process fails once; what fails by chance does not fail twice.
            if job.failed == case:
                settle(job.number, case)
            else:
                if not job.failed:
                    broken.append(job)
                job.failed = case
        elif what in ("passed", "unsure"):
            pass
        elif not what:
            left.append(job)
        elif what == "slow" and not job.longer:
            job.longer, job.limit = True, 3 * job.limit
            broken.append(job)
        elif not job.alone:
            broken.append(job)
        elif what == "dirty":
            if passes_without(program, case):
                settle(job.number, case)
            else:
                print("  %s: %s fails by itself and is left out" % (program.name, case), flush=True)
                program.leave_out(case.split(":"))
                job.names = [name for name in job.names if name not in case.split(":")]
                if job.names:
                    broken.append(job)
        else:
            settle(job.number, "takes too long" if what == "slow" else "crashed")
    if len(left) == len(jobs):
        print("  %s does not start" % program.name, flush=True)
        return []
    return broken + left


def passes_without(program, names):
    path, results = os.path.join(WORK, "jobs.txt"), os.path.join(WORK, "results.txt")
    with open(path, "w") as stream:
        stream.write("0 60000 %s\n" % names)
    open(results, "w").close()
    start(program.name, {"CORVINA_MUTANT_JOBS": "Z:" + path, "CORVINA_MUTANT_RESULTS": "Z:" + results}, 120)
    return "passed\t0" in open(results).read()
