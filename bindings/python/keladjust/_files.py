"""Files that appear when they are whole."""

import contextlib
import os
import secrets


def write_whole(path, pieces):
    """Writes pieces of bytes to a file that is there as a whole or not at all."""
    path = os.path.realpath(os.fspath(path))
    temporary = os.path.join(os.path.dirname(path), f".keladjust-{secrets.token_hex(8)}.tmp")
    try:
        with open(temporary, "xb") as file:
            for piece in pieces:
                file.write(piece)
            file.flush()
            os.fsync(file.fileno())
        with contextlib.suppress(FileNotFoundError):
            os.chmod(temporary, os.stat(path).st_mode & 0o7777)
        os.replace(temporary, path)
    except BaseException:
        with contextlib.suppress(FileNotFoundError):
            os.remove(temporary)
        raise
