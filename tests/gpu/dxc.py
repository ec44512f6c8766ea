"""Calls Microsoft's HLSL compiler DXC, the one that Unreal uses, with any options.

The compiler is a shared library in the package compushady, whose own interface to it has fixed options.
"""

import ctypes
import functools
import importlib.util
import pathlib
import uuid

CLSID_COMPILER = "73e22d93-e6ce-47f3-b5bf-f0664f39c1b0"
IID_COMPILER3 = "228b4687-5a6a-4730-900c-9702b2203f54"
IID_OPERATION_RESULT = "58346cda-dde7-4497-9461-6f87af5e0659"

# Indices in an interface's method table. The first three are IUnknown's. On Linux they are followed by two entries of a
# virtual destructor, so an interface's own methods begin at 5.
RELEASE = 2
COMPILE, DISASSEMBLE = 5, 6
GET_STATUS, GET_RESULT, GET_ERRORS = 5, 6, 7
BLOB_POINTER, BLOB_SIZE = 5, 6

UTF8 = 65001

# Binding offsets of the t, u and s registers in compushady's Vulkan backend.
VULKAN_BINDINGS = (
    "-fvk-t-shift",
    "1024",
    "0",
    "-fvk-u-shift",
    "2048",
    "0",
    "-fvk-s-shift",
    "3072",
    "0",
    "-fvk-use-scalar-layout",
    "-fspv-target-env=vulkan1.1",
)


class DxcError(Exception):
    """The text did not compile. The message is the compiler's."""


class Source(ctypes.Structure):
    _fields_ = [("data", ctypes.c_char_p), ("size", ctypes.c_size_t), ("encoding", ctypes.c_uint32)]


def _guid(text):
    return (ctypes.c_ubyte * 16).from_buffer_copy(uuid.UUID(text).bytes_le)


def _call(interface, place, *args, result=ctypes.c_int32):
    table = ctypes.cast(interface, ctypes.POINTER(ctypes.POINTER(ctypes.c_void_p)))[0]
    prototype = ctypes.CFUNCTYPE(result, ctypes.c_void_p, *(type(a) for a in args))
    return prototype(table[place])(interface, *args)


def _pointer(thing):
    return ctypes.cast(ctypes.byref(thing), ctypes.c_void_p)


@functools.cache
def _compiler():
    package = importlib.util.find_spec("compushady")
    if package is None:
        raise RuntimeError("the package compushady is missing: run tools/setup")
    folder = pathlib.Path(package.origin).parent / "backends"
    library = ctypes.CDLL(str(next(folder.glob("libdxcompiler*.so*"))))
    # The library's exit handler has been seen to wait for a lock for ever, so end the process without it.
    libc = ctypes.CDLL(None)
    libc.on_exit(ctypes.cast(libc._exit, ctypes.c_void_p), None)
    made = ctypes.c_void_p()
    status = library.DxcCreateInstance(_guid(CLSID_COMPILER), _guid(IID_COMPILER3), ctypes.byref(made))
    if status != 0:
        raise RuntimeError(f"DXC gives no compiler: {status & 0xFFFFFFFF:#x}")
    return made


def _blob(result, getter):
    """The bytes that a getter of an operation's result returns; empty if there are none."""
    blob = ctypes.c_void_p()
    _call(result, getter, _pointer(blob))
    if not blob:
        return b""
    size = _call(blob, BLOB_SIZE, result=ctypes.c_size_t)
    data = ctypes.string_at(_call(blob, BLOB_POINTER, result=ctypes.c_void_p), size) if size else b""
    _call(blob, RELEASE, result=ctypes.c_uint32)
    return data


def _finish(called, result):
    """The output bytes of an operation that returned the code `called`. Raises DxcError if it failed."""
    if called != 0 or not result:
        raise DxcError(f"DXC failed with {called & 0xFFFFFFFF:#x}")
    status = ctypes.c_int32(-1)
    _call(result, GET_STATUS, _pointer(status))
    messages = _blob(result, GET_ERRORS).rstrip(b"\0").decode("utf-8", "replace").strip()
    data = _blob(result, GET_RESULT) if status.value == 0 else b""
    _call(result, RELEASE, result=ctypes.c_uint32)
    if status.value != 0:
        raise DxcError(messages or f"DXC failed with {status.value & 0xFFFFFFFF:#x}")
    return data


@functools.lru_cache(maxsize=256)
def compile_hlsl(source, entry="main", target="cs_6_6", spirv=False, hv="2021", werror=True, extra=()):
    """Compiles a text. Returns DXIL, or SPIR-V with the bindings that `device` expects. Raises DxcError.

    `hv` is the language version (2018 or 2021), `extra` a tuple of further compiler options.
    """
    options = ["-E", entry, "-T", target, "-HV", str(hv), *extra]
    options += ["-WX"] if werror else []
    options += ["-spirv", *VULKAN_BINDINGS] if spirv else []
    words = (ctypes.c_wchar_p * len(options))(*options)
    data = source.encode()
    text, result = Source(data, len(data), UTF8), ctypes.c_void_p()
    called = _call(
        _compiler(),
        COMPILE,
        _pointer(text),
        ctypes.cast(words, ctypes.c_void_p),
        ctypes.c_uint32(len(options)),
        ctypes.c_void_p(),
        ctypes.cast(_guid(IID_OPERATION_RESULT), ctypes.c_void_p),
        _pointer(result),
    )
    return _finish(called, result)


def disassemble(dxil):
    """The disassembly of a DXIL object."""
    box, result = Source(dxil, len(dxil), 0), ctypes.c_void_p()
    called = _call(
        _compiler(),
        DISASSEMBLE,
        _pointer(box),
        ctypes.cast(_guid(IID_OPERATION_RESULT), ctypes.c_void_p),
        _pointer(result),
    )
    return _finish(called, result).rstrip(b"\0").decode()


def instructions(dxil):
    """The instructions of all function bodies, one per line.

    Everything is inlined, so a shader has only its entry function. Labels, comments, declarations and metadata are not
    counted. A switch with all its cases is one instruction.
    """
    found, inside = [], False
    for line in disassemble(dxil).splitlines():
        if line.startswith("define "):
            inside = True
        elif line.startswith("}"):
            inside = False
        elif inside and line.startswith("  ") and not line.startswith(("   ", "  ]", "  ;")):
            found.append(line.strip())
    return found


def instruction_count(dxil):
    """The number of DXIL instructions of the entry function after inlining and optimization."""
    return len(instructions(dxil))
