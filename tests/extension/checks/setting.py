"""Helpers of the checks: a file with materials, a simulated clock, accessors."""

import json
import tempfile
import time
from pathlib import Path

import bpy
import materials

from quillgen_blender.ui import live

NUMBERS = {}  # measurements for the report


def setting():
    """Makes a file with materials. Returns the empty folder that the scene exports to."""
    bpy.ops.wm.read_factory_settings(use_empty=True)
    materials.build()
    bpy.context.scene.quillgen.folder = tempfile.mkdtemp()
    return Path(bpy.context.scene.quillgen.folder)


def active(name):
    thing = bpy.context.object
    thing.active_material_index = thing.material_slots.find(name)
    return bpy.data.materials[name]


def refused(operator, **properties):
    """The error that an operator reports; empty if there is none."""
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
    """The clock of live update. Checks advance it, so that they don't depend on the machine's load."""

    now = 1000.0
    perf_counter = staticmethod(time.perf_counter)

    @classmethod
    def monotonic(cls):
        return cls.now


def run_timers(rest=0.35):
    """Advances the clock after an edit and runs the timer as Blender would."""
    Clock.now += rest
    again = 0.0
    while again is not None:
        again = live.tick()
        Clock.now += again or 0.0
