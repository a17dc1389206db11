"""A phone: Debian's Chromium without a screen, driven through WebDriver."""
import base64
import json
import os
import re
import shutil
import subprocess
import tempfile
import time
import urllib.error
import urllib.request

TIMEOUT = 120  # seconds; for a busy machine
ATTEMPTS = 20
PORTRAIT, LANDSCAPE = (390, 844), (844, 390)


def wait_until(condition, what):
    """The first true value of the condition. `what` is a text, or gives one when it never comes."""
    deadline = time.monotonic() + TIMEOUT
    while not (value := condition()):
        if time.monotonic() > deadline:
            raise AssertionError(f"waited in vain until {what() if callable(what) else what}")
        time.sleep(0.02)
    return value


def start_driver():
    """With the port that it chose: one that is free by IPv6; it ends at once when somebody has the same by IPv4."""
    for _ in range(ATTEMPTS):
        driver = subprocess.Popen(["chromedriver", "--port=0"], stdout=subprocess.PIPE, text=True)
        for line in driver.stdout:
            if found := re.search(r"success.* port (\d+)", line):
                return driver, found[1]
        driver.wait()
        driver.stdout.close()
    raise AssertionError(f"chromedriver did not start, {ATTEMPTS} times")


class Browser:
    def __init__(self):
        self.folder = tempfile.mkdtemp(prefix="pavonel-phone.")
        self.driver, port = start_driver()
        self.base = f"http://127.0.0.1:{port}"
        options = ["--headless=new", "--disable-gpu", "--hide-scrollbars", f"--user-data-dir={self.folder}",
                   "--no-first-run", "--disable-background-networking", "--disable-component-update", "--lang=en"]
        if os.geteuid() == 0:
            options.append("--no-sandbox")  # it refuses to be root in one
        chosen = {"browserName": "chrome", "goog:chromeOptions": {"args": options}}
        self.session = ""
        self.session = "/session/" + self.ask("POST", "/session", {"capabilities": {"alwaysMatch": chosen}})["sessionId"]
        self.turn(PORTRAIT)

    def ask(self, method, path, body=None):
        data = json.dumps(body or {}).encode() if method == "POST" else None
        request = urllib.request.Request(self.base + self.session + path, data, {"Content-Type": "application/json"},
                                         method=method)
        try:
            with urllib.request.urlopen(request, timeout=TIMEOUT) as reply:
                return json.load(reply)["value"]
        except urllib.error.HTTPError as error:
            raise AssertionError(json.load(error)["value"]["message"]) from None

    def command(self, name, **parameters):
        """Of the browser's own protocol."""
        return self.ask("POST", "/goog/cdp/execute", {"cmd": name, "params": parameters})

    def close(self):
        try:
            self.ask("DELETE", "")
        finally:
            self.driver.terminate()
            self.driver.wait()
            self.driver.stdout.close()
            shutil.rmtree(self.folder, ignore_errors=True)

    def open(self, url):
        self.ask("POST", "/url", {"url": url})

    def reload(self):
        self.ask("POST", "/refresh")

    def run(self, script, *arguments):
        return self.ask("POST", "/execute/sync", {"script": script, "args": arguments})

    def element(self, selector):
        return next(iter(self.ask("POST", "/element", {"using": "css selector", "value": selector}).values()))

    def click(self, selector):
        self.ask("POST", f"/element/{self.element(selector)}/click")

    def type(self, selector, text):
        self.ask("POST", f"/element/{self.element(selector)}/value", {"text": text})

    def text(self, selector):
        return self.run("return document.querySelector(arguments[0]).textContent", selector)

    def computed_label(self, selector):
        return self.ask("GET", f"/element/{self.element(selector)}/computedlabel")

    @property
    def screen(self):
        return self.run("return document.body.dataset.screen")

    def waits_for_screen(self, screen):
        wait_until(lambda: self.screen == screen, lambda: f"the page shows {screen}: it shows {self.screen}")

    @property
    def connection(self):
        return self.run("return document.body.dataset.connection")

    def forget(self):
        """Every cookie and all that was stored."""
        self.ask("DELETE", "/cookie")
        self.run("localStorage.clear()")

    def be_offline(self, offline):
        conditions = {"offline": offline, "latency": 0, "download_throughput": -1, "upload_throughput": -1}
        self.ask("POST", "/chromium/network_conditions", {"network_conditions": conditions})

    def turn(self, size, scale=2):
        self.command("Emulation.setDeviceMetricsOverride", width=size[0], height=size[1], deviceScaleFactor=scale,
                     mobile=True)

    def prefer(self, **features):
        """As colour scheme and motion: prefer(color_scheme="dark")."""
        wanted = [{"name": "prefers-" + name.replace("_", "-"), "value": value} for name, value in features.items()]
        self.command("Emulation.setEmulatedMedia", features=wanted)

    def picture(self):
        return base64.b64decode(self.command("Page.captureScreenshot", format="png")["data"])
