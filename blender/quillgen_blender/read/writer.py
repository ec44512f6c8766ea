"""Collects the records of a document: the nodes that are asked for and all that feed them."""

import re
from typing import Any

from ..notes import Loss, Note
from . import directing, folding, losses, node_types, records, sources, values, versions
from .places import Place

NOT_A_LETTER = re.compile("[^A-Za-z0-9]")


class Writer:
    """`uv_maps`: the names of the mesh's UV maps; `settings`: those of the material, as in the document."""

    def __init__(self, uv_maps: list[str], settings: dict[str, Any]) -> None:
        self.sources = sources.Sources(directing.TABLE, self.note_on)
        self.folding = folding.Folding(self.sources)
        self.uv_maps, self.settings = uv_maps, settings
        self.root = Place()
        self.nodes: list[dict[str, Any]] = []
        self.images: dict[str, dict[str, Any]] = {}
        self.pictures: dict[str, Any] = {}
        self.notes: list[Note] = []
        self.paths: dict[str, tuple[str, ...]] = {}
        self.ids: dict[tuple[Place, str], str] = {}
        self.spellings: set[str] = set()
        self.waiting: list[tuple[Place, Any, str]] = []
        self.told: set[tuple[str, str]] = set()

    # What readers of the document ask for

    def output(self, socket: Any, place: Place) -> list[str] | None:
        """[id, output] of what feeds a socket of the material's output; None if no node does."""
        found = self.sources.source(socket, place)
        if socket.type == "SHADER" and sources.is_value(found):
            end = socket.node.name
            return self.glow(found, f"{place.prefix}{end} {socket.identifier}", (*place.names, end))[:2]
        return self.reference(found)[:2] if isinstance(found, sources.Linked) else None

    def finish(self) -> None:
        """Records the waiting nodes and all that feed them, depth first."""
        self.waiting.reverse()
        while self.waiting:
            self.record(*self.waiting.pop())

    # Notes

    def note(self, identity: str, text: str, loss: Loss = "lost") -> None:
        if (identity, text) not in self.told:
            self.told.add((identity, text))
            self.notes.append(Note(identity, text, loss))

    def note_on(self, place: Place, node: Any, text: str, loss: Loss = "lost") -> None:
        """A note on a node that may have no record."""
        identity = self.ids.get((place, node.name)) or place.prefix + node.name
        self.paths.setdefault(identity, (*place.names, node.name))
        self.note(identity, text, loss)

    # Ids

    def identity(self, place: Place, node: Any) -> str:
        """The node's id: its name, preceded by the names of the enclosing groups."""
        name = node.name
        found = self.ids.get((place, name))
        if found is None:
            found = self.ids[place, name] = self.fresh(place.prefix + name)
            self.paths[found] = (*place.names, name)
            self.waiting.append((place, node, found))
        return found

    def fresh(self, wish: str) -> str:
        """An id that no other node has. Parameter names use only the letters and digits of an id, so two ids have to
        differ in these."""
        name, count = wish, 0
        spelling = NOT_A_LETTER.sub("_", name)
        while spelling in self.spellings:
            count += 1
            name = f"{wish} {count + 1}"
            spelling = NOT_A_LETTER.sub("_", name)
        self.spellings.add(spelling)
        return name

    def put_in(self, identifier: str, reader: str) -> str:
        """The id of an inserted node that feeds a reader's socket and does not exist in Blender."""
        identity = self.fresh(f"{reader} {identifier}")
        self.paths[identity] = self.paths[reader]
        return identity

    def image(self, picture: Any) -> str:
        """The document's name of an image: its own name, numbered if an image of another file has that name already."""
        name, count = picture.name, 1
        while self.pictures.setdefault(name, picture) != picture:
            count += 1
            name = f"{picture.name} {count}"
        return name

    def aov_outputs(self) -> None:
        """Adds notes on nodes that write to render passes of their own, in the trees that were read."""
        for place in self.root.all():
            for node in place.tree.nodes:
                if node.bl_idname == "ShaderNodeOutputAOV" and not node.mute and any(s.is_linked for s in node.inputs):
                    self.note_on(place, node, f"the pass {node.aov_name} has no place in a material")

    # Records

    def reference(self, linked: sources.Linked) -> list[str]:
        """[id, output, type] of a node's output."""
        node, socket = linked.node, linked.socket
        name = socket.identifier
        if node_types.of(node).name in versions.OUTPUT_NAMES:
            name = versions.output_name(self, node, name)
        return [self.identity(linked.place, node), name, socket.type]

    def record(self, place: Place, node: Any, identity: str) -> None:
        kind = node_types.of(node)
        found: dict[str, Any] = {"id": identity, "type": kind.name, "in": {}}
        self.nodes.append(found)
        first = len(self.waiting)
        entries = found["in"]
        for socket, (identifier, socket_type, form) in zip(node.inputs, kind.inputs, strict=False):
            entry = self.linked(socket, identifier, kind, place, identity) if socket.is_linked else None
            if entry is None:
                entry = {"t": socket_type}
                if form == "scalar":
                    entry["v"] = socket.default_value
                elif form:
                    value = list(socket.default_value)
                    entry["v"] = value if len(value) == 3 or socket_type == "RGBA" else values.triple(value)
            entries[identifier] = entry
        if kind.name == "ShaderNodeTexWhiteNoise":
            self.white_noise(node, identity, entries["Vector"])
        if len(self.waiting) - first > 1:
            self.waiting[first:] = reversed(self.waiting[first:])  # the first socket's node comes next
        found["outs"] = dict(kind.outputs)
        found["props"] = {
            name: make(getattr(node, name)) if make else getattr(node, name) for name, make in kind.properties
        }
        for add in kind.own:
            add(self, node, found)
        if kind.name == "ShaderNodeFloatCurve":
            self.float_curve(place, node, found["curve"])
        for name in kind.unknown:
            self.note(identity, f"{name} is new to this translator and has no effect")
        versions.adapt(self, node, found)
        losses.tell(self, found)

    def white_noise(self, node: Any, identity: str, entry: Any) -> None:
        """White Noise is the only texture without a default coordinate: an unlinked socket has its own value."""
        if "v" in entry and sources.named(node.inputs, "Vector").enabled:
            entry["link"] = self.constant(entry.pop("v"), "Vector", identity)

    def float_curve(self, place: Place, node: Any, curve: dict[str, Any]) -> None:
        """Float Curve is the only curve node that respects its clipping range when Blender folds it, and only then."""
        ahead = not sources.BORDERS_CONVERT and self.folding.constant(sources.Linked(place, node, node.outputs[0]))
        if ahead and node.mapping.use_clip:
            records.clip(curve, node.mapping)

    def linked(
        self, socket: Any, identifier: str, kind: node_types.NodeType, place: Place, identity: str
    ) -> dict[str, Any] | None:
        """The entry of a linked input; None if nothing arrives by the link."""
        found = self.sources.source(socket, place)
        if socket.type == "SHADER" and sources.is_value(found):
            return {"t": "SHADER", "link": self.glow(found, f"{identity} {identifier}", self.paths[identity])}
        if isinstance(found, sources.Linked):
            return {"t": socket.type, "link": self.link(found, socket.type, socket.identifier, identity)}
        if found is None or found.value is None or self.own(found, identifier, kind):
            return None
        value = values.convert(found.value, found.type, socket.type)
        if identifier in kind.implicit or identifier in kind.surface:
            return {"t": socket.type, "link": self.constant(value, identifier, identity)}
        return {"t": socket.type, "v": value} | ({"named": True} if found.named else {})

    def own(self, found: Any, identifier: str, kind: node_types.NodeType) -> bool:
        """Whether an implicit socket keeps the surface's own value in spite of a group's constant."""
        if sources.BORDERS_CONVERT:
            return not found.linked and (identifier in kind.implicit or identifier in kind.surface)
        return found.hidden and identifier in kind.surface

    def link(self, linked: sources.Linked, wanted: str, identifier: str, identity: str) -> list[str]:
        """The link to a node's output from an input of the type `wanted`."""
        reference = self.reference(linked)
        if not linked.borders:
            return reference
        if not sources.BORDERS_CONVERT:
            return self.folded(linked, reference, identifier, identity)
        seen, spread, whole = sources.narrow(linked.borders, linked.socket.type, wanted)
        reference[2] = seen
        return self.number(reference, whole, identifier, identity) if spread or whole else reference

    def folded(self, linked: sources.Linked, reference: list[str], identifier: str, reader: str) -> list[str]:
        """The link to a node across borders, which convert its value if Blender folds the node."""
        found, seen = folding.steps(linked.borders, linked.socket.type)
        if not (found or seen != reference[2]) or not self.folding.constant(linked):
            return reference
        for operation, counts_as in found:
            identity = self.put_in(identifier, reader)
            self.nodes.append(folding.record(identity, operation, [*reference[:2], counts_as]))
            reference = [identity, "Value", "VALUE"]
        return reference if found else [*reference[:2], seen]

    def number(self, reference: Any, whole: bool, identifier: str, reader: str) -> list[str]:
        """Inserts a node that converts what it reads to one number."""
        identity = self.put_in(identifier, reader)
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

    def constant(self, value: Any, identifier: str, reader: str) -> list[str]:
        """Inserts a node that holds a vector."""
        identity = self.put_in(identifier, reader)
        self.nodes.append(records.combined(identity, value))
        return [identity, "Vector", "VECTOR"]

    def glow(self, found: Any, wish: str, path: tuple[str, ...]) -> list[str]:
        """Inserts an emission for a value that feeds a shader socket, as Blender does."""
        identity = self.fresh(wish)
        self.paths[identity] = path
        color: dict[str, Any] = {"t": "RGBA"}
        if isinstance(found, sources.Linked):
            color["link"] = self.link(found, "RGBA", "Color", identity)
        else:
            color["v"] = values.convert(found.value, found.type, "RGBA")
        self.nodes.append(records.emission(identity, color))
        return [identity, "Emission", "SHADER"]
