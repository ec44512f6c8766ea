"""The seed of what is drawn by chance: shown also when all goes well, and another one each time.

QUILLGEN_SEED=N pytest ...    draws the same again
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
