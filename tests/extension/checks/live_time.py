"""Limits for the time that live update takes on the main thread."""

import statistics
import time

import bpy
import materials

from quillgen_blender.ui import live, state

from .setting import NUMBERS, Clock, active, setting

PAUSE = 5.0  # limit in milliseconds for one slice on Blender's main thread
WHOLE = {"slider": 12.0, "graph": 40.0}  # limit in milliseconds for all slices of an edit
TRIES = 3  # one try within the limits is enough, because other load only adds time
YARDSTICK = 1.0  # milliseconds that yardstick() takes on the machine of these limits, an idle desktop of 2020


def yardstick():
    """The CPU time of a fixed workload in milliseconds, a measure of the machine's speed and load."""
    began = time.thread_time()
    words = {}
    for number in range(5500):
        words[number % 700] = words.get(number % 300, "") and str(number)
    return 1000 * (time.thread_time() - began)


def slices(edit):
    """The CPU time of the main thread for an edit, in milliseconds: the sum and the maximum of all slices of the
    handler and the timer. Both are medians, measured in alternation with yardstick() and scaled down on a slower
    machine."""
    handler = live.changed
    spent, wholes, pauses, sticks = [], [], [], []

    def timed(*words):
        began = time.thread_time()
        handler(*words)
        spent.append(1000 * (time.thread_time() - began))

    handlers = bpy.app.handlers.depsgraph_update_post
    handlers[handlers.index(handler)] = timed
    try:
        for turn in range(61):
            spent.clear()
            edit(turn)
            bpy.context.view_layer.update()
            Clock.now += 0.35
            again = 0.0
            while again is not None:
                sticks.append(yardstick())
                began = time.thread_time()
                again = live.tick()
                spent.append(1000 * (time.thread_time() - began))
                Clock.now += again or 0.0
            wholes.append(sum(spent))
            pauses.append(max(spent))
    finally:
        handlers[handlers.index(timed)] = handler
    NUMBERS["yardstick"] = statistics.median(sticks)
    slower = max(1.0, statistics.median(sticks) / YARDSTICK)
    return statistics.median(wholes) / slower, statistics.median(pauses) / slower


def check_an_edit_takes_little_of_the_main_thread():
    setting()
    material = materials.of_sixty_nodes()
    active("Sixty")
    scene = bpy.context.scene.quillgen
    scene.parameters = "all"
    bpy.ops.quillgen.export()
    scene.live = True
    nodes = material.node_tree.nodes

    def slider(turn):
        nodes["Noise Texture"].inputs["Scale"].default_value = 5 + turn / 100

    def graph(turn):
        nodes["Math"].operation = ("MULTIPLY", "ADD")[turn % 2]

    for name, edit, changed in (("slider", slider, "parameters"), ("graph", graph, "all")):
        for _ in range(TRIES):
            whole, pause = slices(edit)
            if pause <= PAUSE and whole <= WHOLE[name]:
                break
        assert state.last(material).changed == changed
        NUMBERS[f"{name}, whole edit, ms"], NUMBERS[f"{name}, longest pause, ms"] = whole, pause
        assert pause <= PAUSE and whole <= WHOLE[name], NUMBERS
