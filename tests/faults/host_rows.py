"""Faults of the settings and of the running host."""

import bus_faults
import clock_faults
import first_start_kills
import full_disks
import host_ends
import host_kills
import host_starts
import settings_kills

MODULES = (settings_kills, first_start_kills, host_kills, host_ends, host_starts, bus_faults,
           clock_faults, full_disks)
ROWS = [row for module in MODULES for row in module.ROWS]
SELF_TESTS = [test for module in MODULES for test in module.SELF_TESTS]
