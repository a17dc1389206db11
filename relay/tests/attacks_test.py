"""What is tried against the service, each refused."""
import json
import pathlib
import re
import socket
import sqlite3
import time
import unittest

from harness import Computer, Phone, Service, ServiceTest, UNLIMITED, wait_until


def talk(service, request, source="127.0.0.1"):
    """All that is answered to raw bytes until the service closes."""
    with socket.create_connection(("127.0.0.1", service.port), 60, source_address=(source, 0)) as connection:
        connection.sendall(request)
        answer = b""
        while part := connection.recv(65536):
            answer += part
        return answer


def status(answer):
    return int(answer.split()[1]) if answer else None


class GuessedCodes(ServiceTest):
    switches = UNLIMITED

    def guess(self, code, source):
        return self.service.ask("POST", "/phone/pair", {"code": code}, source=source).status

    def test_an_address_has_five_guesses_and_then_even_the_right_one_fails(self):
        computer = Computer(self.service)
        self.assertEqual([self.guess("222222", "127.0.0.2") for _ in range(7)], [404] * 5 + [429] * 2)
        self.assertEqual(self.guess(computer.code, "127.0.0.2"), 429)
        Phone(self.service, computer.code)  # another address is not held back

    def test_all_addresses_together_have_sixty_guesses(self):
        statuses = [self.guess("222222", f"127.0.1.{i // 5 + 1}") for i in range(65)]
        self.assertEqual(statuses, [404] * 60 + [429] * 5)
        computer = Computer(self.service)
        self.assertEqual(self.guess(computer.code, "127.0.0.9"), 429)

    def test_a_restart_gives_no_new_guesses(self):
        for _ in range(5):
            self.guess("222222", "127.0.0.2")
        self.service.kill()
        self.service.start()
        self.assertEqual(self.guess("222222", "127.0.0.2"), 429)

    def test_the_chance_of_a_guess_is_below_one_in_ten_million(self):
        alphabet, length, guesses = 31, 6, 60
        self.assertLess(guesses / alphabet**length, 1e-7)
        self.assertEqual(len(set("".join(Computer(self.service).code for _ in range(200)))), alphabet)

    def test_a_code_is_too_old_after_fifteen_minutes(self):
        computer = Computer(self.service)
        with sqlite3.connect(self.service.folder / "state/relay.db") as database:
            (until,) = database.execute("SELECT code_until FROM pairings").fetchone()
            self.assertLess(abs(until - time.time() * 1000 - 900_000), 60_000)
            database.execute("UPDATE pairings SET code_until = ?", (int(time.time() * 1000) - 1,))
        self.assertEqual(self.guess(computer.code, "127.0.0.1"), 404)

    def test_what_cannot_be_a_code_is_refused(self):
        for code in ("", "0OIL11", "ABCDEFG", "ä" * 6, "' OR 1=1 --", "%00" * 2, "A" * 3000):
            self.assertIn(self.service.ask("POST", "/phone/pair", {"code": code}).status, (404, 429))
        for body in ({}, [], {"code": 5}, {"code": None}):
            self.assertEqual(self.service.ask("POST", "/phone/pair", body).status, 400)


class Limits(ServiceTest):
    switches = ["--trusted-proxy", "127.0.0.50", "--connections-per-address", "64"]

    def test_an_address_gets_few_codes_a_minute(self):
        statuses = [self.service.ask("POST", "/pair/start").status for _ in range(12)]
        self.assertEqual(statuses, [200] * 10 + [429] * 2)

    def test_an_address_gets_few_answers_a_second(self):
        statuses = [self.service.ask("GET", "/pair/status").status for _ in range(300)]
        self.assertIn(429, statuses)

    def test_a_forwarded_address_is_believed_from_a_trusted_proxy_alone(self):
        def codes(source):
            return [self.service.ask("POST", "/pair/start", headers={"X-Forwarded-For": f"6.6.6.6, 10.0.0.{i}"},
                                     source=source).status for i in range(12)]
        self.assertEqual(codes("127.0.0.50"), [200] * 12)
        self.assertEqual(codes("127.0.0.51").count(429), 2)

    def test_connections_that_say_nothing_keep_nobody_else_out(self):
        held = [socket.create_connection(("127.0.0.1", self.service.port), 60, source_address=("127.0.0.66", 0))
                for _ in range(200)]
        self.assertEqual(self.service.ask("GET", "/healthz").status, 200)
        self.assertGreaterEqual(self.service.metric("refused_connections_total"), 100)
        for connection in held:
            connection.close()


