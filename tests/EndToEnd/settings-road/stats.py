"""Reads the statistics of the last seven days, forgets them, takes that back and forgets them again."""

from driver import Window

window = Window()
page = window.page("Stats")
page.reads("What your screen day looked like.")
week = page.card("Last 7 days")
kept = ("Micro breaks: 25", "Long breaks: 7", "Planned: 3", "Skipped: 4", "On breaks: 1h")
gone = ("Micro breaks: 0", "Long breaks: 0", "Planned: 0", "Skipped: 0", "On breaks: 0s")
week.reads(*kept)
window.walk("Stats", ("Last 7 days", "Screen time and breaks of the last 7 days"), "Reset stats")
page.press("Reset stats", "space")
week.reads(*gone)
page.press("Undo the reset", "Return")
week.reads(*kept)
page.press("Reset stats")
week.reads(*gone)
