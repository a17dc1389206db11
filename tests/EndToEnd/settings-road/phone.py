"""Pairs a phone: refused, given up, done, undone and done again. The argument is the host and port of the
service that answers."""

import sys
from http.client import HTTPConnection

from driver import Window

window = Window()
page = window.page("iPhone")
page.reads(
    "The same break on your iPhone — or breaks it runs on its own.",
    "A break on the Mac is only half a break if you pick up your phone. Pair the two and the same countdown appears "
    "there — on the Lock Screen and in the Dynamic Island — and clears when you end the break here.\n\nAway from the "
    "Mac, the app keeps its own hours: breaks as often and as long as you like. While this Mac is running Pavonel, "
    "this Mac decides.",
)
window.walk("iPhone", "Show pairing code")


def ask_for_a_code(*texts):
    page.press("Show pairing code", "Return")
    page.reads(*texts)


def see_a_code(code):
    ask_for_a_code(
        "Type this code into Pavonel on your phone",
        code,
        "The code is good for fifteen minutes.",
        "Waiting for your phone…",
    )
    page.card("Pavonel for iPhone")


def type_it_into_the_phone():
    service = HTTPConnection(sys.argv[1])
    service.request("POST", "/typed")
    service.getresponse()


def see_the_phone():
    page.card("Paired").reads("Your phone is connected", "When a break starts here, it starts there too.")


ask_for_a_code("The pairing service said no (503).")
see_a_code("111111")
page.press("Cancel", "space")
see_a_code("222222")
type_it_into_the_phone()
see_the_phone()
window.walk("iPhone", ("Paired", "Disconnect"))
page.press("Disconnect", "Return")
see_a_code("333333")
type_it_into_the_phone()
see_the_phone()
