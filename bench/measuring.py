"""What the measurements of this folder share: a Pavonel of their own, the kernel's accounts of it, and waiting."""
import json
import os
import pathlib
import signal
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
PROGRAM = ROOT / "build/release/pavonel"
FLOOR = ROOT / "build/release/bench_floor"
ON_WAYLAND = "WAYLAND_DISPLAY" in os.environ
MIB = 1024


class Program:
    """A process and the kernel's accounts of it."""

    def __init__(self, *command, **options):
        self.started_at = time.monotonic()
        self.process = subprocess.Popen(command, **options)

    def end(self):
        self.process.send_signal(signal.SIGTERM)
        self.process.wait()

    def proc(self, path):
        return pathlib.Path(f"/proc/{self.process.pid}/{path}")

    def processor_milliseconds(self):
        nanoseconds = sum(int(task.joinpath("schedstat").read_text().split()[0]) for task in self.proc("task").iterdir())
        return nanoseconds / 1e6

    def wake_ups(self):
        """How often each thread went to sleep by itself; who is only pushed aside by others was awake."""
        return {
            task.name: sum(int(line.split()[1]) for line in task.joinpath("status").read_text().splitlines()
                           if line.startswith("voluntary_ctxt_switches"))
            for task in self.proc("task").iterdir()
        }

    def thread_name(self, task):
        return self.proc(f"task/{task}/comm").read_text().strip()

    def memory(self):
        fields = (line.split() for line in self.proc("smaps_rollup").read_text().splitlines()[1:])
        kilobytes = {field[0]: int(field[1]) for field in fields}
        return kilobytes["Private_Dirty:"] / MIB, kilobytes["Rss:"] / MIB


class Pavonel(Program):
    """With these settings; `before` is a command that runs it."""

    def __init__(self, settings, *before, **options):
        store = pathlib.Path(os.environ["XDG_CONFIG_HOME"]) / "pavonel/defaults.json"
        store.parent.mkdir(parents=True, exist_ok=True)
        # Nobody types here, which must not count as being away: then nothing would be counted or asked.
        store.write_text(json.dumps({"didOnboard": True, "idleResetSeconds": 86400} | settings))
        super().__init__(*before, PROGRAM, **options)


class Floor(Program):
    """The least that a program of Qt's does. It says a word when its loop runs, and one when its windows are hidden."""

    def __init__(self, *seconds, before=(), **options):
        super().__init__(*before, FLOOR, *seconds, stdout=subprocess.PIPE, **options)

    def await_word(self):
        self.process.stdout.readline()
        return time.monotonic()


def report(what, figure, budget, unit, floor=None):
    verdict = "" if figure <= budget else "   OVER BUDGET"
    beside = "" if floor is None else f"   (floor {floor:.1f})"
    print(f"{what:58} {figure:7.1f} {unit:4} of {budget:g}{beside}{verdict}", flush=True)


def build():
    """The release, as people run it, and what is measured beside it."""
    for job in (["--preset", "release", "-DPAVONEL_BENCHES=ON"], ["--build", "--preset", "release"]):
        subprocess.run(["cmake", *job], cwd=ROOT, check=True, stdout=sys.stderr)


def windows(title):
    """Those of this title that are shown, on X11."""
    found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", f"^{title}$"], capture_output=True, text=True)
    return found.stdout.split()


def wait_until(condition, what, seconds=30):
    deadline = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > deadline:
            sys.exit(f"There was no sign of {what}.")
        time.sleep(0.1)


def desktop(name, screens="1", size=None):
    """The command that gives what follows it a desktop of its own: `x11`, or a Wayland compositor."""
    if name == "x11":
        return [ROOT / "scripts/virtual-desktop", *(["--size", size] if size else [])]
    return [ROOT / "bench/wayland-desktop", name, screens]


def desktop_asked(arguments):
    """What `--on` names, and the other arguments."""
    return (arguments[1], arguments[2:]) if arguments[:1] == ["--on"] else ("x11", arguments)
