"""What a call may come to, and what every call of a bad document must keep to."""

import contextlib
import copy
import functools

import quillgen
from golden.cases import all_cases

# The translation of a document that is not sound fails with one of these, and with nothing else. A SystemError
# is the interpreter's word for an exception set beside a result, or for none beside no result.
ERRORS = (
    quillgen.Unsupported,
    KeyError,
    IndexError,
    TypeError,
    ValueError,
    OverflowError,
    AttributeError,
    RecursionError,
)

CALLS = {
    "compile": lambda document: quillgen.compile(document),
    "compile emission": lambda document: quillgen.compile(document, mode="emission"),
    "compile literals": lambda document: quillgen.compile(document, use_params=False),
    "parts": lambda document: quillgen.parts(document),
    "parts surface": lambda document: quillgen.parts(document, "surface", True, (0.5, 1)),
}


@functools.cache
def _base_documents():
    """title -> a sound document with every socket of one node type linked, where it has any."""
    documents = {}
    for kind, cases in all_cases().items():
        for title in ("everything linked", "as Blender makes it"):
            if title in cases:
                documents[kind] = cases[title].document
                break
    bumped = all_cases()["settings"]
    documents.update({title: case.document for title, case in bumped.items() if case.document})
    return documents


def base_documents():
    return {title: copy.deepcopy(document) for title, document in _base_documents().items()}


def outcome(call, document, further=()):
    """("result", the result) or ("error", type, what it says). Any other exception goes on to the test."""
    try:
        return "result", call(document)
    except ERRORS + tuple(further) as error:
        return "error", type(error), str(error)


def plain(value):
    """A value as a text that shows types and orders, and equal texts of not-a-number as equal."""
    if isinstance(value, dict):
        return [type(value).__name__, [[plain(k), plain(v)] for k, v in value.items()]]
    if isinstance(value, (list, tuple)):
        return [type(value).__name__, [plain(v) for v in value]]
    if isinstance(value, (set, frozenset)):
        return [type(value).__name__, sorted(map(repr, value))]
    return f"{type(value).__name__} {value!r}"


def paths(value, path=()):
    """The path of every value inside a document, the document's own first."""
    yield path
    if isinstance(value, dict):
        for key in value:
            yield from paths(value[key], (*path, key))
    elif isinstance(value, (list, tuple)):
        for place in range(len(value)):
            yield from paths(value[place], (*path, place))


def at(document, path):
    return functools.reduce(lambda value, key: value[key], path, document)


def put(document, path, value):
    """The document with another value at the path; lists and dicts are changed in place."""
    if not path:
        return value
    at(document, path[:-1])[path[-1]] = value
    return document


@contextlib.contextmanager
def changed(document, path, value):
    """The same for a while: the document is whole again afterwards."""
    before = at(document, path)
    yield put(document, path, value)
    put(document, path, before)
