"""The command keladjust-farm."""

import argparse
import asyncio
import contextlib
import itertools
import logging
import os
import secrets
import signal
import sys

from .. import SETTINGS, PresetError, Settings, __version__
from .._names import suggestion
from ._manifest import FOLDER, Busy, Manifest, digest
from ._output import OutputFolder
from ._progress import Progress
from ._report import Report
from ._task import PATIENCE, Orders

# As the program has them.
ALL_FINE, SOME_FAILED, USAGE, INTERRUPTED = 0, 1, 2, 130

# Each format's usual extension.
EXTENSIONS = {"jpeg": ".jpg", "png": ".png", "tiff": ".tif", "webp": ".webp"}

DESCRIPTION = """Adjusts pictures on many machines: those in folders and those that quoted patterns and
lists name. Each keeps its name and its place below the output folder. A second run goes on where the first
ended."""


class UsageError(Exception):
    """A command line that cannot be carried out. Raised before anything is written."""


class Parser(argparse.ArgumentParser):
    def error(self, message):
        raise UsageError(message)


def _between(lowest, highest, kind=int):
    def parse(text):
        value = kind(text)
        if not lowest <= value <= highest:
            raise argparse.ArgumentTypeError(f"{text} is not in {lowest}..{highest}")
        return value
    parse.__name__ = kind.__name__  # what messages call it
    return parse


def _at_least(lowest, kind=int):
    return _between(lowest, float("inf"), kind)


def parser():
    line = Parser("keladjust-farm", usage="keladjust-farm IN... OUT [option...]",
                  description=DESCRIPTION, allow_abbrev=False,
                  epilog="Exit status: 0 all fine, 1 something failed, 2 wrong usage, "
                  "130 interrupted.",
                  formatter_class=argparse.RawDescriptionHelpFormatter)
    add = line.add_argument
    add("paths", nargs="+", metavar="IN... OUT", help="folders, pictures and patterns; the output folder")
    add("--version", action="version", version=f"keladjust-farm {__version__}")
    add("--list", dest="lists", action="append", default=[], metavar="FILE",
        help="a file that names a picture a line; - is the standard input")
    add("--preset", dest="presets", action="append", default=[], metavar="FILE",
        help="take settings from a preset; several stack, later ones win")
    add("--format", choices=EXTENSIONS, help="of all outputs; usually what their names say")
    add("--quality", type=_between(1, 100), metavar="N", help="1..100, of JPEG and WebP")
    add("--lossless", action="store_true", help="write WebP without loss")
    add("--max-pixels", type=_at_least(1), metavar="N", help="refuse pictures of more pixels")
    add("--scheduler", metavar="ADDRESS", help="of Dask's, such as tcp://host:8786; usually a cluster "
        "of this machine's own")
    add("--workers", type=_at_least(1), metavar="N",
        help="of this machine's own cluster; usually one a core")
    for name, what in (("ca", "the authority that signs everybody's"), ("cert", "this client's"),
                       ("key", "this client's key")):
        add(f"--tls-{name}", metavar="FILE", help=f"{what}, for a scheduler at tls://")
    add("--retries", type=_at_least(0), default=2, metavar="N",
        help="of a picture whose worker or program dies, or whose worker is at fault; usually 2")
    add("--timeout", type=_at_least(1, float), default=600.0, metavar="SECONDS",
        help="for one picture; usually 600")
    add("--patience", type=_at_least(1, float), default=600.0, metavar="SECONDS",
        help="with a scheduler that is gone; usually 600")
    add("--again", action="store_true", help="try pictures again that were set aside")
    add("--report", metavar="FILE", help=f"usually OUT/{FOLDER}/report.csv")
    add("--program", default="keladjust", metavar="PATH", help="of the program, on every worker")
    add("--in-flight", type=_at_least(1), metavar="N",
        help="pictures that are handed out at a time; usually 24 a core")
    add("-q", "--quiet", action="store_true", help="print errors only")
    for group, settings in itertools.groupby(sorted(SETTINGS, key=_place), lambda s: s.group):
        heading = line.add_argument_group(group)
        for setting in settings:
            heading.add_argument(f"--{setting.name}", type=float, metavar="N", dest=setting.key,
                                 help=f"{setting.range}; {setting.help}".replace("%", "%%"))
    return line


def _place(setting):
    """Groups in the order of their first settings."""
    return next(other.slot for other in SETTINGS if other.group == setting.group), setting.slot


def parse(arguments):
    line = parser()
    options, unknown = line.parse_known_args(arguments)
    if unknown:
        known = [option for action in line._actions for option in action.option_strings]
        name = unknown[0].partition("=")[0]
        raise UsageError(f"unknown option {name}{suggestion(name, known)}")
    *options.inputs, options.output = options.paths
    if not options.inputs and not options.lists:
        raise UsageError("name the pictures, then the output folder")
    options.settings = Settings()
    try:
        for preset in options.presets:
            options.settings.update(preset)
        for setting in SETTINGS:
            value = getattr(options, setting.key)
            if value is not None:
                options.settings[setting.key] = value
    except ValueError as error:
        raise UsageError(str(error)) from None
    _refuse_contradictions(options)
    return options


