"""Pictures by the handful: that none is lost or done twice, and who gets how many."""

import asyncio

import pytest
from farm_support import PROGRAM, write_pictures

import keladjust
from keladjust.farm import _handfuls, _task


def outcomes_of(pictures, adjust, cores):
    """What becomes of pictures that are all there at once."""
    async def work():
        handfuls = _handfuls.Handfuls(adjust, lambda: cores)
        return await asyncio.gather(*(handfuls.outcome(picture) for picture in pictures))
    return asyncio.run(work())


def test_what_a_worker_gives_back_is_handed_out_again_before_the_rest():
    handed_out = []

    async def two_of_them(pictures):
        handed_out.append(pictures)
        await asyncio.sleep(0)
        return [f"done {picture}" for picture in pictures[:2]]
    pictures = list(range(40))
    assert outcomes_of(pictures, two_of_them, cores=1) == [f"done {picture}" for picture in pictures]
    done = [picture for handful in handed_out for picture in handful[:2]]
    assert sorted(done) == pictures
    assert max(map(len, handed_out)) == _handfuls.HANDFUL
    # Nobody is ahead of its turn by more than what the handfuls under way hold.
    most = (_handfuls.AHEAD + 1) * _handfuls.HANDFUL
    assert all(abs(place - picture) <= most for place, picture in enumerate(done))


def test_few_pictures_for_many_cores_go_one_by_one():
    sizes = []

    async def adjust(pictures):
        sizes.append(len(pictures))
        await asyncio.sleep(0.01)
        return pictures
    outcomes_of(range(100), adjust, cores=50)
    assert set(sizes) == {1}


def test_no_more_handfuls_are_under_way_than_cores_can_take():
    under_way = set()
    most = []

    async def adjust(pictures):
        under_way.add(pictures[0])
        most.append(len(under_way))
        await asyncio.sleep(0)
        under_way.remove(pictures[0])
        return pictures
    outcomes_of(range(200), adjust, cores=3)
    assert max(most) == 3 * _handfuls.AHEAD


def test_a_handful_that_fails_fails_for_each_of_its_pictures():
    async def adjust(pictures):
        if 7 in pictures:
            raise OSError("lost")
        return pictures

    async def work():
        handfuls = _handfuls.Handfuls(adjust, lambda: 1)
        return await asyncio.gather(*(handfuls.outcome(picture) for picture in range(30)),
                                    return_exceptions=True)
    outcomes = asyncio.run(work())
    failed = [index for index, outcome in enumerate(outcomes) if isinstance(outcome, OSError)]
    assert 7 in failed and len(failed) <= _handfuls.HANDFUL
    assert all(outcomes[index] == index for index in range(30) if index not in failed)


def orders(program):
    return _task.Orders("run", keladjust.__version__, str(program), ("--tint=5",), 60.0)


def pairs(tmp_path, count):
    return [(str(path), str(tmp_path / "out" / path.name)) for path in
            write_pictures(tmp_path / "in", count)]


def test_a_worker_begins_no_picture_after_its_turn(tmp_path, monkeypatch):
    monkeypatch.setattr(_task, "TURN", 0)
    outcomes = _task.adjust(orders(PROGRAM), pairs(tmp_path, 3))
    assert [outcome.result for outcome in outcomes] == ["done"]
    monkeypatch.setattr(_task, "TURN", 1000)
    outcomes = _task.adjust(orders(PROGRAM), pairs(tmp_path, 3))
    assert [outcome.result for outcome in outcomes] == ["done"] * 3


@pytest.mark.parametrize("text, results", [
    ("case $picture in *0001*) kill -9 $$ ;; esac", ["done", "died"]),
    ("case $picture in *0001*) echo bad >&2; exit 1 ;; esac", ["done", "failed", "done"]),
])
def test_a_worker_goes_on_after_a_bad_picture_but_not_after_a_death(text, results, tmp_path, wrapped,
                                                                    monkeypatch):
    monkeypatch.setattr(_task, "TURN", 1000)
    outcomes = _task.adjust(orders(wrapped(text)), pairs(tmp_path, 3))
    assert [outcome.result for outcome in outcomes] == results
