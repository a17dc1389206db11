"""Adds three planned breaks, edits one, removes one."""

from accessible import CHECK_BOX, wait_for
from driver import Window

window = Window()
page = window.page("Planned")
page.reads("Breaks at a fixed time, like a lunch pause.")
schedule = page.card("Your schedule")
schedule.reads("Planned breaks still wait for meetings, calls and focus apps", "No planned breaks yet")

page.press("Add planned break", "space")
schedule.reads("1 active")
schedule.group("Lunch").type("Label", "Tea")
tea = schedule.group("Tea")
tea.choose("Hour", "16")
tea.choose("Minute", "05")
tea.choose("Minute", "00", "Home")
tea.choose("Minute", "05")
tea.switch("Saturday", True)
tea.switch("Monday", False)
tea.switch("Friday", False)
tea.step("Duration", 2700, "45m", least=300, most=14400, by=300)

page.press("Add planned break", "Return")
schedule.reads("2 active")
schedule.group("Lunch").type("Label", "Doomed")
page.press("Add planned break")
schedule.reads("3 active")
schedule.group("Doomed").press("Remove Doomed")
schedule.reads("2 active")
wait_for("the other two", lambda: [group.name for group in schedule.groups()] == ["Tea", "Lunch"])
tea.switch("Enabled", False)
schedule.reads("1 active")

days = ("Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday", "Sunday")
assert [day for day in days if tea.find(CHECK_BOX, day).is_on] == ["Tuesday", "Wednesday", "Thursday", "Saturday"]
window.walk(
    "Planned",
    *(
        ("Your schedule", name, control)
        for name in ("Tea", "Lunch")
        for control in ("Label", "Hour", "Minute", "Enabled", f"Remove {name}", *days, "Duration")
    ),
    ("Your schedule", "Undo removing Doomed"),
    "Add planned break",
)
