"""Labels of the sockets that become parameters: names, ranges, tooltips."""

from collections.abc import Container, Iterator, Mapping
from typing import Any

import bpy

from ..labels import Label

# Node types whose header shows their operation: the property that holds it.
OPERATIONS = {
    "ShaderNodeMath": "operation",
    "ShaderNodeVectorMath": "operation",
    "ShaderNodeMixRGB": "blend_type",
}
NO_LIMIT = 10000.0  # the soft range of a socket that has none
OWN_VALUES = {"ShaderNodeValue": "value", "ShaderNodeRGB": "color"}
HOPS = 100  # maximum number of links followed outwards


Labels = dict[tuple[str, str], Label]


def labels(
    material: bpy.types.Material,
    document: Mapping[str, Any],
    paths: dict[str, tuple[str, ...]],
    wanted: Container[tuple[str, str]] | None = None,
) -> Labels:
    """Labels by node id and socket, for all values of a document that `read.flatten` made of the material, or for those
    that are wanted. A value that comes from outside of a group has the label of the group node's socket."""
    found: Labels = {}
    for more in by_node(material, document, paths, wanted):
        found.update(more)
    return found


def by_node(
    material: bpy.types.Material,
    document: Mapping[str, Any],
    paths: dict[str, tuple[str, ...]],
    wanted: Container[tuple[str, str]] | None = None,
) -> Iterator[Labels]:
    """The same, one node at a time, for callers that must not block. Nodes are looked up by name each time, because the
    artist may remove them in between."""
    ranges: dict[str, tuple[float | None, float | None]] = {}
    for record in document["nodes"]:
        path = paths.get(record["id"])
        if path is None:
            continue
        asked = [socket for socket in sockets_of(record) if wanted is None or (record["id"], socket) in wanted]
        if not asked:
            continue
        chain = nodes_on(material.node_tree, path)
        if not chain:
            continue
        if is_put_in(record["id"], paths):
            yield of_helper(record, chain, ranges)
        else:
            yield of_node(record, chain, asked, ranges)


def is_put_in(identity: str, paths: Mapping[str, tuple[str, ...]]) -> bool:
    """Whether the reader inserted a node for a socket of another node. The id of the inserted node is the other node's
    id followed by the socket's identifier, and both have the same path."""
    path, words = paths[identity], identity.split(" ")
    return any(paths.get(" ".join(words[:count])) == path for count in range(1, len(words)))


def sockets_of(record: dict[str, Any]) -> list[str]:
    """The values of a node that may become parameters."""
    found = [socket for socket, entry in record["in"].items() if "link" not in entry]
    if record["type"] in OWN_VALUES:
        found.append(OWN_VALUES[record["type"]])
    for place in range(len(record.get("ramp", {}).get("stops", ()))):
        found += [f"stop{place}_pos", f"stop{place}_col"]
    return found


def fingerprint(material: bpy.types.Material) -> list[Any]:
    """Changes with everything that labels depend on apart from the document's records: names and headers of nodes, and
    what feeds a group from outside."""
    found: list[Any] = []
    waiting, seen = [material.node_tree], set()
    while waiting:
        tree = waiting.pop()
        seen.add(tree)
        for node in tree.nodes:
            found.append((node.name, node.label))
            inner = getattr(node, "node_tree", None)
            if inner is not None and inner not in seen:
                waiting.append(inner)
            word = OPERATIONS.get(node.bl_idname)
            if word:
                found.append(getattr(node, word))
        if tree != material.node_tree:
            found.append(tree.name)
            found += [
                (item.name, item.description, getattr(item, "min_value", None), getattr(item, "max_value", None))
                for item in tree.interface.items_tree
                if item.item_type == "SOCKET"
            ]
            found += [
                (link.from_socket.identifier, link.to_node.name, link.to_socket.identifier)
                for link in tree.links
                if link.from_node.bl_idname in ("NodeGroupInput", "NodeReroute")
            ]
    return found


def nodes_on(tree: Any, path: tuple[str, ...]) -> tuple[Any, ...]:
    """The nodes of a path, the outermost first; empty if the path does not exist."""
    chain = []
    for name in path:
        node = tree.nodes.get(name) if tree else None
        if node is None:
            return ()
        chain.append(node)
        tree = getattr(node, "node_tree", None)
    return tuple(chain)


