"""Puts the extension's package where its tests find it."""

import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "blender"))
