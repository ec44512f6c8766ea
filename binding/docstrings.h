// What help(quillgen) says. The examples are run by tests/tools/test_docstrings.py.
#pragma once

namespace quillgen {

inline constexpr char kModuleDoc[] =
    R"(Translates Blender shader node trees into HLSL for Custom expressions of Unreal materials.

compile           a whole material: the text, and what to wire to it
parts, assemble   several graphs in one text
param_name        the name of the input that stands for a socket
tex_input         the name of the input that stands for a picture
Unsupported       raised for a graph that can't be translated
NODES             the node types that have a handler, a tuple of str
__version__       the version, such as "0.2.0"

Documents and results are plain dicts, lists, strings and numbers;
quillgen_tools.types has their types for type checkers. Each call stands
alone: nothing of a document or a result is kept after it. Documents are
never changed.)";

inline constexpr char kCompileDoc[] =
    R"(compile(ir, mode='surface', use_params=True)
--

Translates one material into the text of a Custom expression.

ir          the document: a dict with `nodes`, a list of dicts, and `out`,
            a dict whose `surface` is a pair of node id and output name;
            optionally `settings`, `images` and `uv_maps`
mode        'surface' for a lit material; 'emission' for an unlit one whose
            result is one colour
use_params  True makes each unlinked socket that is read an input, which can
            be tweaked in Unreal; False writes its value into the text

Returns a dict:
  code          str, the HLSL text; its result is a float3
  inputs        list of dicts with `name`, `kind` and what the kind needs:
                what to wire, sorted by name. Positions are in centimetres,
                in Unreal's frame
  outputs       list of dicts with `name`, `type`, `property`, `expr`
  material      dict with `shading`, `blend`, `two_sided`,
                `tangent_space_normal`, and `clip` where it is masked
  warnings      list of str
  params        dict, name -> ['scalar', float] or ['vector', [4 numbers]]
  displacement  None, or a dict with `code`, `inputs`, and `magnitude` in
                centimetres: a second text for displacement with Nanite

Raises Unsupported where the graph can't be translated, KeyError where the
document lacks a key or names a node that isn't there, RecursionError where
the graph is too deep, and the errors of Python's own operations on values
that aren't what they should be.

>>> import quillgen
>>> colour = {"id": "Colour", "type": "ShaderNodeRGB", "in": {},
...           "props": {"color": [0.8, 0.2, 0.1, 1.0]}}
>>> document = {"nodes": [colour], "out": {"surface": ["Colour", "Color"]}}
>>> result = quillgen.compile(document, mode="emission")
>>> result["code"].splitlines()[-1]
'  return P_Colour__color.xyz;'
>>> result["params"]
{'P_Colour__color': ['vector', [0.8, 0.2, 0.1, 1.0]]}
>>> quillgen.compile(document, "emission", use_params=False)["inputs"]
[]
>>> quillgen.compile({"nodes": [], "out": {}})
Traceback (most recent call last):
quillgen.Unsupported: no surface output)";

inline constexpr char kPartsDoc[] =
    R"(parts(ir, mode='emission', use_params=False, uv_bias=None)
--

Translates one graph without the text around it, for assemble.

ir, mode, use_params  as for compile, with other defaults
uv_bias               None, or a pair of numbers that is added to every UV
                      coordinate, after v was turned over

Returns a dict:
  body           list of str, the statements
  ret            str, the expression of the colour, a float3
  need, structs  sets of str, names of the library
  inputs         dict, name -> record with `kind` and what the kind needs
  warnings       list of str

Raises what compile raises.

>>> import quillgen
>>> value = {"id": "V", "type": "ShaderNodeValue", "in": {},
...          "props": {"value": 0.5}}
>>> graph = {"nodes": [value], "out": {"surface": ["V", "Value"]}}
>>> quillgen.parts(graph)["body"]
[]
>>> quillgen.parts(graph)["ret"]
'((float3)(0.5))')";

inline constexpr char kAssembleDoc[] =
    R"(assemble(bodies, structs, need, selector=None, wrap='%s', extra_lib='')
--

Writes one text around several graphs.

bodies         sequence of pairs: `body` and `ret` of parts
structs, need  the unions of those of the parts
selector       HLSL of a float: below 0.5 it chooses the first graph, below
               1.5 the second, and so on; beyond the last the result is
               black. None takes the first graph alone
wrap           a format with one %s, put around each colour
extra_lib      further HLSL for the struct of library functions

Returns the text, a str. Raises KeyError for a name that the library doesn't
have, IndexError where there is no graph and no selector, and TypeError or
ValueError where a pair is no pair or `wrap` no such format. Inputs and
warnings of the parts are the caller's to merge.

>>> import quillgen
>>> red = (["  float3 v1 = float3(1.0, 0.0, 0.0);"], "v1")
>>> blue = (["  float3 v1 = float3(0.0, 0.0, 1.0);"], "v1")
>>> text = quillgen.assemble([red, blue], set(), set(), selector="slot")
>>> print("\n".join(text.splitlines()[-9:]))
if (slot < 0.5) {
  float3 v1 = float3(1.0, 0.0, 0.0);
  return v1;
}
if (slot < 1.5) {
  float3 v1 = float3(0.0, 0.0, 1.0);
  return v1;
}
return float3(0.0, 0.0, 0.0);)";

inline constexpr char kParamNameDoc[] =
    R"(param_name(node_id, socket)
--

The name of the input that stands for an unlinked socket.

It is P_{node_id}__{socket}, with every character other than an ASCII letter,
digit or underscore replaced by an underscore. Two nodes whose ids differ in
such characters only have the same names. Returns a str.

>>> import quillgen
>>> quillgen.param_name("Mix.001", "Color 1")
'P_Mix_001__Color_1')";

inline constexpr char kTexInputDoc[] =
    R"(tex_input(image_name)
--

The name of the texture input that stands for a picture.

It is T_, the name as an identifier and cut to 32 characters, and six digits
of the SHA-1 of the name's UTF-8 bytes. Returns a str of 41 characters at
most. Raises what Python raises where image_name isn't a str.

>>> import quillgen
>>> quillgen.tex_input("Brick Wall.png")
'T_Brick_Wall_png_84daf7')";

}  // namespace quillgen
