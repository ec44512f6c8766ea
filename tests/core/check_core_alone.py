"""Translates with the module core_alone, for the build target check_core."""

import core_alone

one = {"id": "One", "type": "Twice", "in": {"Value": {"t": "VALUE", "v": 0.5}}}
two = {"id": "Two", "type": "Twice", "in": {"Value": {"t": "VALUE", "link": ["One", "Value", "VALUE"]}}}
other = {"id": "Other", "type": "ShaderNodeMath", "in": {}, "outs": {"Value": "VALUE", "Shader": "SHADER"}}


def translated(node, output):
    return core_alone.translate({"nodes": [one, two, other], "out": {"surface": [node, output]}})


assert translated("Two", "Value") == ["  float v1 = 2.0 * P_One__Value;\n  float v2 = 2.0 * v1;\n", "v2"]
assert translated("Other", "Value") == ["", "0.0"]  # the module knows no other node type
assert translated("Other", "Shader") == ["", "no_closure()"]
