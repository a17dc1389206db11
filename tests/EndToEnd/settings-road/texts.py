"""Gives every text of a JSON file (the argument) to a planned break, a message and a focus application."""

import json
import sys

from accessible import FIELD, wait_for
from driver import Window, keys

texts = json.load(open(sys.argv[1], encoding="utf-8"))
window = Window()

page = window.page("Planned")
schedule = page.card("Your schedule")
for count, text in enumerate(texts, 1):
    page.press("Add planned break")
    schedule.reads(f"{count} active")
    schedule.group("Lunch").write("Label", text)
    wait_for("the row to be called otherwise", lambda: "Lunch" not in [row.name for row in schedule.groups()])

messages = window.page("Appearance").card("Break messages")
for text in texts:
    messages.write("Add a message", text)
    messages.press("Add the message")
    wait_for("an empty field", lambda: messages.find(FIELD, "Add a message").text == "")

focus = window.page("Pausing").card("Focus apps")
field = focus.find(FIELD, "or a bundle id")
field.focus()
keys("Return")  # with nothing in it; nothing tells when that is done, so the keyboard comes next
focus.type(field.name, "   ")
keys("Return")
wait_for("an empty field", lambda: field.text == "")
for text in texts * 2:  # the same again
    focus.write(field.name, text)
    field.focus()
    keys("Return")
    wait_for("an empty field", lambda: field.text == "")
