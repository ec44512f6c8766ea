"""Checks of the user interface that run inside Blender. Each is a function that asserts. One file per subject."""

SUBJECTS = (
    "exported",
    "linked",
    "unusual",
    "artists_read",
    "drawn_panels",
    "many_materials",
    "live_update",
    "live_time",
    "command_line",
)
