"""Finds its way among hundreds of planned breaks and messages, and removes the last of each. Only what is near the
visible part exists; among the focus applications are one without a name and one that is there twice."""

from accessible import BUTTON, RADIO_BUTTON, wait_for
from driver import Window, keys

window = Window()


def end_with(last, names):
    """Waits until the numbered names do, and are in order."""

    def look():
        numbers = [int(name.split()[-1]) for name in names()]
        return numbers[-1:] == [last] and numbers == sorted(numbers)

    wait_for(f"the numbers up to {last}", look)


page = window.page("Planned")
schedule = page.card("Your schedule")
schedule.reads("300 active")
wait_for("fewer than all rows", lambda: 0 < len(schedule.groups()) < 100)
window.find(RADIO_BUTTON, "Planned").focus()
keys("shift+Tab")
window.keyboard_at("Add planned break")
keys("shift+Tab")
window.keyboard_at("Your schedule", "Planned 299", "Duration")
keys("shift+Tab")
window.keyboard_at("Your schedule", "Planned 299", "Sunday")
last = schedule.group("Planned 299")
last.switch("Enabled", False)
schedule.reads("299 active")
last.press("Remove Planned 299")
end_with(298, lambda: [row.name for row in schedule.groups()])

messages = window.page("Appearance").card("Break messages")
removable = lambda card: [button.name for button in card.all(BUTTON) if button.name.startswith("Remove ")]
wait_for("fewer than all rows", lambda: 0 < len(removable(messages)) < 200)
window.find(RADIO_BUTTON, "Appearance").focus()
keys("shift+Tab")
window.keyboard_at("Break messages", "Add a message")
keys("shift+Tab")
window.keyboard_at("Break messages", "Remove Message 499")
keys("space")
end_with(498, lambda: removable(messages))

focus = window.page("Pausing").card("Focus apps")
twice = "Remove org.example.twice"
wait_for("three rows", lambda: removable(focus) == ["Remove ", twice, twice])
focus.all(BUTTON, twice)[0].act("Press")
wait_for("one of the twins", lambda: removable(focus) == ["Remove ", twice])
