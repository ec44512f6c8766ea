"""Options of the passes, chosen by the artist."""

from dataclasses import dataclass
from typing import Literal

LiveParameters = Literal["auto", "all", "named", "none"]


@dataclass(frozen=True)
class Options:
    """The defaults suit most materials.

    `parameters`: which numbers and colours become parameters of the Unreal material. "all": every unlinked socket;
    "named": Value and RGB nodes, inputs of groups, and what the artist marked; "none": no parameters, all values are
    literals in the HLSL; "auto": "all" up to `parameter_limit` parameters, "named" above.

    `exact_luma`: a colour that feeds a number is weighted with all the digits that Cycles has. The weights of the
    generated HLSL have four, which is visible if the number is a seed or a coordinate.

    `smooth_ramps`: ramps with B-spline or cardinal interpolation get linear stops instead, as few as stay within
    `ramp_tolerance` of what Cycles shows. Without it they are linear between the artist's stops.

    `nearest_shaders`: shaders that the translator lacks are replaced by the nearest one that it has.

    `clear_mixes`: where the surface is a Mix Shader with a transparent side, the other side keeps its colours, and its
    opacity is the factor, as in Blender. Without it soft edges are dark. Unlit materials, which have no opacity, stay
    as they are.

    `bumped_normals`: nodes that read the shading normal and feed both the surface and the displacement use the bumped
    normal in the surface, as in Blender. They are duplicated for the displacement.

    `find_range`: the magnitude of real displacement is computed from the nodes that feed it.
    """

    parameters: LiveParameters = "auto"
    parameter_limit: int = 200
    exact_luma: bool = True
    smooth_ramps: bool = True
    ramp_tolerance: float = 1e-3
    nearest_shaders: bool = True
    clear_mixes: bool = True
    bumped_normals: bool = True
    find_range: bool = True
