"""Pictures on their way to workers, by the handful: what Dask does for a task costs as much as a tiny
picture, and half of what one scheduler can do for a thousand cores."""

import asyncio
import collections

# Pictures that a worker gets at a time, at most.
HANDFUL = 8
# Handfuls that are handed out at a time for each core: one that it works on, and one that is ready.
AHEAD = 2


class Handfuls:
    """Hands out what waits whenever a core can take more. What waits longer goes in larger handfuls, so
    that few pictures for many cores go one by one."""

    def __init__(self, adjust, cores):
        """adjust: has pictures adjusted in turn and returns their outcomes, of which the last ones may
        be missing: those pictures have not been begun
        cores: tells how many there are"""
        self._adjust = adjust
        self._cores = cores
        self._waiting = collections.deque()  # pictures, each with the future of its outcome
        self._handed_out = set()

    async def outcome(self, picture):
        """That of one picture. Raises what became of its handful."""
        future = asyncio.get_running_loop().create_future()
        self._waiting.append((picture, future))
        self._hand_out()
        return await future

    async def cancel(self):
        for handful in self._handed_out:
            handful.cancel()
        await asyncio.gather(*self._handed_out, return_exceptions=True)

    def _hand_out(self):
        cores = max(1, self._cores())
        while self._waiting and len(self._handed_out) < AHEAD * cores:
            share = -(-len(self._waiting) // cores)
            pictures = [self._waiting.popleft() for _ in range(min(HANDFUL, share))]
            handful = asyncio.ensure_future(self._work(pictures))
            self._handed_out.add(handful)
            handful.add_done_callback(self._ended)

    def _ended(self, handful):
        self._handed_out.discard(handful)
        if not handful.cancelled():
            self._hand_out()

    async def _work(self, pictures):
        try:
            outcomes = await self._adjust([picture for picture, _ in pictures])
        except Exception as error:
            for _, future in pictures:
                if not future.done():
                    future.set_exception(error)
            return
        for (_, future), outcome in zip(pictures, outcomes):
            if not future.done():
                future.set_result(outcome)
        self._waiting.extendleft(reversed(pictures[len(outcomes):]))
