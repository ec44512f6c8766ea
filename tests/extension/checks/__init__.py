"""Checks of the interface that run inside Blender, each a function that fails by an assertion. One file a subject."""

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
