"""What an artist reads at the sockets that become parameters: names, ranges, tooltips."""

from typing import Any

import bpy

from ..labels import Label

# Nodes whose header reads what they do, by the property that says it.
OPERATIONS = {
    "ShaderNodeMath": "operation",
    "ShaderNodeVectorMath": "operation",
    "ShaderNodeMixRGB": "blend_type",
}
NO_LIMIT = 10000.0  # the soft range of a socket that has none
OWN_VALUES = {"ShaderNodeValue": "value", "ShaderNodeRGB": "color"}
HOPS = 100  # links that are followed outwards, at most


def labels(
    material: bpy.types.Material, document: dict[str, Any], paths: dict[str, tuple[str, ...]]
) -> dict[tuple[str, str], Label]:
    """Node id and socket -> label, for all values in a document that `read.flatten` made of the material. Where a
    value comes from outside of a group, the label is that of the group node's socket."""
    found: dict[tuple[str, str], Label] = {}
    places: dict[tuple[str, ...], tuple[Any, ...]] = {}
    for record in document["nodes"]:
        path = paths.get(record["id"])
        if path is None:
            continue
        chain = places.get(path)
        if chain is None:
            chain = places[path] = nodes_on(material.node_tree, path)
        if not chain:
            continue
        if chain[-1].bl_idname != record["type"] or record["id"].rpartition("/")[2] != chain[-1].name:
            found.update(of_helper(record, chain))
        else:
            found.update(of_node(record, chain))
    return found


def nodes_on(tree: Any, path: tuple[str, ...]) -> tuple[Any, ...]:
    """The nodes of a path, the outermost first; none where the path leads nowhere."""
    chain = []
    for name in path:
        node = tree.nodes.get(name) if tree else None
        if node is None:
            return ()
        chain.append(node)
        tree = getattr(node, "node_tree", None)
    return tuple(chain)


def of_node(record: dict[str, Any], chain: tuple[Any, ...]) -> dict[tuple[str, str], Label]:
    node, identity = chain[-1], record["id"]
    found = {}
    entries = record["in"]
    counts: dict[str, int] = {}
    shown_first = sorted(enumerate(node.inputs), key=lambda item: not item[1].enabled)
    for order, socket in shown_first:  # the hidden ones are numbered behind those that the node shows
        name = socket.label or socket.name
        counts[name] = counts.get(name, 0) + 1
        entry = entries.get(socket.identifier)
        if entry is None or "link" in entry:
            continue
        shown = name if counts[name] == 1 else f"{name} {counts[name]}"
        outer = outwards(socket, chain[:-1])
        found[identity, socket.identifier] = outer or of_socket(socket, chain, shown, order)
    if record["type"] in OWN_VALUES:
        color = record["type"] == "ShaderNodeRGB"
        found[identity, OWN_VALUES[record["type"]]] = header_label(chain)._replace(color=color)
    for place in range(len(record.get("ramp", {}).get("stops", ()))):
        label = header_label(chain)._replace(order=len(node.inputs) + 2 * place)
        found[identity, f"stop{place}_pos"] = label._replace(
            socket=f"Stop {place + 1} Position", minimum=0.0, maximum=1.0
        )
        found[identity, f"stop{place}_col"] = label._replace(
            socket=f"Stop {place + 1} Color", color=True, order=label.order + 1
        )
    return found


def of_helper(record: dict[str, Any], chain: tuple[Any, ...]) -> dict[tuple[str, str], Label]:
    """Labels of a node that the reader put in: it holds the value of a socket of the node that it feeds."""
    node = chain[-1]
    for order, socket in enumerate(node.inputs):
        if record["id"].rpartition(" ")[2] == socket.identifier or record["id"].endswith(f" {socket.identifier}"):
            base = outwards(socket, chain[:-1]) or of_socket(socket, chain, socket.label or socket.name, order)
            return {
                (record["id"], name): base._replace(socket=f"{base.socket} {name}".strip())
                for name, entry in record["in"].items()
                if "link" not in entry
            }
    return {}


def outwards(socket: Any, groups: tuple[Any, ...]) -> Label | None:
    """The label of the group node's socket that the value of a socket comes from; None where the value is the
    socket's own."""
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
        outer = next((each for each in groups[-1].inputs if each.identifier == identifier), None)
        if outer is None:
            break
        order = next(place for place, each in enumerate(groups[-1].inputs) if each == outer)
        found = of_socket(outer, groups, outer.name, order, in_group=True)
        socket, groups = outer, groups[:-1]
    return found


def of_socket(socket: Any, chain: tuple[Any, ...], shown: str, order: int, in_group: bool = False) -> Label:
    """The label of the last node's socket."""
    low, high, description = soft_range(socket)
    if in_group:
        low, high, description = interface_range(chain[-1].node_tree, socket.identifier) or (low, high, description)
    return header_label(chain)._replace(
        socket=shown,
        color=socket.type == "RGBA",
        minimum=low,
        maximum=high,
        description=description,
        order=order,
    )


def header_label(chain: tuple[Any, ...]) -> Label:
    return Label(header(chain[-1]), chain[-1].name, tuple(header(node) for node in chain[:-1]))


def header(node: Any) -> str:
    """What the node's header reads."""
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


def soft_range(socket: Any) -> tuple[float | None, float | None, str]:
    """The range of the socket's slider, None where it has none, and the tooltip."""
    value = socket.bl_rna.properties.get("default_value")
    if value is None or value.type != "FLOAT" or socket.type == "RGBA":
        return None, None, socket.description
    low, high = value.soft_min, value.soft_max
    if low <= -NO_LIMIT and high >= NO_LIMIT:
        return None, None, socket.description
    return low, high, socket.description


def interface_range(tree: Any, identifier: str) -> tuple[float | None, float | None, str] | None:
    """The range and the tooltip that the group's author gave to a socket."""
    for item in tree.interface.items_tree:
        if item.item_type == "SOCKET" and item.in_out == "INPUT" and item.identifier == identifier:
            low, high = getattr(item, "min_value", None), getattr(item, "max_value", None)
            if low is None or high is None or (low <= -NO_LIMIT and high >= NO_LIMIT):
                return None, None, item.description
            return low, high, item.description
    return None
