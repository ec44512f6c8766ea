"""The minimal cost of a call, as a function that is timed beside it.

A first call, on a document whose dicts and lists keep a log, records what is read. The floor reads each of these keys
once, of a document that it has not seen before, and rebuilds the call's result from finished strings, in C++: each
dict, each list and each string except those that all results share. The digits of a curve's samples, which differ in
each document, are formatted again, too.
"""

import sys

import native
import quillgen_lib

bench_floor = native.extension("floor")


class _Map(dict):
    def __getitem__(self, key):
        self.log.append((self.origin, key))
        return dict.__getitem__(self, key)

    def get(self, key, default=None):
        self.log.append((self.origin, key))
        return dict.get(self, key, default)

    def __contains__(self, key):
        self.log.append((self.origin, key))
        return dict.__contains__(self, key)

    def __iter__(self):
        return (self.log.append((self.origin, key)) or key for key in dict.__iter__(self))

    def keys(self):
        return iter(self)

    def values(self):
        return (self[key] for key in dict.__iter__(self))

    def items(self):
        return ((key, self[key]) for key in dict.__iter__(self))


class _List(list):
    def __getitem__(self, place):
        self.log.append((self.origin, place))
        return list.__getitem__(self, place)

    def __iter__(self):
        return (self[i] for i in range(len(self)))


def _logging(thing, log):
    if isinstance(thing, dict):
        copy = _Map({key: _logging(value, log) for key, value in thing.items()})
    elif isinstance(thing, list):
        copy = _List(_logging(value, log) for value in thing)
    else:
        return thing
    copy.log, copy.origin = log, thing
    return copy


def _containers(thing, found):
    """All dicts and lists in a value, in the order of the value."""
    if isinstance(thing, (dict, list)):
        found.append(thing)
        for value in thing.values() if isinstance(thing, dict) else thing:
            _containers(value, found)
    return found


def _reads(call, document):
    """What the call reads of the document: (index among its containers, key). Each key once, in order."""
    log = []
    call(_logging(document, log))
    indices = {id(container): i for i, container in enumerate(_containers(document, []))}
    once = dict.fromkeys((indices[id(container)], key) for container, key in log)
    return [(index, sys.intern(key) if isinstance(key, str) else key) for index, key in once]


def _pieces(code, need):
    """The strings that the HLSL is joined from: those of the library, and what is between and after them."""
    head, mark, body = code.partition("QWK L;\n")
    if not mark:
        return [code.encode("utf-8", "surrogatepass")]
    pieces = []
    for text in [*quillgen_lib.STRUCTS.values(), *quillgen_lib.resolve(need)]:
        before, found, after = head.partition(f"{text}\n")
        if found:
            pieces += [before[:-1].encode()] if before else []
            pieces.append(text)
            head = after
    return [*pieces, f"{head}QWK L;\n{body}".encode("utf-8", "surrogatepass")]


def _form(thing, need, words):
    """A result in the form from which floor.cpp rebuilds it. `words`: ids of the strings that all results share."""
    if isinstance(thing, dict):
        return {
            _form(key, need, words): ("\n", _pieces(value, need)) if key == "code" else _form(value, need, words)
            for key, value in thing.items()
        }
    if isinstance(thing, list):
        return [_form(value, need, words) for value in thing]
    return thing.encode("utf-8", "surrogatepass") if isinstance(thing, str) and id(thing) not in words else thing


def _strings(thing, found):
    if isinstance(thing, str):
        found.add(id(thing))
    elif isinstance(thing, (dict, list, set)):
        for value in thing:
            _strings(value, found)
        for value in thing.values() if isinstance(thing, dict) else ():
            _strings(value, found)
    return found


class Floor:
    """The necessary work of `call(document)`, for documents of the same structure. `need`: the library names that its
    HLSL needs."""

    def __init__(self, call, document, need):
        first, second = call(document), call(document)
        self._reads = _reads(call, document)
        self._form = _form(first, need, _strings(first, set()) & _strings(second, set()))
        if bench_floor.replay(*self.prepared(document)) != first:
            raise AssertionError("the floor makes another result")

    def prepared(self, document):
        """The arguments of the floor's function for one document."""
        containers = _containers(document, [])
        reads = tuple(item for index, key in self._reads for item in (containers[index], key))
        curves = (node["curve"] for node in document["nodes"] if "curve" in node)
        return reads, self._form, tuple(table for curve in curves for table in curve["tables"])

    @staticmethod
    def run(prepared):
        return bench_floor.replay(*prepared)
