"""Farms of schedulers and workers that are processes of their own, and die, stop, fill up and come
back."""

import os
import signal
import subprocess
import sys
import time

import pytest
from farm_support import (PROGRAM, SETTINGS, by_program, outputs, report_of, results_of, until,
                          write_pictures)

import keladjust

# A worker that does not answer for so long counts as dead.
QUICK_TTL = {"DASK_DISTRIBUTED__SCHEDULER__WORKER_TTL": "5 s"}


def command(tmp_path, cluster, program=PROGRAM, *more):
    return [tmp_path / "in", tmp_path / "out", *SETTINGS, "--scheduler", cluster.address, "--program",
            program, *more]


def test_a_worker_that_is_killed_loses_nothing(farm, cluster, wrapped, tmp_path):
    write_pictures(tmp_path / "in", 40)
    machines = cluster()
    run = farm(*command(tmp_path, machines, wrapped("sleep 0.2")))
    until(lambda: len(outputs(tmp_path / "out")) >= 5, "some pictures")
    os.kill(machines.of_worker("w1"), signal.SIGKILL)
    assert run.end() == 0, run.said
    assert outputs(tmp_path / "out") == by_program(tmp_path / "in", tmp_path / "expected")
    assert set(results_of(tmp_path / "out").values()) == {"done"}


@pytest.mark.long
def test_a_worker_that_is_killed_with_its_nanny_leaves_the_rest_to_the_other(farm, cluster, wrapped,
                                                                             tmp_path):
    write_pictures(tmp_path / "in", 30)
    machines = cluster()
    run = farm(*command(tmp_path, machines, wrapped("sleep 0.2")))
    until(lambda: len(outputs(tmp_path / "out")) >= 5, "some pictures")
    machines.kill("w2")
    assert run.end() == 0, run.said
    assert outputs(tmp_path / "out") == by_program(tmp_path / "in", tmp_path / "expected")


@pytest.mark.long
def test_a_worker_that_stops_and_wakes_loses_nothing(farm, cluster, wrapped, tmp_path):
    write_pictures(tmp_path / "in", 40)
    machines = cluster(settings=QUICK_TTL)
    run = farm(*command(tmp_path, machines, wrapped("sleep 0.2")))
    until(lambda: len(outputs(tmp_path / "out")) >= 5, "some pictures")
    stopped = machines.of_worker("w1")
    os.kill(stopped, signal.SIGSTOP)
    until(lambda: len(outputs(tmp_path / "out")) >= 38, "the other worker")
    os.kill(stopped, signal.SIGCONT)
    assert run.end() == 0, run.said
    assert outputs(tmp_path / "out") == by_program(tmp_path / "in", tmp_path / "expected")


@pytest.mark.long
def test_a_scheduler_that_is_killed_and_started_again_loses_nothing(farm, cluster, wrapped, tmp_path):
    write_pictures(tmp_path / "in", 40)
    machines = cluster()
    run = farm(*command(tmp_path, machines, wrapped("sleep 0.2")))
    until(lambda: len(outputs(tmp_path / "out")) >= 5, "some pictures")
    machines.kill("scheduler")
    # Workers end with their scheduler; what starts them again is systemd elsewhere.
    for name in ("w1", "w2"):
        machines.kill(name)
    time.sleep(3)
    machines.start_scheduler()
    machines.start_worker("w1")
    machines.start_worker("w2")
    assert run.end() == 0, run.said
    assert outputs(tmp_path / "out") == by_program(tmp_path / "in", tmp_path / "expected")
    assert set(results_of(tmp_path / "out").values()) == {"done"}


@pytest.mark.long
def test_a_scheduler_that_never_comes_back_ends_the_run(farm, cluster, wrapped, tmp_path):
    write_pictures(tmp_path / "in", 30)
    machines = cluster(workers=("w1",))
    run = farm(*command(tmp_path, machines, wrapped("sleep 0.3"), "--patience", 5))
    until(lambda: len(outputs(tmp_path / "out")) >= 3, "some pictures")
    machines.close()
    assert run.end() == 1 and "no scheduler answers at" in run.said, run.said
    machines = cluster(workers=("w1",))
    run = farm(*command(tmp_path, machines))
    assert run.end() == 0, run.said
    assert outputs(tmp_path / "out") == by_program(tmp_path / "in", tmp_path / "expected")


def test_without_a_scheduler_nothing_begins(farm, tmp_path):
    write_pictures(tmp_path / "in", 1)
    run = farm(tmp_path / "in", tmp_path / "out", "--scheduler", "tcp://127.0.0.1:1", "--patience", 1)
    assert run.end() == 2 and "no scheduler answers at tcp://127.0.0.1:1" in run.said


