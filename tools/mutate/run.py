"""run.py PRESET SEED COUNT LEAST REACH ROOM LANES PATH...

Has single changes made to the sources under the paths, in as many sandboxes at once as there are
lanes, and lists those that no test notices, and those that are noticed by the time that a test takes
alone, which a busy machine may be to blame for. Fails when less than LEAST percent are noticed. In
ROOM are the copies of the tree, 0 to LANES; in that of number 0 nothing is changed.
"""
import collections
import concurrent.futures
import glob
import hashlib
import json
import os
import queue
import subprocess
import sys
import threading
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import suite
from builds import Build
from changes import changes_of_file
from equivalent import Equivalent

# It compares the sources with a table, and so notices a change of the text alone.
READS_SOURCES = 'tests/TqReportSentence'

# What takes seconds of the processor, fails on a busy machine as what takes too long, and notices
# nothing that others do not.
LARGE = ('TqfetchServers.', 'Tqfetch.AFileWithMoreBlocks')

# What takes long, and what is built on the library and so is no test of it alone.
LONG = ('tests/whole/TftpServers', 'tests/whole/Soak')
ABOVE = ('tools/', 'tests/TqDownload', 'tests/whole/Threads')

# Every class that is written and read is tested there as well.
ITEMS = 'Items_test.cpp'


def sources_under(paths):
    for path in paths:
        found = [path] if os.path.isfile(path) else sorted(glob.glob(path + '/**', recursive=True))
        yield from (name for name in found
                    if name.endswith(('.cpp', '.h')) and not name.endswith('_test.cpp'))


def place_of(change, seed):
    """A place in an order that no change of another line disturbs."""
    what = (seed, change.file, change.old, change.new)
    return hashlib.sha256(repr(what).encode()).digest()


def chosen_changes(build, paths, seed, count):
    """A sample of the changes, with those that are known to change nothing."""
    changes = [change for name in sources_under(paths) if name in build.objects
               for change in changes_of_file(name)]
    changes.sort(key=lambda change: place_of(change, seed))
    print('%d changes can be made; seed %s' % (len(changes), seed), flush=True)
    return changes[:count] if count else changes


class Lane:
    """A sandbox that does one thing at a time."""

    def __init__(self, preset, room):
        self.process = subprocess.Popen(
            ['tools/mutate/sandbox', room, 'python3', '-B', 'tools/mutate/lane.py', preset],
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)

    def ask(self, told):
        self.process.stdin.write(json.dumps(told) + '\n')
        self.process.stdin.flush()
        answer = self.process.stdout.readline()
        if not answer:
            # Other threads may wait for others' sandboxes.
            print('a sandbox has ended', file=sys.stderr)
            os._exit(1)
        return json.loads(answer)

    def close(self):
        self.process.stdin.close()
        self.process.wait()


def places_in(room, preset, lanes):
    first = room + '/0'
    Build(preset, first + '/tree').link_all()
    others = ['%s/%d' % (room, i) for i in range(1, lanes + 1)]
    for other in others:
        # A file is put in the place of another and never written to, so that they may share them.
        subprocess.run(['cp', '-al', first, other], check=True)
    return [first, *others]


