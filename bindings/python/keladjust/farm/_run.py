"""A run: pictures are handed out as workers take them, and what becomes of each is written down."""

import asyncio
import contextlib
import itertools
import os
import time

from . import _manifest, _sources
from ._handfuls import AHEAD, HANDFUL
from ._output import Misplaced

# Pictures that are looked up at a time.
BATCH = 256
# Pictures that are handed out at a time for each core: enough for handfuls to be full.
IN_FLIGHT = (AHEAD + 1) * HANDFUL
# Seconds until a file that another machine has written is here: NFS remembers for sixty that a name was
# not there.
SEEN_WITHIN = 75


class Interrupted(Exception):
    """Ctrl-C."""


class Run:
    def __init__(self, crew, manifest, report, progress, output, options):
        self._crew = crew
        self._manifest = manifest
        self._report = report
        self._progress = progress
        self._output = output
        self._options = options
        self._in_flight = set()
        self._freed = asyncio.Event()
        self._failure = None

    async def work(self, stopped):
        """Adjusts all pictures. Raises Interrupted once `stopped` is set, and what ends a run early.

        stopped: an asyncio.Event"""
        helpers = [asyncio.ensure_future(task) for task in
                   (self._crew.watch(), self._tick(), self._count(), self._wait_for(stopped))]
        try:
            await self._feed()
            while self._in_flight and self._failure is None:
                await self._room(1)
            if self._failure is not None:
                raise self._failure
        finally:
            for task in [*helpers, *self._in_flight]:
                task.cancel()
            await asyncio.gather(*helpers, *self._in_flight, return_exceptions=True)
            self._manifest.commit()
            if self._failure is not None:
                await self._crew.stop()

    async def _feed(self):
        pictures = _sources.pictures(self._options.inputs, self._options.lists, self._output.path)
        while self._failure is None:
            # Folders may be slow to look at, and those who work are not to wait for that.
            batch = await asyncio.to_thread(self._look_up, pictures)
            if not batch:
                return
            for picture, state in batch:
                await self._room(self._most_in_flight())
                if self._failure is not None:
                    return
                self._begin(picture, state)

    def _look_up(self, pictures):
        batch = []
        for picture in itertools.islice(pictures, BATCH):
            try:
                batch.append((picture, os.stat(picture.input)))
            except OSError as error:
                batch.append((picture, error))
        return batch

    def _most_in_flight(self):
        return self._options.in_flight or IN_FLIGHT * max(1, self._crew.threads())

    async def _room(self, most):
        """Waits until fewer than `most` pictures are handed out."""
        while len(self._in_flight) >= most and self._failure is None:
            self._freed.clear()
            await self._freed.wait()

    def _begin(self, picture, state):
        """Hands a picture out unless there is a reason not to."""
        place = self._output.place(picture)
        try:
            if isinstance(state, OSError):
                raise Misplaced(f"it cannot be opened: {state.strerror}")
            target = self._output.target(picture, place)
            mark = self._manifest.mark(picture.input, state)
            known = self._manifest.claim(place, mark)
        except Misplaced as fault:
            return self._tell(picture, place, "failed", str(fault))
        except _manifest.Taken:
            return self._tell(picture, place, "failed",
                              f"another picture of this run is written to {place}")
        if known is None:
            return self._tell(picture, place, "skipped", "named twice")
        result, size, reason = known
        if result == _manifest.DONE and _is_there(target, size, state):
            return self._tell(picture, place, "skipped")
        if result == _manifest.SET_ASIDE and not self._options.again:
            return self._tell(picture, place, "set aside", reason)
        task = asyncio.ensure_future(self._adjust(picture, place, target))
        self._in_flight.add(task)
        task.add_done_callback(self._ended)
        return None

    def _ended(self, task):
        self._in_flight.discard(task)
        self._freed.set()
        if not task.cancelled() and task.exception() is not None:
            self._fail(task.exception())

    def _fail(self, error):
        self._failure = self._failure or error
        self._freed.set()

    async def _adjust(self, picture, place, target):
        unfit = set()
        for attempt in itertools.count(1):
            outcome = await self._crew.attempt(picture.input, target, unfit)
            if outcome.result == "done" and not await _is_seen(target, outcome.size):
                outcome = outcome._replace(result="unfit", reason=f"what it wrote is not here: {target}")
            self._crew.judge(outcome)
            worker = self._crew.name(outcome.worker)
            if outcome.result == "done":
                self._manifest.tell(place, _manifest.DONE, outcome.size)
                return self._tell(picture, place, "done", "", outcome.seconds, worker, attempt)
            if outcome.result == "failed" or attempt > self._options.retries:
                break
            if outcome.result in ("unfit", "refused"):
                unfit.add(outcome.worker)
        result = "failed"
        if outcome.result == "died":
            result = "set aside"
            self._manifest.tell(place, _manifest.SET_ASIDE, reason=outcome.reason)
        return self._tell(picture, place, result, outcome.reason, outcome.seconds, worker, attempt)

    def _tell(self, picture, place, result, reason="", *details):
        self._progress.counts[result] += 1
        self._report.add(picture.input, place, result, reason or "", *details)
        if result in ("failed", "set aside"):
            self._progress.say(f"{picture.input}: {result}: {reason}")

    async def _tick(self):
        while True:
            self._manifest.commit()
            self._progress.tick(len(self._crew.workers()))
            await asyncio.sleep(0.5)

    async def _count(self):
        """How many pictures there are, meanwhile; what comes through a pipe comes once."""
        if "-" not in self._options.lists:
            with contextlib.suppress(OSError):  # it is told of by those who feed
                self._progress.total = await asyncio.to_thread(_count_of, self._options,
                                                               self._output.path)

    async def _wait_for(self, stopped):
        await stopped.wait()
        self._fail(Interrupted())


def _count_of(options, output):
    return sum(1 for _ in _sources.pictures(options.inputs, options.lists, output))


async def _is_seen(target, size):
    """Whether an output that a worker has written has come to be here, which on a shared file system
    takes a while now and then. A worker whose file system has gone writes below where it was."""
    end = time.monotonic() + SEEN_WITHIN
    pause = 0.02
    while True:
        with contextlib.suppress(OSError):
            if os.stat(target).st_size == size:
                return True
        if time.monotonic() > end:
            return False
        await asyncio.sleep(pause)
        pause = min(2 * pause, 5)


def _is_there(target, size, source):
    """Whether an output is as it was written, and newer than its input."""
    try:
        state = os.stat(target)
    except OSError:
        return False
    return state.st_size == size and state.st_mtime_ns >= source.st_mtime_ns
