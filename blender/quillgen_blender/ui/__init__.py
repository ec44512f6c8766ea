"""The interface: panels, operators, preferences, live update. This room imports bpy."""
