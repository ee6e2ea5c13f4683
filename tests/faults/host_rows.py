"""Faults of the settings and of the running host."""

import bus_faults
import host_kills
import host_starts
import settings_kills

MODULES = (settings_kills, host_kills, host_starts, bus_faults)
ROWS = [row for module in MODULES for row in module.ROWS]
SELF_TESTS = [test for module in MODULES for test in module.SELF_TESTS]
