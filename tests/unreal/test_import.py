"""Imports of the example materials in every version of Unreal."""

import pytest

from double import tables


@pytest.mark.parametrize("version", tables.VERSIONS)
def test_all_examples_import_and_a_second_import_changes_nothing(start, examples, version):
    ue = start(version)
    outcomes = ue.plugin.import_all(examples, instanced=version == (5, 6))
    assert not ue.editor.texts("log_error")
    assert {o.status for o in outcomes} == {"made"} and len(outcomes) == 22
    ue.editor.save_all()
    ue.editor.compiled.clear()
    again = ue.plugin.import_all(examples, instanced=version == (5, 6))
    assert {o.status for o in again} == {"unchanged"}
    assert not ue.editor.unsaved and not ue.editor.compiled
