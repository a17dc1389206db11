"""What the long runs share: the program as it was at their beginning, what it holds and whether that grows."""
import base64
import json
import os
import pathlib
import shutil

MIB = 1 << 20
MAY_GROW = {"memory": 1 * MIB, "open files": 3, "threads": 1}
SANITIZERS_BOOKS = 12 * MIB  # they note each new place that memory came from, and each thread


def private_copy(program):
    """So that building goes on undisturbed meanwhile."""
    copy = pathlib.Path(os.environ["HOME"]) / "program"
    copy.mkdir()
    for name in (program.name, "libexec", "resources"):
        source = program.parent / name
        (shutil.copytree if source.is_dir() else shutil.copy2)(source, copy / name)
    return copy / program.name


def is_sanitized(program):
    return b"__asan_init" in program.read_bytes()


def sanitizers_options():
    """With which growth can be seen: what was freed would stay in quarantine and look like it."""
    return os.environ.get("ASAN_OPTIONS", "") + ":quarantine_size_mb=1:thread_local_quarantine_size_kb=64"


def costs(process):
    folder = pathlib.Path(f"/proc/{process}")
    lines = folder.joinpath("smaps_rollup").read_text().splitlines()[1:]
    memory = {name: int(size.split()[0]) << 10 for name, size in (line.split(":") for line in lines)}
    # The files' pages come in by and by; and while a child is born, all that is private counts as shared.
    return {"memory": memory["Anonymous"], "resident": memory["Rss"],
            "open files": len(list(folder.joinpath("fd").iterdir())),
            "threads": len(list(folder.joinpath("task").iterdir()))}


def growth(samples, sanitized, connections=0):
    """What is there at all times, late in the run against earlier, when everything has happened once: the name, how much
    there was at least in the second third and in the last, and whether that is too much. So many open files are of
    connections to servers that come and go."""
    third = len(samples) // 3
    for what, allowed in (MAY_GROW | {"open files": MAY_GROW["open files"] + connections}).items():
        if what == "memory" and sanitized:
            allowed += SANITIZERS_BOOKS
        early, late = (min(sample[what] for sample in part) for part in (samples[third:2 * third], samples[2 * third:]))
        yield what, early, late, late - early > allowed


def total(store):
    """The statistics of all days together, of the store as JSON."""
    days = store.get("stats.days", {"data": "e30="})
    sum_of = {}
    for day in json.loads(base64.b64decode(days["data"])).values():
        sum_of = {key: sum_of.get(key, 0) + value for key, value in day.items()}
    return sum_of
