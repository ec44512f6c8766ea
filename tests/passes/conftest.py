"""The passes don't need Blender. Tests that translate need the modules, which tools/test puts on the path."""

import sys
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path[:0] = [str(HERE), str(HERE.parent / "gpu"), str(HERE.parents[1] / "blender")]
