"""What a waiting phone is told."""
import os
import signal
import time
import unittest

from harness import ServiceTest, Service, UNLIMITED, wait_until


class Events(ServiceTest):
    switches = [*UNLIMITED, "--heartbeat", "1"]

    def setUp(self):
        super().setUp()
        self.computer, self.phone = self.service.pair()

    def test_a_break_is_told_with_its_end_by_the_services_clock(self):
        with self.phone.listening() as stream:
            stream.expect("clear")
            self.computer.begin("Augen zu 🫖", 20, "long")
            told = stream.expect("break")
            self.assertEqual((told["kind"], told["title"], told["seconds"]), ("long", "Augen zu 🫖", 20))
            self.assertLess(abs(told["endsAt"] - told["now"] - 20_000), 20_000)
            self.assertLess(abs(told["now"] - time.time() * 1000), 60_000)

    def test_the_end_of_a_break_is_told(self):
        with self.phone.listening() as stream:
            stream.expect("clear")
            self.computer.begin()
            stream.expect("break")
            self.assertEqual(self.computer.end().status, 200)
            stream.expect("clear")

    def test_a_phone_that_comes_during_a_break_sees_it_at_once(self):
        self.computer.begin("Long break", 300)
        with self.phone.listening() as stream:
            self.assertEqual(stream.expect("break")["title"], "Long break")

    def test_a_phone_that_comes_after_a_break_sees_none(self):
        self.computer.begin(seconds=1)
        time.sleep(1.2)
        with self.phone.listening() as stream:
            stream.expect("clear")

    def test_a_break_that_the_computer_never_ends_ends_at_its_time(self):
        with self.phone.listening() as stream:
            stream.expect("clear")
            began = time.monotonic()
            self.computer.begin(seconds=1)
            stream.expect("break")
            stream.expect("clear")
            self.assertGreater(time.monotonic() - began, 0.9)

    def test_a_second_break_replaces_the_first(self):
        with self.phone.listening() as stream:
            stream.expect("clear")
            self.computer.begin("First", 1)
            stream.expect("break")
            self.computer.begin("Second", 300)
            self.assertEqual(stream.expect("break")["title"], "Second")
            time.sleep(1.2)  # past the end of the first
            self.assertTrue(stream.is_quiet())

    def test_unpairing_is_told(self):
        with self.phone.listening() as stream:
            stream.expect("clear")
            self.computer.ask("DELETE", "/pair")
            stream.expect("unpaired")
            stream.expect("end")

    def test_a_waiting_phone_hears_a_heartbeat(self):
        with self.phone.listening() as stream:
            stream.expect("clear")
            wait_until(lambda: stream.comments >= 2, "two heartbeats came")

    def test_two_computers_and_two_phones_are_never_mixed_up(self):
        computer, phone = self.service.pair()
        with self.phone.listening() as ours, phone.listening() as theirs:
            ours.expect("clear")
            theirs.expect("clear")
            for turn in range(20):
                self.computer.begin(f"ours {turn}")
                computer.begin(f"theirs {turn}")
                self.assertEqual(ours.expect("break")["title"], f"ours {turn}")
                self.assertEqual(theirs.expect("break")["title"], f"theirs {turn}")

    def test_a_phone_that_left_leaves_nothing_behind(self):
        before = self.service.descriptors()
        for _ in range(50):
            with self.phone.listening() as stream:
                stream.expect("clear")
        wait_until(lambda: self.service.metric("phones") == 0, "all phones had left")
        self.assertLessEqual(self.service.descriptors(), before + 2)

    def test_a_phone_waits_in_few_places_at_once(self):
        streams = [self.phone.listening() for _ in range(8)]
        for stream in streams:
            stream.__enter__().expect("clear")
        self.assertEqual(self.phone.ask("GET", "/phone/events").status, 429)
        for stream in streams:
            stream.__exit__(None, None, None)

    def test_on_termination_waiting_phones_are_told_to_come_back_within_five_seconds(self):
        with self.phone.listening() as stream:
            stream.expect("clear")
            began = time.monotonic()
            os.kill(self.service.process.pid, signal.SIGTERM)
            self.assertLessEqual(stream.expect("restart")["after"], 2000)
            stream.expect("end")
            self.assertEqual(self.service.process.wait(60), 0)
            self.assertLess(time.monotonic() - began, 5)

    def test_a_break_goes_on_when_the_service_is_restarted(self):
        with self.phone.listening() as stream:
            stream.expect("clear")
            self.computer.begin("Long break", 300)
            ends = stream.expect("break")["endsAt"]
        self.assertEqual(self.service.stop(), 0)
        self.service.start()
        with self.phone.listening() as stream:
            self.assertEqual(stream.expect("break")["endsAt"], ends)


if __name__ == "__main__":
    unittest.main()
