"""The report of a run: one line a picture, in a CSV file that is there when the run has ended."""

import csv
import os


class Report:
    COLUMNS = ("picture", "output", "result", "reason", "seconds", "worker", "tries")

    def __init__(self, path):
        self._path = path
        self._part = f"{path}.part"
        self._file = open(self._part, "w", newline="", errors="surrogateescape")
        self._writer = csv.writer(self._file, lineterminator="\n")
        self._writer.writerow(self.COLUMNS)

    def add(self, picture, output, result, reason="", seconds=0.0, worker="", tries=0):
        self._writer.writerow((picture, output, result, reason, f"{seconds:.3f}", worker, tries))

    def close(self):
        self._file.close()
        os.replace(self._part, self._path)
