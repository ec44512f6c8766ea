"""The least that a call can cost, as a function to be timed beside it.

A first call on a document whose maps and lists keep a log tells what is read. The floor reads each of these
keys once and makes the call's result from finished strings, in C.
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


def reads(call, document):
    """What the call reads of the document: container, key, container, key ... Each key once, in order."""
    log = []
    call(_logging(document, log))
    once = {(id(container), key): (container, key) for container, key in log}
    flat = []
    for container, key in once.values():
        flat += [container, sys.intern(key) if isinstance(key, str) else key]
    return tuple(flat)


def _pieces(code, need):
    """A text as it is joined: the library's texts, what stands between them, and each statement."""
    head, mark, body = code.partition("QWK L;\n")
    if not mark:
        return code.split("\n")
    pieces = []
    for text in [*quillgen_lib.STRUCTS.values(), *quillgen_lib.resolve(need)]:
        before, found, after = head.partition(f"{text}\n")
        if found:
            pieces += [before[:-1]] if before else []
            pieces.append(text)
            head = after
    return [*pieces, head + "QWK L;", *body.split("\n")]


def _form(thing, need, shared):
    """A result as floor.c makes it again. What the call did not make itself is left as it is."""
    if isinstance(thing, (dict, list)) and id(thing) in shared:
        return (thing,)
    shared.add(id(thing))
    if isinstance(thing, dict):
        return {key: ("\n", _pieces(value, need)) if key == "code" else _form(value, need, shared)
                for key, value in thing.items()}
    if isinstance(thing, list):
        return [_form(value, need, shared) for value in thing]
    return thing


def _containers(thing, found):
    if isinstance(thing, (dict, list)):
        found.add(id(thing))
        for value in thing.values() if isinstance(thing, dict) else thing:
            _containers(value, found)
    return found


def floor(call, document, need):
    """A function that does what `call(document)` cannot do without. `need`: the library names of its text."""
    result = call(document)
    plan = reads(call, document)
    form = _form(result, need, _containers(document, set()))
    if bench_floor.replay(plan, form) != result:
        raise AssertionError("the floor makes another result")
    return lambda: bench_floor.replay(plan, form)
