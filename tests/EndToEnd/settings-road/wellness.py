"""Every setting of the Wellness page."""

from driver import Window

window = Window()
page = window.page("Wellness")
page.reads(
    "Gentle nudges between breaks.",
    "Reminders appear as a small strip at the top of the screen for a few seconds. Nothing to click, and they never "
    "show during a break.",
)
window.walk(
    "Wellness",
    ("Posture", "Enabled"),
    ("Posture", "Every"),
    ("Blinking", "Enabled"),
)

posture = page.card("Posture")
posture.reads("Shoulders back, screen at eye level")
posture.step("Every", 3600, "1h", least=300, most=7200, by=300)
posture.switch("Enabled", False)

blinking = page.card("Blinking")
blinking.reads("Screens make you blink less")
blinking.switch("Enabled", True)
blinking.step("Every", 900, "15m", least=60, most=3600, by=60)
