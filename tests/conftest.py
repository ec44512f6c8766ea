"""Puts the harness (tests/gpu) where every test can import it."""
import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).parent / "gpu"))
