"""Finds its way among hundreds of planned breaks and messages, and removes the last of each. Only what is near the
visible part exists; among the focus applications are one without a name and one that is there twice."""

from driver import BUTTON, LIST_ITEM, Window, keys, wait_for

window = Window()


def at(place):
    wait_for(f"the keyboard at {place}, not {window.focused()[0]}", lambda: window.focused()[0] == place)


page = window.page("Planned")
schedule = page.card("Your schedule")
schedule.reads("300 active")
assert 0 < len(schedule.groups()) < 100
window.find(LIST_ITEM, "Planned").focus()
keys("shift+Tab")
at(("Add planned break",))
keys("shift+Tab")
at(("Your schedule", "Planned 299", "Duration"))
keys("shift+Tab")
at(("Your schedule", "Planned 299", "Sunday"))
last = schedule.group("Planned 299")
last.switch("Enabled", False)
schedule.reads("299 active")
last.press("Remove Planned 299")
wait_for("one row less", lambda: "Planned 299" not in [row.name for row in schedule.groups()])
numbers = [int(row.name.split()[-1]) for row in schedule.groups()]
assert numbers[-1] == 298 and numbers == sorted(numbers)

messages = window.page("Appearance").card("Break messages")
removable = lambda card: [button.name for button in card.all(BUTTON) if button.name.startswith("Remove ")]
assert 0 < len(removable(messages)) < 200
window.find(LIST_ITEM, "Appearance").focus()
keys("shift+Tab")
at(("Break messages", "Add a message"))
keys("shift+Tab")
at(("Break messages", "Remove Message 499"))
keys("space")
wait_for("one message less", lambda: "Remove Message 499" not in removable(messages))
numbers = [int(name.split()[-1]) for name in removable(messages)]
assert numbers[-1] == 498 and numbers == sorted(numbers)

focus = window.page("Pausing").card("Focus apps")
twice = "Remove org.example.twice"
wait_for("three rows", lambda: removable(focus) == ["Remove ", twice, twice])
focus.all(BUTTON, twice)[0].act("Press")
wait_for("one of the twins", lambda: removable(focus) == ["Remove ", twice])
