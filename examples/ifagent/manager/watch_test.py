"""watch_test.py AGENT...

Succeeds when ifagent --watch shows in a terminal, which is tmux, what the captured files come to:
drawn anew in place, in wide and narrow terminals, with and without colour, leaving the terminal as
it was; and lines when it is piped.
"""

import atexit
import os
import re
import shlex
import shutil
import sys

from managed import HERE, room, run, skip, wait_for

DATA = os.path.normpath(HERE + "/../data")
# A line of the screen for each interface of the second file, and the changes seen.
SCREEN = open(HERE + "/watch.expected", encoding="ascii").read()
TIME = re.compile(r"\d{4}-\d\d-\d\d \d\d:\d\d:\d\d")


class Terminal:
    """A terminal of its own server, with a shell in it."""

    def __init__(self, width, height):
        self.socket = room() + "/tmux"
        self.tmux("new-session", "-d", "-x", str(width), "-y", str(height), "env PS1=READY: sh")
        atexit.register(self.tmux, "kill-server", check=False)
        self.tmux("set-option", "-g", "window-size", "manual")
        self.wait_for("READY:")

    def tmux(self, *words, **options):
        return run("tmux", "-S", self.socket, "-f", "/dev/null", *words, **options)

    def screen(self, *options):
        text = self.tmux("capture-pane", "-p", *options)
        return TIME.sub("TIME", "\n".join(line.rstrip() for line in text.rstrip("\n").split("\n")))

    def wait_for(self, text):
        wait_for(f"{text!r} on a screen", lambda: text in self.screen())

    def expect(self, text, *options):
        """The whole screen, once it has settled."""
        try:
            wait_for("the screen", lambda: self.screen(*options).strip() == text.strip(), 20)
        except SystemExit:
            raise SystemExit(f"shown:\n{self.screen(*options)}\nexpected:\n{text}") from None

    def type(self, text):
        self.tmux("send-keys", "-l", text)
        self.tmux("send-keys", "Enter")

    def cursor_is_shown(self):
        return self.tmux("display-message", "-p", "#{cursor_flag}").strip() == "1"


def sections():
    """The expected screens, by the name above each."""
    parts = re.split(r"^== (\w+)\n", SCREEN, flags=re.M)
    return dict(zip(parts[1::2], parts[2::2]))


def main():
    if shutil.which("tmux") is None:
        skip("tmux is not installed")
    os.environ.pop("NO_COLOR", None)
    conf = room() + "/conf"
    with open(conf, "w", encoding="ascii") as lines:
        lines.write("interval 0\nmonitor LinkMonitor\nmonitor FaultMonitor\n")
    watch = sys.argv[1:] + ["--watch", "--config", conf, DATA + "/normal.txt", DATA + "/later.txt"]
    expected = sections()

    lines = TIME.sub("TIME", run(*watch))
    if lines != expected["piped"]:
        raise SystemExit("piped:\n" + lines)

    terminal = Terminal(80, 24)
    terminal.type("clear; " + shlex.join(watch + ["--no-color"]))
    terminal.expect(expected["wide"], "-e")
    terminal.tmux("send-keys", "x")  # which is not shown
    terminal.tmux("resize-window", "-x", "32", "-y", "7")
    terminal.expect(expected["narrow"])
    terminal.tmux("resize-window", "-x", "12", "-y", "3")
    terminal.expect(expected["tiny"])
    terminal.tmux("resize-window", "-x", "80", "-y", "24")
    terminal.expect(expected["wide"])
    check_end(terminal)

    # While it polls without a pause.
    terminal.type("clear; " + shlex.join(watch + ["--count", "999999999"]))
    wait_for("a screen", lambda: "wlan0" in terminal.screen())
    check_end(terminal)
    terminal.type("clear; NO_COLOR=1 " + shlex.join(watch))
    terminal.expect(expected["wide"], "-e")
    check_end(terminal)
    terminal.type("clear; " + shlex.join(watch))
    terminal.expect(expected["coloured"].replace("ESC", "\033"), "-e")
    check_end(terminal)
    print("the terminal shows what was expected")


def check_end(terminal):
    """Ctrl-C: the screen is that of before, the cursor and the echo are back, the status is 0."""
    assert not terminal.cursor_is_shown()
    terminal.tmux("send-keys", "C-c")
    terminal.expect("READY:")
    assert terminal.cursor_is_shown()
    terminal.type("echo status $?; stty -a | grep -wo -e -echo")
    terminal.wait_for("status 0\nREADY:")


main()
