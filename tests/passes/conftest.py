"""The passes without Blender and, where it is built, the translator."""

import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "blender"))
