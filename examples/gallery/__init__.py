"""The gallery: the example materials rendered by Blender and by the generated texts."""

import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
# The harness that runs a text on the software Vulkan device, and the extension with its passes.
sys.path[:0] = [str(ROOT / "tests" / "gpu"), str(ROOT / "blender")]
