"""adjust(): the same bytes as the library's and the program's, in the array's own memory."""

import subprocess
import sys
import threading
import time

import cv2
import numpy
import pytest
from binding_support import PHOTOGRAPHS, ROOT, values_of
from PIL import Image

import keladjust

PRESET = ROOT / "docs/presets/evening.json"


@pytest.mark.parametrize("setting", keladjust.SETTINGS, ids=lambda setting: setting.key)
@pytest.mark.parametrize("shape", [(37, 40, 3), (37, 41, 3), (37, 41, 4), (37, 41)], ids=str)
def test_every_setting_gives_the_bytes_of_the_library(setting, shape, noise, c_library):
    values = values_of(setting)
    array = noise(*shape)
    expected = c_library.adjusted(array, keladjust.Settings(values).record())
    keladjust.adjust(array, **values)
    assert numpy.array_equal(array, expected)


@pytest.mark.parametrize("order", ["rgb", "bgr"])
@pytest.mark.parametrize("width", [64, 65, 66, 67])
@pytest.mark.parametrize("channels", [3, 4])
def test_either_order_at_any_width_gives_the_bytes_of_the_library(order, width, channels, noise,
                                                                  lively, c_library):
    array = noise(50, width, channels)
    expected = c_library.adjusted(array, lively.record(), order)
    assert keladjust.adjust(array, lively, order=order) == "cpu"
    assert numpy.array_equal(array, expected)


def test_exposure_multiplies_by_its_factor():
    # A ramp of all levels in each channel, against the formula that the header gives. Half a level
    # is where rounding decides, so products that close to it may go either way.
    array = numpy.repeat(numpy.arange(256, dtype=numpy.uint8), 3).reshape(1, 256, 3).copy()
    exact = numpy.minimum(array.astype(float) * 2 ** (20 / 50 * 0.6), 255)
    keladjust.adjust(array, exposure=20)
    assert numpy.abs(array - exact).max() <= 1
    assert array[0, 0, 0] == 0 and array[0, 255, 0] == 255 and array[0, 100, 0] > 110


@pytest.mark.parametrize("name", ["Dune.jpg", "Garden.jpg"])
def test_a_photograph_becomes_what_the_program_makes_of_it(name, program, tmp_path):
    with Image.open(PHOTOGRAPHS / name) as photograph:
        photograph.convert("RGB").resize((801, 601)).save(tmp_path / "in.png")
    result = program(tmp_path / "in.png", "--preset", PRESET, "--red-hue", 15, "--distortion", 10,
                     "-o", tmp_path / "out.png")
    assert result.returncode == 0, result.stderr
    array = numpy.array(Image.open(tmp_path / "in.png"))
    keladjust.adjust(array, preset=PRESET, red_hue=15, distortion=10)
    assert numpy.array_equal(array, numpy.asarray(Image.open(tmp_path / "out.png")))


def test_arrays_of_opencv_are_adjusted_as_they_are(tmp_path, program):
    bgr = cv2.resize(cv2.imread(str(PHOTOGRAPHS / "Dune.jpg")), (640, 480))
    cv2.imwrite(str(tmp_path / "in.png"), bgr)
    assert program(tmp_path / "in.png", "--preset", PRESET, "-o", tmp_path / "out.png").returncode == 0
    keladjust.adjust(bgr, preset=PRESET, order="bgr")
    assert numpy.array_equal(bgr, cv2.imread(str(tmp_path / "out.png")))


def test_nothing_named_changes_nothing(noise):
    array = noise(33, 35, 3)
    before = array.copy()
    keladjust.adjust(array)
    assert numpy.array_equal(array, before)


