"""Runs on a cluster of the machine's own: what becomes of each picture, and of the next run."""

import os
import pathlib
import signal
import subprocess
import time

import pytest
from farm_support import (FARM, PROGRAM, ROOT, SETTINGS, by_program, outputs, report_of, results_of,
                          until, write_pictures)

import keladjust


def test_a_folder_becomes_what_the_program_makes_of_it_and_the_next_run_has_nothing_to_do(
        farm, tmp_path):
    pictures = write_pictures(tmp_path / "in", 7)
    write_pictures(tmp_path / "in" / "more", 2, extension=".png")
    (tmp_path / "in/0/notes.txt").write_text("no picture")
    bad = tmp_path / "in/1/bad.jpg"
    bad.write_bytes(pictures[0].read_bytes()[:700])
    command = [tmp_path / "in", tmp_path / "out", *SETTINGS, "--workers", 2, "--program", PROGRAM]

    run = farm(*command)
    assert run.end() == 1, run.said
    (tmp_path / "in/0/notes.txt").unlink()
    assert outputs(tmp_path / "out") == by_program(tmp_path / "in", tmp_path / "expected")
    results = results_of(tmp_path / "out")
    assert results.pop("bad.jpg") == "failed" and set(results.values()) == {"done"}
    reason = report_of(tmp_path / "out")["bad.jpg"]["reason"]
    assert "bad.jpg" in reason and f"{bad}: failed: {reason.splitlines()[0]}" in run.said
    assert "9 done, 0 skipped, 1 failed, 0 set aside" in run.said

    # Now one is mended, one is new, one has gone, one is cut short, one is older than its input.
    bad.write_bytes(pictures[0].read_bytes())
    write_pictures(tmp_path / "in" / "new", 1)
    (tmp_path / "out/0/picture 0000.jpg").unlink()
    os.truncate(tmp_path / "out/1/picture 0001.jpg", 100)
    os.utime(tmp_path / "out/2/picture 0002.jpg", (1, 1))
    run = farm(*command)
    assert run.end() == 0, run.said
    again = {name for name, result in results_of(tmp_path / "out").items() if result == "done"}
    assert again == {"bad.jpg", "picture 0000.jpg", "picture 0001.jpg", "picture 0002.jpg"}
    assert outputs(tmp_path / "out") == by_program(tmp_path / "in", tmp_path / "expected2")

    # Other settings are other pictures.
    run = farm(*command, "--tint", 30)
    assert run.end() == 0, run.said
    assert set(results_of(tmp_path / "out").values()) == {"done"}


def test_names_come_from_patterns_lists_and_pipes(farm, tmp_path):
    pictures = write_pictures(tmp_path / "in", 6)
    listed = tmp_path / "list.txt"
    listed.write_text(f"{pictures[0]}\n\n{pictures[1]}\n")
    run = farm(f"{tmp_path}/in/2/*.jpg", tmp_path / "in/0/picture 0003.jpg", tmp_path / "out",
               "--list", listed, "--tint", 5, "--workers", 1, "--program", PROGRAM, "--quiet")
    assert run.end() == 0, run.said
    assert run.said == ""
    below = str(tmp_path).lstrip("/")
    assert set(outputs(tmp_path / "out")) == {
        "picture 0002.jpg", "picture 0005.jpg", "picture 0003.jpg",
        f"{below}/in/0/picture 0000.jpg", f"{below}/in/1/picture 0001.jpg"}
    piped = subprocess.run([FARM, "--list", "-", tmp_path / "piped", "--tint", "5", "--workers", "1",
                            "--program", PROGRAM], input=f"{pictures[0]}\n", text=True,
                           stderr=subprocess.PIPE, check=False)
    assert piped.returncode == 0, piped.stderr
    assert list(outputs(tmp_path / "piped")) == [f"{below}/in/0/picture 0000.jpg"]


