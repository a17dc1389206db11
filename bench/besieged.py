"""A desktop of which every part can end and come again, and the Pavonel on it, for bench/siege."""
import json
import os
import pathlib
import signal
import subprocess
import time

from gi.repository import Gio, GLib

from endurance import is_sanitized, sanitizers_options, total

WIDTH, HEIGHT, SCREENS = 1280, 720, 3
MICRO, LONG = 4, 8  # seconds of a break
SETTINGS = {
    "didOnboard": True, "launchAtLogin": False, "idleResetSeconds": 20,
    "microInterval": 20, "microDuration": MICRO, "longInterval": 115, "longDuration": LONG, "preNotifySeconds": 8,
    "postureInterval": 35, "blinkEnabled": True, "blinkInterval": 50,
}
NAME, PATH, STATUS = "org.pavonel.Pavonel", "/org/pavonel/Pavonel", "org.pavonel.Pavonel1"
LOGIN = "org.freedesktop.login1"
FAKE_TIME = pathlib.Path("/usr/lib/x86_64-linux-gnu/faketime/libfaketime.so.1")
NO_START = Gio.DBusCallFlags.NO_AUTO_START
TIMEOUT = 120  # seconds; for what must end some time, on a busy machine too


def run(*command):
    """Whether it succeeded; what it says is not asked for, as it may fail while servers restart."""
    try:
        return subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=TIMEOUT).returncode == 0
    except subprocess.TimeoutExpired:
        return False


def holds_soon(condition, seconds=TIMEOUT):
    deadline = time.monotonic() + seconds
    while not (result := condition()) and time.monotonic() < deadline:
        time.sleep(0.05)
    return result


class Server:
    """A program that can be ended and started again; what it leaves behind is taken away first."""

    def __init__(self, *command, leaves=None, environment=None):
        self.command, self.leaves = command, leaves
        self.environment = os.environ | (environment or {})
        self.process = None

    def start(self):
        if self.leaves:
            self.leaves.unlink(missing_ok=True)
        self.process = subprocess.Popen(self.command, env=self.environment, stdout=subprocess.DEVNULL,
                                        stderr=subprocess.DEVNULL)

    def end(self, how=signal.SIGTERM):
        if self.process:
            self.process.send_signal(how)
            try:
                self.process.wait(5)
            except subprocess.TimeoutExpired:
                self.process.kill()
                self.process.wait()
        self.process = None


class Bus:
    """A message bus at an address that stays."""

    def __init__(self, kind):
        self.socket = pathlib.Path(os.environ["XDG_RUNTIME_DIR"]) / f"{kind}-bus"
        self.address = f"unix:path={self.socket}"
        self.server = Server("dbus-daemon", "--session", "--nofork", "--nopidfile", f"--address={self.address}",
                             leaves=self.socket)

    def start(self):
        self.server.start()
        holds_soon(self.takes_connections)

    def end(self):
        self.server.end(signal.SIGKILL)

    def takes_connections(self):
        try:
            self.connection().close_sync(None)
            return True
        except GLib.Error:
            return False

    def connection(self):
        flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
        return Gio.DBusConnection.new_for_address_sync(self.address, flags, None, None)


class Logind:
    """A login manager that sleeps, wakes, locks and unlocks when told to, on a bus that stands for the system's."""

    def __init__(self):
        self.bus = Bus("system")
        self.mock = Server("/usr/bin/python3", "-m", "dbusmock", "--template", "logind",
                           environment={"DBUS_SYSTEM_BUS_ADDRESS": self.bus.address})
        self.session = None

    def start(self):
        self.bus.start()
        self.mock.start()
        holds_soon(self.add_session)

    def end(self):
        self.mock.end(signal.SIGKILL)
        self.bus.end()

    def add_session(self):
        try:
            connection = self.bus.connection()
            for method, arguments in (("AddSeat", GLib.Variant("(s)", ("seat0",))),
                                      ("AddUser", GLib.Variant("(usb)", (os.getuid(), "user", True))),
                                      ("AddSession", GLib.Variant("(ssusb)", ("c1", "seat0", os.getuid(), "user", True)))):
                answer = connection.call_sync(LOGIN, "/org/freedesktop/login1", "org.freedesktop.DBus.Mock", method,
                                              arguments, None, NO_START, 5000, None)
            self.session = answer[0]
            return True
        except GLib.Error:
            return False

    def tell(self, path, method, arguments):
        self.bus.connection().call_sync(LOGIN, path, "org.freedesktop.DBus.Mock", method, arguments, None, NO_START, 5000, None)

    def sleep(self, is_beginning):
        self.tell("/org/freedesktop/login1", "EmitSignal", GLib.Variant(
            "(sssav)", (f"{LOGIN}.Manager", "PrepareForSleep", "b", [GLib.Variant("b", is_beginning)])))

    def lock(self, is_locked):
        self.tell(self.session, "UpdateProperties", GLib.Variant(
            "(sa{sv})", (f"{LOGIN}.Session", {"LockedHint": GLib.Variant("b", is_locked)})))


class Disk:
    """The small disk on which the store is. Needs the right to mount; without it, it is the home's own."""

    def __init__(self, may_mount):
        self.folder = pathlib.Path(os.environ["XDG_CONFIG_HOME"]) / "pavonel"
        self.folder.mkdir(parents=True, exist_ok=True)
        self.is_small = may_mount and run("mount", "-t", "tmpfs", "-o", "size=256k", "tmpfs", self.folder)
        self.ballast = self.folder / "ballast"

    def leave(self):
        if self.is_small:
            run("umount", "--lazy", self.folder)

    def fill(self):
        with open(self.ballast, "wb", buffering=0) as file:
            try:
                while True:
                    file.write(b"x" * 4096)
            except OSError:
                pass

    def free(self):
        self.ballast.unlink(missing_ok=True)


