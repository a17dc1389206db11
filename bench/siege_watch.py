"""What must hold of a besieged Pavonel at any moment, watched from outside: for bench/siege."""
import collections
import pathlib
import subprocess
import threading
import time

from gi.repository import GLib

from besieged import LONG, MICRO, NAME, NO_START, PATH, STATUS
from endurance import costs, growth

LOOKS = 0.2  # seconds between two
LATE = 2     # seconds that a break may last longer than it is long
FADE = 2     # and its windows longer than that
WATCHED_LONG = 300  # seconds; growth shows only then
CONNECTIONS = 11  # open files of those to the sound server (3) and to PipeWire (8), which may both be gone for a while
COUNTED = ("micro", "long", "skipped", "breakSeconds", "screenSeconds")
UNWRITTEN = {"screenSeconds": 60 + LATE, "breakSeconds": LONG + LATE}  # how much of them the store may lack
SEEN_AFTER = 3  # seconds; another time of day
WRITTEN_AFTER = 3  # seconds; a count that was seen so long ago


class Stopwatch:
    """Also tells whether one processor at least had nothing to do all the while, so that nobody was in the way."""

    def __init__(self):
        self.begun_at, self.idle = time.monotonic(), self.idle_ticks()

    def read(self):
        took = time.monotonic() - self.begun_at
        return took, self.idle_ticks() - self.idle + 2 >= took * 90

    @staticmethod
    def idle_ticks():
        """In hundredths of a second, more or less, of all processors together."""
        return int(pathlib.Path("/proc/stat").read_text().split("\n", 1)[0].split()[4])


def overlays():
    found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", "^Pavonel Break$"], capture_output=True, text=True)
    return len(found.stdout.split())


def pavonels(executable):
    """How many there are, children that are just being born left out."""
    parents = {}
    for process in pathlib.Path("/proc").iterdir():
        try:
            if process.name.isdigit() and process.joinpath("exe").readlink() == executable:
                parents[int(process.name)] = int(process.joinpath("stat").read_text().rpartition(")")[2].split()[1])
        except OSError:
            continue
    return sum(parent not in parents for parent in parents.values())


class Span:
    """For how long something lasts."""

    def __init__(self):
        self.what, self.seconds = None, 0.0

    def note(self, what, seconds):
        self.seconds = self.seconds + seconds if what is not None and what == self.what else 0.0
        self.what = what
        return self.seconds