def test_nothing_is_written_over_an_input(farm, tmp_path):
    pictures = write_pictures(tmp_path / "in", 3)
    before = {path: path.read_bytes() for path in pictures}
    out = tmp_path / "out"
    out.mkdir()
    inside = out / "inside.jpg"
    inside.write_bytes(pictures[0].read_bytes())
    (out / "1").symlink_to(tmp_path / "in/1")  # the way back into the inputs
    os.link(pictures[0], out / "picture 0000.jpg")  # an input under another name
    run = farm(tmp_path / "in", inside, pictures[0], out, "--tint", 40, "--workers", 1, "--program",
               PROGRAM)
    assert run.end() == 1, run.said
    reasons = report_of(out)
    assert "nothing is adjusted in place" in reasons["inside.jpg"]["reason"]
    assert "leads out of the output folder" in reasons["picture 0001.jpg"]["reason"]
    assert f"{out}/picture 0000.jpg is the picture itself" in run.said
    assert {path: path.read_bytes() for path in pictures} == before
    assert inside.read_bytes() == before[pictures[0]]


def test_two_pictures_of_one_output_are_told_of(farm, tmp_path):
    write_pictures(tmp_path / "a", 1)
    write_pictures(tmp_path / "b", 1)
    (tmp_path / "b/0/picture 0000.jpg").write_bytes(
        (tmp_path / "a/0/picture 0000.jpg").read_bytes() + b"\0")
    run = farm(tmp_path / "a", tmp_path / "b", tmp_path / "out", "--tint", 5, "--workers", 1,
               "--program", PROGRAM)
    assert run.end() == 1
    assert "another picture of this run is written to 0/picture 0000.jpg" in run.said
    assert "1 done, 0 skipped, 1 failed" in run.said


def test_a_picture_that_ends_its_program_is_tried_again_and_set_aside(farm, wrapped, tmp_path):
    pictures = write_pictures(tmp_path / "in", 4)
    log = tmp_path / "log"
    program = wrapped(f'case $picture in *0002*) echo x >>"{log}"; kill -SEGV $$ ;; esac')
    command = [tmp_path / "in", tmp_path / "out", "--tint", 5, "--workers", 2, "--retries", 2]
    run = farm(*command, "--program", program)
    assert run.end() == 1
    row = report_of(tmp_path / "out")[pictures[2].name]
    assert (row["result"], row["tries"]) == ("set aside", "3") and "SIGSEGV" in row["reason"]
    assert log.read_text() == "x\n" * 3
    assert len(outputs(tmp_path / "out")) == 3

    # It stays aside, and is told of, until somebody asks for it.
    run = farm(*command, "--program", program)
    assert run.end() == 1 and log.read_text() == "x\n" * 3
    assert results_of(tmp_path / "out")[pictures[2].name] == "set aside"
    run = farm(*command, "--program", PROGRAM, "--again")
    assert run.end() == 0 and len(outputs(tmp_path / "out")) == 4


@pytest.mark.long
def test_a_slow_picture_is_given_up_and_the_rest_go_on(farm, wrapped, tmp_path):
    pictures = write_pictures(tmp_path / "in", 4)
    program = wrapped("case $picture in *0001*) exec sleep 1000 ;; esac")
    run = farm(tmp_path / "in", tmp_path / "out", "--tint", 5, "--workers", 2, "--retries", 1,
               "--timeout", 2, "--program", program)
    assert run.end() == 1
    row = report_of(tmp_path / "out")[pictures[1].name]
    assert (row["result"], row["reason"], row["tries"]) == ("set aside", "took longer than 2 s", "2")
    assert len(outputs(tmp_path / "out")) == 3


@pytest.mark.long
def test_left_over_temporary_files_are_swept_and_young_ones_are_not(farm, tmp_path):
    write_pictures(tmp_path / "in", 1)
    deep = tmp_path / "out/deep"
    deep.mkdir(parents=True)
    old, young, other = (deep / name for name in (".keladjust-1.tmp", ".keladjust-2.tmp", "other.tmp"))
    for path in (old, young, other):
        path.write_bytes(b"half")
    for path in (old, other):
        os.utime(path, (time.time() - 700,) * 2)
    run = farm(tmp_path / "in", tmp_path / "out", "--tint", 5, "--workers", 1, "--program", PROGRAM)
    assert run.end() == 0
    assert not old.exists() and young.exists() and other.exists()
    assert "1 left-over temporary files swept" in run.said