def of_node(
    record: dict[str, Any],
    chain: tuple[Any, ...],
    asked: Container[str],
    ranges: dict[str, tuple[float | None, float | None]],
) -> Labels:
    node, identity = chain[-1], record["id"]
    base = header_label(chain)
    found = {}
    counts: dict[str, int] = {}
    sockets = list(enumerate(node.inputs))
    sockets.sort(key=lambda item: not item[1].enabled)  # hidden sockets are numbered after the visible ones
    for order, socket in sockets:
        name = socket.label or socket.name
        counts[name] = counts.get(name, 0) + 1
        if socket.identifier not in asked:
            continue
        shown = name if counts[name] == 1 else f"{name} {counts[name]}"
        outer = outwards(socket, chain[:-1], ranges) if socket.is_linked else None
        found[identity, socket.identifier] = outer or of_socket(socket, base, shown, order, ranges)
    if record["type"] in OWN_VALUES:
        found[identity, OWN_VALUES[record["type"]]] = base._replace(color=record["type"] == "ShaderNodeRGB")
    for place in range(len(record.get("ramp", {}).get("stops", ()))):
        label = base._replace(socket=f"Stop {place + 1} Position", order=len(sockets) + 2 * place)
        found[identity, f"stop{place}_pos"] = label._replace(minimum=0.0, maximum=1.0)
        found[identity, f"stop{place}_col"] = label._replace(
            socket=f"Stop {place + 1} Color", color=True, order=label.order + 1
        )
    return found


def of_helper(
    record: dict[str, Any], chain: tuple[Any, ...], ranges: dict[str, tuple[float | None, float | None]]
) -> Labels:
    """Labels of a node that the reader inserted: it holds the value of a socket of the node that it feeds."""
    for order, socket in enumerate(chain[-1].inputs):
        if record["id"].endswith(f" {socket.identifier}"):
            outer = outwards(socket, chain[:-1], ranges) if socket.is_linked else None
            base = outer or of_socket(socket, header_label(chain), socket.label or socket.name, order, ranges)
            return {
                (record["id"], name): base._replace(socket=f"{base.socket} {name}".strip())
                for name, entry in record["in"].items()
                if "link" not in entry
            }
    return {}


def outwards(
    socket: Any, groups: tuple[Any, ...], ranges: dict[str, tuple[float | None, float | None]]
) -> Label | None:
    """The label of the group node's socket that supplies the value of a socket; None if the value is the socket's
    own."""
    found = None
    for _ in range(HOPS):
        if not socket.is_linked or not socket.links:
            break
        link = socket.links[0]
        if link.is_muted or (not groups and link.from_node.bl_idname != "NodeReroute"):
            break
        if link.from_node.bl_idname == "NodeReroute":
            socket = link.from_node.inputs[0]
            continue
        if link.from_node.bl_idname != "NodeGroupInput":
            break
        identifier = link.from_socket.identifier
        place = next((place for place, each in enumerate(groups[-1].inputs) if each.identifier == identifier), None)
        if place is None:
            break
        socket = groups[-1].inputs[place]
        found = of_socket(socket, header_label(groups), socket.name, place, ranges)
        low, high, description = interface_range(groups[-1].node_tree, identifier)
        found = found._replace(minimum=low, maximum=high, description=description)
        groups = groups[:-1]
    return found


def of_socket(
    socket: Any, base: Label, shown: str, order: int, ranges: dict[str, tuple[float | None, float | None]]
) -> Label:
    """The label of a socket; `base` is the label of its node."""
    kind = socket.bl_idname
    if kind not in ranges:
        ranges[kind] = soft_range(socket)
    low, high = ranges[kind]
    color = socket.type == "RGBA"
    return Label(base.header, base.node, base.groups, shown, color, low, high, socket.description, order)


def header_label(chain: tuple[Any, ...]) -> Label:
    return Label(header(chain[-1]), chain[-1].name, tuple(header(node) for node in chain[:-1]))


def header(node: Any) -> str:
    """The text in the node's header."""
    if node.label:
        return node.label
    tree = getattr(node, "node_tree", None)
    if tree is not None:
        return tree.name
    word = OPERATIONS.get(node.bl_idname)
    if word:
        return node.bl_rna.properties[word].enum_items[getattr(node, word)].name
    if node.bl_idname == "ShaderNodeMix" and node.data_type == "RGBA":
        return node.bl_rna.properties["blend_type"].enum_items[node.blend_type].name
    return node.bl_label


def soft_range(socket: Any) -> tuple[float | None, float | None]:
    """The slider range of sockets of this kind; (None, None) if they have none."""
    value = socket.bl_rna.properties.get("default_value")
    if value is None or value.type != "FLOAT" or socket.type == "RGBA":
        return None, None
    low, high = value.soft_min, value.soft_max
    return (None, None) if low <= -NO_LIMIT and high >= NO_LIMIT else (low, high)


def interface_range(tree: Any, identifier: str) -> tuple[float | None, float | None, str]:
    """The range and the tooltip that the group's author set for a socket."""
    for item in tree.interface.items_tree:
        if item.item_type == "SOCKET" and item.in_out == "INPUT" and item.identifier == identifier:
            low, high = getattr(item, "min_value", None), getattr(item, "max_value", None)
            if low is None or high is None or (low <= -NO_LIMIT and high >= NO_LIMIT):
                return None, None, item.description
            return low, high, item.description
    return None, None, ""


def all_nodes(tree: Any, depth: int = 0) -> Iterator[Any]:
    """The nodes of a tree and of the groups in it."""
    for node in tree.nodes:
        yield node
        inner = getattr(node, "node_tree", None)
        if inner and depth < 50:
            yield from all_nodes(inner, depth + 1)