class Watch(threading.Thread):
    """Looks five times a second, until told to stop, and complains."""

    def __init__(self, program, bus, complain):
        super().__init__(daemon=True)
        self.program, self.bus, self.complain = program, bus, complain
        self.stopping = threading.Event()
        self.guard = threading.Lock()
        self.connection = None
        self.is_calm = True  # false while something happens after which nothing can be said of answer times
        self.stall = 0.5 if program.is_sanitized else 0.1
        self.slowest, self.answers, self.breaks = 0.0, 0, set()
        self.latest = None  # break: the gap before the next may pass unseen on a busy machine
        self.running, self.covered, self.uncalled, self.told = Span(), Span(), Span(), set()
        self.last, self.counted = {}, dict.fromkeys(COUNTED, 0)
        self.sample_anew()
        self.same_day_from = 0.0
        self.recently = collections.deque()  # with the time: what had been counted at each look of the last seconds

    def run(self):
        stopwatch = Stopwatch()
        while not self.stopping.wait(LOOKS):
            passed, was_idle = stopwatch.read()
            stopwatch = Stopwatch()
            try:  # a busy machine is late by itself
                self.look(passed if was_idle else min(passed, 2 * LOOKS))
            except OSError:
                pass  # it was killed under our eyes

    def stop(self):
        self.stopping.set()
        self.join()

    def look(self, passed):
        status = self.status()
        windows = overlays()
        phase = status.get("Phase") if status else None
        this_break = (status["BreakKind"], *(status[f"Today{what}"] for what in ("Micro", "Long", "Skipped"))) \
            if phase == "breaking" else None
        length = MICRO if this_break and this_break[0] == "micro" else LONG
        if this_break:
            self.breaks.add(this_break)
            self.latest = this_break
        self.limit(self.running.note(this_break, passed), length + LATE, f"a break of {length} s lasts longer")
        self.limit(self.covered.note(("covered", self.latest) if windows else None, passed), LONG + LATE + FADE,
                   "screens are covered for longer than any break")
        is_uncalled = windows and phase not in (None, "breaking")
        self.limit(self.uncalled.note(self.program.process.pid if is_uncalled else None, passed), FADE,
                   f"there are break windows while the phase is {phase}")
        if status:
            self.count(status)

    def limit(self, seconds, most, what):
        if seconds > most and what not in self.told:
            self.complain(f"{what} ({seconds:.1f} s)")
        (self.told.add if seconds > most else self.told.discard)(what)

    def status(self):
        """All properties, and how long that took; none while nobody answers."""
        try:
            if self.connection is None or self.connection.is_closed():
                self.connection = self.bus.connection()
            was_calm, read_before, stopwatch = self.is_calm, self.program.pages_read(), Stopwatch()
            answer = self.connection.call_sync(NAME, PATH, "org.freedesktop.DBus.Properties", "GetAll",
                                               GLib.Variant("(s)", (STATUS,)), None, NO_START, 60_000, None)
            took, was_idle = stopwatch.read()
        except GLib.Error:
            return None
        if was_calm and self.is_calm and was_idle and stopwatch.begun_at - self.program.started_at > 10:
            self.answers += 1
            self.slowest = max(self.slowest, took)
            if took > self.stall:
                read = self.program.pages_read() - read_before
                self.complain(f"the main loop stood still for {took * 1000:.0f} ms on an idle machine"
                              f" (of it for memory from the disk: {read} times)")
        return answer.unpack()[0]

    def count(self, status):
        """What the program has counted so far. Amounts that fall or leap are another day's."""
        now = {what: status["Today" + what[0].upper() + what[1:]] for what in COUNTED}
        with self.guard:
            gained = {what: amount - self.last.get(what, amount) for what, amount in now.items()}
            if time.monotonic() > self.same_day_from and all(0 <= gain <= 5 for gain in gained.values()):
                self.counted = {what: amount + gained[what] for what, amount in self.counted.items()}
            self.last = now
            self.recently.append((time.monotonic(), dict(self.counted)))
            while len(self.recently) > 1 and self.recently[1][0] < time.monotonic() - WRITTEN_AFTER:
                self.recently.popleft()

    def change_day(self):
        """The program may see another day from now on; which, it does not tell."""
        self.same_day_from = time.monotonic() + SEEN_AFTER

    def missing(self):
        """Of what should be in the store: what it lacks and how much. None when the store is damaged."""
        with self.guard:
            is_due = self.recently and self.recently[0][0] < time.monotonic() - WRITTEN_AFTER
            return self.lacks(self.recently[0][1] if is_due else {})

    def lacks(self, due):
        if (stored := self.program.stored()) is None:
            return None
        lacks = {what: amount - stored.get(what, 0) for what, amount in due.items()}
        return {what: lack for what, lack in lacks.items() if lack > UNWRITTEN.get(what, 0)}

    def is_everything_stored(self):
        """Whatever it says now that it has counted, however new."""
        if not (status := self.status()):
            return False
        self.count(status)
        with self.guard:
            return self.lacks(self.counted) == {}

    def check_store(self):
        """That nothing is missing but screen time that was not due to be written."""
        missing = self.missing()
        if missing is None:
            self.complain("the store is damaged")
        elif missing:
            self.complain(f"missing from the store: {missing}")

    def forget(self):
        """Counts from what is stored: a new Pavonel does."""
        with self.guard:
            stored = self.program.stored() or {}
            self.counted = {what: stored.get(what, 0) for what in COUNTED}
            self.last = {}
            self.recently.clear()

    def check_number(self):
        if (number := pavonels(self.program.executable)) > 1:
            self.complain(f"there are {number} Pavonels")

    def sample(self):
        """What it holds while nothing is shown."""
        if self.last and not overlays() and self.program.is_running():
            self.samples.append(costs(self.program.process.pid))

    def sample_anew(self):
        """When everything has happened once in a life: what is taken from then on is growth."""
        self.samples, self.sampled_from = [], time.monotonic()

    def check_growth(self):
        """What was there at all times, late in a life against earlier."""
        watched, samples = time.monotonic() - self.sampled_from, self.samples
        self.sample_anew()
        if watched < WATCHED_LONG or len(samples) < 9:
            return
        for what, early, late, is_too_much in growth(samples, self.program.is_sanitized, CONNECTIONS):
            if is_too_much:
                self.complain(f"{what} grew from {early} to {late} in {watched:.0f} s")
