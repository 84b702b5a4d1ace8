"""keladjust: the image adjustments of a photo editor, on arrays, in place.

    import keladjust
    keladjust.adjust(array, exposure=20, red_hue=15, preset="evening.json")

`SETTINGS` describes every setting, `Settings` holds values and loads and saves presets, `lut()` and
`write_cube()` make colour tables, `stages` has the stages by themselves.
"""

from . import stages
from ._adjust import MOST_THREADS as _MOST_THREADS
from ._adjust import Refused, adjust
from ._description import SETTINGS, Setting
from ._library import library as _library
from ._library import version as __version__
from ._lut import lut, write_cube
from ._preset import PresetError
from ._settings import Settings
from ._values import whole as _whole

__all__ = ["SETTINGS", "PresetError", "Refused", "Setting", "Settings", "adjust", "lut",
           "set_max_threads", "stages", "write_cube"]


def set_max_threads(count):
    """Bounds the threads of every call that does not say `threads`, the stages' among them; 0: one
    per core."""
    _library.setMaxThreads(_whole(count, "count", 0, _MOST_THREADS))
