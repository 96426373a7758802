"""lane.py PRESET

In a sandbox: does what it is told, a line of JSON each, and answers in one. It measures a file of
tests, or makes a change, builds with it and lets pieces of the tests look at it.
"""
import fcntl
import json
import os
import socket
import struct
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import suite
from builds import Build, DoesNotBuild
from changes import Change


def set_loopback_up():
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as anySocket:
        fcntl.ioctl(anySocket, 0x8914, struct.pack('16sh14x', b'lo', 1))  # SIOCSIFFLAGS, IFF_UP


def try_change(build, change, pieces):
    """What became of it, and the tests that noticed it."""
    try:
        build.make(change)
        noticing, word = suite.first_to_notice(build.tests, pieces)
        if noticing is not None:
            return [word, noticing.file, noticing.tests]
        isSame = change.file.endswith('.cpp') and build.is_the_same(change)
        return ['the same' if isSame else 'missed', None, None]
    except DoesNotBuild:
        return ['not built', None, None]
    finally:
        build.undo()


def main():
    set_loopback_up()
    build = Build(sys.argv[1])
    for line in sys.stdin:
        told = json.loads(line)
        if 'change' in told:
            pieces = [suite.Piece(*piece) for piece in told['pieces']]
            answer = try_change(build, Change(*told['change']), pieces)
        else:
            answer = suite.measured(build.tests, told['file'], told['tests'])
        print(json.dumps(answer), flush=True)


main()
