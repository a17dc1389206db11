"""Starts the built service and speaks to it as computers and phones do. The program is named by RELAY."""
import contextlib
import http.client
import json
import os
import pathlib
import queue
import resource
import shutil
import signal
import socket
import subprocess
import tempfile
import threading
import time
import unittest

PROGRAM = os.environ.get("RELAY") or str(pathlib.Path(__file__).resolve().parents[2] / "build/release/pavonel-relay")
TIMEOUT = 60  # seconds; only what hangs takes so long
UNLIMITED = ["--requests-per-second", "100000", "--starts-per-minute", "100000", "--connections-per-address", "100000"]

resource.setrlimit(resource.RLIMIT_NOFILE, (resource.getrlimit(resource.RLIMIT_NOFILE)[1],) * 2)


def wait_until(condition, what):
    deadline = time.monotonic() + TIMEOUT
    while not condition():
        if time.monotonic() > deadline:
            raise AssertionError(f"waited in vain until {what}")
        time.sleep(0.02)


class Reply:
    def __init__(self, response):
        self.status, self.headers, self.body = response.status, response.headers, response.read()

    def json(self):
        return json.loads(self.body)


class Service:
    """One instance, on a free port, with a folder of its own unless a database is given."""

    def __init__(self, *switches, database=None, port=0, folder=None):
        self.folder = pathlib.Path(folder or tempfile.mkdtemp(prefix="pavonel-relay."))
        self.database = database or f"sqlite:{self.folder}/state/relay.db"
        self.switches = list(switches)
        self.port = port
        self.log = self.folder / f"log-{id(self)}"
        self.start()

    def start(self):
        with self.log.open("a") as log:
            self.process = subprocess.Popen(
                [PROGRAM, "--port", str(self.port), "--database", self.database, *self.switches],
                stdout=subprocess.PIPE, stderr=log, text=True)
        line = self.process.stdout.readline()
        if not line.startswith("listening on "):
            raise AssertionError(f"no service: {line!r} {self.log.read_text()[-2000:]}")
        self.url = line.split()[-1]
        self.port = int(self.url.rsplit(":", 1)[1])
        threading.Thread(target=self.listen_to, args=(self.process.stdout,), daemon=True).start()

    @staticmethod
    def listen_to(output):
        with output:
            output.read()

    def kill(self):
        self.process.kill()
        self.process.wait()

    def stop(self):
        """Its exit status; a sanitizer's complaint is one too."""
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGTERM)
        return self.process.wait(TIMEOUT)

    def close(self):
        status = self.stop()
        text = self.log.read_text()
        shutil.rmtree(self.folder, ignore_errors=True)
        assert "Sanitizer" not in text and "runtime error" not in text, text[-4000:]
        assert status in (0, -signal.SIGKILL), f"ended with {status}: {text[-4000:]}"

    def ask(self, method, path, body=None, headers=None, source="127.0.0.1"):
        """A body that is no text goes out as JSON."""
        connection = http.client.HTTPConnection("127.0.0.1", self.port, timeout=TIMEOUT, source_address=(source, 0))
        headers = dict(headers or {})
        if body is not None and not isinstance(body, (str, bytes)):
            body = json.dumps(body)
            headers.setdefault("Content-Type", "application/json")
        with contextlib.closing(connection):
            connection.request(method, path, body, headers)
            return Reply(connection.getresponse())

    def metric(self, name):
        lines = self.ask("GET", "/metrics").body.decode().splitlines()
        return float(next(line.split()[1] for line in lines if line.startswith(f"pavonel_relay_{name} ")))

    def descriptors(self):
        return len(os.listdir(f"/proc/{self.process.pid}/fd"))

    def pair(self):
        computer = Computer(self)
        return computer, Phone(self, computer.code)


class Computer:
    def __init__(self, service):
        self.service = service
        reply = service.ask("POST", "/pair/start")
        assert reply.status == 200, reply.body
        self.code, self.token = reply.json()["code"], reply.json()["macToken"]

    def ask(self, method, path, body=None, service=None):
        return (service or self.service).ask(method, path, body, {"Authorization": f"Bearer {self.token}"})

    def begin(self, title="Micro break", seconds=20, kind="micro", service=None):
        return self.ask("POST", "/break", {"kind": kind, "title": title, "seconds": seconds}, service)

    def end(self, service=None):
        return self.ask("DELETE", "/break", service=service)

    def is_paired(self):
        return self.ask("GET", "/pair/status").json()["paired"]


class Phone:
    def __init__(self, service, code):
        self.service = service
        reply = service.ask("POST", "/phone/pair", {"code": code})
        assert reply.status == 200, (reply.status, reply.body)
        self.set_cookie = reply.headers["Set-Cookie"]
        self.cookie = self.set_cookie.split(";")[0]

    def ask(self, method, path, service=None):
        return (service or self.service).ask(method, path, headers={"Cookie": self.cookie})

    @contextlib.contextmanager
    def listening(self, service=None):
        stream = Stream(service or self.service, self.cookie)
        try:
            yield stream
        finally:
            stream.close()


class Stream:
    """Server-sent events as they come, each as (name, data); ("end", None) when the service ends it."""

    def __init__(self, service, cookie):
        self.socket = socket.create_connection(("127.0.0.1", service.port), TIMEOUT)
        self.response = None
        self.events = queue.Queue()
        self.comments = 0
        self.socket.sendall(f"GET /phone/events HTTP/1.1\r\nHost: x\r\nCookie: {cookie}\r\n\r\n".encode())
        self.response = http.client.HTTPResponse(self.socket)
        self.response.begin()
        self.status = self.response.status
        if self.status == 200:
            threading.Thread(target=self.read, daemon=True).start()

    def read(self):
        name = None
        try:
            while line := self.response.readline():
                text = line.decode().rstrip("\n")
                if text.startswith(":"):
                    self.comments += 1
                elif text.startswith("event: "):
                    name = text[7:]
                elif text.startswith("data: "):
                    self.events.put((name, json.loads(text[6:])))
        except (OSError, http.client.HTTPException, ValueError):
            pass
        self.events.put(("end", None))

    def next(self):
        return self.events.get(timeout=TIMEOUT)

    def expect(self, name):
        found, data = self.next()
        assert found == name, f"{found} {data} came in place of {name}"
        return data

    def is_quiet(self):
        return self.events.empty()

    def close(self):
        with contextlib.suppress(OSError):
            self.socket.shutdown(socket.SHUT_RDWR)
        self.socket.close()


class ServiceTest(unittest.TestCase):
    """With a service for each test, of these switches."""

    switches = ()

    def setUp(self):
        self.service = Service(*self.switches)
        self.addCleanup(self.service.close)
