"""A computer: the built desktop program on the virtual desktop that this runs on."""
import json
import os
import pathlib
import shutil
import subprocess
import tempfile

from browser import TIMEOUT, wait_until

STORE = {"didOnboard": True, "microInterval": 3600, "microDuration": 20, "longEnabled": False, "preNotifySeconds": 0,
         "naturalBreakEnabled": False, "soundEnabled": False, "launchAtLogin": False, "hotKeysEnabled": False}


class Program:
    """With a bus of its own, a second one may run on the same desktop."""

    def __init__(self, executable, service, own_bus=False, **settings):
        self.home = pathlib.Path(tempfile.mkdtemp(prefix="pavonel-computer."))
        self.environment = os.environ | {
            "XDG_CONFIG_HOME": str(self.home / "config"), "XDG_CACHE_HOME": str(self.home / "cache"),
            "PAVONEL_PAIR_HOST": service, "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1", "QT_QPA_PLATFORM": "xcb"}
        self.bus = None
        if own_bus:
            self.bus = subprocess.Popen(["dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address"],
                                        stdout=subprocess.PIPE, text=True)
            self.environment["DBUS_SESSION_BUS_ADDRESS"] = self.bus.stdout.readline().strip()
        self.store_path = self.home / "config/pavonel/defaults.json"
        self.store_path.parent.mkdir(parents=True)
        self.store_path.write_text(json.dumps(STORE | settings))
        self.process = subprocess.Popen([executable], env=self.environment)

    def call(self, method, *arguments):
        return subprocess.run(["gdbus", "call", "--session", "--dest", "org.pavonel.Pavonel", "--object-path",
                               "/org/pavonel/Pavonel", "--method", method, *arguments],
                              env=self.environment, capture_output=True).returncode == 0

    def take_a_break(self):
        wait_until(lambda: self.call("org.freedesktop.Application.ActivateAction", "take-micro-break", "[]", "{}"),
                   "the program took the wish for a break")

    def show_settings(self):
        wait_until(lambda: self.call("org.freedesktop.Application.Activate", "{}"), "the program showed its settings")

    def stored(self, name):
        return json.loads(self.store_path.read_text()).get(name)

    def kill(self):
        self.process.kill()
        self.process.wait()

    def close(self):
        if self.process.poll() is None:
            self.process.terminate()
        status = self.process.wait(TIMEOUT)
        if self.bus:
            self.bus.terminate()
            self.bus.wait()
            self.bus.stdout.close()
        shutil.rmtree(self.home, ignore_errors=True)
        assert status in (0, -9), f"the program ended with {status}"


def overlays():
    found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", "^Pavonel Break$"],
                           capture_output=True, text=True)
    return len(found.stdout.split())


def wait_for_overlay():
    wait_until(lambda: overlays() > 0, "a break was on the screen")


def wait_for_no_overlay():
    wait_until(lambda: overlays() == 0, "no break was on the screen")


def press(key):
    subprocess.run(["xdotool", "key", key], check=True)
