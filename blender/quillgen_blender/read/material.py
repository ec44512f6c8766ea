"""A Blender material as one flat document: nodes, what links them, images and settings."""

import re
from typing import Any, NamedTuple

import bpy

from ..notes import Note
from . import records, sources, values

# Sockets that mean "the surface's own" while nothing is linked to them, so that a group's constant can't be
# handed over as their value: it has to arrive by a link.
COORDINATE_TEXTURES = (
    "ShaderNodeTexGradient",
    "ShaderNodeTexChecker",
    "ShaderNodeTexBrick",
    "ShaderNodeTexMagic",
    "ShaderNodeTexWave",
    "ShaderNodeTexNoise",
    "ShaderNodeTexVoronoi",
    "ShaderNodeTexGabor",
    "ShaderNodeTexImage",
)
SURFACE_NAMES = ("Normal", "Coat Normal", "Clearcoat Normal", "Tangent")


class Reading(NamedTuple):
    """What flatten finds. `document` is plain data, as JSON has it. `paths` leads from the id of a record to the
    names of its node, behind those of the group nodes around it, the outermost first; nodes that the reader puts in
    have the path of the node that they feed."""

    document: dict[str, Any]
    notes: list[Note]
    paths: dict[str, tuple[str, ...]]


def flatten(material, mesh=None) -> Reading:
    """The document of a material. `mesh` gives the UV maps (by default the first mesh that wears the material)."""
    if material.node_tree is None:
        raise ValueError(f"{material.name} has no nodes")
    mesh = mesh or worn_by(material)
    uv_maps = [layer.name for layer in mesh.uv_layers] if mesh else []
    writer = Writer(uv_maps)
    if mesh and uv_maps and not mesh.uv_layers[0].active_render:
        writer.note("", f"{mesh.name}: the UV map for rendering is not the first one, which Unreal takes", "near")
    end = material.node_tree.get_output_node("CYCLES")
    out = {}
    for name in ("Surface", "Displacement"):
        source = end and writer.source(end.inputs[name], ())
        if isinstance(source, sources.Linked):
            out[name.lower()] = writer.reference(source)[:2]
    writer.waiting.reverse()
    writer.finish()
    document = {
        "nodes": writer.nodes,
        "out": out,
        "images": writer.images,
        "uv_maps": uv_maps,
        "settings": settings(material),
    }
    return Reading(document, writer.notes, writer.paths)


def worn_by(material):
    """The first mesh with the material in one of its slots."""
    return next(
        (
            thing.data
            for thing in bpy.data.objects
            if thing.type == "MESH" and any(slot.material == material for slot in thing.material_slots)
        ),
        None,
    )


def settings(material):
    found = {"backface_culling": material.use_backface_culling, "displacement": material.displacement_method}
    if material.surface_render_method == "BLENDED":
        found["blend"] = "BLENDED"
    return found