class Clock:
    """The time of day and its zone, as the program sees them."""

    def __init__(self, may_mount):
        self.file = pathlib.Path(os.environ["HOME"]) / "time"
        # The library leaves something there for each process that is killed.
        self.can_change = FAKE_TIME.exists() and may_mount and run("mount", "-t", "tmpfs", "tmpfs", "/dev/shm")
        self.environment = {}
        if self.can_change:
            self.set(0)
            self.environment = {"LD_PRELOAD": str(FAKE_TIME), "FAKETIME_TIMESTAMP_FILE": str(self.file),
                                "FAKETIME_CACHE_DURATION": "1", "FAKETIME_DONT_FAKE_MONOTONIC": "1",
                                "NO_FAKE_STAT": "1"}  # files do not age with the clock; fontconfig would read all fonts anew
        # A link in a folder of our own, where the system lets us put one in the place of /etc.
        copy = pathlib.Path(os.environ["HOME"]) / "etc"
        self.can_change_zone = may_mount and run("cp", "-a", "/etc", copy) and run("mount", "--bind", copy, "/etc")

    def set(self, offset):
        new = self.file.with_suffix(".new")
        new.write_text(f"{offset:+d}\n")
        new.rename(self.file)

    def choose_zone(self, zone):
        new = pathlib.Path("/etc/localtime.new")
        new.symlink_to(f"/usr/share/zoneinfo/{zone}")
        new.rename("/etc/localtime")


class Screens:
    """As monitors of one X server, side by side with gaps, all of one scale."""

    def __init__(self):
        self.names = []
        self.settings = pathlib.Path(os.environ["HOME"]) / "xsettings"
        self.manager = Server("xsettingsd", "--config", self.settings)

    def start(self):
        self.scale(96)
        self.manager.start()
        holds_soon(self.takes_changes)

    def end(self):
        self.manager.end()

    def set(self, sizes):
        for name in self.names:
            run("xrandr", "--delmonitor", name)
        self.names = ["ABC"[i] for i in range(len(sizes))]
        for i, (name, (width, height, left, top)) in enumerate(zip(self.names, sizes)):
            run("xrandr", "--setmonitor", name, f"{width}/500x{height}/280+{i * WIDTH + left}+{top}",
                "none" if i else "screen")

    def scale(self, dots_per_inch):
        """As a desktop tells the programs that run, https://www.freedesktop.org/wiki/Specifications/XSettingsRegistry/."""
        new = self.settings.with_suffix(".new")
        new.write_text(f"Xft/DPI {dots_per_inch * 1024}\n")
        new.rename(self.settings)
        if self.manager.process:
            self.manager.process.send_signal(signal.SIGHUP)

    def takes_changes(self):
        """Before it does, the signal would end it."""
        status = pathlib.Path(f"/proc/{self.manager.process.pid}/status").read_text()
        return int(status.split("SigCgt:")[1].split()[0], 16) >> (signal.SIGHUP - 1) & 1


class Program:
    """The Pavonel under siege."""

    def __init__(self, executable, environment):
        self.executable = executable
        self.is_sanitized = is_sanitized(executable)
        self.store = pathlib.Path(os.environ["XDG_CONFIG_HOME"]) / "pavonel/defaults.json"
        self.store.write_text(json.dumps(SETTINGS))
        options = sanitizers_options() + ":verify_asan_link_order=0"  # libfaketime comes before it
        self.environment = os.environ | environment | {"ASAN_OPTIONS": options}
        self.errors = pathlib.Path(os.environ["HOME"]) / "errors"
        self.process = None
        self.started_at = 0.0

    def start(self):
        self.started_at = time.monotonic()
        self.process = subprocess.Popen([self.executable], stderr=open(self.errors, "a"), env=self.environment)

    def is_running(self):
        return self.process is not None and self.process.poll() is None

    def pages_read(self):
        """How often it had to wait for memory from the disk since its start; 0 while it does not run."""
        try:
            return int(pathlib.Path(f"/proc/{self.process.pid}/stat").read_text().rpartition(")")[2].split()[9])
        except (AttributeError, OSError):
            return 0

    def end(self, how=signal.SIGTERM):
        """Its exit status; none when it does not end."""
        self.process.send_signal(how)
        try:
            return self.process.wait(TIMEOUT)
        except subprocess.TimeoutExpired:
            return None

    def start_again(self):
        """What a second start ends with; none when it stays."""
        with open(self.errors, "a") as errors:
            try:
                return subprocess.run([self.executable], stderr=errors, env=self.environment, timeout=TIMEOUT).returncode
            except subprocess.TimeoutExpired:
                return None

    def limit_memory(self, beyond=None):
        """To what it has and so many bytes; to what the system has when nothing is given."""
        limit = "unlimited"
        if beyond is not None:
            limit = int(pathlib.Path(f"/proc/{self.process.pid}/statm").read_text().split()[0]) * 4096 + beyond
        run("prlimit", f"--pid={self.process.pid}", f"--as={limit}:unlimited")

    def stored(self):
        """The numbers of all days together; none when the store is damaged or lost a setting."""
        try:
            values = json.loads(self.store.read_text())
            if any(values.get(key) != value for key, value in SETTINGS.items()):
                return None
            return total(values)
        except (OSError, ValueError, KeyError, TypeError):
            return None
