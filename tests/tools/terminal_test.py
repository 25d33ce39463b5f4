#!/usr/bin/env python3
"""plxutil on a real terminal: secrets are asked for without echo, whatever ends the question leaves
the terminal as it was, and colours and progress are for terminals alone."""
import os
import pty
import select
import signal
import subprocess
import sys
import tempfile
import termios
import time

PLX = os.environ.get("PLX_EMULATOR", "").split() + [os.environ["PLXUTIL"]]
SECRET = "0123456789abcdef"
failures = []


def check(what, holds):
    if not holds:
        failures.append(what)
        print("FAILED:", what)


class Terminal:
    """A program that has a terminal for its input, output and messages."""

    def __init__(self, *arguments, **environment):
        self.pid, self.fd = pty.fork()
        if self.pid == 0:
            os.environ.pop("NO_COLOR", None)
            os.environ.update(environment)
            os.execvp(PLX[0], PLX + list(arguments))
        self.output = b""

    def echoes(self):
        return bool(termios.tcgetattr(self.fd)[3] & termios.ECHO)

    def read_until(self, ready, seconds=60):
        end = time.time() + seconds
        while not ready() and time.time() < end:
            if not select.select([self.fd], [], [], 0.05)[0]:
                continue
            try:
                piece = os.read(self.fd, 4096)
            except OSError:  # the program has ended
                break
            if not piece:
                break
            self.output += piece
        return ready()

    def asks(self, times=1):
        """Whether the question stands and nothing typed will be shown."""
        return self.read_until(lambda: self.output.count(b"key: ") == times and not self.echoes())

    def type(self, text):
        os.write(self.fd, text)

    def end(self):
        self.read_until(lambda: False)
        _, status = os.waitpid(self.pid, 0)
        return status


def test_prompt(text):
    sealing = Terminal("seal", text, "--key-file", "-")
    check("the key is asked for, without echo", sealing.asks())
    sealing.type(SECRET.encode() + b"\n")
    check("the answer ends the question", sealing.end() == 0)
    check("the answer is not shown", SECRET.encode() not in sealing.output)
    with open("key", "w", encoding="ascii") as key:
        key.write(SECRET)
    sealed = sealing.output.split()[-1]
    opened = subprocess.run(PLX + ["open", "--key-file", "key"], input=sealed, capture_output=True)
    check("the answer is the key", opened.stdout == b"a text\n")


def test_signals(text):
    for name, byte in (("Ctrl-C", b"\x03"), ("Ctrl-\\", b"\x1c")):
        sealing = Terminal("seal", text, "--key-file", "-")
        check(name + ": asked", sealing.asks())
        sealing.type(b"half a sec" + byte)
        check(name + " brings the echo back", sealing.read_until(sealing.echoes))
        check(name + " ends the program", os.WIFSIGNALED(sealing.end()))
        check(name + ": what was typed is not shown", b"half" not in sealing.output)
    sealing = Terminal("seal", text, "--key-file", "-")
    check("asked before a stop", sealing.asks())
    os.kill(sealing.pid, signal.SIGTSTP)
    # Nobody could wake the leader of a terminal's session, so it is not stopped and asks again.
    check("asked again after a stop", sealing.asks(2))
    sealing.type(SECRET.encode() + b"\n")
    check("answered after a stop", sealing.end() == 0)


def test_colour():
    os.mkdir("box")
    arguments = ["keys", "check", "--root", "box"]
    for what, environment, coloured in (("", {}, True), ("NO_COLOR", {"NO_COLOR": "1"}, False),
                                        ("an empty NO_COLOR", {"NO_COLOR": ""}, True)):
        checking = Terminal(*arguments, **environment)
        checking.end()
        check(f"colours on a terminal, {what}", (b"\x1b[31mfails\x1b[0m" in checking.output) == coloured)
        check(f"no other escapes, {what}", coloured or b"\x1b" not in checking.output)
    piped = subprocess.run(PLX + arguments, capture_output=True)
    check("no colours elsewhere", b"fails" in piped.stdout and b"\x1b" not in piped.stdout + piped.stderr)


def test_progress():
    with open("long", "wb") as file:
        file.truncate(256 << 20)
    digest = Terminal("digest", "md5", "long")
    check("digest on a terminal", digest.end() == 0)
    line = digest.output.split(b"\r")[1] if b"\r" in digest.output else b""
    check(f"progress with rate and time left: {line!r}",
          line.startswith(b"long: ") and b"iB/s, " in line and b" %, " in line and b" left" in line)
    check("the drawn line is taken away", b"\r\x1b[K" in digest.output)
    piped = subprocess.run(PLX + ["digest", "md5", "long"], capture_output=True)
    check("no drawing elsewhere", b"\r" not in piped.stderr and b"\x1b" not in piped.stderr)


def main():
    with tempfile.TemporaryDirectory() as folder:
        os.chdir(folder)
        with open("text", "w", encoding="ascii") as text:
            text.write("a text")
        test_prompt("text")
        test_signals("text")
        test_colour()
        test_progress()
        os.chdir("/")
    return 1 if failures else 0


sys.exit(main())
