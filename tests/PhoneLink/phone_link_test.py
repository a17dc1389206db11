"""The whole link, from outside: the desktop program on a virtual desktop, the service, and the phone's page in a
browser. Usage: phone_link_test.py PROGRAM [unittest's arguments]"""
import os
import pathlib
import subprocess
import sys
import time
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
if "PAVONEL_PHONE_LINK" not in os.environ:
    os.environ["PAVONEL_PHONE_LINK"] = "on a virtual desktop"
    sys.exit(subprocess.call([ROOT / "scripts/virtual-desktop", "--size", "1280x720", sys.executable, *sys.argv]))
sys.path += [str(ROOT / "relay/tests"), str(ROOT / "tests/EndToEnd/settings-road")]

import computer as desktop  # noqa: E402
import harness  # noqa: E402
from browser import Browser, wait_until  # noqa: E402
from computer import Program, wait_for_no_overlay, wait_for_overlay  # noqa: E402

PROGRAM = sys.argv.pop(1)


def setUpModule():
    global accessibility
    accessibility = subprocess.Popen(["/usr/libexec/at-spi-bus-launcher", "--launch-immediately"],
                                     env=os.environ | {"GSETTINGS_BACKEND": "memory"}, stderr=subprocess.DEVNULL)
    wait_until(lambda: subprocess.run(["gdbus", "call", "--session", "--dest", "org.a11y.Bus", "--object-path",
                                       "/org/a11y/bus", "--method", "org.a11y.Bus.GetAddress"],
                                      capture_output=True).returncode == 0, "there was an accessibility bus")


def tearDownModule():
    accessibility.terminate()
    accessibility.wait()