def test_ctrl_c_stops_cleanly_and_the_next_run_ends_the_work(farm, wrapped, tmp_path):
    write_pictures(tmp_path / "in", 30)
    slow = wrapped("sleep 0.3")
    command = [tmp_path / "in", tmp_path / "out", *SETTINGS, "--workers", 2]
    run = farm(*command, "--program", slow)
    until(lambda: len(outputs(tmp_path / "out")) >= 3, "some pictures")
    # To all of the terminal's processes, as a terminal does.
    os.killpg(run.process.pid, signal.SIGINT)
    assert run.end() == 130, run.said
    assert "Traceback" not in run.said and " done, 0 skipped, 0 failed" in run.said
    left = outputs(tmp_path / "out")
    expected = by_program(tmp_path / "in", tmp_path / "expected")
    assert 3 <= len(left) < 30 and all(expected[name] == data for name, data in left.items())
    counted = list(results_of(tmp_path / "out").values()).count("done")
    assert counted <= len(left)

    run = farm(*command, "--program", PROGRAM)
    assert run.end() == 0, run.said
    assert outputs(tmp_path / "out") == expected
    assert list(results_of(tmp_path / "out").values()).count("skipped") >= counted


@pytest.mark.long
def test_a_killed_client_loses_nothing(farm, wrapped, tmp_path):
    write_pictures(tmp_path / "in", 20)
    command = [tmp_path / "in", tmp_path / "out", *SETTINGS, "--workers", 2]
    run = farm(*command, "--program", wrapped("sleep 0.3"))
    until(lambda: len(outputs(tmp_path / "out")) >= 3, "some pictures")
    run.kill()
    run = farm(*command, "--program", PROGRAM)
    assert run.end() == 0, run.said
    assert outputs(tmp_path / "out") == by_program(tmp_path / "in", tmp_path / "expected")


@pytest.mark.long
def test_a_damaged_manifest_is_set_aside_and_everything_done_again(farm, tmp_path):
    write_pictures(tmp_path / "in", 3)
    command = [tmp_path / "in", tmp_path / "out", *SETTINGS, "--workers", 1, "--program", PROGRAM]
    assert farm(*command).end() == 0
    manifest = tmp_path / "out/.keladjust-farm/manifest.sqlite"
    manifest.write_bytes(b"no database" * 1000)
    run = farm(*command)
    assert run.end() == 0, run.said
    assert set(results_of(tmp_path / "out").values()) == {"done"}
    assert manifest.with_name("manifest.sqlite.damaged").exists()
    run = farm(*command)
    assert run.end() == 0 and set(results_of(tmp_path / "out").values()) == {"skipped"}


@pytest.mark.long
def test_one_folder_is_written_to_by_one_run(farm, wrapped, tmp_path):
    write_pictures(tmp_path / "in", 3)
    command = [tmp_path / "in", tmp_path / "out", "--tint", 5, "--workers", 1]
    begun, go_on = tmp_path / "begun", tmp_path / "go on"
    first = farm(*command, "--program", wrapped(
        f'[ "$picture" = --version ] || touch "{begun}"\n'
        f'while [ -e "{begun}" ] && [ ! -e "{go_on}" ]; do sleep 0.1; done'))
    until(begun.exists, "the first run")
    second = farm(*command, "--program", PROGRAM)
    assert second.end() == 2 and "another run writes to" in second.said
    go_on.touch()
    assert first.end() == 0


def test_everything_listens_on_this_machine_only(farm, wrapped, tmp_path):
    write_pictures(tmp_path / "in", 8)
    run = farm(tmp_path / "in", tmp_path / "out", "--tint", 5, "--workers", 2, "--program",
               wrapped("sleep 1"))
    until(lambda: outputs(tmp_path / "out"), "the first picture")
    pids = subprocess.run(["pgrep", "-s", str(run.process.pid)], stdout=subprocess.PIPE, text=True,
                          check=True).stdout.split()
    sockets = subprocess.run(["ss", "-Hltnp"], stdout=subprocess.PIPE, text=True, check=True).stdout
    ours = [line.split()[3] for line in sockets.splitlines()
            if any(f"pid={pid}," in line for pid in pids)]
    assert len(ours) >= 3 and all(place.startswith("127.0.0.1:") for place in ours), ours
    assert run.end() == 0


