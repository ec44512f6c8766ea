"""Results that are not finite although Blender's are, or although the inputs are ordinary: maximum counts, reasons."""

NO_HUE = (
    "HSV of an infinite colour has the saturation inf / inf, and leaves the channel alone that the hue says: "
    "Blender's hue is no number there either, and means red; ours is that of the infinite channel"
)
FAR_SINE = "the GPU's sine of an angle beyond all turns, divided by a scale at the edge of the denormals"
POWER = "the text is HLSL's pow, which knows no 1 to the power of infinity or of NaN"
FAR_NOISE = (
    "beyond 2e12 coordinates keep no remainder by 100000, and the noise there is another one: 16 octaves "
    "with a growing weight overflow with ours and do not with Blender's"
)

# Title of a case -> (number of components of all samples that are not finite where Blender's are, reason).
AGAINST_BLENDER = {
    "Mix RGBA SATURATION True Result_Color": (5, NO_HUE),
    "Mix RGBA COLOR True Result_Color": (11, NO_HUE),
    "Gamma Color": (15, POWER),
    "Mapping TEXTURE Vector": (1, FAR_SINE),
    **{
        f"TexNoise 3D {kind} {normalize} {output}": (3, FAR_NOISE)
        for kind in ("MULTIFRACTAL", "HETERO_TERRAIN")
        for normalize in (False, True)
        for output in ("Fac", "Color")
    },
}

# Pattern of a library name -> why it returns infinity or NaN for ordinary inputs.
OUT_OF_RANGE = {
    r"hue_range": "a grey has no hue",
    r"rgb_to_hsl": "the saturation is infinite where the largest and the smallest component add up to 0 or 2",
    r"noise_(fractal|texture)\d_FBM|tex_wave": "with a negative roughness the octaves' weights can add up to 0",
    r"radial_tiling": "there are no tiles of less than two sides",
    r"voronoi_(un)?root|voronoi_distance\d|voronoi_octave\d": "an exponent of 0 has no sense",
    r"modulo_step": "the quotient by 0 is for its caller to keep away",
    r"fractal_voronoi_\w+": "an exponent, a largest distance or a lacunarity of 0",
}
