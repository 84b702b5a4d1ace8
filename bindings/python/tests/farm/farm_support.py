"""Farms for tests: real schedulers and workers, each a process."""

import contextlib
import csv
import os
import pathlib
import signal
import socket
import subprocess
import sys
import time

import numpy
from PIL import Image

PHOTOGRAPHS = pathlib.Path("/usr/share/backgrounds/mate/nature")
ROOT = pathlib.Path(__file__).resolve().parents[4]
PROGRAM = pathlib.Path(os.environ["KELADJUST_PROGRAM"]).resolve()
FARM = pathlib.Path(sys.executable).parent / "keladjust-farm"
SETTINGS = ["--exposure=20", "--clarity=15", "--blue-saturation=30"]

# Longer than anything here takes on a busy machine; who waits that long has lost something.
LONG = 240


def until(condition, what):
    """Waits for a condition; a test fails that waits in vain."""
    end = time.monotonic() + LONG
    while not condition():
        assert time.monotonic() < end, f"waited in vain for {what}"
        time.sleep(0.05)


def write_pictures(folder, count, width=160, height=120, extension=".jpg"):
    """Pieces of a photograph, each another; their paths."""
    with Image.open(PHOTOGRAPHS / "Garden.jpg") as photograph:
        source = numpy.asarray(photograph.convert("RGB"))
    places = numpy.random.default_rng(count).integers(
        0, (source.shape[0] - height, source.shape[1] - width), (count, 2))
    paths = []
    for index, (y, x) in enumerate(places):
        path = folder / f"{index % 3}" / f"picture {index:04}{extension}"
        path.parent.mkdir(parents=True, exist_ok=True)
        Image.fromarray(source[y:y + height, x:x + width]).save(path)
        paths.append(path)
    return paths


def outputs(folder):
    """Every file of an output folder but the farm's own."""
    return {str(path.relative_to(folder)): path.read_bytes() for path in sorted(folder.rglob("*"))
            if path.is_file() and ".keladjust-farm" not in path.parts}


def by_program(source, folder, settings=SETTINGS):
    """What the program itself makes of a folder of pictures: place to bytes."""
    for below in sorted({path.parent for path in source.rglob("*") if path.is_file()}):
        target = folder / below.relative_to(source)
        target.mkdir(parents=True, exist_ok=True)
        subprocess.run([PROGRAM, *sorted(path for path in below.iterdir() if path.is_file()), "--quiet",
                        *settings, "-o", f"{target}/"], check=False, stderr=subprocess.DEVNULL)
    return outputs(folder)


def report_of(folder):
    """The rows of a run's report by their picture's name."""
    with open(folder / ".keladjust-farm/report.csv", newline="") as file:
        return {pathlib.Path(row["picture"]).name: row for row in csv.DictReader(file)}


def results_of(folder):
    return {name: row["result"] for name, row in report_of(folder).items()}


class Farm:
    """A run of keladjust-farm, going on."""

    def __init__(self, folder, arguments):
        self._said = open(folder / f"said-{time.monotonic_ns()}", "w+")
        # A session of its own, as a terminal would give it, so that Ctrl-C can go to all of it.
        self.process = subprocess.Popen([FARM, *map(str, arguments)], stdin=subprocess.DEVNULL,
                                        stdout=self._said, stderr=self._said, start_new_session=True)

    @property
    def said(self):
        self._said.seek(0)
        return self._said.read()

    def end(self):
        """The exit code, once it has ended."""
        try:
            return self.process.wait(LONG)
        finally:
            self.kill()

    def kill(self):
        with contextlib.suppress(ProcessLookupError):
            os.killpg(self.process.pid, signal.SIGKILL)
        self.process.wait()


class Cluster:
    """A scheduler and workers; `settings` are Dask's own, in the environment."""

    def __init__(self, folder, settings=None, arguments=(), protocol="tcp"):
        self._folder = folder
        self._environment = {**os.environ, "DASK_DISTRIBUTED__WORKER__PROFILE__ENABLED": "False",
                             **(settings or {})}
        self._arguments = arguments
        with socket.socket() as free:
            free.bind(("127.0.0.1", 0))
            port = free.getsockname()[1]
        self._port = port
        self.address = f"{protocol}://127.0.0.1:{port}"
        self._processes = {}
        self._log = open(folder / "cluster.log", "a")

    def _start(self, name, module, *arguments, prefix=()):
        self._processes[name] = subprocess.Popen(
            [*prefix, sys.executable, "-m", f"distributed.cli.{module}", *arguments,
             *self._arguments, "--host", "127.0.0.1", "--no-dashboard"],
            stdin=subprocess.DEVNULL, stdout=self._log, stderr=self._log, env=self._environment,
            cwd=self._folder, start_new_session=True)

    def start_scheduler(self):
        self._start("scheduler", "dask_scheduler", "--port", str(self._port))

    def start_worker(self, name, *arguments, prefix=()):
        self._start(name, "dask_worker", self.address, "--nthreads", "1", "--name", name,
                    "--local-directory", str(self._folder / "spill"), "--memory-limit", "0",
                    *arguments, prefix=prefix)

    def process(self, name):
        return self._processes[name]

    def of_worker(self, name):
        """The process that works, which a nanny looks after."""
        def children():
            found = subprocess.run(["pgrep", "-P", str(self._processes[name].pid), "-f", "spawn_main"],
                                   stdout=subprocess.PIPE, text=True, check=False).stdout.split()
            return [int(pid) for pid in found]
        until(children, f"worker {name}")
        return children()[0]

    def kill(self, name):
        with contextlib.suppress(ProcessLookupError):
            os.killpg(self._processes[name].pid, signal.SIGKILL)
        self._processes.pop(name).wait()

    def close(self):
        for name in list(self._processes):
            self.kill(name)
        self._log.close()
