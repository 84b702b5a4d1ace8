"""How far a run is: a line that changes on a terminal, one line a minute elsewhere."""

import collections
import sys
import time

MINUTE = 60
# The rate is that of so many seconds.
WINDOW = 120


class Progress:
    def __init__(self, quiet=False, stream=None):
        self.counts = collections.Counter()
        self.total = None  # once the inputs have been counted
        self._quiet = quiet
        self._stream = stream or sys.stderr
        self._on_terminal = self._stream.isatty()
        self._began = self._last = time.monotonic()
        self._past = collections.deque([(self._began, 0)])

    def say(self, text):
        """A message, on a line of its own."""
        if not self._quiet:
            self._write(("\r\033[K" if self._on_terminal else "") + f"keladjust-farm: {text}\n")

    def tick(self, workers):
        """Called a few times a second."""
        now = time.monotonic()
        if now - self._past[-1][0] >= 1:
            self._past.append((now, self._worked()))
            while len(self._past) > 2 and now - self._past[0][0] > WINDOW:
                self._past.popleft()
        if self._quiet or now - self._last < (0.5 if self._on_terminal else MINUTE):
            return
        self._last = now
        line = self.line(workers)
        self._write(f"\r\033[K{line}" if self._on_terminal else f"{line}\n")

    def end(self):
        if self._on_terminal and not self._quiet:
            self._write("\r\033[K")

    def line(self, workers):
        parts = [f"{self.counts['done']} done"]
        parts += [f"{self.counts[kind]} {kind}" for kind in ("skipped", "failed", "set aside")
                  if self.counts[kind]]
        rate = self._rate()
        parts.append(f"{rate:.1f}/s by {workers} workers")
        left = None if self.total is None else self.total - sum(self.counts.values())
        if left is not None and rate > 0:
            parts.append(f"{clock(left / rate)} left")
        return ", ".join(parts)

    def summary(self):
        seconds = time.monotonic() - self._began
        return ", ".join(f"{self.counts[kind]} {kind}" for kind in
                         ("done", "skipped", "failed", "set aside")) + f" in {clock(seconds)}"

    def _worked(self):
        return sum(self.counts.values()) - self.counts["skipped"]

    def _rate(self):
        then, count = self._past[0]
        seconds = time.monotonic() - then
        return (self._worked() - count) / seconds if seconds > 0 else 0

    def _write(self, text):
        self._stream.write(text)
        self._stream.flush()


def clock(seconds):
    """1:02:03"""
    minutes, seconds = divmod(int(seconds + 0.5), 60)
    hours, minutes = divmod(minutes, 60)
    return f"{hours}:{minutes:02}:{seconds:02}"
