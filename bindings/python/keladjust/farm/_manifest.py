"""What has been done, in a file in the output folder: how a run takes up where the last one ended."""

import hashlib
import os
import sqlite3

FOLDER = ".keladjust-farm"
DONE, SET_ASIDE = 1, 2


class Taken(Exception):
    """An output that is made from another picture in this run."""


class Busy(Exception):
    """Another run writes to the same folder."""


class Manifest:
    """One row an output: a mark made from the input's name, time and size and from the settings, and
    the output's size. The file survives a crash at any time; rows that it loses are pictures done
    again."""

    def __init__(self, folder, settings):
        self._settings = settings
        path = os.path.join(folder, FOLDER)
        os.makedirs(path, exist_ok=True)
        self._path = os.path.join(path, "manifest.sqlite")
        try:
            self._open()
        except sqlite3.OperationalError as error:
            self._rows.close()
            raise Busy(str(error)) from None
        except sqlite3.DatabaseError:
            # After a loss of power, say. What it knew is done again.
            self._rows.close()
            os.replace(self._path, self._path + ".damaged")
            self._open()

    def _open(self):
        self._rows = sqlite3.connect(self._path, timeout=1)
        # Until it is closed nobody else writes. A log of its own makes commits cheap: they wait for no
        # disk, and what a loss of power takes of them is the last ones.
        for pragma in ("locking_mode = EXCLUSIVE", "journal_mode = WAL", "synchronous = NORMAL",
                       "cache_size = -4096"):
            self._rows.execute(f"PRAGMA {pragma}")
        self._rows.execute("CREATE TABLE IF NOT EXISTS pictures (output BLOB PRIMARY KEY, mark BLOB,"
                           " result INTEGER, size INTEGER, run INTEGER, reason TEXT) WITHOUT ROWID")
        self._rows.execute("CREATE TABLE IF NOT EXISTS runs (run INTEGER PRIMARY KEY)")
        self._run = self._rows.execute("INSERT INTO runs DEFAULT VALUES").lastrowid
        self._rows.commit()

    def mark(self, source, state):
        """What stands for a picture as it is now, to be adjusted with these settings."""
        parts = (os.fsencode(source), str(state.st_mtime_ns).encode(), str(state.st_size).encode(),
                 self._settings)
        return hashlib.blake2b(b"\0".join(parts), digest_size=16).digest()

    def claim(self, place, mark):
        """Takes an output for this run, and tells what is known of it: (result, size, reason), all of
        them None where that is nothing. None for a picture that this run has met before; raises
        Taken if that was another one."""
        key = os.fsencode(place)
        row = self._rows.execute("SELECT mark, result, size, run, reason FROM pictures WHERE output = ?",
                                 (key,)).fetchone()
        if row and row[3] == self._run:
            if row[0] != mark:
                raise Taken(place)
            return None
        if row and row[0] == mark:
            self._rows.execute("UPDATE pictures SET run = ? WHERE output = ?", (self._run, key))
            return row[1], row[2], row[4]
        self._rows.execute("REPLACE INTO pictures VALUES (?, ?, NULL, NULL, ?, NULL)",
                           (key, mark, self._run))
        return None, None, None

    def tell(self, place, result, size=None, reason=None):
        self._rows.execute("UPDATE pictures SET result = ?, size = ?, reason = ? WHERE output = ?",
                           (result, size, reason, os.fsencode(place)))

    def commit(self):
        self._rows.commit()

    def close(self):
        self._rows.commit()
        self._rows.close()


def digest(settings, arguments, version):
    """What outputs depend on beside their inputs."""
    return hashlib.blake2b(b"\0".join([settings.record(), *map(os.fsencode, arguments),
                                       version.encode()]), digest_size=16).digest()
