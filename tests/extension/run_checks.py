"""Runs the checks inside Blender.

python run_checks.py OUT.json      writes the failures by name; BLENDER_USER_RESOURCES must name an empty folder
"""

import importlib
import json
import os
import sys
import traceback
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path[:0] = [str(HERE), str(HERE.parents[1] / "blender"), str(HERE.parents[1] / "tools")]

from checks import SUBJECTS
from checks.setting import NUMBERS, Clock

import quillgen_blender
from quillgen_blender.ui import live


def main(out):
    quillgen_blender.register()
    live.time = Clock
    report = {}
    for subject in SUBJECTS:
        for name, check in list(vars(importlib.import_module(f"checks.{subject}")).items()):
            if name.startswith("check_"):
                try:
                    check()
                    report[name] = ""
                except Exception:
                    report[name] = traceback.format_exc()
    quillgen_blender.unregister()
    Path(out).write_text(json.dumps({"checks": report, "numbers": NUMBERS}))


if __name__ == "__main__":
    main(sys.argv[1])
    sys.stdout.flush()
    os._exit(0)  # bpy 4.2 as a module crashes at exit if a property had an update function
