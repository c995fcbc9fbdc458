"""The tests' end of zolvane-driver.exe: one question a line, one answer a line."""

import json
import select
import subprocess

from .trace import note

# Longer than any wait that a command is given, so that the driver's own limit speaks first.
ANSWER_LIMIT = 90


class DriverError(Exception):
    """The driver's reason for a refusal."""


def to_text(value):
    """Bytes of the program's code page, which the driver sends as code points below 256."""
    if isinstance(value, str):
        return value.encode("latin-1").decode("cp1252", errors="surrogateescape")
    if isinstance(value, list):
        return [to_text(item) for item in value]
    if isinstance(value, dict):
        return {key: to_text(item) for key, item in value.items()}
    return value


def to_word(value):
    if isinstance(value, int):
        return str(value)
    if isinstance(value, bytes):
        return json.dumps(value.decode("latin-1"))
    return json.dumps(value.encode("cp1252").decode("latin-1"))


class Driver:
    def __init__(self, program, env, stderr):
        """`stderr` gets what Wine tells of the driver and of all that it starts."""
        self._process = subprocess.Popen(["wine", str(program)], env=env, stdin=subprocess.PIPE,
                                         stdout=subprocess.PIPE, stderr=stderr)
        self._buffer = b""

    def __call__(self, command, *arguments):
        """The value of the answer; DriverError if the driver refuses."""
        return to_text(self._ask(command, *arguments))

    def raw(self, command, *arguments):
        """As a call, with each byte of a text as the code point of its value."""
        return self._ask(command, *arguments)

    def _ask(self, command, *arguments):
        line = " ".join([command, *(to_word(argument) for argument in arguments)])
        self._process.stdin.write(line.encode("ascii") + b"\n")
        self._process.stdin.flush()
        note(line)
        answer = json.loads(self._read_line(line))
        note(str(answer)[:300])
        if not answer["ok"]:
            raise DriverError(f"{line}: {answer['error']}")
        return answer["value"]

    def _read_line(self, question):
        stream = self._process.stdout
        while b"\n" not in self._buffer:
            ready, _, _ = select.select([stream], [], [], ANSWER_LIMIT)
            chunk = stream.read1(1 << 20) if ready else b""
            if not chunk:
                raise DriverError(f"no answer to: {question}")
            self._buffer += chunk
        line, self._buffer = self._buffer.split(b"\n", 1)
        return line

    def close(self):
        self._process.stdin.close()
        try:
            self._process.wait(timeout=10)
        except subprocess.TimeoutExpired:
            self._process.kill()
            self._process.wait()
        self._process.stdout.close()
