"""A sample of the comparison with Cycles that runs in minutes. See test_fidelity.py for the whole comparison."""

import compare
import report

EVERY = 12


def test_a_sample_agrees_with_cycles():
    outcomes = compare.run(every=EVERY)
    assert len(outcomes) > 200 and len({one.node for one in outcomes}) > 30
    assert report.disagreeing(outcomes) == []
    agreeing, pixels = report.count([one for one in outcomes if not one.reason])
    assert agreeing >= 0.999 * pixels, report.troubles(outcomes)
