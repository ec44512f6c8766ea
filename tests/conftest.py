"""Puts the harness (tests/gpu) where every test can import it; the switch that renews the golden results."""

import os
import pathlib
import signal
import sys

import pytest

sys.path.insert(0, str(pathlib.Path(__file__).parent / "gpu"))
# A shell that runs the tests in the background has them ignore Ctrl-C, and what they start inherits that: tests that
# interrupt a call would wait for ever.
signal.signal(signal.SIGINT, signal.default_int_handler)


def pytest_addoption(parser):
    parser.addoption("--update", action="store_true", help="write the kept results of tests/golden anew")


def pytest_configure(config):
    if config.getoption("--update"):
        if os.environ.get("CI"):
            raise pytest.UsageError("--update changes what the tests expect: it does nothing where CI is set")
        from golden import kept

        kept.write_all()
