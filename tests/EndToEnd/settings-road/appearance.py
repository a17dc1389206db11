"""Every setting of the Appearance page. The argument is the path of a picture."""

import sys

from accessible import BUTTON, RADIO_BUTTON, wait_for
from driver import Window, keys

picture = sys.argv[1]
window = Window()
page = window.page("Appearance")
page.reads("How the break screen looks and sounds.")
messages = [
    "Look 20 feet away for 20 seconds. Your eyes will thank you.",
    "Drop your shoulders, tuck your chin back.",
    "Take a deep breath and let it go.",
    "Look out the window — find the farthest thing you can see.",
    "Stand up and stretch a little.",
]
window.walk(
    "Appearance",
    ("Break screen", "Night"),
    ("Break screen", "Choose image…"),
    ("Sounds", "Play sounds"),
    ("Sounds", "Listen to Break starts"),
    ("Sounds", "Break starts"),
    ("Sounds", "Listen to Break ends"),
    ("Sounds", "Break ends"),
    *(("Break messages", f"Remove {message}") for message in messages),
    ("Break messages", "Add a message"),
)

screen = page.card("Break screen")
styles = ["Night", "Dusk", "Forest", "Ocean", "Sand", "Plain black"]
wait_for("all styles", lambda: [tile.name for tile in screen.all(RADIO_BUTTON)] == styles)
chosen = lambda: [tile.name for tile in screen.all(RADIO_BUTTON) if tile.is_on]
wait_for("Night", lambda: chosen() == ["Night"])
screen.find(RADIO_BUTTON, "Night").focus()
keys("Right")
wait_for("Dusk by the arrow key", lambda: chosen() == ["Dusk"])
screen.find(RADIO_BUTTON, "Ocean").act("Toggle", "Press")
wait_for("Ocean", lambda: chosen() == ["Ocean"])


def choose_the_picture():
    screen.press("Choose image…", "Return")
    chooser = window.opened("Choose an image")
    chooser.write("File name:", picture)
    chooser.press("Open")
    screen.reads("a picture.png", "Shown in place of the style.")


screen.reads("No custom image")
choose_the_picture()
screen.press("Remove", "space")
screen.reads("No custom image")
choose_the_picture()

sounds = page.card("Sounds")
sounds.choose("Break starts", "Ping")
sounds.choose("Break ends", "None", "Home")
sounds.switch("Play sounds", False)

said = page.card("Break messages")
said.reads("One is picked at random for each break")
said.type("Add a message", "Count the clouds")
keys("Return")
said.type("Add a message", "Doomed")
said.press("Add the message", "space")
said.press("Remove Doomed", "Return")
said.reads_no("Doomed")
said.press("Remove Take a deep breath and let it go.")
left = [message for message in messages if "deep breath" not in message] + ["Count the clouds"]
removable = lambda: [button.name for button in said.all(BUTTON) if button.name.startswith("Remove ")]
wait_for("one message less", lambda: removable() == [f"Remove {message}" for message in left])
