"""How each shader node of Blender 4.2 to 5.2 is supported: exact, near or lost.

This is the only such table. The interface, the documentation and the notes of the passes use it.
"""

# ruff: noqa: E501  a row of the table is a line

from typing import Literal, NamedTuple

from ..notes import Note

Loss = Literal["exact", "near", "lost"]


class Support(NamedTuple):
    """A row. `type`: the node's type. `feature`: "" for the node as a whole, else a socket, a setting or a use of the
    node that differs from it. `text`: one sentence for the artist."""

    type: str
    feature: str
    loss: Loss
    text: str


def support(type: str, feature: str = "") -> Support:
    """The row of a node type, or of one of its features."""
    return _ROWS[type, feature]


def note(node: str, type: str, feature: str = "") -> Note:
    """A note on a node with the sentence of its row. For "exact" its loss is "info"."""
    row = support(type, feature)
    return Note(node, row.text, "info" if row.loss == "exact" else row.loss)


def rows() -> list[Support]:
    """All rows; a node's own row precedes those of its features."""
    return list(_ROWS.values())


def _table(text: str) -> dict[tuple[str, str], Support]:
    found = {}
    for line in text.strip().splitlines():
        type, feature, loss, sentence = (part.strip() for part in line.split("|", 3))
        found[type, feature] = Support(type, feature, loss, sentence)  # type: ignore[arg-type]
    return found


