"""run.py PRESET SEED COUNT LEAST PATH...

In a sandbox: makes single changes to the sources under the paths, one after the other, builds with
each, and lists those that no test notices. Fails when less than LEAST percent are noticed.
"""
import fcntl
import glob
import os
import random
import socket
import struct
import sys
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from builds import Build, DoesNotBuild
from changes import changes_of_file
from equivalent import Equivalent
from suite import Suite

# It compares the sources with a table, and so notices a change of the text alone.
READS_SOURCES = 'tests/TqReportSentence'

# What is built on the library, or takes long, is no test of it alone.
SLOW = ('tools/', 'tests/TqDownload', 'tests/whole/TftpServers', 'tests/whole/Threads')


def sources_under(paths):
    for path in paths:
        found = [path] if os.path.isfile(path) else sorted(glob.glob(path + '/**', recursive=True))
        yield from (name for name in found
                    if name.endswith(('.cpp', '.h')) and not name.endswith('_test.cpp'))


def chosen_changes(build, equivalent, paths, seed, count):
    """A sample of the changes; one that is known to change nothing is left out."""
    changes = [change for name in sources_under(paths) if name in build.objects
               for change in changes_of_file(name) if change not in equivalent]
    random.Random(seed).shuffle(changes)
    print('%d changes can be made; seed %s' % (len(changes), seed))
    return changes[:count] if count else changes


def is_noticed(build, suite, change):
    try:
        build.make(change)
        return suite.first_to_notice(change.file)
    finally:
        build.undo()


def set_loopback_up():
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as anySocket:
        fcntl.ioctl(anySocket, 0x8914, struct.pack('16sh14x', b'lo', 1))  # SIOCSIFFLAGS, IFF_UP


def main():
    set_loopback_up()
    preset, seed, count, least, *paths = sys.argv[1:]
    build = Build(preset)
    equivalent = Equivalent('tools/mutate/equivalent.txt')
    changes = chosen_changes(build, equivalent, paths, int(seed), int(count))
    isQuick = all(path.startswith('common') for path in paths)
    unfit = (READS_SOURCES, *SLOW) if isQuick else READS_SOURCES
    suite = Suite(build.tests, lambda name: not name.startswith(unfit))
    made = 0
    missed = 0
    for change in changes:
        begun = time.monotonic()
        try:
            piece = is_noticed(build, suite, change)
        except DoesNotBuild:
            continue
        made += 1
        seconds = time.monotonic() - begun
        what = '%s:%d' % (change.file, change.number)
        if piece is None:
            missed += 1
            print('MISSED %s\n- %s\n+ %s' % (what, change.old.strip(), change.new.strip()))
        elif os.environ.get('TQ_MUTATE_VERBOSE'):
            print('%-45s %5.1f s  %s' % (what, seconds, piece.file))
        sys.stdout.flush()
    rate = 100 * (made - missed) / max(made, 1)
    print('%d changes, %d noticed: %.1f %%' % (made, made - missed, rate))
    sys.exit(0 if rate >= float(least) else 1)


main()
