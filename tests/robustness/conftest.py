"""The seed of random tests. It differs in each run and is always printed, also when the tests pass.

QUILLGEN_SEED=N pytest ...    repeats a run
"""

import os
import random

import pytest


@pytest.fixture
def seed(capsys, request):
    seed = int(os.environ.get("QUILLGEN_SEED") or random.SystemRandom().randrange(2**31))
    with capsys.disabled():
        print(f"\n{request.node.name}: seed {seed}")
    return seed
