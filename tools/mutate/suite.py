"""The tests in pieces, and which of them notice a change first."""
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
LONG = 0.3   # seconds: what takes longer is a piece of its own
LEAST = 40   # seconds that a piece may take, however short it is otherwise

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


def passes_within(limit, program, tests, *options):
    """Whether the tests pass; None when they take longer."""
    environment = dict(os.environ, GCOV_PREFIX='/tmp/counts', GCOV_ERROR_FILE='/dev/null')
    command = [program, '--gtest_filter=' + ':'.join(tests), '--gtest_brief=1', *options]
    with subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                          stderr=subprocess.DEVNULL, env=environment, cwd='/tmp',
                          start_new_session=True) as process:
        try:
            return process.wait(limit) == 0
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            return None


class Suite:
    def __init__(self, program, wanted):
        """`wanted` says of the name of a test's file whether it belongs to the suite."""
        self.program = program
        self.noticed = collections.Counter()  # how often, of a changed file and a piece
        files = files_of_suites()
        tests = collections.defaultdict(list)
        for suite, test in listed_tests(program):
            file = next(files[part] for part in suite.rstrip('.').split('/') if part in files)
            if wanted(file):
                tests[file].append(test)
        with concurrent.futures.ThreadPoolExecutor(WORKERS) as pool:
            self.pieces = [piece for pieces in pool.map(self._pieces_of, tests.items())
                           for piece in pieces]
        end_all_others()
        forget_ended()

    def _pieces_of(self, item):
        """Runs the tests of a file as they are, and parts them by the time that they take."""
        file, tests = item
        report = '/tmp/%s.json' % os.path.basename(file)
        if not passes_within(600, self.program, tests, '--gtest_output=json:' + report):
            raise SystemExit('the tests of %s fail without a change' % file)
        with open(report, encoding='utf-8') as stream:
            suites = json.load(stream)['testsuites']
        seconds = {suite['name'] + '.' + test['name']: float(test['time'].rstrip('s'))
                   for suite in suites for test in suite['testsuite']}
        tests = [test for test in tests if test in seconds]  # not those that are disabled
        short = [test for test in tests if seconds[test] < LONG]
        pieces = [Piece(file, (test,), seconds[test]) for test in tests if seconds[test] >= LONG]
        if short:
            pieces.append(Piece(file, tuple(short), sum(seconds[test] for test in short)))
        return pieces

    def _is_near(self, piece, changed):
        stem = os.path.splitext(os.path.basename(changed))[0]
        inFolder = os.path.dirname(changed) == os.path.dirname(piece.file)
        return inFolder or os.path.basename(piece.file) == stem + '_test.cpp'

    def _passes(self, piece):
        """What fails once and then passes has failed by chance; what takes too long has failed."""
        limit = max(LEAST, 10 * piece.seconds)
        passes = passes_within(limit, self.program, piece.tests, '--gtest_fail_fast')
        return passes is True or \
            passes is False and passes_within(limit, self.program, piece.tests) is True

    def first_to_notice(self, changed):
        """Runs the pieces, likely ones first, until one fails twice or takes too long. Returns it,
        or None."""
        order = sorted(self.pieces, key=lambda piece: (
            -self.noticed[changed, piece.tests], not self._is_near(piece, changed), piece.seconds))
        found = []
        isOver = threading.Event()

        def run(piece):
            passes = None if isOver.is_set() else self._passes(piece)
            if passes is False and not isOver.is_set():
                found.append(piece)
                isOver.set()

        # One after the other is quicker where the first ones notice.
        for piece in order[:3]:
            run(piece)
        with concurrent.futures.ThreadPoolExecutor(WORKERS) as pool:
            pending = [pool.submit(run, piece) for piece in order[3:]]
            while not isOver.is_set() and not all(future.done() for future in pending):
                time.sleep(0.02)
            if isOver.is_set():
                for future in pending:
                    future.cancel()
                end_all_others()
        end_all_others()
        forget_ended()
        if not found:
            return None
        self.noticed[changed, found[0].tests] += 1
        return found[0]