@pytest.mark.long
def test_a_full_disk_on_one_worker_leaves_the_work_to_the_other(farm, cluster, wrapped, tmp_path):
    """One worker sees a file system without room for one file where the other sees the output folder: a
    mount in a namespace of its own, made when it has shown that it sees the folder."""
    write_pictures(tmp_path / "in", 40)
    machines = cluster(workers=("sound",))
    machines.start_worker("full", prefix=("unshare", "--mount"))
    log = tmp_path / "log"
    run = farm(*command(tmp_path, machines, wrapped(f'echo "$picture" >>"{log}"; sleep 0.3'),
                        "--retries", 3))
    until(lambda: len(outputs(tmp_path / "out")) >= 6, "some pictures")
    subprocess.run(["nsenter", "--mount", f"--target={machines.of_worker('full')}", "mount", "-t",
                    "tmpfs", "-o", "size=4k,nr_inodes=1", "none", tmp_path / "out"], check=True)
    assert run.end() == 0, run.said
    assert outputs(tmp_path / "out") == by_program(tmp_path / "in", tmp_path / "expected")
    assert "worker full gets no pictures: No space left on device" in run.said
    tries = [int(row["tries"]) for row in report_of(tmp_path / "out").values()]
    assert max(tries) > 1


@pytest.mark.long
def test_a_worker_whose_file_system_goes_away_is_found_out(farm, cluster, wrapped, tmp_path):
    """From some moment on it writes to another place of the same name, and says that all went well."""
    write_pictures(tmp_path / "in", 40)
    machines = cluster(workers=("sound",))
    machines.start_worker("lost", prefix=("unshare", "--mount"))
    run = farm(*command(tmp_path, machines, wrapped("sleep 0.3"), "--retries", 3))
    until(lambda: len(outputs(tmp_path / "out")) >= 6, "some pictures")
    subprocess.run(["nsenter", "--mount", f"--target={machines.of_worker('lost')}", "mount", "-t",
                    "tmpfs", "none", tmp_path / "out"], check=True)
    assert run.end() == 0, run.said
    assert "worker lost gets no pictures: what it wrote is not here" in run.said
    assert outputs(tmp_path / "out") == by_program(tmp_path / "in", tmp_path / "expected")


@pytest.mark.long
def test_a_disk_that_is_full_for_all_ends_the_run_which_goes_on_later(farm, tmp_path):
    write_pictures(tmp_path / "in", 30, 640, 480, ".png")
    out = tmp_path / "out"
    out.mkdir()
    subprocess.run(["mount", "-t", "tmpfs", "-o", "size=4m", "none", out], check=True)
    try:
        line = [tmp_path / "in", out, "--tint", 5, "--workers", 2, "--program", PROGRAM]
        run = farm(*line)
        assert run.end() == 1 and "No space left on device" in run.said, run.said
        expected = by_program(tmp_path / "in", tmp_path / "expected", ["--tint=5"])
        made = outputs(out)
        assert made and all(expected[place] == data for place, data in made.items())
        subprocess.run(["mount", "-o", "remount,size=100m", out], check=True)
        run = farm(*line)
        assert run.end() == 0, run.said
        assert outputs(out) == expected
    finally:
        subprocess.run(["umount", "--lazy", out], check=True)


@pytest.mark.long
def test_a_picture_that_kills_its_worker_is_set_aside_and_the_rest_are_done(farm, cluster, wrapped,
                                                                            tmp_path):
    pictures = write_pictures(tmp_path / "in", 20)
    poison = wrapped("case $picture in *0007*) kill -9 $PPID; exit 1 ;; esac")
    machines = cluster(settings={"DASK_DISTRIBUTED__SCHEDULER__ALLOWED_FAILURES": "0",
                                 "DASK_DISTRIBUTED__SCHEDULER__WORKER_SATURATION": "1.0"})
    run = farm(*command(tmp_path, machines, poison, "--retries", 1))
    assert run.end() == 1, run.said
    rows = report_of(tmp_path / "out")
    row = rows.pop(pictures[7].name)
    assert (row["result"], row["reason"], row["tries"]) == ("set aside", "its worker died each time", "2")
    assert {row["result"] for row in rows.values()} == {"done"}
    assert len(outputs(tmp_path / "out")) == 19


def a_package_of_another_version(folder):
    """A folder to put before others on Python's path, in which keladjust says it is 9.8.7."""
    os.symlink(os.path.dirname(keladjust.__file__), folder / "real")
    package = folder / "other" / "keladjust"
    package.mkdir(parents=True)
    for entry in (folder / "real").iterdir():
        if entry.name not in ("__init__.py", "__pycache__"):
            (package / entry.name).symlink_to(entry.resolve())
    (package / "__init__.py").write_text(
        (folder / "real/__init__.py").read_text() + '\n__version__ = "9.8.7"\n')
    return package.parent


