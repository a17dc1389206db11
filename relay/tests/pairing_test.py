"""The computer's side, and how a phone is paired with it."""
import re
import stat
import unittest

from harness import Computer, Phone, Service, ServiceTest, UNLIMITED


class Pairing(ServiceTest):
    switches = UNLIMITED

    def test_a_code_has_six_characters_none_of_which_looks_like_another(self):
        codes = [Computer(self.service).code for _ in range(50)]
        for code in codes:
            self.assertRegex(code, "^[23456789ABCDEFGHJKMNPQRSTUVWXYZ]{6}$")
        self.assertEqual(len(set(codes)), len(codes))

    def test_a_token_has_256_bits(self):
        self.assertRegex(Computer(self.service).token, "^[0-9a-f]{64}$")

    def test_a_computer_is_paired_once_a_phone_entered_its_code(self):
        computer = Computer(self.service)
        self.assertIs(computer.is_paired(), False)
        Phone(self.service, computer.code)
        self.assertIs(computer.is_paired(), True)

    def test_a_code_may_be_typed_in_small_letters_with_spaces_and_dashes(self):
        code = Computer(self.service).code.lower()
        Phone(self.service, f" {code[:3]} - {code[3:]} ")

    def test_a_code_works_once(self):
        computer, _ = self.service.pair()
        self.assertEqual(self.service.ask("POST", "/phone/pair", {"code": computer.code}).status, 404)

    def test_the_phones_token_is_in_a_cookie_that_scripts_and_other_sites_do_not_get(self):
        _, phone = self.service.pair()
        for attribute in ("HttpOnly", "SameSite=Strict", "Path=/"):
            self.assertIn(attribute, phone.set_cookie)
        self.assertRegex(phone.cookie, "^pavonel_phone=[0-9a-f]{64}$")

    def test_a_computer_that_unpairs_is_forgotten(self):
        computer, phone = self.service.pair()
        self.assertEqual(computer.ask("DELETE", "/pair").status, 200)
        self.assertEqual(computer.ask("GET", "/pair/status").status, 401)
        self.assertEqual(phone.ask("GET", "/phone/events").status, 401)

    def test_a_phone_that_unpairs_is_forgotten(self):
        computer, phone = self.service.pair()
        reply = phone.ask("DELETE", "/phone/pair")
        self.assertEqual(reply.status, 200)
        self.assertIn("Max-Age=0", reply.headers["Set-Cookie"])
        self.assertEqual(phone.ask("GET", "/phone/events").status, 401)
        self.assertEqual(computer.begin().status, 401)

    def test_whoever_has_no_token_is_refused(self):
        for method, path in (("GET", "/pair/status"), ("DELETE", "/pair"), ("DELETE", "/break"),
                             ("GET", "/phone/events"), ("DELETE", "/phone/pair")):
            self.assertEqual(self.service.ask(method, path).status, 401, path)
        body = {"kind": "micro", "title": "x", "seconds": 1}
        self.assertEqual(self.service.ask("POST", "/break", body).status, 401)

    def test_what_is_no_break_is_refused(self):
        computer = Computer(self.service)
        good = {"kind": "micro", "title": "x", "seconds": 1}
        for change in ({"kind": "nap"}, {"kind": 1}, {"title": 5}, {"seconds": "9"}, {"seconds": 1.5},
                       {"seconds": None}):
            self.assertEqual(computer.ask("POST", "/break", good | change).status, 400, change)
        for body in ([], "text", 5, None):
            headers = {"Authorization": f"Bearer {computer.token}", "Content-Type": "application/json"}
            self.assertIn(self.service.ask("POST", "/break", body, headers).status, (400,), body)

    def test_the_page_and_its_parts_are_served(self):
        for path, kind in (("/", "text/html"), ("/page.js", "text/javascript"), ("/style.css", "text/css"),
                           ("/manifest.webmanifest", "application/manifest+json"), ("/icon-192.png", "image/png")):
            reply = self.service.ask("GET", path)
            self.assertEqual(reply.status, 200, path)
            self.assertTrue(reply.headers["Content-Type"].startswith(kind), path)
        tag = self.service.ask("GET", "/").headers["ETag"]
        self.assertEqual(self.service.ask("GET", "/", headers={"If-None-Match": tag}).status, 304)
        self.assertEqual(self.service.ask("GET", "/nothing").status, 404)
        self.assertEqual(self.service.ask("PUT", "/break").status, 405)

    def test_the_page_asks_nothing_of_third_parties(self):
        page = self.service.ask("GET", "/").body.decode()
        for part in re.findall(r'(?:src|href)="([^"]+)"', page):
            self.assertNotIn("//", part)
            self.assertEqual(self.service.ask("GET", "/" + part).status, 200, part)

    def test_health_and_figures_are_told(self):
        self.service.pair()
        self.assertEqual(self.service.ask("GET", "/healthz").body, b"ok\n")
        self.assertEqual(self.service.metric("pairings_total"), 1)

    def test_figures_are_for_this_machine_alone(self):
        self.assertEqual(self.service.ask("GET", "/metrics", headers={"X-Forwarded-For": "9.9.9.9"}).status, 404)

    def test_the_database_is_for_its_owner_alone(self):
        folder = self.service.folder / "state"
        self.assertEqual(stat.S_IMODE(folder.stat().st_mode), 0o700)
        for file in folder.iterdir():
            self.assertEqual(stat.S_IMODE(file.stat().st_mode), 0o600, file)


class Restarting(unittest.TestCase):
    def test_pairings_outlive_the_service(self):
        service = Service()
        self.addCleanup(service.close)
        computer, phone = service.pair()
        service.kill()
        service.start()
        self.assertIs(computer.is_paired(), True)
        with phone.listening() as stream:
            stream.expect("clear")


if __name__ == "__main__":
    unittest.main()
