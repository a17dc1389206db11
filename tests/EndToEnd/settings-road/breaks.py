"""Every setting of the Breaks page."""

from driver import Window

window = Window()
page = window.page("Breaks")
window.walk(
    "Breaks",
    ("Micro break", "Enabled"),
    ("Micro break", "Every"),
    ("Micro break", "For"),
    ("Long break", "Enabled"),
    ("Long break", "Every"),
    ("Long break", "For"),
    ("Heads-up", "Warn me before a break"),
    ("Heads-up", "Countdown follows the cursor"),
    ("Behaviour", "Breaks can be skipped"),
    ("Behaviour", "Breaks can be postponed"),
    ("Behaviour", "Strict mode"),
)

micro = page.card("Micro break")
micro.reads("The 20-20-20 rule")
micro.step("Every", 5400, "1h 30m", least=60, most=7200, by=60)
micro.step("For", 35, "35s", least=5, most=300, by=5)
micro.switch("Enabled", False)

long = page.card("Long break")
long.reads("Get up and move")
long.step("Every", 7200, "2h", least=300, most=14400, by=300)
long.step("For", 600, "10m", least=60, most=1800, by=60)
long.switch("Enabled", False)

heads_up = page.card("Heads-up")
heads_up.step("Warn me before a break", 45, "45s", least=0, most=300, by=5)
heads_up.switch("Countdown follows the cursor", False)

behaviour = page.card("Behaviour")
behaviour.reads("No skipping, no postponing")
behaviour.switch("Breaks can be skipped", False)
behaviour.switch("Breaks can be postponed", False)
behaviour.switch("Strict mode", True)