_ROWS = _table("""
ShaderNodeBsdfPrincipled           |              | exact | Base colour, metallic, roughness, IOR and specular level, coat, emission, alpha and normal go to the like-named properties.
ShaderNodeBsdfPrincipled           | Transmission | near  | Light that passes through becomes opacity: the brighter the base colour, the more the surface lets through. Nothing is bent.
ShaderNodeBsdfPrincipled           | Subsurface   | near  | The base colour stays and light does not spread below the surface. Unreal's Subsurface Profile can be set by hand.
ShaderNodeBsdfPrincipled           | Sheen        | near  | The sheen is added to the base colour towards the edges, as Unreal's own fuzzy shading does.
ShaderNodeBsdfPrincipled           | Anisotropy   | lost  | Highlights are round: the anisotropy of the reflection has no effect.
ShaderNodeBsdfPrincipled           | Thin Film    | lost  | The colours of a thin film have no effect.
ShaderNodeBsdfPrincipled           | Coat Tint    | lost  | The coat is clear: its tint, its IOR and its own normal have no effect.
ShaderNodeBsdfPrincipled           | Tint         | lost  | The specular tint has no effect.
ShaderNodeBsdfPrincipled           | Thin Wall    | lost  | The walls are as thick as the mesh: Thin Wall has no effect.
ShaderNodeBsdfDiffuse              |              | near  | The colour is exact; a rough diffuse surface looks like a smooth one.
ShaderNodeBsdfAnisotropic          |              | near  | A metal of the same colour and roughness.
ShaderNodeBsdfAnisotropic          | Anisotropy   | lost  | Highlights are round: the anisotropy of the reflection has no effect.
ShaderNodeBsdfMetallic             |              | near  | A metal of the same base colour and roughness; the edge tint has no effect.
ShaderNodeBsdfMetallic             | Conductor    | near  | The base colour is what the refractive index and extinction reflect straight on.
ShaderNodeBsdfMetallic             | Anisotropy   | lost  | Highlights are round: the anisotropy of the reflection has no effect.
ShaderNodeEmission                 |              | exact | Colour times strength is the emissive colour.
ShaderNodeBackground               |              | exact | Colour times strength is the emissive colour.
ShaderNodeBsdfTransparent          |              | exact | Opacity 0.
ShaderNodeBsdfTransparent          | Color        | near  | The darker the colour, the more opaque the surface, which has that colour: light is not filtered.
ShaderNodeHoldout                  |              | near  | Opacity 0: the hole in the picture's own alpha has no equal.
ShaderNodeMixShader                |              | near  | The properties of the two shaders are mixed, not their light.
ShaderNodeAddShader                |              | near  | Base colours and emissions are added; roughness, metallic and specular are those of the first shader.
ShaderNodeBsdfTranslucent          |              | near  | Its colour counts as base colour: light does not come through from behind. Unreal's Two Sided Foliage can be set by hand.
ShaderNodeBsdfGlass                |              | near  | A glossy surface of the same roughness and IOR whose opacity is the lower the brighter its colour. Nothing is bent.
ShaderNodeBsdfRefraction           |              | near  | A surface without reflection whose opacity is the lower the brighter its colour. Nothing is bent.
ShaderNodeSubsurfaceScattering     |              | near  | A diffuse surface of the same colour: light does not spread below it. Unreal's Subsurface Profile can be set by hand.
ShaderNodeBsdfSheen                |              | near  | A diffuse surface whose colour grows towards the edges, as the sheen does.
ShaderNodeBsdfToon                 |              | near  | A diffuse or glossy surface of the same colour: the hard edges of its light are lost.
ShaderNodeBsdfHair                 |              | near  | A rough surface of the same colour, without the streaks that follow the strand.
ShaderNodeBsdfHairPrincipled       |              | near  | A rough surface of the hair's colour. Unreal's Hair shading model can be set by hand.
ShaderNodeBsdfRayPortal            |              | lost  | Nothing goes through a portal: the surface is black.
ShaderNodeEeveeSpecular            |              | lost  | A shader of EEVEE alone, black in Cycles and here.
ShaderNodeShaderToRGB              |              | lost  | A node of EEVEE alone: the light that falls on a surface is not known to a material. Its colour is black.
ShaderNodeVolumeAbsorption         |              | lost  | Volumes are not translated: the surface alone is.
ShaderNodeVolumeScatter            |              | lost  | Volumes are not translated: the surface alone is.
ShaderNodeVolumePrincipled         |              | lost  | Volumes are not translated: the surface alone is.
ShaderNodeVolumeCoefficients       |              | lost  | Volumes are not translated: the surface alone is.
ShaderNodeVolumeInfo               |              | lost  | Volumes are not translated; all outputs are 0.
ShaderNodeOutputMaterial           |              | exact | The surface is translated, and the displacement as bump, real displacement or both.
ShaderNodeOutputMaterial           | Volume       | lost  | The volume is not translated: the surface alone is.
ShaderNodeOutputWorld              |              | lost  | Not part of a material.
ShaderNodeOutputLight              |              | lost  | Not part of a material.
ShaderNodeOutputLineStyle          |              | lost  | Not part of a material.
ShaderNodeOutputAOV                |              | lost  | What goes to a render pass of its own has no place in a material.
ShaderNodeDisplacement             |              | exact | As bump, or as a signed distance along the normal for Nanite tessellation.
ShaderNodeVectorDisplacement       |              | near  | Exact as bump; real displacement goes along the normal alone.
ShaderNodeBump                     |              | exact | The height is evaluated at three places, as Cycles does.
ShaderNodeNormalMap                |              | exact | In tangent, object and world space.
ShaderNodeTexImage                 |              | exact | Filtered texel by texel as Cycles does, without mip maps.
ShaderNodeTexImage                 | Mapping      | lost  | The node's own old mapping settings have no effect: use a Mapping node.
ShaderNodeTexImage                 | Sequence     | lost  | A sequence or movie is the picture that the node shows now.
ShaderNodeTexEnvironment           |              | exact | Equirectangular and mirror ball.
ShaderNodeTexNoise                 |              | exact | All dimensions and types.
ShaderNodeTexWhiteNoise            |              | exact | Bit for bit the same where its coordinates are.
ShaderNodeTexVoronoi               |              | exact | As in Blender 5.0 and newer, whose cells lie elsewhere than those of 4.x.
ShaderNodeTexGabor                 |              | exact | In two and three dimensions.
ShaderNodeTexBrick                 |              | exact | All settings.
ShaderNodeTexChecker               |              | exact | All settings.
ShaderNodeTexGradient              |              | exact | All settings.
ShaderNodeTexMagic                 |              | exact | All settings.
ShaderNodeTexWave                  |              | exact | All settings.
ShaderNodeRadialTiling             |              | exact | All settings.
ShaderNodeTexSky                   |              | lost  | Black: use Unreal's Sky Atmosphere.
ShaderNodeTexIES                   |              | lost  | 0: lamp profiles belong to Unreal's lights.
ShaderNodeTexPointDensity          |              | lost  | 0: clouds of points are not known to a material.
ShaderNodeTexCoord                 |              | exact | Generated, Normal, UV, Object and Reflection.
ShaderNodeTexCoord                 | Object       | lost  | The coordinates are those of the object itself: another object named in the node has no effect.
ShaderNodeTexCoord                 | Camera       | near  | Camera and Window follow Unreal's view.
ShaderNodeUVMap                    |              | exact | By the map's place among the mesh's UV maps.
ShaderNodeVertexColor              |              | exact | The one vertex colour that a mesh in Unreal has.
ShaderNodeVertexColor              | Name         | near  | A mesh in Unreal has one vertex colour: whatever layer is named, that one is read.
ShaderNodeAttribute                |              | exact | UV maps by name, and the vertex colour.
ShaderNodeAttribute                | Name         | near  | Not a UV map: read from the one vertex colour that a mesh in Unreal has.
ShaderNodeAttribute                | Property     | lost  | Properties of objects, instances and view layers are not known to a material: the vertex colour is read.
ShaderNodeNewGeometry              |              | exact | Position, normals, tangent, incoming and backfacing.
ShaderNodeNewGeometry              | Pointiness   | lost  | Pointiness is 0.5, Random Per Island 0 and Parametric 0: bake them to vertex colours.
ShaderNodeObjectInfo               |              | near  | The location is exact, the random number another one than Blender's; colour white, alpha 1, indices 0.
ShaderNodeCameraData               |              | exact | View vector and distances.
ShaderNodeTangent                  |              | exact | Radial, or along the first UV map.
ShaderNodeFresnel                  |              | exact | The same formula.
ShaderNodeLayerWeight              |              | exact | The same formulas.
ShaderNodeLightPath                |              | near  | What a camera ray sees: Is Camera Ray is 1, all other outputs 0.
ShaderNodeAmbientOcclusion         |              | lost  | The colour passes through, the occlusion is 1: Unreal computes its own.
ShaderNodeBevel                    |              | lost  | Edges stay sharp: the normal passes through.
ShaderNodeWireframe                |              | lost  | 0: the edges of the mesh are not known to a material.
ShaderNodeRaycast                  |              | lost  | 0: no rays are cast from a material.
ShaderNodeHairInfo                 |              | lost  | 0: strands are not known to a material.
ShaderNodeParticleInfo             |              | lost  | 0: particles are not known to a material.
ShaderNodePointInfo                |              | lost  | 0: points are not known to a material.
ShaderNodeUVAlongStroke            |              | lost  | 0: strokes are not known to a material.
ShaderNodeLightFalloff             |              | lost  | 0: belongs to lights.
ShaderNodeScript                   |              | lost  | 0: scripts in OSL are not translated.
ShaderNodeValue                    |              | exact | A live parameter.
ShaderNodeValue                    | Driver       | near  | A driver moves it: the value of the current frame counts.
ShaderNodeRGB                      |              | exact | A live parameter.
ShaderNodeMath                     |              | exact | All operations.
ShaderNodeVectorMath               |              | exact | All operations.
ShaderNodeMix                      |              | exact | Numbers, vectors and colours; rotations are not translated.
ShaderNodeMixRGB                   |              | exact | All blend modes.
ShaderNodeMapRange                 |              | exact | All interpolations.
ShaderNodeClamp                    |              | exact | Both modes.
ShaderNodeSeparateXYZ              |              | exact | The same.
ShaderNodeCombineXYZ               |              | exact | The same.
ShaderNodeSeparateColor            |              | exact | RGB, HSV and HSL.
ShaderNodeCombineColor             |              | exact | RGB, HSV and HSL.
ShaderNodeSeparateRGB              |              | exact | As Separate Color, which follows it.
ShaderNodeCombineRGB               |              | exact | As Combine Color, which follows it.
ShaderNodeSeparateHSV              |              | exact | As Separate Color, which follows it.
ShaderNodeCombineHSV               |              | exact | As Combine Color, which follows it.
ShaderNodeHueSaturation            |              | exact | The same formula.
ShaderNodeBrightContrast           |              | exact | The same formula.
ShaderNodeGamma                    |              | exact | The same formula.
ShaderNodeInvert                   |              | exact | The same formula.
ShaderNodeRGBToBW                  |              | exact | With all digits of Cycles' weights.
ShaderNodeMapping                  |              | exact | All types.
ShaderNodeVectorRotate             |              | exact | All types.
ShaderNodeVectorTransform          |              | exact | Between world, object and camera.
ShaderNodeNormal                   |              | exact | The same.
ShaderNodeSqueeze                  |              | near  | By EEVEE's formula: Cycles ignores the node.
ShaderNodeBlackbody                |              | exact | The same fit.
ShaderNodeWavelength               |              | exact | The same table.
ShaderNodeValToRGB                 |              | exact | Linear, constant and ease, in RGB, HSV and HSL, all ways round the hues, stops in any order.
ShaderNodeValToRGB                 | B-Spline     | near  | B-spline and cardinal ramps get linear stops that stay within a thousandth of the curve.
ShaderNodeRGBCurve                 |              | exact | By the same 257 samples that Cycles reads.
ShaderNodeVectorCurve              |              | exact | By the same 257 samples that Cycles reads.
ShaderNodeFloatCurve               |              | exact | By the same 257 samples that Cycles reads.
ShaderNodeGroup                    |              | exact | Dissolved ahead of the translation.
NodeGroupInput                     |              | exact | Dissolved ahead of the translation.
NodeGroupOutput                    |              | exact | Dissolved ahead of the translation.
NodeReroute                        |              | exact | Dissolved ahead of the translation.
NodeFrame                          |              | exact | Has no effect on the picture.
NodeImplicitConversion             |              | exact | Dissolved ahead of the translation.
FunctionNodeInputBool              |              | exact | Its value, ahead of the translation.
FunctionNodeInputInt               |              | exact | Its value, ahead of the translation.
FunctionNodeInputVector            |              | exact | Its value, ahead of the translation.
FunctionNodeInputMenu              |              | exact | Its choice, ahead of the translation.
GeometryNodeInputSceneTime         |              | near  | The time of the current frame.
GeometryNodeMenuSwitch             |              | exact | With a constant menu: the chosen branch, ahead of the translation.
GeometryNodeRepeatInput            |              | exact | With a constant number of turns: unrolled ahead of the translation.
GeometryNodeRepeatOutput           |              | exact | With a constant number of turns: unrolled ahead of the translation.
NodeClosureInput                   |              | exact | Put in where it is evaluated, ahead of the translation.
NodeClosureOutput                  |              | exact | Put in where it is evaluated, ahead of the translation.
NodeEvaluateClosure                |              | exact | Put in where it is evaluated, ahead of the translation.
NodeCombineBundle                  |              | exact | Taken apart ahead of the translation.
NodeSeparateBundle                 |              | exact | Taken apart ahead of the translation.
NodeJoinBundle                     |              | exact | Taken apart ahead of the translation.
""")