def test_a_picture_is_adjusted_in_its_own_memory(noise):
    # 192 MB of picture and at most 40 MB more: there is no copy.
    code = """if True:
        import resource, numpy, keladjust
        array = numpy.full((8000, 8000, 3), 100, numpy.uint8)
        keladjust.adjust(array[:16], exposure=20)
        before = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss
        keladjust.adjust(array, exposure=20)
        print(resource.getrusage(resource.RUSAGE_SELF).ru_maxrss - before)"""
    grown = int(subprocess.run([sys.executable, "-c", code], check=True, stdout=subprocess.PIPE).stdout)
    assert grown < 40 * 1024


def test_later_settings_win_over_earlier_ones(noise, tmp_path, c_library):
    (tmp_path / "first.json").write_text('{"exposure": 10, "contrast": 10, "tint": 10}')
    (tmp_path / "second.json").write_text('{"contrast": 20, "tint": 20}')
    array = noise(20, 20, 3)
    expected = c_library.adjusted(
        array, keladjust.Settings(exposure=10, contrast=20, tint=30).record())
    keladjust.adjust(array, preset=[tmp_path / "first.json", str(tmp_path / "second.json")], tint=30)
    assert numpy.array_equal(array, expected)


@pytest.mark.parametrize("threads", [1, 2, 7])
def test_the_number_of_threads_changes_nothing(threads, noise, lively):
    array = noise(400, 600, 3)
    other = array.copy()
    keladjust.adjust(array, lively)
    keladjust.adjust(other, lively, threads=threads)
    assert numpy.array_equal(array, other)


def test_other_threads_run_meanwhile(noise):
    """A thread that counts goes on while another adjusts: the interpreter is not held."""
    array = noise(1500, 2000, 3)
    counted, done = [0], threading.Event()

    def count():
        while not done.is_set():
            counted[0] += 1
            if counted[0] % 1000 == 0:
                time.sleep(0)

    def adjust():
        keladjust.adjust(array, luminance_noise_reduction=40, threads=1)
        done.set()

    counter = threading.Thread(target=count)
    worker = threading.Thread(target=adjust)
    before = counted[0]
    worker.start()
    counter.start()
    worker.join()
    counter.join()
    # Held, the interpreter would have let the counter begin only after the event was set.
    assert counted[0] - before > 1000


def test_many_threads_adjust_at_a_time(noise, lively):
    pictures = [noise(120, 160, 3) for _ in range(16)]
    expected = [picture.copy() for picture in pictures]
    for picture in expected:
        keladjust.adjust(picture, lively)
    threads = [threading.Thread(target=keladjust.adjust, args=(picture, lively))
               for picture in pictures]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert all(map(numpy.array_equal, pictures, expected))


def test_without_an_engine_the_gpu_is_refused_and_the_picture_stays(noise):
    array = noise(20, 20, 3)
    before = array.copy()
    with pytest.raises(keladjust.Refused, match="engine"):
        keladjust.adjust(array, exposure=20, path="gpu")
    assert numpy.array_equal(array, before)
    assert keladjust.adjust(array, exposure=20, path="auto") == "cpu"
    assert not numpy.array_equal(array, before)


def test_a_stage_without_memory_leaves_the_picture_and_says_so():
    # Noise reduction takes three quarters of a picture, which is more than the process may have.
    code = """if True:
        import resource, numpy, keladjust
        array = numpy.full((6000, 6000, 4), 100, numpy.uint8)
        array[::7] = 200
        before = array.copy()
        keladjust.adjust(array[:8], colour_noise_reduction=50, threads=1)
        used = int(open("/proc/self/statm").read().split()[0]) * resource.getpagesize()
        array[:8] = before[:8]
        resource.setrlimit(resource.RLIMIT_AS, (used + (16 << 20), -1))
        try:
            keladjust.adjust(array, colour_noise_reduction=50, threads=1)
        except MemoryError as error:
            resource.setrlimit(resource.RLIMIT_AS, (-1, -1))
            print("short", (array == before).all())"""
    said = subprocess.run([sys.executable, "-c", code], check=True, stdout=subprocess.PIPE, text=True)
    assert said.stdout == "short True\n"