class HalfOpen(ServiceTest):
    switches = UNLIMITED

    def test_ten_thousand_half_open_connections_are_cut_off_and_others_are_served(self):
        before = self.service.descriptors()
        held = []
        for index in range(10_000):
            connection = socket.create_connection(("127.0.0.1", self.service.port), 60)
            if index % 2:
                connection.sendall(b"POST /break HTTP/1.1\r\nHost: x\r\nContent-Le")
            held.append(connection)
        self.assertEqual(self.service.ask("GET", "/healthz").status, 200)
        wait_until(lambda: self.service.descriptors() <= before + 2, "the service had let them go")
        for connection in held:
            connection.close()


class Requests(ServiceTest):
    switches = UNLIMITED

    def test_giant_bodies_are_refused(self):
        computer = Computer(self.service)
        self.assertEqual(computer.begin("x" * 3900).status, 200)
        self.assertEqual(computer.begin("x" * 5000).status, 413)
        head = b"POST /break HTTP/1.1\r\nHost: x\r\nContent-Length: 1000000000000\r\n\r\n"
        self.assertEqual(status(talk(self.service, head)), 413)

    def test_endless_bodies_are_cut_off(self):
        head = b"POST /break HTTP/1.1\r\nHost: x\r\nTransfer-Encoding: chunked\r\n\r\n"
        self.assertEqual(status(talk(self.service, head + b"400\r\n" + b"x" * 1024 + b"\r\n" + (
            b"1000\r\n" + b"x" * 4096 + b"\r\n"))), 413)

    def test_slow_requests_are_cut_off(self):
        with socket.create_connection(("127.0.0.1", self.service.port), 60) as connection:
            connection.sendall(b"GET /healthz HT")
            began = time.monotonic()
            self.assertEqual(connection.recv(100), b"")
            self.assertGreater(time.monotonic() - began, 5)

    def test_giant_heads_are_refused(self):
        request = b"GET / HTTP/1.1\r\nHost: x\r\nX-Much: " + b"a" * 20_000 + b"\r\n\r\n"
        self.assertEqual(status(talk(self.service, request)), 431)

    def test_what_is_no_http_is_refused(self):
        for request in (b"\x00\x01\x02\r\n\r\n", b"GET\r\n\r\n", b"GET / HTTP/9.9\r\n\r\n", b"\x16\x03\x01\x02\x00\r\n\r\n",
                        b"GET / HTTP/1.1\r\nA B: c\r\n\r\n", b"POST /break HTTP/1.1\r\nContent-Length: -1\r\n\r\n",
                        b"POST /break HTTP/1.1\r\nContent-Length: 1\r\nContent-Length: 2\r\n\r\nab"):
            self.assertEqual(status(talk(self.service, request)), 400, request)

    def test_a_request_of_two_lengths_is_refused(self):
        request = (b"POST /pair/start HTTP/1.1\r\nHost: x\r\nContent-Length: 4\r\nTransfer-Encoding: chunked\r\n\r\n"
                   b"0\r\n\r\nGET /metrics HTTP/1.1\r\nHost: x\r\n\r\n")
        self.assertEqual(status(talk(self.service, request)), 400)

    def test_deeply_nested_json_is_refused(self):
        computer = Computer(self.service)
        headers = {"Authorization": f"Bearer {computer.token}", "Content-Type": "application/json"}
        self.assertEqual(self.service.ask("POST", "/break", "[" * 4000, headers).status, 400)
        self.assertEqual(self.service.ask("POST", "/break", '{"a":' * 800, headers).status, 400)

    def test_a_title_of_any_kind_arrives_as_it_was_and_cannot_forge_an_event(self):
        computer, phone = self.service.pair()
        with phone.listening() as stream:
            stream.expect("clear")
            for title in ("a\n\nevent: unpaired\ndata: {}\n\n", "\r\n\r\n", "\x00\x01", "<script>", "'; DROP TABLE pairings"):
                computer.begin(title)
                self.assertEqual(stream.expect("break")["title"], title)
            self.assertTrue(stream.is_quiet())

    def test_guessed_tokens_are_refused(self):
        computer, phone = self.service.pair()
        for token in ("0" * 64, computer.token[:-1], computer.token.upper(), computer.token + "0", "", "' OR 1=1 --",
                      phone.cookie.split("=")[1], computer.code):
            headers = {"Authorization": f"Bearer {token}"}
            self.assertEqual(self.service.ask("GET", "/pair/status", headers=headers).status, 401, token)
        for token in ("0" * 64, computer.token, ""):
            headers = {"Cookie": f"pavonel_phone={token}"}
            self.assertEqual(self.service.ask("GET", "/phone/events", headers=headers).status, 401, token)

    def test_other_sites_are_refused(self):
        computer, phone = self.service.pair()
        code = Computer(self.service).code
        for headers in ({"Origin": "https://evil.example"}, {"Origin": "null"}, {"Sec-Fetch-Site": "cross-site"},
                        {"Sec-Fetch-Site": "same-site"}):
            headers = headers | {"Cookie": phone.cookie}
            for method, path, body in (("POST", "/phone/pair", {"code": code}), ("DELETE", "/phone/pair", None),
                                       ("GET", "/phone/events", None), ("POST", "/pair/start", None)):
                self.assertEqual(self.service.ask(method, path, body, headers).status, 403, (headers, path))
        own = {"Origin": f"http://127.0.0.1:{self.service.port}", "Sec-Fetch-Site": "same-origin"}
        self.assertEqual(self.service.ask("POST", "/phone/pair", {"code": code}, own).status, 200)

    def test_a_form_of_another_site_cannot_speak_json(self):
        code = Computer(self.service).code
        headers = {"Content-Type": "text/plain"}
        reply = self.service.ask("POST", "/phone/pair", json.dumps({"code": code}), headers)
        self.assertEqual(reply.status, 415)

    def test_no_site_may_read_or_frame_what_is_answered(self):
        for path in ("/", "/page.js", "/pair/status", "/nothing", "/healthz"):
            headers = self.service.ask("GET", path).headers
            self.assertIsNone(headers["Access-Control-Allow-Origin"], path)
            self.assertEqual(headers["X-Frame-Options"], "DENY")
            self.assertEqual(headers["X-Content-Type-Options"], "nosniff")
            self.assertEqual(headers["Referrer-Policy"], "no-referrer")
            policy = headers["Content-Security-Policy"]
            self.assertTrue(policy.startswith("default-src 'none'; "), policy)
            self.assertNotIn("unsafe", policy)

    def test_logs_hold_one_line_an_event_and_no_secret(self):
        computer, phone = self.service.pair()
        computer.begin("A secret title")
        talk(self.service, b"GET /\x01\x1b[31m HTTP/1.1\r\nHost: x\r\n\r\n")
        forged = '1.2.3.4\\n{"event":"paired"}'
        self.service.ask("POST", "/phone/pair", {"code": "222222"}, {"X-Forwarded-For": forged, "User-Agent": forged})
        computer.ask("DELETE", "/pair")
        self.assertEqual(self.service.stop(), 0)
        text = self.service.log.read_text()
        events = [json.loads(line)["event"] for line in text.splitlines()]
        self.assertEqual(events.count("paired"), 1)
        for secret in (computer.token, computer.code, phone.cookie.split("=")[1], "secret title", "1.2.3.4"):
            self.assertNotIn(secret, text)


class StolenDatabase(ServiceTest):
    def test_no_token_can_be_used_from_it(self):
        computer, phone = self.service.pair()
        self.assertEqual(self.service.stop(), 0)
        content = b"".join(file.read_bytes() for file in (self.service.folder / "state").iterdir())
        self.assertNotIn(computer.token.encode(), content)
        self.assertNotIn(phone.cookie.split("=")[1].encode(), content)
        self.assertNotIn(computer.code.encode(), content)  # it was used
        found = set(re.findall(rb"[0-9a-f]{64}", content))
        self.assertGreaterEqual(len(found), 2)
        self.service.start()
        for word in sorted(found)[:4]:
            headers = {"Authorization": f"Bearer {word.decode()}", "Cookie": f"pavonel_phone={word.decode()}"}
            self.assertEqual(self.service.ask("GET", "/pair/status", headers=headers).status, 401)
            self.assertEqual(self.service.ask("GET", "/phone/events", headers=headers).status, 401)


if __name__ == "__main__":
    unittest.main()