class Suite:
    """The pieces of the tests, measured when they are first needed."""

    def __init__(self, lane, program):
        self.lane = lane
        self.lock = threading.Lock()
        self.tests = {file: [test for test in tests if not test.startswith(LARGE)]
                      for file, tests in suite.tests_of_files(program).items()}
        self.pieces = {}
        self.noticed = collections.Counter()  # how often, of a changed file and some tests

    def _pieces_of(self, file):
        with self.lock:
            if file not in self.pieces:
                answer = self.lane.ask({'file': file, 'tests': self.tests[file]})
                self.pieces[file] = [suite.Piece(*piece) for piece in answer]
            return self.pieces[file]

    def _may_notice(self, changed, file):
        folder = os.path.dirname(changed)
        if file.startswith((READS_SOURCES, *LONG)):
            return False
        if folder in ('common', 'common/internal'):
            return not file.startswith(ABOVE)
        if folder in ('comfort', 'comfort/internal'):
            with open(file, encoding='utf-8') as text:
                return file.startswith('tools/tqfetch') or stem_of(changed) in text.read()
        return os.path.dirname(file) == folder or folder == 'tools/loopback'

    def _is_near(self, changed, file):
        inFolder = os.path.dirname(changed) == os.path.dirname(file)
        return inFolder or os.path.basename(file) in (stem_of(changed) + '_test.cpp', ITEMS)

    def in_order(self, changed, isNear):
        """The pieces near a changed file, or the others, likely ones first."""
        files = [file for file in self.tests if self._may_notice(changed, file)
                 and self._is_near(changed, file) == isNear]
        pieces = [piece for file in files for piece in self._pieces_of(file)]
        start = stem_of(changed)[:6]  # TargetFile is tested by TqfetchTarget
        return sorted(pieces, key=lambda piece: (
            -self.noticed[changed, tuple(piece.tests)],
            start.lower() not in piece.tests[0].split('.')[0].lower(), piece.seconds))

    def note(self, changed, tests):
        self.noticed[changed, tuple(tests)] += 1


def stem_of(name):
    return os.path.splitext(os.path.basename(name))[0]


def attempt(lane, suiteOfAll, change, reach):
    """What becomes of a change: the word for it, and what noticed it."""
    word, file, tests = 'missed', None, None
    for isNear in [True] if reach == 'near' else [True, False]:
        pieces = suiteOfAll.in_order(change.file, isNear)
        if not pieces:
            continue
        word, file, tests = lane.ask({'change': change, 'pieces': pieces})
        if file:
            suiteOfAll.note(change.file, tests)
        if word != 'missed':
            break
    return word, file, tests


def report(change, word, file, tests, seconds):
    what = '%s:%d' % (change.file, change.number)
    if word in ('missed', 'too long'):
        print('%s %s\n- %s\n+ %s' % (word.upper(), what, change.old.strip(), change.new.strip()))
    elif os.environ.get('TQ_MUTATE_VERBOSE'):
        first = '%s %s' % (file, tests[0] if len(tests) == 1 else '') if file else ''
        print('%-45s %5.1f s  %s  %s' % (what, seconds, word, first))
    sys.stdout.flush()


def main():
    preset, seed, count, least, reach, room, lanes, *paths = sys.argv[1:]
    build = Build(preset)
    equivalent = Equivalent('tools/mutate/equivalent.txt')
    changes = chosen_changes(build, paths, int(seed), int(count))
    words = collections.Counter()
    clean, *others = [Lane(preset, place) for place in places_in(room, preset, int(lanes))]
    suiteOfAll = Suite(clean, build.tests)
    free = queue.Queue()
    for lane in others:
        free.put(lane)

    def do(change):
        if change in equivalent:
            words['the same'] += 1
            return
        lane = free.get()
        begun = time.monotonic()
        word, file, tests = attempt(lane, suiteOfAll, change, reach)
        words[word] += 1
        report(change, word, file, tests, time.monotonic() - begun)
        free.put(lane)

    with concurrent.futures.ThreadPoolExecutor(len(others)) as pool:
        for done in [pool.submit(do, change) for change in changes]:
            done.result()
    for lane in [clean, *others]:
        lane.close()
    noticed = words['noticed'] + words['too long']
    counted = noticed + words['missed']
    rate = 100 * noticed / max(counted, 1)
    print('%d changes: %d do not build, %d make no difference' %
          (len(changes), words['not built'], words['the same']))
    print('%d of the other %d noticed, %d by time alone: %.1f %%' %
          (noticed, counted, words['too long'], rate))
    sys.exit(0 if rate >= float(least) else 1)


main()
