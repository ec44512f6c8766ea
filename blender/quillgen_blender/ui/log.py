"""The log: one line for every export, on the console."""

import logging

from ..exporting import Outcome

LOGGER = logging.getLogger("quillgen")
HANDLER = logging.StreamHandler()
HANDLER.setFormatter(logging.Formatter("%(asctime)s quillgen: %(message)s", "%H:%M:%S"))


def register(on: bool) -> None:
    LOGGER.propagate = False
    switch(on)


def unregister() -> None:
    switch(False)


def switch(on: bool) -> None:
    LOGGER.setLevel(logging.INFO if on else logging.CRITICAL)
    if on and HANDLER not in LOGGER.handlers:
        LOGGER.addHandler(HANDLER)
    if not on and HANDLER in LOGGER.handlers:
        LOGGER.removeHandler(HANDLER)


def tell(outcome: Outcome) -> None:
    if outcome.error:
        LOGGER.error("%s: %s", outcome.where, outcome.error)
        return
    LOGGER.info(
        "%s: %s, %d parameters, %d textures, %.0f ms",
        outcome.name,
        outcome.changed,
        outcome.parameters,
        outcome.textures,
        1000 * outcome.seconds,
    )
    for remark in outcome.remarks:
        LOGGER.info("%s: %s: %s (%s)", outcome.name, remark["node"] or "material", remark["text"], remark["loss"])
