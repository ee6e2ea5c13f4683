"""Where the measured programs are, and how they get there."""

import os
import subprocess
from pathlib import Path

SOURCE_DIR = Path(__file__).resolve().parents[2]
BUILD_DIR = Path(os.environ.get("TAVRIN_BUILD_DIR", SOURCE_DIR / "build" / "release"))
ENGINE = BUILD_DIR / "tests" / "file-engine"
BENCHMARKS = BUILD_DIR / "benchmarks"


def build(*targets):
    """Builds the release, or the targets of it; not when TAVRIN_BUILD_DIR names a build."""
    if "TAVRIN_BUILD_DIR" in os.environ:
        return
    chosen = ["--target", *targets] if targets else []
    for command in (["cmake", "--preset", "release"],
                    ["cmake", "--build", "--preset", "release", *chosen]):
        subprocess.run(command, cwd=SOURCE_DIR, stdout=subprocess.DEVNULL, check=True)
