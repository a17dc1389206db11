"""Looks for updates and sets everything on the Advanced page. The argument is the version of the program; the feed
that answers goes along."""

import sys

from accessible import BUTTON, wait_for
from driver import Window

window = Window()
page = window.page("Advanced")
page.reads("System behaviour and automation.")

updates = page.card("Updates")
updates.reads(f"Version {sys.argv[1]}")
wait_for("the check at the start", lambda: any(text.startswith("Last checked ") for text in updates.texts()))
window.walk(
    "Advanced",
    ("Updates", "Check now"),
    ("Updates", "Check automatically"),
    ("System", "Launch at login"),
    ("System", "Global shortcuts"),
    ("Automation", "When a break starts"),
    ("Automation", "When a break ends"),
    "Quit Pavonel",
)
for status in ("You are up to date.", "Could not reach the update server."):
    updates.press("Check now", "Return")
    updates.reads(status)
updates.press("Check now")
updates.reads("Version 9.8.7 is available", "Feathers of a new colour.")
updates.find(BUTTON, "Install and restart")
wait_for("no second button", lambda: not updates.all(BUTTON, "Check now"))
updates.reads("Once a day, in the background")
updates.switch("Check automatically", False)

system = page.card("System")
system.reads("⌃⌥⌘B take a break · ⌃⌥⌘S skip · ⌃⌥⌘P pause")
system.switch("Launch at login", False)
system.switch("Global shortcuts", False)

automation = page.card("Automation")
automation.reads("AppleScript, a .scpt path, or shortcut:Name")
automation.type("When a break starts", "touch started; echo 1")
automation.write("When a break ends", "shortcut:Lights „an“")
page.press("Quit Pavonel", "space")
