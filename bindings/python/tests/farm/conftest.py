"""Farms for tests, which end with the test."""

import stat

import pytest
from farm_support import PROGRAM, Cluster, Farm


@pytest.fixture
def wrapped(tmp_path):
    """Makes a program that first does what a shell text says, which knows the input as $picture, and
    then what the program does."""
    def make(text, name="keladjust-wrapped"):
        path = tmp_path / name
        path.write_text(f'#!/bin/sh\npicture=$1\n{text}\nexec "{PROGRAM}" "$@"\n')
        path.chmod(path.stat().st_mode | stat.S_IXUSR)
        return path
    return make


@pytest.fixture
def farm(tmp_path):
    """Starts runs, which end with the test."""
    runs = []

    def start(*arguments):
        runs.append(Farm(tmp_path, arguments))
        return runs[-1]
    yield start
    for run in runs:
        run.kill()


@pytest.fixture
def cluster(tmp_path):
    """Makes clusters, which end with the test."""
    made = []

    def make(workers=("w1", "w2"), **options):
        made.append(Cluster(tmp_path, **options))
        made[-1].start_scheduler()
        for name in workers:
            made[-1].start_worker(name)
        return made[-1]
    yield make
    for one in made:
        one.close()
