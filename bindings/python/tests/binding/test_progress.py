"""Progress, and what ends a call early."""

import os
import signal
import subprocess
import sys
import threading
import time

import numpy
import pytest

import keladjust

SLOW = {"luminance_noise_reduction": 50, "colour_noise_reduction": 50}


def test_progress_begins_at_nothing_never_falls_and_ends_with_all(noise):
    shares = []
    keladjust.adjust(noise(400, 600, 3), SLOW, progress=shares.append)
    assert shares[0] == 0 and shares[-1] == 1 and shares == sorted(shares) and len(shares) > 2


def test_what_progress_returns_does_not_matter(noise):
    array = noise(400, 600, 3)
    other = array.copy()
    keladjust.adjust(array, SLOW, progress=lambda share: True)
    keladjust.adjust(other, SLOW)
    assert numpy.array_equal(array, other)


class Enough(BaseException):
    pass


def test_an_exception_cancels_and_comes_out(noise):
    array = noise(1000, 1000, 3)
    whole = array.copy()
    keladjust.adjust(whole, SLOW)
    seen = []

    def stop(share):
        seen.append(share)
        if len(seen) == 3:
            raise Enough("now")
    with pytest.raises(Enough, match="now"):
        keladjust.adjust(array, SLOW, progress=stop)
    assert len(seen) == 3 and not numpy.array_equal(array, whole)


def test_cancelled_before_anything_is_done_a_picture_stays_even_in_a_copy(noise):
    array = noise(30, 41, 3)
    before = array.copy()
    with pytest.raises(ZeroDivisionError):
        keladjust.adjust(array, exposure=20, progress=lambda share: 1 / 0)
    assert numpy.array_equal(array, before)


def test_ctrl_c_ends_a_call_long_before_its_end(noise):
    """SIGINT comes while the library works, with and without a progress function; ten times each, so
    that it comes between all kinds of steps."""
    array = noise(1500, 2000, 3)
    for round in range(20):
        timer = threading.Timer(0.02 + 0.003 * round, os.kill, (os.getpid(), signal.SIGINT))
        seen = []
        timer.start()
        try:
            with pytest.raises(KeyboardInterrupt):
                keladjust.adjust(array, SLOW, progress=seen.append if round % 2 else None, threads=1)
                time.sleep(10)  # where it came between adjust() and here, it is none of adjust()'s
        finally:
            timer.join()
        assert 1 not in seen
    assert signal.getsignal(signal.SIGINT) is signal.default_int_handler


def test_a_handler_that_raises_nothing_cancels_nothing(noise):
    array = noise(500, 500, 3)
    other = array.copy()
    keladjust.adjust(other, SLOW)
    seen = []
    before = signal.signal(signal.SIGINT, lambda *_: seen.append(True))
    try:
        keladjust.adjust(array, SLOW, progress=lambda share: os.kill(os.getpid(), signal.SIGINT)
                         if not seen else None)
    finally:
        signal.signal(signal.SIGINT, before)
    assert seen and numpy.array_equal(array, other)


def test_a_program_ends_with_ctrl_c_as_python_programs_do():
    code = """if True:
        import numpy, keladjust
        array = numpy.full((6000, 6000, 3), 100, numpy.uint8)
        array[::7] = 200
        print("begun", flush=True)
        keladjust.adjust(array, luminance_noise_reduction=50, threads=1)
        print("done")"""
    with subprocess.Popen([sys.executable, "-c", code], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                          text=True) as child:
        assert child.stdout.readline() == "begun\n"
        time.sleep(0.1)
        child.send_signal(signal.SIGINT)
        said, errors = child.communicate(timeout=60)
    assert child.returncode == -signal.SIGINT and said == "" and "KeyboardInterrupt" in errors


def test_progress_comes_on_the_calling_thread(noise):
    threads = set()
    caller = threading.Thread(target=lambda: keladjust.adjust(
        noise(300, 300, 3), SLOW, progress=lambda share: threads.add(threading.current_thread())))
    caller.start()
    caller.join()
    assert threads == {caller}


def test_progress_may_adjust_another_picture(noise):
    small, expected = noise(20, 20, 3), None
    expected = small.copy()
    keladjust.adjust(expected, exposure=20)
    again = []

    def nested(share):
        if not again:
            again.append(True)
            keladjust.adjust(small, exposure=20)
    keladjust.adjust(noise(200, 200, 3), SLOW, progress=nested)
    assert numpy.array_equal(small, expected)
