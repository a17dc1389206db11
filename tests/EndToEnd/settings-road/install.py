"""Installs the newer version that the update card offers. The arguments are the version that runs, and the newer."""

import sys

from accessible import application, wait_for
from driver import Window

window = Window()
old = wait_for("the old version", application)
updates = window.page("Advanced").card("Updates")
updates.reads(f"Version {sys.argv[1]}", f"Version {sys.argv[2]} is available")
updates.press("Install and restart")
wait_for("the end of the old version", lambda: application() != old)
