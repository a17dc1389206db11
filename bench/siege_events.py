"""Everything that befalls a besieged Pavonel and its desktop: for bench/siege."""
import os
import pathlib
import signal
import time

from gi.repository import GLib

from besieged import HEIGHT, NAME, NO_START, PATH, SCREENS, STATUS, TIMEOUT, WIDTH, Server, holds_soon, run

DBUSMENU, ITEM = "com.canonical.dbusmenu", "org.kde.StatusNotifierItem"
PROPERTIES, APPLICATION = "org.freedesktop.DBus.Properties", "org.freedesktop.Application"
METHODS = [(PATH, APPLICATION, name) for name in ("Activate", "Open", "ActivateAction")] \
    + [(PATH, STATUS, name) for name in ("TakeMicroBreak", "TakeLongBreak", "Skip", "Postpone", "Pause", "Resume")] \
    + [("/MenuBar", DBUSMENU, name) for name in ("GetLayout", "GetGroupProperties", "GetProperty", "Event", "EventGroup",
                                                 "AboutToShow", "AboutToShowGroup")] \
    + [("/StatusNotifierItem", ITEM, name) for name in ("Activate", "ContextMenu", "SecondaryActivate", "Scroll")] \
    + [(path, PROPERTIES, name) for path in (PATH, "/MenuBar", "/StatusNotifierItem") for name in ("Get", "GetAll", "Set")]
ZONES = ("Europe/Berlin", "Asia/Kolkata", "America/St_Johns", "Pacific/Kiritimati", "Etc/UTC")
DAY = 86400
# After these there is another Pavonel. They come in one round of many, so that each lives for minutes and can grow.
RENEWING = {"befall_session_bus", "befall_short_memory", "befall_kill", "befall_kill_on_full_disk", "befall_end"}
ROUNDS_OF_A_LIFE = 7
SCALES = (96, 144, 192)  # dots per inch
PAGES = 8  # of the settings


def any_value(random, depth=0):
    """Of an arbitrary type."""
    kind = random.choice("bynqiuxtdsoas" if depth > 2 else "bynqiuxtdsoasvm(")
    if kind in "ynqiuxt":
        bits = {"y": 8, "n": 15, "q": 16, "i": 31, "u": 32, "x": 63, "t": 64}[kind]
        return GLib.Variant(kind, random.choice((0, 1, (1 << bits) - 1, random.getrandbits(bits))))
    if kind == "d":
        return GLib.Variant("d", random.choice((0.0, -1e308, float("inf"), float("nan"))))
    if kind == "b":
        return GLib.Variant("b", random.random() < 0.5)
    if kind == "o":
        return GLib.Variant("o", random.choice(("/", PATH, "/a/b")))
    if kind == "v":
        return GLib.Variant("v", any_value(random, depth + 1))
    if kind == "m":
        return GLib.Variant("a{sv}", {text(random): any_value(random, depth + 1) for _ in range(random.randrange(4))})
    if kind == "(":
        return GLib.Variant.new_tuple(*(any_value(random, depth + 1) for _ in range(random.randrange(1, 4))))
    if kind == "s":
        return GLib.Variant("s", text(random))
    return GLib.Variant("as", [text(random) for _ in range(random.randrange(9))])


def text(random):
    return random.choice(("", "clicked", "label", "skip", STATUS, "activation-token", "ü" * 5, "x" * random.randrange(70_000)))


