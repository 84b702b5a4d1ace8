"""Settings and presets: what the library describes, and the program's own files and errors."""

import json
import struct

import numpy
import pytest
from binding_support import ROOT

import keladjust
from keladjust import PresetError, Settings


def test_there_is_a_setting_for_every_slot_of_the_record():
    assert [setting.slot for setting in keladjust.SETTINGS] == list(range(65))
    assert len(Settings().record()) == 4 * 65


def test_a_mapping_has_every_field():
    settings = Settings(exposure=20)
    assert list(settings) == [setting.key for setting in keladjust.SETTINGS]
    assert len(settings) == 65 and "red_hue" in settings and "exposre" not in settings
    assert settings["exposure"] == 20 and settings["red_min_degree"] == 300
    assert settings["temperature"] == 11500 and isinstance(settings["temperature"], int)
    assert settings.named == {"exposure": 20}


@pytest.mark.parametrize("setting", keladjust.SETTINGS, ids=lambda setting: setting.key)
def test_each_field_stands_in_its_slot(setting):
    record = Settings({setting.name: setting.highest - 1}).record()
    usual = Settings().record()
    slot = slice(4 * setting.slot, 4 * setting.slot + 4)
    kind = "=i" if setting.is_integer else "=f"
    assert struct.unpack(kind, record[slot])[0] == setting.highest - 1
    assert record[:slot.start] == usual[:slot.start] and record[slot.stop:] == usual[slot.stop:]


def test_names_have_dashes_or_underscores_and_fields_go_back():
    settings = Settings({"red-hue": 15}, blue_hue=3)
    assert settings["red_hue"] == settings["red-hue"] == 15
    del settings["red-hue"]
    assert settings.named == {"blue_hue": 3} and settings["red_hue"] == 0


def test_settings_are_equal_by_their_values():
    assert Settings(exposure=0) == Settings() and Settings(exposure=1) != Settings()
    assert Settings(Settings(exposure=1), tint=2) == {**Settings(), "exposure": 1, "tint": 2}


def test_numbers_of_numpy_are_numbers():
    settings = Settings(exposure=numpy.float32(2.5), temperature=numpy.int64(12000))
    assert settings["exposure"] == 2.5 and settings["temperature"] == 12000


@pytest.mark.parametrize("value, error, words", [
    ("20", TypeError, "exposure must be a number, not str"),
    (None, TypeError, "exposure must be a number, not NoneType"),
    (True, TypeError, "exposure must be a number, not bool"),
    (float("nan"), ValueError, "exposure needs a finite number; useful values are -100..100, identity 0"),
    (float("inf"), ValueError, "exposure needs a finite number"),
    (10**400, ValueError, "exposure needs a finite number"),
    (1e39, ValueError, "exposure is out of all bounds"),
])
def test_what_no_field_holds_is_refused_by_name(value, error, words, noise):
    with pytest.raises(error, match=words):
        Settings()["exposure"] = value
    with pytest.raises(error, match=words):
        keladjust.adjust(noise(4, 4, 3), exposure=value)


def test_temperature_is_whole():
    with pytest.raises(ValueError, match="temperature needs a whole number"):
        Settings(temperature=5.5)
    with pytest.raises(ValueError, match="temperature is out of all bounds"):
        Settings(temperature=2**31)
    assert Settings(temperature=12000.0)["temperature"] == 12000


@pytest.mark.parametrize("wrong, near", [
    ("exposre", "exposure"), ("redhue", "red-hue"), ("red_hu", "red-hue"), ("claritty", "clarity"),
    ("vignette_ammount", "vignette-amount"),
])
def test_a_misspelt_setting_is_told_its_nearest_name(wrong, near, noise):
    with pytest.raises(KeyError, match=f"did you mean {near}"):
        Settings()[wrong]
    with pytest.raises(TypeError, match=f"did you mean {near.replace('-', '_')}"):
        keladjust.adjust(noise(4, 4, 3), **{wrong: 1})


def test_what_is_near_no_name_is_not_guessed():
    with pytest.raises(KeyError) as caught:
        Settings()["zzzzzzzzzz"]
    assert "did you mean" not in str(caught.value)


@pytest.mark.parametrize("call, error, words", [
    (dict(order="grb"), ValueError, "order must be one of rgb, bgr"),
    (dict(order=3), TypeError, "order must be one of"),
    (dict(path="cpus"), ValueError, "path must be one of auto, cpu, gpu.*did you mean cpu"),
    (dict(threads=-1), ValueError, "threads must be in 0..1024, not -1"),
    (dict(threads=1.5), TypeError, "threads must be a whole number, not float"),
    (dict(progress=3), TypeError, "progress must be callable, not int"),
    (dict(preset=3), TypeError, "preset must be a path, a mapping or a list of these, not int"),
    (dict(ordr="rgb"), TypeError, 'neither a parameter nor a setting "ordr"; did you mean order'),
])
def test_other_parameters_are_refused_by_name(call, error, words, noise):
    with pytest.raises(error, match=words):
        keladjust.adjust(noise(4, 4, 3), **call)


