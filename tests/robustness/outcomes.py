"""The possible outcomes of a call, and helpers that change documents."""

import contextlib
import copy
import functools

import quillgen
from golden.cases import all_cases

# The translation of an invalid document raises one of these and nothing else. The interpreter raises SystemError if a
# function returns a result with an exception set, or no result without one.
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
    """title -> a valid document where every socket of one node type is linked, if it has any."""
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
    """Returns ("result", the result) or ("error", type, message). Any other exception propagates to the test."""
    try:
        return "result", call(document)
    except ERRORS + tuple(further) as error:
        return "error", type(error), str(error)


def plain(value):
    """A comparable form of a value that shows types and order. All NaNs compare equal."""
    if isinstance(value, dict):
        return [type(value).__name__, [[plain(k), plain(v)] for k, v in value.items()]]
    if isinstance(value, (list, tuple)):
        return [type(value).__name__, [plain(v) for v in value]]
    if isinstance(value, (set, frozenset)):
        return [type(value).__name__, sorted(map(repr, value))]
    return f"{type(value).__name__} {value!r}"


def paths(value, path=()):
    """The path of every value inside a document, starting with that of the document."""
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
    """Replaces the value at the path in place. Returns the document."""
    if not path:
        return value
    at(document, path[:-1])[path[-1]] = value
    return document


@contextlib.contextmanager
def changed(document, path, value):
    """Like `put`, but restores the document afterwards."""
    before = at(document, path)
    yield put(document, path, value)
    put(document, path, before)