@pytest.mark.parametrize("arguments, words", [
    ([], "required: IN... OUT"),
    (["out"], "name the pictures, then the output folder"),
    (["nowhere", "out"], "there is no nowhere"),
    (["in", "in"], "in is the output folder; nothing is adjusted in place"),
    (["in", "out", "--exposre", "3"], "unknown option --exposre; did you mean --exposure?"),
    (["in", "out", "--exposure", "abc"], "argument --exposure: invalid float value: 'abc'"),
    (["in", "out", "--exposure", "nan"], "exposure needs a finite number"),
    (["in", "out", "--preset", "nowhere.json"], "nowhere.json: cannot be opened"),
    (["in", "out", "--quality", "200"], "argument --quality: 200 is not in 1..100"),
    (["in", "out", "--retries", "-1"], "argument --retries: -1 is not in"),
    (["in", "out", "--tls-ca", "a"], "--tls-ca, --tls-cert and --tls-key belong together"),
    (["in", "out", "--scheduler", "tls://a:1"], "belong together"),
    (["in", "out", "--scheduler", "tcp://a:1", "--workers", "2"], "--workers is of a cluster"),
    (["in", "out", "--format", "gif"], "argument --format: invalid choice: 'gif'"),
])
def test_what_cannot_be_carried_out_is_refused_before_anything_is_written(arguments, words, farm,
                                                                          tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    (tmp_path / "in").mkdir()
    run = farm(*arguments)
    assert run.end() == 2 and words in run.said, run.said
    assert not (tmp_path / "out").exists()


def test_a_machine_without_the_program_is_told_of(farm, tmp_path):
    write_pictures(tmp_path / "in", 1)
    run = farm(tmp_path / "in", tmp_path / "out", "--workers", 1, "--program", "keladjust-nowhere")
    assert run.end() == 2 and 'there is no program "keladjust-nowhere" here' in run.said
    assert not outputs(tmp_path / "out")


def test_a_program_of_another_version_is_refused_with_both(farm, wrapped, tmp_path):
    write_pictures(tmp_path / "in", 1)
    other = wrapped('[ "$1" = --version ] && echo keladjust 9.8.7 && exit 0')
    run = farm(tmp_path / "in", tmp_path / "out", "--workers", 1, "--program", other)
    assert run.end() == 2 and "9.8.7" in run.said, run.said
    assert f"this is {keladjust.__version__}" in run.said and not outputs(tmp_path / "out")


@pytest.mark.long
def test_the_format_of_all_outputs(farm, tmp_path):
    write_pictures(tmp_path / "in", 2)
    run = farm(tmp_path / "in", tmp_path / "out", "--tint", 5, "--format", "png", "--workers", 1,
               "--program", PROGRAM)
    assert run.end() == 0, run.said
    made = outputs(tmp_path / "out")
    assert sorted(made) == ["0/picture 0000.png", "1/picture 0001.png"]
    assert all(data.startswith(b"\x89PNG") for data in made.values())


def test_what_folders_are_searched_for_is_what_the_program_writes(tmp_path):
    from keladjust.farm._sources import SUFFIXES
    picture = write_pictures(tmp_path, 1)[0]
    for suffix in SUFFIXES:
        result = subprocess.run([PROGRAM, picture, "-o", tmp_path / f"out{suffix}"], check=False)
        assert result.returncode == 0, suffix
    texts = "".join(path.read_text() for path in pathlib.Path(ROOT, "apps/keladjust/codecs").glob("*.cpp"))
    listed = [word.strip(' "') for line in texts.split("std::string_view, ")[1:]
              if "all = {" in line.split("};")[0] for word in line.split("{")[1].split("}")[0].split(",")]
    assert sorted(f".{word}" for word in listed) == sorted(SUFFIXES)
