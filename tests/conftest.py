"""Makes the test harness (tests/gpu) importable for every test; adds the option that rewrites the golden results."""

import os
import pathlib
import signal
import sys

import pytest

sys.path.insert(0, str(pathlib.Path(__file__).parent / "gpu"))
# A shell starts background jobs with SIGINT ignored, and child processes inherit that. Tests that interrupt a call
# would then wait for ever.
signal.signal(signal.SIGINT, signal.default_int_handler)


def pytest_addoption(parser):
    parser.addoption("--update", action="store_true", help="write the kept results of tests/golden anew")


def pytest_configure(config):
    if config.getoption("--update"):
        if os.environ.get("CI"):
            raise pytest.UsageError("--update changes what the tests expect: it does nothing where CI is set")
        from golden import kept

        kept.write_all()