class PhoneLink(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.phone = Browser()
        cls.addClassCleanup(cls.phone.close)

    def setUp(self):
        self.service = harness.Service(*harness.UNLIMITED)
        self.addCleanup(self.service.close)

    def program(self, **settings):
        program = Program(PROGRAM, self.service.url, **settings)
        self.addCleanup(program.close)
        return program

    def enter(self, phone, code):
        phone.open(self.service.url)
        phone.forget()
        phone.reload()
        phone.waits_for_screen("pair")
        phone.type("#code", code)
        phone.click("#code-form button")
        phone.waits_for_screen("waiting")
        wait_until(lambda: phone.connection == "good", "the phone was connected")

    def pair(self, phone=None, **settings):
        """A program that was paired before it started, and the phone's page."""
        computer = harness.Computer(self.service)
        self.enter(phone or self.phone, computer.code)
        return self.program(phonePairToken=computer.token, **settings)

    def seconds_left(self, phone=None):
        minutes, seconds = (phone or self.phone).text("#time").split(":")
        return 60 * int(minutes) + int(seconds)

    def test_a_phone_is_paired_by_the_code_that_the_settings_show(self):
        from accessible import wait_for
        from driver import Window
        program = self.program()
        program.show_settings()
        page = Window().page("iPhone")
        page.press("Show pairing code")
        page.reads("Type this code into Pavonel on your phone", "Waiting for your phone…")
        code = wait_for("a code", lambda: next((text for text in self.names(page) if len(text) == 6 and text.isalnum()
                                                and text.isupper()), None))
        self.enter(self.phone, code)
        page.reads("Your phone is connected")
        program.take_a_break()
        wait_for_overlay()
        self.phone.waits_for_screen("break")
        self.assertEqual(self.phone.text("#break-title"), "Micro break")
        desktop.press("Escape")
        self.phone.waits_for_screen("waiting")
        page.press("Disconnect")
        self.phone.waits_for_screen("pair")
        self.assertEqual(self.phone.text("#code-error"), "The pairing was ended.")

    @staticmethod
    def names(place):
        return [item.name for item in place.showing()]

    def test_a_break_appears_with_the_overlay_and_goes_at_its_end(self):
        program = self.pair(microDuration=8)
        program.take_a_break()
        wait_for_overlay()
        seen = time.monotonic()
        self.phone.waits_for_screen("break")
        print(f"the page followed the overlay by {max(0, time.monotonic() - seen):.2f} s", flush=True)
        self.assertIn(self.seconds_left(), range(9))
        self.assertEqual(self.phone.computed_label("#break"), "Micro break")
        self.assertRegex(self.phone.text("#news"), r"^Micro break, 8 seconds\.$")
        wait_for_no_overlay()
        self.phone.waits_for_screen("waiting")
        self.assertEqual(self.phone.text("#news"), "The break is over.")

    def test_escape_on_the_computer_ends_the_break_on_the_phone(self):
        program = self.pair(microDuration=600)
        program.take_a_break()
        wait_for_overlay()
        self.phone.waits_for_screen("break")
        desktop.press("Escape")
        wait_for_no_overlay()
        self.phone.waits_for_screen("waiting")

    def test_the_ring_and_the_time_follow_the_break(self):
        program = self.pair(microDuration=600)
        program.take_a_break()
        self.phone.waits_for_screen("break")
        arc = "return parseFloat(document.getElementById('arc').style.strokeDasharray)"
        before = self.phone.run(arc)
        wait_until(lambda: self.phone.run(arc) > before, "the arc had grown")
        left = self.seconds_left()
        wait_until(lambda: self.seconds_left() < left, "the time had gone on")
        self.assertAlmostEqual(1 - self.phone.run(arc), self.seconds_left() / 600, delta=0.05)

    def test_a_phone_that_unpairs_sees_no_more_breaks(self):
        program = self.pair()
        token = program.stored("phonePairToken")
        self.phone.click("#disconnect")
        self.phone.click("#leave")
        self.phone.waits_for_screen("pair")
        reply = self.service.ask("GET", "/pair/status", headers={"Authorization": f"Bearer {token}"})
        self.assertEqual(reply.status, 401)
        program.take_a_break()
        wait_for_overlay()
        self.assertEqual(self.phone.screen, "pair")

    def test_a_wrong_code_is_said_so(self):
        self.phone.open(self.service.url)
        self.phone.forget()
        self.phone.reload()
        self.phone.waits_for_screen("pair")
        self.phone.type("#code", "222222")
        self.phone.click("#code-form button")
        wait_until(lambda: self.phone.text("#code-error") == "That code is wrong, used or too old.", "it was said")

    def test_the_address_may_carry_the_code(self):
        computer = harness.Computer(self.service)
        self.phone.open(self.service.url)
        self.phone.forget()
        self.phone.open(f"{self.service.url}/#{computer.code}")
        self.phone.reload()
        self.phone.waits_for_screen("pair")
        self.assertIs(computer.is_paired(), False)  # nobody is paired by a mere visit
        self.phone.click("#code-form button")
        self.phone.waits_for_screen("waiting")
        self.assertIs(computer.is_paired(), True)

    def test_a_service_restarted_in_the_middle_of_a_break_changes_nothing(self):
        program = self.pair(microDuration=600)
        program.take_a_break()
        self.phone.waits_for_screen("break")
        self.assertEqual(self.service.stop(), 0)
        wait_until(lambda: self.phone.connection == "lost", "the page said so")
        self.assertEqual(self.phone.screen, "break")
        self.service.start()
        wait_until(lambda: self.phone.connection == "good", "the phone was connected again")
        self.assertEqual(self.phone.screen, "break")
        wait_for_overlay()
        desktop.press("Escape")
        self.phone.waits_for_screen("waiting")

    def test_a_computer_killed_during_a_break_leaves_none_behind(self):
        program = self.pair(microDuration=10)
        program.take_a_break()
        self.phone.waits_for_screen("break")
        program.kill()
        self.phone.waits_for_screen("waiting")

    def test_a_phone_that_was_offline_sees_the_present_state(self):
        program = self.pair(microDuration=600)
        self.phone.be_offline(True)
        wait_until(lambda: self.phone.connection == "lost", "the page said so")
        program.take_a_break()
        wait_for_overlay()
        self.assertEqual(self.phone.screen, "waiting")
        self.phone.be_offline(False)
        self.phone.waits_for_screen("break")
        self.phone.be_offline(True)
        wait_until(lambda: self.phone.connection == "lost", "the page said so")
        desktop.press("Escape")
        wait_for_no_overlay()
        self.phone.be_offline(False)
        self.phone.waits_for_screen("waiting")

    def test_two_computers_and_two_phones_are_never_mixed_up(self):
        other = Browser()
        self.addCleanup(other.close)
        ours = self.pair(microDuration=600)
        theirs = self.pair(other, microDuration=300, own_bus=True)
        theirs.take_a_break()
        other.waits_for_screen("break")
        self.assertLessEqual(self.seconds_left(other), 300)
        self.assertEqual(self.phone.screen, "waiting")
        theirs.close()
        wait_for_no_overlay()
        ours.take_a_break()
        self.phone.waits_for_screen("break")
        self.assertGreater(self.seconds_left(), 300)

    def test_without_a_network_the_page_still_opens_and_says_so(self):
        self.pair()
        kept = "return navigator.serviceWorker.getRegistration().then((kept) => kept?.active?.state === 'activated')"
        wait_until(lambda: self.phone.run(kept), "the page was kept for later")
        self.assertEqual(self.service.stop(), 0)
        self.phone.reload()
        self.phone.waits_for_screen("waiting")
        wait_until(lambda: self.phone.connection == "lost", "the page said so")
        self.service.start()

    def test_a_break_keeps_the_screen_awake_and_is_felt_at_its_start_and_end(self):
        script = self.phone.command("Page.addScriptToEvaluateOnNewDocument", source=(
            "var awake = 0, felt = [];"
            "Object.defineProperty(navigator, 'wakeLock', {value: {request: async () => {"
            "  ++awake; return {released: false, async release() { this.released = true; --awake; }}; }}});"
            "navigator.vibrate = (pattern) => felt.push(pattern.length);"))
        self.addCleanup(self.phone.command, "Page.removeScriptToEvaluateOnNewDocument", **script)
        computer = harness.Computer(self.service)
        self.enter(self.phone, computer.code)
        awake = lambda: self.phone.run("return awake")
        for title in ("Micro break", "Long break"):
            computer.begin(title, seconds=300)
            wait_until(lambda: self.phone.text("#break-title") == title, "the page showed " + title)
        wait_until(lambda: awake() == 1, "the screen was kept awake by one lock")
        computer.end()
        wait_until(lambda: awake() == 0, "the screen was let go")
        self.assertEqual(self.phone.run("return felt"), [1, 1, 3])

    def test_the_page_fits_a_narrow_phone_and_either_way_up(self):
        program = self.pair(microDuration=600)
        self.addCleanup(self.phone.turn, (390, 844))
        fits = ("const d = document.documentElement; return d.scrollWidth <= innerWidth && "
                "[...document.querySelectorAll('main')].every((m) => m.getBoundingClientRect().right <= innerWidth)")
        for screen in ("waiting", "break"):
            self.phone.waits_for_screen(screen)
            for size in ((320, 568), (568, 320), (390, 844), (844, 390), (1024, 1366)):
                self.phone.turn(size)
                self.assertTrue(self.phone.run(fits), (screen, size))
            if screen == "waiting":
                program.take_a_break()
        self.phone.turn((844, 390))
        ring = self.phone.run("const r = document.querySelector('.ring').getBoundingClientRect();"
                              "const t = document.getElementById('break-title').getBoundingClientRect();"
                              "return t.top >= 0 && r.bottom <= innerHeight && t.bottom <= r.top")
        self.assertTrue(ring)

    def test_with_reduced_motion_the_arc_steps_once_a_second(self):
        self.phone.prefer(reduced_motion="reduce")
        self.addCleanup(self.phone.prefer)
        program = self.pair(microDuration=600)
        program.take_a_break()
        self.phone.waits_for_screen("break")
        share = self.phone.run("return parseFloat(document.getElementById('arc').style.strokeDasharray) * 600")
        self.assertAlmostEqual(share, round(share), places=3)


if __name__ == "__main__":
    unittest.main(verbosity=2)
