"""The client's memory, over more pictures than it could ever keep."""

import asyncio
import contextlib
import os
import time
import types

import pytest
from farm_support import PROGRAM, SETTINGS, by_program, write_pictures

from keladjust.farm import _manifest, _output, _progress, _report, _run, _sources, _task

PICTURES = 1_000_000
# What the manifest keeps at hand is full by then.
SETTLED = 500_000

ADJUSTED = 100_000


def resident_of(pid):
    with open(f"/proc/{pid}/statm") as file:
        return int(file.read().split()[1]) * os.sysconf("SC_PAGE_SIZE")


class ReadyCrew:
    """Answers for every picture at once, as a thousand cores."""

    def __init__(self, progress):
        self.samples = []
        self._progress = progress

    async def attempt(self, _source, target, _unfit):
        await asyncio.sleep(0)
        return _task.Outcome("done", "", 0.5, "tcp://10.0.0.1:40001", 1)

    async def watch(self):
        while True:
            await asyncio.sleep(1)
            self.samples.append((self._progress.counts["done"], resident_of("self")))

    def judge(self, _outcome):
        pass

    def name(self, address):
        return address

    def workers(self):
        return {"tcp://10.0.0.1:40001": "w"}

    def threads(self):
        return 1000

    async def stop(self):
        pass


@pytest.mark.long
def test_memory_stays_flat_over_a_million_pictures(tmp_path, monkeypatch):
    source = tmp_path / "picture.jpg"
    source.write_bytes(b"x")
    monkeypatch.setattr(_sources, "pictures", lambda *_: (
        _sources.Picture(str(source), f"{i // 1000:04}/{i:07}.jpg") for i in range(PICTURES)))

    async def seen(*_):
        return True
    monkeypatch.setattr(_run, "_is_seen", seen)
    progress = _progress.Progress(quiet=True)
    crew = ReadyCrew(progress)

    async def work():
        output = _output.OutputFolder(tmp_path / "out")
        manifest = _manifest.Manifest(output.path, b"settings")
        report = _report.Report(tmp_path / "report.csv")
        options = types.SimpleNamespace(inputs=[], lists=[], in_flight=None, again=False, retries=2)
        await _run.Run(crew, manifest, report, progress, output, options).work(asyncio.Event())
        manifest.close()
        report.close()
    asyncio.run(work())
    assert progress.counts == {"done": PICTURES}
    settled = [resident for done, resident in crew.samples if done >= SETTLED]
    assert len(settled) > 2
    # A byte a picture would be half a megabyte; the allocator moves as much by itself.
    assert max(settled) - settled[0] < 1 << 20


@pytest.mark.long
def test_a_hundred_thousand_pictures_are_adjusted_in_flat_memory(farm, tmp_path):
    # A hundred pictures, each of which has a thousand names.
    written = write_pictures(tmp_path / "originals", 100, width=32, height=24)
    made = by_program(tmp_path / "originals", tmp_path / "expected")
    expected = {path: made[str(path.relative_to(tmp_path / "originals"))] for path in written}
    source, target = tmp_path / "in", tmp_path / "out"
    names = {}
    for index in range(ADJUSTED):
        place = f"{index // 1000:03}/{index:06}.jpg"
        (source / place).parent.mkdir(parents=True, exist_ok=True)
        original = written[index % len(written)]
        os.link(original, source / place)
        names[place] = original

    run = farm(source, target, *SETTINGS, "--workers", 2, "--program", PROGRAM)
    samples = []
    while run.process.poll() is None:
        time.sleep(1)
        with contextlib.suppress(OSError, ValueError, IndexError):
            samples.append(resident_of(run.process.pid))
    assert run.process.returncode == 0, run.said
    for place, original in names.items():
        assert (target / place).read_bytes() == expected[original], place

    # The scheduler is in there, too. A megabyte is what the allocator moves by itself, and less than
    # fourteen bytes a picture.
    samples = samples[:-1]  # the last one may be of a process that ends
    print("client, kB:", *(resident >> 10 for resident in samples[::len(samples) // 20 or 1]))
    settled = samples[len(samples) // 4:]
    assert max(settled) - settled[0] < 1 << 20
