"""The docstrings of the modules: their examples run, and they are complete."""

import doctest
import inspect
import pydoc
import tomllib
from pathlib import Path

import pytest

import quillgen
import quillgen_lib

PROJECT = Path(__file__).resolve().parents[2] / "pyproject.toml"
FUNCTIONS = [
    pytest.param(module, name, id=f"{module.__name__}.{name}")
    for module in (quillgen, quillgen_lib)
    for name, value in vars(module).items()
    if inspect.isbuiltin(value) and not name.startswith("_")
]


def test_there_are_functions():
    assert len(FUNCTIONS) == 6


@pytest.mark.parametrize("module, name", FUNCTIONS)
def test_examples(module, name):
    doc = inspect.getdoc(getattr(module, name))
    test = doctest.DocTestParser().get_doctest(doc, {}, name, None, None)
    assert test.examples
    outcome = doctest.DocTestRunner(optionflags=doctest.IGNORE_EXCEPTION_DETAIL).run(test)
    assert not outcome.failed


@pytest.mark.parametrize("module, name", FUNCTIONS)
def test_arguments_result_and_errors_are_told(module, name):
    function = getattr(module, name)
    doc = inspect.getdoc(function)
    for argument in inspect.signature(function).parameters:
        assert argument in doc
    assert "Returns" in doc and ("Raises" in doc or name == "param_name")
    assert max(map(len, doc.splitlines())) < 80


@pytest.mark.parametrize("module", [quillgen, quillgen_lib], ids=lambda module: module.__name__)
def test_the_module_names_all_that_it_has(module):
    public = [name for name in vars(module) if not name.startswith("_") or name == "__version__"]
    assert [name for name in public if name not in module.__doc__] == []
    assert "NODES" in pydoc.plain(pydoc.render_doc(module)) or module is quillgen_lib


def test_the_version_is_that_of_the_project():
    version = tomllib.loads(PROJECT.read_text(encoding="utf-8"))["project"]["version"]
    assert quillgen.__version__ == quillgen_lib.__version__ == version