def test_a_worker_of_another_version_is_refused_with_both_named(farm, cluster, tmp_path):
    write_pictures(tmp_path / "in", 12)
    machines = cluster(workers=("same",))
    other = a_package_of_another_version(tmp_path)
    machines.start_worker("other", prefix=("env", f"PYTHONPATH={other}"))
    until(lambda: "other" in names(machines.address), "both workers")
    run = farm(*command(tmp_path, machines))
    assert run.end() == 0, run.said
    assert "worker other gets no pictures: it has keladjust 9.8.7" in run.said
    assert f"and this is {keladjust.__version__}" in run.said
    assert {row["worker"] for row in report_of(tmp_path / "out").values()} == {"same"}
    assert outputs(tmp_path / "out") == by_program(tmp_path / "in", tmp_path / "expected")

    machines.kill("same")
    until(lambda: names(machines.address) == {"other"}, "one to go")
    run = farm(tmp_path / "in", tmp_path / "none", "--scheduler", machines.address, "--program", PROGRAM)
    assert run.end() == 2 and "9.8.7" in run.said and keladjust.__version__ in run.said
    assert not outputs(tmp_path / "none")


def names(address):
    """The names of a scheduler's workers."""
    code = f"import distributed; c = distributed.Client('{address}', timeout=60); " \
        "print(*[w['name'] for w in c.scheduler_info()['workers'].values()])"
    return set(subprocess.run([sys.executable, "-c", code], check=True, stdout=subprocess.PIPE,
                              text=True).stdout.split())


@pytest.mark.long
def test_a_worker_that_does_not_see_the_output_folder_is_refused(farm, cluster, tmp_path):
    write_pictures(tmp_path / "in", 6)
    out = tmp_path / "out"
    out.mkdir()
    machines = cluster(workers=("sees",))
    machines.start_worker("blind", prefix=(
        "unshare", "--mount", "sh", "-c", f'mount -t tmpfs none "{out}" && exec "$@"', "sh"))
    until(lambda: "blind" in names(machines.address), "both workers")
    run = farm(*command(tmp_path, machines))
    assert run.end() == 0, run.said
    assert "worker blind gets no pictures: No such file or directory" in run.said
    assert outputs(out) == by_program(tmp_path / "in", tmp_path / "expected")


def certificate(folder, name, *signing):
    subprocess.run(["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256",
                    "-nodes", "-days", "2", "-subj", f"/CN={name}", "-keyout", folder / f"{name}.key",
                    "-out", folder / f"{name}.pem", *signing], check=True, stderr=subprocess.DEVNULL)


def test_over_tls_only_who_holds_a_key_takes_part(farm, cluster, tmp_path):
    write_pictures(tmp_path / "in", 6)
    certificate(tmp_path, "authority")
    for name in ("farm", "stranger"):
        signing = ("-CA", tmp_path / "authority.pem", "-CAkey", tmp_path / "authority.key")
        certificate(tmp_path, name, *(signing if name == "farm" else ()))

    def keys(name):
        return ["--tls-ca", tmp_path / "authority.pem", "--tls-cert", tmp_path / f"{name}.pem",
                "--tls-key", tmp_path / f"{name}.key"]
    machines = cluster(workers=("w1",), protocol="tls", arguments=[
        "--protocol", "tls", "--tls-ca-file", f"{tmp_path}/authority.pem", "--tls-cert",
        f"{tmp_path}/farm.pem", "--tls-key", f"{tmp_path}/farm.key"],
        settings={"DASK_DISTRIBUTED__COMM__REQUIRE_ENCRYPTION": "True"})
    run = farm(*command(tmp_path, machines), *keys("farm"))
    assert run.end() == 0, run.said
    assert outputs(tmp_path / "out") == by_program(tmp_path / "in", tmp_path / "expected")

    run = farm(tmp_path / "in", tmp_path / "none", "--scheduler", machines.address, "--patience", 3,
               "--program", PROGRAM, *keys("stranger"))
    assert run.end() == 2 and "no scheduler answers" in run.said, run.said
    plain = machines.address.replace("tls://", "tcp://")
    run = farm(tmp_path / "in", tmp_path / "none", "--scheduler", plain, "--patience", 3,
               "--program", PROGRAM)
    assert run.end() == 2 and "no scheduler answers" in run.said, run.said
    assert not outputs(tmp_path / "none")


@pytest.mark.long
def test_five_hundred_photographs_become_what_the_program_makes_of_them(farm, cluster, tmp_path):
    write_pictures(tmp_path / "in", 500, 1280, 720)
    machines = cluster()
    run = farm(*command(tmp_path, machines))
    until(lambda: len(outputs(tmp_path / "out")) >= 100, "some pictures")
    os.kill(machines.of_worker("w2"), signal.SIGKILL)
    assert run.end() == 0, run.said
    made = outputs(tmp_path / "out")
    assert len(made) == 500 and made == by_program(tmp_path / "in", tmp_path / "expected")
    assert set(results_of(tmp_path / "out").values()) == {"done"}
