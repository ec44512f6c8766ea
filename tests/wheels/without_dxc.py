"""A pytest plugin (-p without_dxc) that skips tests that run shaders if DXC is not installed."""

from collections.abc import Iterator

import pytest


@pytest.hookimpl(wrapper=True)
def pytest_runtest_call(item: pytest.Item) -> Iterator[None]:
    try:
        yield
    except RuntimeError as error:
        if "package compushady is missing" not in str(error):
            raise
        pytest.skip("draws with DXC")