class Events:
    """Each is a method that begins with `befall_`; all of them leave a desktop on which the program can go on."""

    def __init__(self, random, siege):
        self.random, self.siege = random, siege
        self.tray = None
        pulse = pathlib.Path(os.environ["XDG_RUNTIME_DIR"]) / "pulse/native"
        pulse.parent.mkdir(exist_ok=True)
        self.sound = Server("pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no",
                            "-L", f"module-native-protocol-unix auth-anonymous=1 socket={pulse}",
                            "-L", "module-null-sink sink_name=spk", "-L", "module-null-source source_name=mic", leaves=pulse)
        self.pipewire = Server("pipewire", environment={"DISABLE_RTKIT": "1"})
        self.pipewire_manager = Server("wireplumber")
        self.manager = Server("xfwm4", "--replace", "--compositor=on")
        self.coming, self.rounds = [], 0
        self.has_met_everything = False

    def names(self):
        left_out = set() if self.siege.disk.is_small else {"befall_full_disk", "befall_kill_on_full_disk"}
        left_out |= set() if self.siege.clock.can_change else {"befall_clock"}
        left_out |= set() if self.siege.clock.can_change_zone else {"befall_zone"}
        left_out |= {"befall_short_memory"} if self.siege.program.is_sanitized else set()
        left_out |= RENEWING if self.rounds % ROUNDS_OF_A_LIFE else set()
        return sorted(name for name in dir(self) if name.startswith("befall_") and name not in left_out)

    def next(self):
        """In each round each comes once."""
        if not self.coming:
            names = self.names()
            self.coming = self.random.sample(names, len(names))
            self.rounds += 1
        if self.rounds % ROUNDS_OF_A_LIFE != 1 and not self.has_met_everything:
            return "meet_everything"
        return self.coming.pop()

    def begin_life(self):
        self.has_met_everything = False

    def leave(self):
        for server in (self.tray, self.sound, self.pipewire_manager, self.pipewire, self.manager):
            if server:
                server.end(signal.SIGKILL)

    def wait(self, least, most):
        time.sleep(self.random.uniform(least, most))

    def how(self):
        return self.random.choice((signal.SIGTERM, signal.SIGKILL))

    def meet_everything(self):
        """A break and every page of the settings at each scale: what takes memory once has it then."""
        self.siege.screens.set([(WIDTH, HEIGHT, 0, 0)] * SCREENS)
        for scale in SCALES:
            self.siege.screens.scale(scale)
            self.siege.command("TakeLongBreak")
            self.wait(1, 2)
            self.siege.command("Skip")
            self.open_settings()
            run("xdotool", "search", "--sync", "--onlyvisible", "--name", "^Pavonel$", "windowfocus", "--sync")
            time.sleep(1)  # until the break that was skipped has gone, and gives the keyboard back
            run("xdotool", "key", "--delay", "100", "Tab", "shift+Tab", *["Up"] * PAGES, *["Down"] * PAGES, "Escape")
        self.has_met_everything = True
        self.siege.watch.sample_anew()

    def befall_screens(self):
        sizes = [(self.random.choice((WIDTH, 1024, 801)), self.random.choice((HEIGHT, 600)), self.random.randrange(200), 0)
                 for _ in range(self.random.randrange(1, 4))]
        self.siege.screens.scale(self.random.choice(SCALES))
        self.siege.screens.set(sizes)

    def befall_compositor(self):
        self.manager.end(self.how())
        self.manager.command = self.random.choice((("xfwm4", "--compositor=on"), ("xfwm4", "--compositor=off"), ("openbox",)))
        self.wait(0, 2)  # without any window manager
        self.manager.start()

    def befall_tray(self):
        if self.tray:
            self.tray.end(self.how())
        command = self.random.choice((("xfce4-panel", "--disable-wm-check"), ("trayer",), None))
        self.tray = Server(*command) if command else None
        if self.tray:
            self.tray.start()

    def befall_sound_server(self):
        self.sound.end(self.how())
        self.wait(0, 1)
        self.sound.start()

    def befall_recording(self):
        recorder = Server("parec", "--device=mic")
        recorder.start()
        self.wait(1, 4)
        recorder.end()

    def befall_pipewire(self):
        self.pipewire_manager.end(self.how())
        self.pipewire.end(self.how())
        self.wait(0, 1)
        self.pipewire.start()
        self.pipewire_manager.start()

    def befall_session_bus(self):
        """A program cannot come back to a session's bus; a new Pavonel finds the new one."""
        self.siege.watch.is_calm = False
        self.siege.bus.end()
        self.wait(0, 3)
        self.siege.bus.start()
        self.wait(0, 3)
        if not self.siege.program.is_running():
            self.siege.complain("the loss of the session bus ended it")
        self.siege.renew(self.how())

    def befall_system_bus(self):
        self.siege.logind.end()
        self.wait(0, 3)
        self.siege.logind.start()

    def befall_sleep(self):
        self.siege.logind.sleep(True)
        self.wait(0, 5)
        self.siege.logind.sleep(False)

    def befall_lock(self):
        self.siege.logind.lock(True)
        self.wait(0, 10)
        self.siege.logind.lock(False)

    def befall_clock(self):
        self.siege.watch.change_day()
        self.siege.clock.set(self.random.choice((0, self.random.randrange(-DAY, DAY))))

    def befall_zone(self):
        self.siege.watch.change_day()
        self.siege.clock.choose_zone(self.random.choice(ZONES))

    def befall_short_memory(self):
        """It may end for lack of memory, but not with a damaged store."""
        self.siege.watch.is_calm = False
        self.siege.program.limit_memory(beyond=self.random.randrange(1 << 22))
        self.befall_break()
        self.wait(1, 6)
        if self.siege.program.is_running():
            self.siege.program.limit_memory()
        else:
            self.siege.note("it ended for lack of memory")
            self.siege.start_anew()

    def fill_disk(self):
        self.siege.watch.is_calm = False
        self.siege.watch.check_store()
        self.siege.disk.fill()
        self.befall_break()
        self.wait(1, 8)

    def befall_full_disk(self):
        self.fill_disk()
        self.siege.disk.free()
        if not holds_soon(self.siege.watch.is_everything_stored):
            self.siege.complain("what was counted while the disk was full is not stored when it has room")

    def befall_kill_on_full_disk(self):
        self.fill_disk()
        self.siege.program.end(signal.SIGKILL)
        self.siege.disk.free()
        self.siege.start_anew()

    def befall_kill(self):
        self.siege.renew(signal.SIGKILL)

    def befall_end(self):
        self.siege.renew(signal.SIGTERM)

    def open_settings(self):
        """A second start does."""
        if (status := self.siege.program.start_again()) != 0:
            self.siege.complain(f"a second start ended with {status}")
        self.siege.watch.check_number()
        self.wait(0, 1)

    def befall_second_start(self):
        self.open_settings()
        run("xdotool", "key", "Down", "alt+F4")

    def befall_storm_of_calls(self):
        """A thousand calls with arbitrary arguments. One of them may have asked it to end."""
        connection = self.siege.bus.connection()
        for _ in range(1000):
            path, interface, method = self.random.choice(METHODS)
            values = [any_value(self.random) for _ in range(self.random.randrange(4))]
            try:
                connection.call_sync(NAME, path, interface, method, GLib.Variant.new_tuple(*values), None, NO_START,
                                     TIMEOUT * 1000, None)
            except GLib.Error as error:
                if error.matches(GLib.quark_from_string("g-io-error-quark"), 24):  # timed out
                    self.siege.complain(f"{interface}.{method} was not answered")
        run("xdotool", "key", "Escape", "Escape")
        if self.siege.program.process.poll() == 0:
            self.siege.note("a call ended it")
            self.siege.start_anew()
        self.siege.command("Resume")

    def befall_break(self):
        self.siege.command(self.random.choice(("TakeMicroBreak", "TakeLongBreak")))

    def befall_pause(self):
        self.siege.command("Pause", GLib.Variant("(u)", (60,)))
        self.wait(0, 3)
        self.siege.command("Resume")

    def befall_skip(self):
        self.siege.command("Skip")

    def befall_keys(self):
        run("xdotool", "key", self.random.choice(("Escape", "ctrl+alt+super+b", "ctrl+alt+super+s")))
