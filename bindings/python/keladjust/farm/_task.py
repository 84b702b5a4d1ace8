"""What runs on the workers: one picture at a time, each by the program in its own process."""

import functools
import os
import shutil
import signal
import subprocess
import tempfile
import threading
import time
from typing import NamedTuple

from .. import __version__

# A worker gives back what it has not begun of a handful after so many seconds.
TURN = 1
# How long a program that is asked to stop may take until it is killed.
PATIENCE = 5


class Orders(NamedTuple):
    """What is the same for all pictures of a run."""

    run: str
    version: str  # of the client's, which is to be everybody's
    program: str
    arguments: tuple
    timeout: float


class Outcome(NamedTuple):
    """How a picture fared: "done"; "failed", which is the picture's fault; "died", when the program
    ended without an answer; "unfit", which is the worker's fault, as is "refused", another version."""

    result: str
    reason: str = ""
    seconds: float = 0.0
    worker: str = ""  # its address
    size: int = 0  # of the output


def adjust(orders, pictures):
    """Adjusts a handful of pictures, each a source and a target: the Outcome of each that was begun.
    None is begun any more after a second, after one that may have been the worker's fault, or when the
    run is stopped."""
    end = time.monotonic() + TURN
    outcomes = []
    for source, target in pictures:
        started = time.monotonic()
        result, reason, size = _adjust(orders, source, target)
        ended = time.monotonic()
        outcomes.append(Outcome(result, reason, ended - started, _worker(), size))
        if result not in ("done", "failed") or ended > end or _running.is_stopped(orders.run):
            break
    return outcomes


def identify(orders, token):
    """The versions of a worker's package and program, and whether it sees a file of the client's:
    (package, program, "" or what is wrong)."""
    try:
        program = _program_version(orders.program)
    except OSError as error:
        return __version__, None, _words(error)
    try:
        with open(token, "rb"), tempfile.TemporaryFile(dir=os.path.dirname(token)):
            return __version__, program, ""
    except OSError as error:
        return __version__, program, _words(error)


def _adjust(orders, source, target):
    folder = os.path.dirname(target)
    try:
        version = _program_version(orders.program)
        if {__version__, version} != {orders.version}:
            return "refused", f"package {__version__}, program {version}", 0
        os.makedirs(folder, exist_ok=True)
        status, words = _running.run(orders, [orders.program, source, "--cpu", "--threads", "1",
                                              "--quiet", *orders.arguments, "-o", target])
    except OSError as error:
        return "unfit", _words(error), 0
    if status == 0:
        return "done", "", os.stat(target).st_size
    if status is None:
        return "died", f"took longer than {orders.timeout:g} s", 0
    if status < 0:
        return "died", f"the program was ended by {signal.Signals(-status).name}", 0
    fault = _fault_here(source, folder)
    return ("unfit", fault, 0) if fault else ("failed", words, 0)


def _fault_here(source, folder):
    """What keeps this worker from any such picture, or nothing."""
    try:
        with open(source, "rb") as file:
            file.read(1)
        with tempfile.TemporaryFile(dir=folder) as file:
            file.write(bytes(min(os.stat(source).st_size, 1 << 24)))
            file.flush()
            os.fsync(file.fileno())
    except OSError as error:
        return _words(error, folder)
    return ""


def _words(error, place=""):
    """What an OSError says, without its number."""
    return f"{error.strerror}: {error.filename or place}" if error.strerror else str(error)


class _Running:
    """The programs that run in this process's care, by run."""

    def __init__(self):
        self._lock = threading.Lock()
        self._programs = {}
        self._stopped = set()

    def run(self, orders, command):
        """The exit status and what was said; the status is None if it took too long."""
        # A session of its own: Ctrl-C at a terminal is the client's to act on.
        with subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                              stderr=subprocess.PIPE, errors="replace",
                              start_new_session=True) as program:
            with self._lock:
                self._programs.setdefault(orders.run, set()).add(program)
            try:
                words = program.communicate(timeout=orders.timeout)[1]
                return program.returncode, words[-2000:].strip()
            except subprocess.TimeoutExpired:
                _stop(program)
                return None, ""
            finally:
                with self._lock:
                    self._programs[orders.run].discard(program)

    def stop(self, run):
        with self._lock:
            self._stopped.add(run)
            programs = list(self._programs.get(run, ()))
        for program in programs:
            _stop(program)
        return len(programs)

    def is_stopped(self, run):
        return run in self._stopped


def _stop(program):
    """The program takes its temporary file away if it is asked."""
    program.send_signal(signal.SIGINT)
    try:
        program.wait(PATIENCE)
    except subprocess.TimeoutExpired:
        program.kill()


_running = _Running()


def stop(run):
    """Stops the programs of a run; on every worker when the run is interrupted."""
    return _running.stop(run)


def _program_version(program):
    found = shutil.which(program)
    if found is None:
        raise FileNotFoundError(f'there is no program "{program}" here')
    state = os.stat(found)
    return _version_of(found, state.st_mtime_ns, state.st_size)


@functools.lru_cache(maxsize=8)
def _version_of(path, _modified, _size):
    """The second word that it says of itself. Asked again once the program's file has changed, as it
    does when packages are renewed."""
    said = subprocess.run([path, "--version"], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, timeout=60, text=True, check=False).stdout
    return (said.split() + ["unknown", "unknown"])[1]


def _worker():
    from distributed import get_worker

    try:
        return get_worker().address
    except ValueError:  # called by itself
        return ""
