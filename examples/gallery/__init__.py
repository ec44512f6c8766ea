"""The gallery: the example materials in Blender and as texts."""

import sys
from pathlib import Path

# The harness that runs a text on the CPU's Vulkan device.
sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tests" / "gpu"))