def _refuse_contradictions(options):
    if os.path.exists(options.output) and not os.path.isdir(options.output):
        raise UsageError(f"{options.output} is a file; the output is a folder")
    output = os.path.realpath(options.output)
    for path in options.inputs:
        if os.path.realpath(path) == output:
            raise UsageError(f"{path} is the output folder; nothing is adjusted in place")
    for path in [*options.inputs, *options.lists]:
        if path != "-" and not os.path.exists(path) and not set("*?[") & set(path):
            raise UsageError(f"there is no {path}")
    tls = [options.tls_ca, options.tls_cert, options.tls_key]
    if any(tls) and not all(tls):
        raise UsageError("--tls-ca, --tls-cert and --tls-key belong together")
    if any(tls) != (options.scheduler or "").startswith("tls://"):
        raise UsageError("--tls-ca, --tls-cert, --tls-key and a scheduler at tls:// belong together")
    if options.scheduler and options.workers:
        raise UsageError("--workers is of a cluster of this machine's own; leave --scheduler out")


def program_arguments(options):
    """What the program is told beside names."""
    arguments = [f"--{name.replace('_', '-')}={value!r}" for name, value in options.settings.named.items()]
    for name in ("format", "quality", "max_pixels"):
        value = getattr(options, name)
        if value is not None:
            arguments += [f"--{name.replace('_', '-')}", str(value)]
    return (*arguments, *(["--lossless"] if options.lossless else []))


def security(options):
    from distributed import Security
    if not options.tls_ca:
        return None
    return Security(tls_ca_file=options.tls_ca, tls_client_cert=options.tls_cert,
                    tls_client_key=options.tls_key, require_encryption=True)


async def run(options, progress):
    # Imported late, since they take half a second that nobody wants to wait for --help.
    from ._crew import Crew, NobodyFit, NoCluster
    from ._run import Interrupted, Run

    # What Dask says of workers that come and go helps nobody here. It gives its loggers levels when it is
    # imported, as workers of one's own do, too, from what they inherit.
    for name in ("distributed", "distributed.client"):
        logging.getLogger(name).setLevel(logging.CRITICAL)
    os.environ.setdefault("DASK_LOGGING__DISTRIBUTED", "critical")
    arguments = program_arguments(options)
    orders = Orders(secrets.token_hex(8), __version__, options.program, arguments, options.timeout)
    output = OutputFolder(options.output, options.format and EXTENSIONS[options.format])
    stopped = asyncio.Event()
    loop = asyncio.get_running_loop()

    def stop():
        if stopped.is_set():
            os._exit(INTERRUPTED)  # the second time at once, whatever hangs
        progress.say("stopping; once more to end at once")
        stopped.set()

    try:
        manifest = Manifest(output.path, digest(options.settings, arguments, __version__))
    except Busy as error:
        raise UsageError(f"another run writes to {options.output} ({error})") from None
    with contextlib.ExitStack() as open_files:
        open_files.callback(manifest.close)
        report = Report(options.report or os.path.join(output.path, FOLDER, "report.csv"))
        open_files.callback(report.close)
        # No program lives as long as what is swept is old.
        age = options.timeout + 2 * PATIENCE
        swept = await asyncio.to_thread(output.sweep, age)
        if swept:
            progress.say(f"{swept} left-over temporary files swept")
        # Workers of one's own are to go on when Ctrl-C reaches all of a terminal's processes.
        signal.signal(signal.SIGINT, signal.SIG_IGN)
        try:
            async with Crew(options.scheduler, security(options), options.workers, orders, output.path,
                            options.patience, progress.say) as crew:
                for number in (signal.SIGINT, signal.SIGTERM):
                    loop.add_signal_handler(number, stop)
                await Run(crew, manifest, report, progress, output, options).work(stopped)
        except Interrupted:
            return INTERRUPTED
        except (NoCluster, NobodyFit) as error:
            progress.end()
            print(f"keladjust-farm: {error}", file=sys.stderr)
            return SOME_FAILED if progress.counts else USAGE
        finally:
            progress.end()
            progress.say(progress.summary())
    return SOME_FAILED if progress.counts["failed"] + progress.counts["set aside"] else ALL_FINE


def main(arguments=None):
    try:
        options = parse(sys.argv[1:] if arguments is None else arguments)
        return asyncio.run(run(options, Progress(options.quiet)))
    except (UsageError, PresetError) as error:
        print(f"keladjust-farm: {error}\nTry keladjust-farm --help.", file=sys.stderr)
        return USAGE
    except OSError as error:
        print(f"keladjust-farm: {error}", file=sys.stderr)
        return SOME_FAILED


if __name__ == "__main__":
    sys.exit(main())
