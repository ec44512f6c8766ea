"""Mistakes that a type checker must find, one on each marked line. This file is never run."""

import quillgen
import quillgen_lib
from quillgen_tools.types import Document

document: Document = {"nodes": [], "out": {"surface": ("Glow", "Color")}}
result = quillgen.compile(document, "lit")  # wrong
result["codes"]  # wrong
lit = result["material"]["shading"] == "lit"  # wrong
for entry in result["inputs"]:
    if entry["kind"] == "texcoord":
        entry["image"]  # wrong
    if entry["kind"] == "scalar":
        entry["default"] + 1.0
quillgen.parts(document, uv_bias=0.5)  # wrong
quillgen.assemble([], set())  # wrong
quillgen.param_name("Glow")  # wrong
quillgen_lib.resolve(need=set())  # wrong
bare: Document = {"nodes": []}  # wrong
other: Document = {"nodes": [{"id": "Glow", "type": "ShaderNodeRGB"}], "out": {"surface": ("Glow", "Color")}}  # wrong
quillgen.NODES = ()  # wrong
