"""Runs the real tavrin-defaults; its path is the first argument."""

import os
import plistlib
import signal
import subprocess
import sys
import tempfile
import time
import unittest

TOOL = sys.argv.pop(1)

# Holds a database open, as a running program does, or a lock, until it is ended.
HOLDER = """
import fcntl, sqlite3, sys
kind, path = sys.argv[1:]
if kind == "lock":
    held = open(path)
    fcntl.flock(held, fcntl.LOCK_EX)
else:
    held = sqlite3.connect(path)
    held.execute("SELECT count(*) FROM setting").fetchall()
print("ready", flush=True)
sys.stdin.read()
"""


class ToolTest(unittest.TestCase):
    def setUp(self):
        self.scratch = tempfile.TemporaryDirectory()
        self.addCleanup(self.scratch.cleanup)

    def path(self, name):
        return os.path.join(self.scratch.name, name)

    def run_tool(self, *words, given=b"", status=0):
        environment = dict(os.environ, XDG_CONFIG_HOME=self.path("config"))
        result = subprocess.run(
            [TOOL, *words], input=given, capture_output=True, env=environment, timeout=60
        )
        self.assertEqual(result.returncode, status, (words, result.stderr))
        if status == 0:
            self.assertEqual(result.stderr, b"")
        else:
            self.assertEqual(result.stderr.count(b"\n"), 1, result.stderr)
        return result.stdout

    def write_list(self, name, value, **options):
        with open(self.path(name), "wb") as file:
            plistlib.dump(value, file, **options)
        return self.path(name)

    def test_scalars_are_written_and_shown_plainly(self):
        for kind, text, shown in [
            ("-bool", "yes", b"1\n"),
            ("-bool", "false", b"0\n"),
            ("-int", "-9223372036854775808", b"-9223372036854775808\n"),
            ("-float", "2.50", b"2.5\n"),
            ("-string", "-int", b"-int\n"),
            ("-string", "", b"\n"),
            ("-string", "two\nlines", b"two\nlines\n"),
            ("-string", b"\xff", b"\xff\n"),
        ]:
            self.run_tool("write", "standard", "key", kind, text)
            self.assertEqual(self.run_tool("read", "standard", "key"), shown)
        self.run_tool("read", "group", "key", status=1)

    def test_values_are_parsed_strictly(self):
        self.run_tool("write", "standard", "key", "-int", "1")
        for kind, text in [
            ("-int", "12x"), ("-int", ""), ("-int", " 1"), ("-int", "1.0"),
            ("-int", "9223372036854775808"), ("-float", "1,5"), ("-float", ""),
            ("-float", "1e999"), ("-float", "nan"), ("-float", "-inf"), ("-float", "+infinity"),
            ("-bool", "maybe"), ("-bool", "2"), ("-unknown", "1"),
        ]:
            self.run_tool("write", "standard", "key", kind, text, status=2)
        self.assertEqual(self.run_tool("read", "standard", "key"), b"1\n")

    def test_wrong_usage_is_told_from_failure(self):
        for words in [
            [], ["read"], ["read", "elsewhere"], ["frobnicate", "standard"],
            ["read", "standard", "a", "b"], ["write", "standard", "key", "-int"],
            ["export", "standard"], ["--help", "more"], ["write", "standard", "", "-int", "1"],
            ["read", "standard", ""], ["delete", "standard", ""],
        ]:
            self.run_tool(*words, status=2)
        self.run_tool("delete", "standard", "absent", status=1)
        self.run_tool("import", "standard", self.path("missing"), status=1)
        self.assertIn(b"export DOMAIN FILE", self.run_tool("--help"))
        self.assertRegex(self.run_tool("--version"), rb"^tavrin-defaults \d+\.\d+\.\d+\n$")

    def test_a_domain_survives_export_and_import(self):
        values = {
            "list": [{"icon": bytes(20000), "enable": True}, 1.5, "ü & <b>"],
            "number": 7,
            "": "empty key",
        }
        source = self.write_list("source", values, fmt=plistlib.FMT_BINARY)
        self.run_tool("import", "standard", source)
        target = self.path("target")
        self.write_list("target", {})
        os.symlink("target", self.path("link"))
        self.run_tool("export", "standard", self.path("link"))
        self.assertTrue(os.path.islink(self.path("link")))
        with open(target, "rb") as file:
            self.assertEqual(plistlib.load(file), values)
        self.assertEqual(plistlib.loads(self.run_tool("read", "standard")), values)
        self.assertEqual(plistlib.loads(self.run_tool("read", "standard", "list")), values["list"])

        self.run_tool("import", "standard", "-", given=plistlib.dumps({"number": 8}))
        self.assertEqual(self.run_tool("read", "standard", "number"), b"8\n")
        self.assertEqual(len(plistlib.loads(self.run_tool("export", "standard", "-"))), 3)
        self.run_tool("delete", "standard", "number")
        self.run_tool("read", "standard", "number", status=1)
        self.run_tool("delete", "standard")
        self.assertEqual(plistlib.loads(self.run_tool("read", "standard")), {})

    def test_a_list_is_written_from_a_file_or_standard_input(self):
        self.run_tool("write", "group", "key", "-plist", self.write_list("list", [1, [2]]))
        self.assertEqual(plistlib.loads(self.run_tool("read", "group", "key")), [1, [2]])
        self.run_tool("write", "group", "key", "-plist", "-", given=plistlib.dumps({"a": 1}))
        self.run_tool("write", "group", "key", "-plist", "-", given=b"<plist>", status=1)
        self.run_tool("import", "group", "-", given=plistlib.dumps([1]), status=1)
        self.assertEqual(plistlib.loads(self.run_tool("read", "group", "key")), {"a": 1})

    def test_a_failed_export_leaves_the_old_file_and_no_other(self):
        os.mkdir(self.path("folder"))
        self.run_tool("export", "standard", self.path("folder"), status=1)
        self.run_tool("export", "standard", self.path("missing/file"), status=1)
        self.assertEqual(sorted(os.listdir(self.scratch.name)), ["config", "folder"])
        with open("/dev/full", "wb") as full:
            result = subprocess.run(
                [TOOL, "export", "standard", "-"], stdout=full, stderr=subprocess.PIPE,
                env=dict(os.environ, XDG_CONFIG_HOME=self.path("config")), timeout=60,
            )
        self.assertEqual(result.returncode, 1)

    def test_without_a_place_to_write_it_fails(self):
        with open(self.path("config"), "w"):
            pass
        self.run_tool("write", "standard", "key", "-int", "1", status=1)

    def start_holder(self, *files):
        """Starts a process that opens the domain's files and then says so."""
        holder = subprocess.Popen(
            [sys.executable, "-c", HOLDER, *files], stdin=subprocess.PIPE, stdout=subprocess.PIPE
        )
        self.addCleanup(holder.communicate)
        self.addCleanup(holder.kill)
        self.assertEqual(holder.stdout.readline(), b"ready\n")
        return holder

    def run_while_held(self, *words):
        environment = dict(os.environ, XDG_CONFIG_HOME=self.path("config"))
        started = time.monotonic()
        result = subprocess.run([TOOL, *words], capture_output=True, env=environment, timeout=20)
        self.assertLess(time.monotonic() - started, 5)
        self.assertEqual(result.stderr.count(b"\n"), 1, result.stderr)
        return result

    def database(self):
        (folder,) = os.listdir(self.path("config"))
        return os.path.join(self.path("config"), folder, "defaults.sqlite")

    def test_an_emptied_database_in_use_is_set_aside(self):
        self.run_tool("write", "standard", "key", "-int", "1")
        for with_log in [True, False]:
            self.start_holder("database", self.database())
            os.truncate(self.database(), 0)
            if not with_log:
                os.remove(self.database() + "-wal")
                os.remove(self.database() + "-shm")
            result = self.run_while_held("export", "standard", "-")
            self.assertEqual(result.returncode, 0)
            self.assertEqual(plistlib.loads(result.stdout), {})
            self.assertIn(b"start afresh", result.stderr)
            self.run_tool("write", "standard", "key", "-int", "2")
            self.assertEqual(self.run_tool("read", "standard", "key"), b"2\n")

    def test_a_lock_that_is_never_released_is_a_failure(self):
        self.run_tool("write", "standard", "key", "-int", "1")
        lock = os.path.join(os.path.dirname(self.database()), "defaults.lock")
        holder = self.start_holder("lock", lock)
        os.kill(holder.pid, signal.SIGSTOP)
        self.assertEqual(self.run_tool("read", "standard", "key"), b"1\n")
        self.assertEqual(self.run_while_held("write", "standard", "key", "-int", "2").returncode, 1)
        self.assertEqual(self.run_tool("read", "standard", "key"), b"1\n")


if __name__ == "__main__":
    unittest.main()
