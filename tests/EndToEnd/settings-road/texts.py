"""Gives every text of a JSON file (the argument) to a planned break, a message and a focus application."""

import json
import sys

from driver import FIELD, Window, keys, wait_for

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
for text in (*texts, "", "   ", *texts):  # nothing, and the same again
    focus.write("or a bundle id", text)
    focus.find(FIELD, "or a bundle id").focus()
    keys("Return")
    wait_for("an empty field", lambda: focus.find(FIELD, "or a bundle id").text == "")
