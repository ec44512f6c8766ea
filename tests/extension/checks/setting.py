"""What checks begin with: a file with materials, a clock of their own, words for what they look at."""

import json
import tempfile
import time
from pathlib import Path

import bpy
import materials

from quillgen_blender.ui import live

NUMBERS = {}  # what was measured, for the report


def setting():
    """A file with materials, and an empty folder that the scene exports to."""
    bpy.ops.wm.read_factory_settings(use_empty=True)
    materials.build()
    bpy.context.scene.quillgen.folder = tempfile.mkdtemp()
    return Path(bpy.context.scene.quillgen.folder)


def active(name):
    thing = bpy.context.object
    thing.active_material_index = thing.material_slots.find(name)
    return bpy.data.materials[name]


def refused(operator, **properties):
    """What an operator reports as an error."""
    try:
        operator(**properties)
    except RuntimeError as error:
        return str(error)
    return ""


def manifest(folder):
    return json.loads((folder / "material.json").read_bytes())


def values(folder):
    return json.loads((folder / "parameters.json").read_bytes())["values"]


class Clock:
    """Time as the live update sees it; it passes when a check says so, however busy the machine is."""

    now = 1000.0
    perf_counter = staticmethod(time.perf_counter)

    @classmethod
    def monotonic(cls):
        return cls.now


def run_timers(rest=0.35):
    """Lets an edit rest, and does what Blender's timers would."""
    Clock.now += rest
    again = 0.0
    while again is not None:
        again = live.tick()
        Clock.now += again or 0.0
