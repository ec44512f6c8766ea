"""The process that owns the Vulkan device: takes compiled shaders and their data over a pipe and runs them.

`device` starts it and sends (spirv, data, result size, textures, groups); the answer is ("ok", bytes) or
("error", text). It is a process of its own because tearing the device down after very many shaders can hang,
and a crash of the driver should cost one shader and not the tests: it always ends with os._exit.
"""

import collections
import multiprocessing.connection
import os
import sys
import traceback

KEPT = 16


class Pipeline:
    """One compiled shader with the buffers and textures that it is bound to."""

    def __init__(self, gpu, spirv, data_size, result_size, sizes):
        from compushady.formats import R32_FLOAT, R32G32B32A32_FLOAT

        # A structured buffer as a read-only resource reads zeros on llvmpipe; a typed one works.
        self.data = gpu.Buffer(data_size, format=R32_FLOAT)
        self.result = gpu.Buffer(result_size, stride=4)
        self.upload = gpu.Buffer(data_size, gpu.HEAP_UPLOAD)
        self.readback = gpu.Buffer(result_size, gpu.HEAP_READBACK)
        self.textures = [gpu.Texture2D(width, height, R32G32B32A32_FLOAT) for height, width in sizes]
        self.staging = [gpu.Buffer(t.row_pitch * t.height, gpu.HEAP_UPLOAD) for t in self.textures]
        self.compute = gpu.Compute(spirv, srv=[self.data, *self.textures], uav=[self.result], samplers=[gpu.Sampler()])

    def run(self, data, textures, groups):
        self.upload.upload(data)
        self.upload.copy_to(self.data)
        for texture, staging, texels in zip(self.textures, self.staging, textures):
            # The rows of a texture can have a pitch that is wider than what they hold.
            staging.upload2d(texels.tobytes(), texture.row_pitch, texture.width, texture.height, 16)
            staging.copy_to(texture)
        self.compute.dispatch(groups, 1, 1)
        self.result.copy_to(self.readback)
        return self.readback.readback()


def serve(pipe):
    import compushady as gpu

    pipe.send(gpu.get_current_device().name)
    pipelines = collections.OrderedDict()
    while True:
        spirv, data, result_size, textures, groups = pipe.recv()
        key = (spirv, len(data), result_size, tuple(t.shape[:2] for t in textures))
        try:
            if key not in pipelines:
                pipelines[key] = Pipeline(gpu, *key)
                if len(pipelines) > KEPT:
                    pipelines.popitem(last=False)
            pipelines.move_to_end(key)
            pipe.send(("ok", bytes(pipelines[key].run(data, textures, groups))))
        except Exception:
            pipelines.pop(key, None)
            pipe.send(("error", traceback.format_exc()))


if __name__ == "__main__":
    try:
        serve(multiprocessing.connection.Connection(int(sys.argv[1])))
    except (EOFError, ConnectionError):
        pass
    except BaseException:
        traceback.print_exc()
    os._exit(0)
