"""Times MaterialX making the shader of a material, and prints it as JSON. Runs in an environment of its own.

    materialx_shader.py LAYERS

A material is layers of 3D noise, a ramp and a mix under a standard surface. Warm: the libraries are loaded,
the document is there, and the shader was made before.
"""
import json
import statistics
import sys
import time

import MaterialX as mx
import MaterialX.PyMaterialXGenGlsl as glsl
import MaterialX.PyMaterialXGenShader as gen

REPEATS = 15


def _material(layers):
    document = mx.createDocument()
    libraries = mx.createDocument()
    search = mx.getDefaultDataSearchPath()
    mx.loadLibraries(mx.getDefaultDataLibraryFolders(), search, libraries)
    document.setDataLibrary(libraries)
    below = None
    for i in range(layers):
        noise = document.addNode("noise3d", f"noise{i}", "float")
        ramp = document.addNode("ramplr", f"ramp{i}", "color3")
        ramp.setInputValue("valuel", mx.Color3(0.1, 0.2, 0.3))
        ramp.setInputValue("valuer", mx.Color3(0.9, 0.7, 0.4))
        mix = document.addNode("mix", f"mix{i}", "color3")
        mix.setConnectedNode("fg", ramp)
        mix.setConnectedNode("mix", noise)
        if below:
            mix.setConnectedNode("bg", below)
        below = mix
    surface = document.addNode("standard_surface", "surface", "surfaceshader")
    surface.setConnectedNode("base_color", below)
    return document, document.addMaterialNode("material", surface), search


def main(layers):
    document, element, search = _material(layers)
    generator = glsl.GlslShaderGenerator.create()
    context = gen.GenContext(generator)
    context.registerSourceCodeSearchPath(search)
    colours = gen.DefaultColorManagementSystem.create(generator.getTarget())
    colours.loadLibrary(document.getDataLibrary())
    generator.setColorManagementSystem(colours)
    shader = generator.generate("warm", element, context)
    texts = [shader.getSourceCode(stage) for stage in ("vertex", "pixel")]
    times = []
    for _ in range(REPEATS):
        start = time.process_time()
        generator.generate("shader", element, context)
        times.append((time.process_time() - start) * 1e6)
    print(json.dumps({"version": mx.getVersionString(), "nodes": 3 * layers + 1, "us": min(times),
                      "median": statistics.median(times), "kilobytes": sum(map(len, texts)) / 1000}))


if __name__ == "__main__":
    main(int(sys.argv[1]))
