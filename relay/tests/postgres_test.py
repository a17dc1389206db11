"""Several instances over one PostgreSQL server."""
import unittest

from harness import Computer, Phone, Service, UNLIMITED, wait_until
from postgres import Postgres


class ThreeInstances(unittest.TestCase):
    def setUp(self):
        self.postgres = Postgres()
        self.addCleanup(self.postgres.close)
        self.services = []
        for _ in range(3):
            self.services.append(Service(*UNLIMITED, database=self.postgres.database))
            self.addCleanup(self.services[-1].close)

    def test_a_break_told_to_one_reaches_a_phone_that_waits_at_another(self):
        first, second, third = self.services
        computer = Computer(first)
        phone = Phone(second, computer.code)
        with phone.listening(third) as stream:
            stream.expect("clear")
            computer.begin("Ruhe 🫖\n\x00", service=first)
            self.assertEqual(stream.expect("break")["title"], "Ruhe 🫖\n\x00")
            computer.end(service=second)
            stream.expect("clear")
            computer.begin("x" * 3900, service=second)
            stream.expect("break")
            computer.ask("DELETE", "/pair", service=first)
            stream.expect("unpaired")

    def test_guesses_are_counted_by_all_instances_together(self):
        def guess(index):
            return self.services[index % 3].ask("POST", "/phone/pair", {"code": "222222"}).status
        self.assertEqual([guess(index) for index in range(8)], [404] * 5 + [429] * 3)

    def test_an_instance_that_is_killed_takes_no_break_with_it(self):
        pairs = []
        for index in range(12):
            computer = Computer(self.services[index % 3])
            pairs.append((computer, Phone(self.services[(index + 1) % 3], computer.code)))
        streams = [phone.listening(self.services[index % 3]) for index, (_, phone) in enumerate(pairs)]
        opened = [stream.__enter__() for stream in streams]
        for stream in opened:
            stream.expect("clear")
        for index, (computer, _) in enumerate(pairs):
            computer.begin(f"first {index}", 300, service=self.services[(index + 2) % 3])
        for index, stream in enumerate(opened):
            self.assertEqual(stream.expect("break")["title"], f"first {index}")

        self.services[1].kill()
        alive = [self.services[0], self.services[2]]
        for index, (computer, _) in enumerate(pairs):  # while a third of the phones hear nothing
            computer.begin(f"second {index}", 300, service=alive[index % 2])
        for index, stream in enumerate(opened):
            if index % 3 == 1:
                stream.expect("end")
                with pairs[index][1].listening(alive[index % 2]) as elsewhere:
                    self.assertEqual(elsewhere.expect("break")["title"], f"second {index}")
            else:
                self.assertEqual(stream.expect("break")["title"], f"second {index}")

        self.services[1].start()
        for index, (computer, phone) in enumerate(pairs):
            with phone.listening(self.services[1]) as again:
                self.assertEqual(again.expect("break")["title"], f"second {index}")
                computer.begin(f"third {index}", 300, service=alive[0])
                self.assertEqual(again.expect("break")["title"], f"third {index}")
        for index, stream in enumerate(opened):
            if index % 3 != 1:
                self.assertEqual(stream.expect("break")["title"], f"third {index}")
                self.assertTrue(stream.is_quiet())
            streams[index].__exit__(None, None, None)

    def test_a_database_that_goes_away_and_comes_back_is_taken_up_again(self):
        first, second, _ = self.services
        computer = Computer(first)
        phone = Phone(second, computer.code)
        with phone.listening(second) as stream:
            stream.expect("clear")
            self.postgres.stop()
            self.assertEqual(computer.begin().status, 503)
            self.assertEqual(first.ask("GET", "/healthz").status, 503)
            self.postgres.start()
            wait_until(lambda: first.ask("GET", "/healthz").status == 200, "the database was there again")
            self.assertEqual(computer.begin("After all", 300, service=first).status, 200)
            self.assertEqual(stream.expect("break")["title"], "After all")


if __name__ == "__main__":
    unittest.main()