def test_a_preset_of_the_program_is_read(program, tmp_path):
    path = tmp_path / "preset.json"
    assert program("--exposure", 20, "--red-hue", "-3.25", "--save-preset", path).returncode == 0
    assert Settings.load(path).named == {"exposure": 20, "red_hue": -3.25}


@pytest.mark.parametrize("values", [
    {}, {"exposure": 20}, {"temperature": 12000, "exposure": -0.1, "aqua-brightness": 1e-7},
    {"exposure": 1 / 3, "tint": 1e20, "contrast": 123456789.125, "blacks": -0.0, "whites": 0.0001},
], ids=str)
def test_a_preset_is_written_as_the_program_writes_it(values, program, tmp_path):
    options = [f"--{name}={value!r}" for name, value in values.items()]
    ours, theirs = tmp_path / "ours.json", tmp_path / "theirs.json"
    Settings(values).save(ours)
    assert program(*options, "--save-preset", theirs).returncode == 0
    assert ours.read_bytes() == theirs.read_bytes()
    assert Settings.load(ours) == Settings(values)


def test_saving_leaves_a_whole_file_or_none(tmp_path):
    (tmp_path / "folder.json").mkdir()
    with pytest.raises(OSError):
        Settings(exposure=1).save(tmp_path / "folder.json")
    assert [path.name for path in tmp_path.iterdir()] == ["folder.json"]


BAD_PRESETS = {
    "unknown": '{"exposre": 20}',
    "underscores": '{"red_hue": 20}',
    "far from any name": '{"zzzzzzzzzz": 20}',
    "text": '{"exposure": "20"}',
    "truth": '{"exposure": true}',
    "nothing": '{"exposure": null}',
    "a list": '{"exposure": [1]}',
    "an object": '{"exposure": {"a": 1}}',
    "a fraction": '{"temperature": 5.5}',
    "too large": '{"exposure": 1e39}',
    "bad, then good": '{"exposure": "x", "exposure": 1}',
    "a list at the top": "[1]",
    "a number at the top": "3",
    "text at the top": '"x"',
    "not closed": '{"exposure": 20',
    "a comma too many": '{"exposure": 20,}',
    "not a number": '{"exposure": NaN}',
    "infinity": '{"exposure": -Infinity}',
    "empty": "",
    "more than any number": '{"exposure": 1e999}',
    "many digits": '{"exposure": ' + "9" * 5000 + "}",
    "deep": "[" * 100000,
    "two objects": "{}{}",
    "a remark": "{} // remark",
    "not UTF-8": b'{"\xff": 1}',
    "another encoding": '{"exposure": 1}'.encode("utf-16"),
    "more than a mebibyte": "{" + " " * (1 << 20) + "}",
}
# What is wrong with the text itself is said in each parser's own words.
SAME_WORDS = ["unknown", "underscores", "far from any name", "text", "truth", "nothing", "a list",
              "an object", "a fraction", "too large", "bad, then good", "a list at the top",
              "a number at the top", "text at the top", "more than a mebibyte"]


@pytest.mark.parametrize("kind", BAD_PRESETS)
def test_what_the_program_refuses_is_refused(kind, program, tmp_path):
    text = BAD_PRESETS[kind]
    path = tmp_path / "bad.json"
    path.write_bytes(text if isinstance(text, bytes) else text.encode())
    theirs = program("--preset", path, "--save-preset", tmp_path / "out.json")
    assert theirs.returncode == 2
    with pytest.raises(PresetError) as caught:
        Settings.load(path)
    if kind in SAME_WORDS:
        assert f"keladjust: {caught.value}\nTry keladjust --help.\n" == theirs.stderr
    else:
        assert str(caught.value).startswith(f"{path}: not valid JSON: ") or \
            "needs a finite number" in str(caught.value)


GOOD_PRESETS = ['{"exposure": 1, "exposure": 2}', '\ufeff{"exposure": 3}', ' {"tint" :\n1e1} ', "{}",
                '{"exposure": 18446744073709551616}', '{"red\\u002dhue": 4}']


@pytest.mark.parametrize("text", GOOD_PRESETS)
def test_what_the_program_takes_is_taken(text, program, tmp_path):
    path = tmp_path / "good.json"
    path.write_text(text, encoding="utf-8")
    theirs = program("--preset", path, "--save-preset", tmp_path / "out.json")
    assert theirs.returncode == 0, theirs.stderr
    assert Settings.load(path).named == {
        name.replace("-", "_"): value
        for name, value in json.loads((tmp_path / "out.json").read_text()).items()}


def test_a_preset_that_is_not_there_is_named(tmp_path):
    with pytest.raises(PresetError, match="nowhere.json: cannot be opened"):
        Settings.load(tmp_path / "nowhere.json")


def test_the_preset_of_the_documentation_loads():
    assert Settings.load(ROOT / "docs/presets/evening.json")["vignette_amount"] == -25
