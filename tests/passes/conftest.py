"""The passes need no Blender. The tests that translate need the modules: tools/test has them on its path."""

import sys
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path[:0] = [str(HERE), str(HERE.parents[1] / "blender")]
