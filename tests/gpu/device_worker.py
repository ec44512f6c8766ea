"""The process that owns the Vulkan device: takes compiled shaders and their data over a pipe and runs them.

`device` starts it and sends (spirv, data, result size, textures, groups); the answer is ("ok", bytes) or
("error", text). It is a separate process so that a crash of the driver loses one shader and not the test run. It always
ends with os._exit, because destroying the device after very many shaders can hang.
"""

import collections
import multiprocessing.connection
import os
import sys
import traceback

KEPT = 16


class Pipeline:
    """A compiled shader with its buffers and textures."""

    def __init__(self, gpu, spirv, data_size, result_size, sizes):
        from compushady.formats import R32_FLOAT, R32G32B32A32_FLOAT

        # On llvmpipe a read-only structured buffer reads as zeros. A typed buffer works.
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
            # The row pitch of a texture can be larger than its row size.
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
