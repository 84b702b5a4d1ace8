"""The workers: a Dask cluster, looked after."""

import asyncio
import concurrent.futures
import contextlib
import os
import secrets
import time

import dask
import distributed

from . import _task
from ._handfuls import Handfuls
from ._manifest import FOLDER

OWN_CLUSTER = {
    # Workers would wait for each other for ever, now and then: a fault of Python 3.11.2.
    "distributed.worker.profile.enabled": False,
    # What a worker has not begun waits with the scheduler, and is not suspected when the worker dies.
    "distributed.scheduler.worker-saturation": 1.0,
    # The scheduler is part of this process, and would keep what became of the last hundred thousand.
    "distributed.scheduler.transition-log-length": 1000,
    "distributed.scheduler.events-log-length": 1000,
    # And a dozen numbers about this machine for each time that it looks, of the last 7200 times.
    "distributed.admin.system-monitor.interval": "10s",
}

# Times in a row that a worker is at fault until it gets no more pictures.
STRIKES = 3
# Seconds between looks at who is there.
LOOK = 2


class NoCluster(Exception):
    """There is no scheduler, or it does not answer any more."""


class NobodyFit(Exception):
    """No worker there is can have pictures; the text says why."""


class _Lost(Exception):
    """Pictures that nobody works on any more, through no fault of theirs."""


class _Died(Exception):
    """Workers died of these pictures, or of one of them."""

    def __init__(self, pictures, outcome):
        super().__init__()
        self.pictures = pictures
        self.outcome = outcome


