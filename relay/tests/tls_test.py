"""TLS by the service itself."""
import http.client
import json
import os
import signal
import ssl
import subprocess
import tempfile
import unittest

from harness import TIMEOUT, Service, wait_until


class Tls(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="pavonel-relay-tls.")
        self.addCleanup(folder.cleanup)
        self.certificate, self.key = f"{folder.name}/cert.pem", f"{folder.name}/key.pem"
        self.make("first.example")
        self.service = Service("--certificate", self.certificate, "--key", self.key)
        self.addCleanup(self.service.close)

    def make(self, name):
        subprocess.run(["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes",
                        "-keyout", self.key, "-out", self.certificate, "-days", "2", "-subj", f"/CN={name}"],
                       check=True, capture_output=True)

    def connection(self, context=None):
        context = context or ssl._create_unverified_context()
        return http.client.HTTPSConnection("127.0.0.1", self.service.port, timeout=TIMEOUT, context=context)

    def certificate_shown(self):
        return ssl.get_server_certificate(("127.0.0.1", self.service.port))

    def test_a_phone_is_paired_and_told_over_tls(self):
        connection = self.connection()
        connection.request("POST", "/pair/start")
        reply = connection.getresponse()
        code = json.loads(reply.read())["code"]
        connection.request("POST", "/phone/pair", f'{{"code":"{code}"}}', {"Content-Type": "application/json"})
        reply = connection.getresponse()
        reply.read()
        self.assertIn("; Secure", reply.headers["Set-Cookie"])
        self.assertIn("max-age", reply.headers["Strict-Transport-Security"])
        cookie = reply.headers["Set-Cookie"].split(";")[0]
        connection.request("GET", "/phone/events", headers={"Cookie": cookie})
        self.assertEqual(connection.getresponse().readline(), b"event: clear\n")
        connection.close()
        wait_until(lambda: b"phones 0" in self.metrics(), "the phone had left")

    def metrics(self):
        connection = self.connection()
        connection.request("GET", "/metrics")
        return connection.getresponse().read()

    def test_a_new_certificate_is_read_on_hangup_and_a_bad_one_is_not(self):
        first = self.certificate_shown()
        self.make("second.example")
        os.kill(self.service.process.pid, signal.SIGHUP)
        wait_until(lambda: self.certificate_shown() != first, "the new certificate was shown")
        second = self.certificate_shown()
        with open(self.certificate, "w") as file:
            file.write("nonsense")
        os.kill(self.service.process.pid, signal.SIGHUP)
        wait_until(lambda: "certificate-kept" in self.service.log.read_text(), "the bad certificate was refused")
        self.assertEqual(self.certificate_shown(), second)

    def test_old_versions_are_refused(self):
        context = ssl._create_unverified_context()
        context.set_ciphers("ALL:@SECLEVEL=0")
        context.minimum_version = context.maximum_version = ssl.TLSVersion.TLSv1_1
        with self.assertRaises((ssl.SSLError, ConnectionError)):
            self.connection(context).connect()

    def test_plain_http_gets_nothing(self):
        with self.assertRaises((http.client.HTTPException, ConnectionError)):
            self.service.ask("GET", "/healthz")


if __name__ == "__main__":
    unittest.main()
