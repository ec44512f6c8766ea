"""All golden cases: file -> title -> Case."""

import functools
from typing import NamedTuple

import quillgen


class Case(NamedTuple):
    """One document and how it is translated. If that takes more than one call, `make` returns the result."""

    title: str
    document: dict | None = None
    mode: str = "emission"
    use_params: bool = False
    make: object = None

    def result(self):
        if self.make:
            return self.make()
        return quillgen.compile(self.document, self.mode, self.use_params)


@functools.cache
def all_cases():
    from golden.cases import general, materials, shaders, surface, texture, value, whole

    files: dict[str, dict[str, Case]] = {}
    for module in (general, shaders, value, texture, surface, whole, materials):
        for file, cases in module.cases():
            titles = files.setdefault(file, {})
            for case in cases:
                assert case.title not in titles, f"two cases {case.title!r} of {file}"
                titles[case.title] = case
    return files
