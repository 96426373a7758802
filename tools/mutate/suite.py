"""The tests in pieces: how long each takes, and what each says of a changed program."""
import collections
import concurrent.futures
import glob
import json
import os
import re
import signal
import subprocess
import threading
import time

SOURCES = ['tests/*_test.cpp', 'tests/whole/*_test.cpp', 'tools/*/*_test.cpp']
WORKERS = 6
MANY = 30
LONG = 0.3   # seconds: what takes longer is a piece of its own
LEAST = 20   # seconds that a piece may take, however short it is otherwise
LEAST_BUSY = 5  # those of the processor

# What runs in one process: some tests of a file.
Piece = collections.namedtuple('Piece', 'file tests seconds')


def files_of_suites():
    files = {}
    for pattern in SOURCES:
        for name in sorted(glob.glob(pattern)):
            with open(name, encoding='utf-8') as file:
                for suite in re.findall(r'^(?:TYPED_)?TEST(?:_[FP])?\((\w+)', file.read(), re.M):
                    files[suite] = name
    return files


def listed_tests(program):
    suite = ''
    listed = subprocess.run([program, '--gtest_list_tests'], capture_output=True, text=True,
                            check=True).stdout
    for line in listed.split('\n'):
        words = line.split()
        if line.startswith(' '):
            yield suite, suite + words[0]
        elif line.endswith('.') or '.  #' in line:
            suite = words[0]


def tests_of_files(program):
    """Of the name of a test's file, the tests in it."""
    files = files_of_suites()
    tests = collections.defaultdict(list)
    for suite, test in listed_tests(program):
        file = next(files[part] for part in suite.rstrip('.').split('/') if part in files)
        tests[file].append(test)
    return tests


def end_all_others():
    """Ends what tests run or have left behind: all processes but this one, the first of its own."""
    assert os.getpid() == 1, 'not in a sandbox'
    try:
        os.kill(-1, signal.SIGKILL)
    except ProcessLookupError:
        pass


def forget_ended():
    try:
        while True:
            os.waitpid(-1, 0)
    except ChildProcessError:
        pass


def passes_within(seconds, program, tests, *options):
    """Whether the tests pass; None when they take longer."""
    busy = int(LEAST_BUSY + 10 * seconds)
    command = ['prlimit', '--cpu=%d' % busy, program, '--gtest_filter=' + ':'.join(tests),
               '--gtest_brief=1', *options]
    with subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                          stderr=subprocess.DEVNULL, cwd='/tmp',
                          start_new_session=True) as process:
        try:
            return process.wait(max(LEAST, 10 * seconds)) == 0
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            return None


def seconds_of(program, tests, report):
    """Runs tests as they are, and tells how long each has taken."""
    if not passes_within(60, program, tests, '--gtest_output=json:' + report):
        raise SystemExit('without a change not all pass of ' + ' '.join(tests))
    with open(report, encoding='utf-8') as stream:
        suites = json.load(stream)['testsuites']
    return {suite['name'] + '.' + test['name']: float(test['time'].rstrip('s'))
            for suite in suites for test in suite['testsuite']}


def measured(program, file, tests):
    """The tests of a file, parted by the time that they take."""
    parts = [tests[i::WORKERS] for i in range(WORKERS)] if len(tests) > MANY else [tests]
    seconds = {}
    with concurrent.futures.ThreadPoolExecutor(WORKERS) as pool:
        reports = ['/tmp/%d.json' % i for i in range(len(parts))]
        for some in pool.map(lambda part, report: seconds_of(program, part, report),
                             parts, reports):
            seconds.update(some)
    tests = [test for test in tests if test in seconds]  # not those that are disabled
    pieces = [Piece(file, (test,), seconds[test]) for test in tests if seconds[test] >= LONG]
    short = collections.defaultdict(list)
    for test in tests:
        if seconds[test] < LONG:
            short[test.split('.')[0]].append(test)
    pieces += [Piece(file, tuple(some), sum(seconds[test] for test in some))
               for some in short.values()]
    end_all_others()
    forget_ended()
    return pieces


def first_to_notice(program, pieces):
    """Runs the pieces until one fails twice or takes too long. Returns that and which it does, or
    two times None."""
    found = []
    isOver = threading.Event()

    def outcome_of(piece):
        result = passes_within(piece.seconds, program, piece.tests, '--gtest_fail_fast')
        if result is not False or isOver.is_set():
            return result
        # By chance, it may be.
        return passes_within(piece.seconds, program, piece.tests, '--gtest_fail_fast')

    def run(piece):
        outcome = True if isOver.is_set() else outcome_of(piece)
        if outcome is not True and not isOver.is_set():
            found.append((piece, 'noticed' if outcome is False else 'too long'))
            isOver.set()

    # One after the other is quicker where the first ones notice.
    for piece in pieces[:3]:
        run(piece)
    with concurrent.futures.ThreadPoolExecutor(WORKERS) as pool:
        pending = [pool.submit(run, piece) for piece in pieces[3:]]
        while not all(future.done() for future in pending):
            if isOver.is_set():
                end_all_others()
            time.sleep(0.02)
    end_all_others()
    forget_ended()
    return found[0] if found else (None, None)
