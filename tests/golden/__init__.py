"""Documents whose complete results are kept as text, and the builders of documents that other tests use too.

`pytest tests/golden --update` writes the kept texts anew; `git diff` then shows what has changed.
"""