class Writer:
    """Collects the node records, from those that are asked for on to what feeds them."""

    def __init__(self, uv_maps):
        self.tree = sources.Tree()
        self.source = self.tree.source
        self.uv_maps = uv_maps
        self.nodes, self.images = [], {}
        self.notes, self.paths = [], {}
        self.ids, self.spellings, self.waiting = {}, set(), []

    def note(self, identity, text, loss="lost"):
        self.notes.append(Note(identity, text, loss))

    def finish(self):
        """Records what is waiting and all that feeds it, each node when its first reader's turn comes."""
        recorded = set()
        while self.waiting:
            path, node, identity = self.waiting.pop()
            if identity not in recorded:
                recorded.add(identity)
                self.record(path, node, identity)

    def identity(self, path, node):
        """The node's id: its name, behind the names of the groups around it."""
        names = tuple(step.name for step in path) + (node.name,)
        if names not in self.ids:
            self.ids[names] = self.fresh("/".join(names))
            self.paths[self.ids[names]] = names
        self.waiting.append((path, node, self.ids[names]))
        return self.ids[names]

    def fresh(self, wish):
        """An id that no other node has. Parameters are named by the id's letters and digits only, so two ids
        have to differ in these."""
        name, count = wish, 0
        while re.sub("[^A-Za-z0-9]", "_", name) in self.spellings:
            count += 1
            name = f"{wish} {count + 1}"
        self.spellings.add(re.sub("[^A-Za-z0-9]", "_", name))
        return name

    def reference(self, linked):
        """[id, output, type] of a node's output."""
        node, socket = linked.node, linked.socket
        name = "Vector" if self.other_uv_map(node) is not None else socket.identifier
        return [self.identity(linked.path, node), name, socket.type]

    def other_uv_map(self, node):
        """The name of the UV map that a UV Map node asks for, unless it is the first, which needs no name."""
        name = node.uv_map if node.bl_idname == "ShaderNodeUVMap" else ""
        return name if name in self.uv_maps[1:] else None

    def record(self, path, node, identity):
        found = {"id": identity, "type": node.bl_idname, "in": {}}
        place = len(self.nodes)
        self.nodes.append(found)
        first = len(self.waiting)
        for socket in node.inputs:
            found["in"][socket.identifier] = self.entry(socket, path, node, identity)
        self.waiting[first:] = reversed(self.waiting[first:])  # the first socket's node comes next
        found["outs"] = {socket.identifier: socket.type for socket in node.outputs}
        found["props"] = records.properties(node)
        if node.bl_idname == "ShaderNodeValToRGB":
            found["ramp"] = records.ramp(node)
        if node.bl_idname in records.CURVES:
            found["curve"] = records.curve(node)
        if getattr(node, "image", None):
            self.images[node.image.name] = records.image(node.image)
        if node.bl_idname == "ShaderNodeTexCoord" and node.object:
            found["object_matrix"] = [
                part for row in node.object.matrix_world.inverted_safe() for part in row
            ]
        if self.other_uv_map(node) is not None:
            self.nodes[place] = attribute(identity, node.uv_map)

    def entry(self, socket, path, node, identity):
        """The document's word on one input: a link or a value."""
        found = self.source(socket, path)
        if isinstance(found, sources.Linked):
            return {"t": socket.type, "link": self.link(found, socket, identity)}
        implicit = node.bl_idname in COORDINATE_TEXTURES and socket.identifier == "Vector"
        if (
            isinstance(found, sources.Constant)
            and found.value is not None
            and not self.own(found, socket, node, implicit)
        ):
            value = values.convert(found.value, found.type, socket.type)
            if implicit or is_surface_socket(socket, node):
                return {"t": socket.type, "link": self.constant(value, socket, identity)}
            return {"t": socket.type, "v": value}
        if node.bl_idname == "ShaderNodeTexWhiteNoise" and socket.identifier == "Vector" and socket.enabled:
            # the one texture that has no coordinate of its own: it reads the value of its socket
            return {"t": socket.type, "link": self.constant(values.default(socket), socket, identity)}
        value = values.default(socket)
        return {"t": socket.type} if value is None else {"t": socket.type, "v": value}

    def own(self, found, socket, node, implicit):
        """Whether an implicit socket stays with the surface's own value in spite of a group's constant."""
        if sources.BORDERS_CONVERT:
            return implicit or is_surface_socket(socket, node)
        return found.hidden and is_surface_socket(socket, node)

    def link(self, linked, socket, identity):
        reference = self.reference(linked)
        seen, spread, whole = sources.narrow(linked.borders, linked.socket.type, socket.type)
        if spread or whole:
            reference[2] = seen
            return self.number(reference, whole, identity, socket)
        return reference[:2] + [seen]

    def put_in(self, socket, reader):
        """The id of a node that feeds a reader's socket and that Blender hasn't got."""
        identity = self.fresh(f"{reader} {socket.identifier}")
        self.paths[identity] = self.paths[reader]
        return identity

    def number(self, reference, whole, reader, socket):
        """A node that makes one number of what it reads."""
        identity = self.put_in(socket, reader)
        self.nodes.append(
            {
                "id": identity,
                "type": "ShaderNodeMath",
                "in": {"Value": {"t": "VALUE", "link": reference}},
                "outs": {"Value": "VALUE"},
                "props": {"operation": "TRUNC" if whole else "ADD"},
            }
        )
        return [identity, "Value", "VALUE"]

    def constant(self, value, socket, reader):
        """A node that holds a vector."""
        identity = self.put_in(socket, reader)
        parts = {name: {"t": "VALUE", "v": part} for name, part in zip("XYZ", value)}
        self.nodes.append(
            {
                "id": identity,
                "type": "ShaderNodeCombineXYZ",
                "in": parts,
                "outs": {"Vector": "VECTOR"},
                "props": {},
            }
        )
        return [identity, "Vector", "VECTOR"]


def is_surface_socket(socket, node):
    if node.bl_idname == "ShaderNodeTexEnvironment":
        return socket.identifier == "Vector"
    return socket.hide_value and socket.identifier in SURFACE_NAMES


def attribute(identity, uv_map):
    """A UV Map node that doesn't ask for the first map: as an attribute, which is looked up by its name."""
    return {
        "id": identity,
        "type": "ShaderNodeAttribute",
        "in": {},
        "outs": {"Color": "RGBA", "Vector": "VECTOR", "Fac": "VALUE", "Alpha": "VALUE"},
        "props": {"attribute_type": "GEOMETRY", "attribute_name": uv_map},
    }
