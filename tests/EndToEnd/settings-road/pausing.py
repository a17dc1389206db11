"""Every setting of the Pausing page; adds focus applications by name and by identifier, and removes one."""

from accessible import BUTTON, DIALOG, wait_for
from driver import Window, keys

window = Window()
page = window.page("Pausing")
page.reads("When Pavonel should stay out of your way.")
window.walk(
    "Pausing",
    ("Pause automatically", "In fullscreen apps"),
    ("Pause automatically", "While the microphone is in use"),
    ("Pause automatically", "While video or audio is playing"),
    ("Pause automatically", "During screen recording or sharing"),
    ("Natural breaks", "Reset the timer when I step away"),
    ("Natural breaks", "After"),
    ("Focus apps", "Choose app…"),
    ("Focus apps", "or a bundle id"),
)

pause = page.card("Pause automatically")
pause.reads("The timer holds while one of these is in front", "Meetings and calls")
pause.switch("In fullscreen apps", False)
pause.switch("While the microphone is in use", False)
pause.switch("While video or audio is playing", True)
pause.switch("During screen recording or sharing", False)

natural = page.card("Natural breaks")
natural.step("After", 120, "2m of no input", least=20, most=600, by=10)
natural.switch("Reset the timer when I step away", False)

focus = page.card("Focus apps")
focus.reads("None yet")


def add(identifier):
    focus.type("or a bundle id", identifier)
    keys("Return")


def removable():
    return [button.name for button in focus.all(BUTTON) if button.name.startswith("Remove ")]


add("org.example.Doomed")
focus.reads_no("None yet")
focus.press("Choose app…", "Return")
chooser = window.dialog("Choose an application")
keys("Escape")
wait_for("the sheet gone", lambda: not window.all(DIALOG))
window.keyboard_at("Focus apps", "Choose app…")
focus.press("Choose app…", "space")
chooser = window.dialog("Choose an application")
chooser.type("Search", "quill")
wait_for("one application", lambda: [b.name for b in chooser.all(BUTTON)] == ["Quill Writer", "Cancel"])
chooser.press("Quill Writer")
wait_for("both", lambda: removable() == ["Remove org.example.Doomed", "Remove Quill Writer"])
add("org.example.Unheard-of")
add("org.example.quill")  # is there already
add("   ")
focus.press("Remove org.example.Doomed")
wait_for("two applications", lambda: removable() == ["Remove Quill Writer", "Remove org.example.Unheard-of"])