class Crew:
    """What hands pictures to workers: Dask's client, through the loss of schedulers and workers."""

    def __init__(self, address, security, local_workers, orders, output, patience, say):
        self._address = address
        self._security = security
        self._local_workers = local_workers
        self._orders = orders
        self._output = output
        self._patience = patience
        self._say = say
        self._cluster = None
        self._client = None
        self._restoring = asyncio.Lock()
        self._welcome = set()  # addresses of workers that have been asked who they are
        self._refused = {}  # address to why it gets no pictures
        self._strikes = {}  # address to times in a row that it was at fault
        self._handfuls = Handfuls(self._adjusted, self.threads)

    async def __aenter__(self):
        if self._address is None:
            dask.config.set(OWN_CLUSTER)
            self._cluster = await distributed.LocalCluster(
                n_workers=self._local_workers, threads_per_worker=1, host="127.0.0.1",
                dashboard_address="127.0.0.1:0", worker_dashboard_address="127.0.0.1:0",
                memory_limit=0, asynchronous=True)
            self._address = self._cluster.scheduler_address
        await self._connect()
        return self

    async def __aexit__(self, *_):
        await self._handfuls.cancel()
        for side in (self._client, self._cluster):
            if side is not None:
                with contextlib.suppress(OSError, asyncio.TimeoutError):
                    await asyncio.wait_for(side.close(), 30)

    async def _connect(self):
        """A client that is connected to workers, each of which is what it should be."""
        end = time.monotonic() + self._patience
        while True:
            try:
                self._client = await distributed.Client(
                    self._address, asynchronous=True, timeout=min(10, self._patience),
                    security=self._security, set_as_default=False)
                break
            except OSError as error:
                if time.monotonic() > end:
                    raise NoCluster(f"no scheduler answers at {self._address}: {error}") from None
                await asyncio.sleep(1)
        said = False
        while not self.workers():
            if self._client.status == "closed":
                return await self._connect()
            if not said:
                self._say(f"waiting for workers at {self._address}")
                said = True
            await asyncio.sleep(0.2)
        await self._look()

    def workers(self):
        """Addresses to names."""
        known = self._client.scheduler_info().get("workers", {})
        return {address: str(worker["name"]) for address, worker in known.items()}

    def threads(self):
        known = self._client.scheduler_info().get("workers", {})
        return sum(worker["nthreads"] for worker in known.values())

    async def _look(self):
        """Asks workers that are new who they are, and refuses those that are not what the client is."""
        known = set(self.workers())
        # Whoever comes back at an address may be another.
        self._welcome &= known
        self._refused = {address: why for address, why in self._refused.items() if address in known}
        new = known - self._welcome - set(self._refused)
        if not new:
            return
        with _token(self._output) as token:
            answers = await self._client.run(_task.identify, self._orders, token, workers=list(new),
                                             on_error="return")
        for address, answer in answers.items():
            if isinstance(answer, OSError):
                continue  # it has gone meanwhile
            fault = self._fault_in(answer)
            if fault:
                self._refuse(address, fault)
            else:
                self._welcome.add(address)

    def _fault_in(self, answer):
        wanted = self._orders.version
        if isinstance(answer, Exception):
            return f"it has no keladjust {wanted}: {answer}"
        package, program, fault = answer
        if package != wanted or program not in (wanted, None):
            return f"it has keladjust {package} with the program {program}, and this is {wanted}"
        return fault

    def _refuse(self, address, fault):
        self._refused[address] = fault
        self._say(f"worker {self.name(address)} gets no pictures: {fault}")

    def name(self, address):
        """What a report calls a worker."""
        return self.workers().get(address, address)

    async def watch(self):
        """Looks at who comes, for as long as the run lasts."""
        while True:
            await asyncio.sleep(LOOK)
            if self._client.status == "running":
                with contextlib.suppress(OSError):
                    await self._look()

    async def attempt(self, source, target, unfit):
        """Has a picture adjusted by any worker but those at fault; the Outcome.

        Through whatever becomes of scheduler and workers: a picture that was lost on the way is handed
        out again. A worker that dies again and again while it has this picture is a "died".

        unfit: addresses of workers that are at fault for this picture"""
        picture = (source, target)
        alone = bool(unfit)
        while True:
            try:
                if alone:
                    return (await self._adjusted([picture], unfit))[0]
                return await self._handfuls.outcome(picture)
            except _Lost:
                await self._restore()
            except _Died as death:
                if death.pictures == [picture]:
                    return death.outcome
                alone = True  # which of the handful it was shows when each goes by itself

    async def _adjusted(self, pictures, unfit=frozenset()):
        """The outcomes of a handful; those not begun are missing at its end. Raises _Lost and _Died."""
        fit = self._fit(unfit)
        try:
            future = self._client.submit(_task.adjust, self._orders, pictures, pure=False, workers=fit,
                                         key=f"keladjust-{secrets.token_hex(8)}")
        except OSError:
            raise _Lost from None
        waiting = asyncio.ensure_future(future.result())
        waiting.add_done_callback(_forget)
        try:
            while not waiting.done():
                await asyncio.wait({waiting}, timeout=LOOK)
                if not waiting.done() and fit and not set(fit) & set(self.workers()):
                    raise _Lost  # it would wait for those who never come back
        finally:
            waiting.cancel()
            future.release()
        error = asyncio.CancelledError() if waiting.cancelled() else waiting.exception()
        if error is None:
            return waiting.result()
        if isinstance(error, distributed.KilledWorker):
            raise _Died(pictures, _task.Outcome("died", "its worker died each time",
                                                worker=error.last_worker.address))
        if isinstance(error, (OSError, asyncio.CancelledError, concurrent.futures.CancelledError)):
            raise _Lost
        raise _Died(pictures, _task.Outcome("died", f"{type(error).__name__}: {error}"))

    async def _restore(self):
        """Comes back when there is a scheduler to talk to."""
        async with self._restoring:
            end = time.monotonic() + self._patience
            while self._client.status == "connecting" and time.monotonic() < end:
                await asyncio.sleep(0.2)
            if self._client.status == "running":
                return
            self._say(f"the scheduler at {self._address} is gone; waiting for it")
            with contextlib.suppress(OSError, asyncio.TimeoutError):
                await self._client.close()
            await self._connect()
            self._say("the scheduler is back")

    def _fit(self, unfit):
        """Addresses of those who may have a picture; None for all. Raises NobodyFit."""
        known = set(self.workers())
        able = known - set(self._refused)
        if known and not able:
            raise NobodyFit("; ".join(f"{self.name(address)}: {self._refused[address]}"
                                      for address in sorted(known)))
        # A picture that all have failed with may as well go to any of them.
        fit = able - unfit or able
        return None if fit == known else sorted(fit)

    def judge(self, outcome):
        """Takes note of a worker that was at fault."""
        if outcome.result not in ("unfit", "refused"):
            self._strikes.pop(outcome.worker, None)
            return
        self._strikes[outcome.worker] = self._strikes.get(outcome.worker, 0) + 1
        if self._strikes[outcome.worker] == STRIKES:
            self._refuse(outcome.worker, outcome.reason)

    async def stop(self):
        """Stops the programs that run."""
        if self._client is not None and self._client.status == "running":
            with contextlib.suppress(OSError, asyncio.TimeoutError):
                await asyncio.wait_for(self._client.run(_task.stop, self._orders.run,
                                                        on_error="ignore"), _task.PATIENCE + 5)


def _forget(task):
    """Nobody may be left to ask a task that fails while the run is stopped, which asyncio would tell."""
    if not task.cancelled():
        task.exception()


@contextlib.contextmanager
def _token(output):
    """A file by which workers show that they see the output folder."""
    path = os.path.join(output, FOLDER, f"token-{secrets.token_hex(8)}")
    with open(path, "xb"):
        pass
    try:
        yield path
    finally:
        os.remove(path)
