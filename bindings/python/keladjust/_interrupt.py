"""Ctrl-C while the library works."""

import signal
import threading
from contextlib import contextmanager


class Raised:
    """What stops a call: the first exception of a progress function or of Ctrl-C's handler."""

    error = None

    def keep(self, error):
        if self.error is None:
            self.error = error


@contextmanager
def interrupts_kept(raised):
    """Keeps what the handler of Ctrl-C raises until the library has come back.

    Python runs handlers between its own steps, which while the library works are those of the
    function that it calls with its progress. What a handler raises before that function's first step
    would be lost in the C code that called it."""
    handler = signal.getsignal(signal.SIGINT)
    if threading.current_thread() is not threading.main_thread() or not callable(handler):
        yield False
        return

    def keep(number, frame):
        try:
            handler(number, frame)
        except BaseException as error:  # of whatever kind: it is raised again
            raised.keep(error)

    signal.signal(signal.SIGINT, keep)
    try:
        yield True
    finally:
        signal.signal(signal.SIGINT, handler)
