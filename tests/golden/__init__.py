"""Documents whose complete results are stored as text, and the builders of documents that other tests use too.

`pytest tests/golden --update` rewrites the stored texts; `git diff` then shows what changed.
"""
