// Docstrings of quillgen_lib. The examples are run by tests/tools/test_docstrings.py.
#pragma once

inline constexpr char kModuleDoc[] =
    R"(The HLSL library of quillgen's texts.

resolve      the function texts for a set of names
NAMES        all names that resolve knows, a tuple of str
STRUCTS      name -> text of a struct for file level, read-only
TYPES        dimension 1 to 4 -> HLSL type of a coordinate, read-only
__version__  the version, such as "0.2.0")";

inline constexpr char kResolveDoc[] =
    R"(resolve(need, /)
--

The HLSL texts of the named functions and of all that they call.

need  an iterable of names

Returns a list of str: each function once, each after those that it calls.
Raises KeyError for a name that isn't known, TypeError where need can't be
iterated over.

>>> import quillgen_lib
>>> len(quillgen_lib.resolve({"safe_divide", "safe_divide3"}))
2
>>> quillgen_lib.resolve(["no such function"])
Traceback (most recent call last):
KeyError: "quillgen_lib has no function named 'no such function'")";
