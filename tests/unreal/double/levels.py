"""Levels and actors."""

from . import objects

SHAPES = {"/Engine/BasicShapes/Sphere", "/Engine/BasicShapes/Plane", "/Engine/BasicShapes/Cube"}


def fill(module, editor):
    module.LevelEditorSubsystem, module.EditorActorSubsystem = _levels(editor), _actors(module, editor)
    module.get_editor_subsystem = lambda kind: kind()
    module.StaticMesh = type("StaticMesh", (objects.Object,), {"_module": module})
    text = {"text": "str", "world_size": "float", "horizontal_alignment": "HorizTextAligment"}
    module.TextRenderComponent = type("TextRenderComponent", (objects.Object,), {"_types": text, "_module": module})
    module.StaticMeshComponent = _mesh_component(module)
    for name, part in (("StaticMeshActor", "static_mesh_component"), ("TextRenderActor", "text_render")):
        component = {"static_mesh_component": "StaticMeshComponent", "text_render": "TextRenderComponent"}[part]
        setattr(module, name, type(name, (_Actor,), {"_types": {part: component}, "_module": module}))
    load = module.EditorAssetLibrary.load_asset
    module.EditorAssetLibrary.load_asset = staticmethod(
        lambda path: module.StaticMesh(editor, None, path) if path in SHAPES else load(path)
    )


class _Actor(objects.Object):
    def set_actor_label(self, label):
        object.__setattr__(self, "_label", label)

    def set_actor_scale3d(self, scale):
        if type(scale).__name__ != "Vector":
            raise TypeError("a Vector")
        object.__setattr__(self, "_scale", scale)


def _mesh_component(module):
    def set_material(self, element_index, material):
        if not isinstance(material, module.MaterialInterface):
            raise TypeError("a material")
        object.__setattr__(self, "_material", material)

    members = {"_types": {}, "_module": module, "set_material": set_material}
    return type("StaticMeshComponent", (objects.Object,), members)


def _actors(module, editor):
    def spawn(kind, location):
        if not isinstance(location, module.Vector):
            raise TypeError("a Vector")
        actor = kind(editor)
        for part, component in kind._types.items():
            actor._values[part] = getattr(module, component)(editor, actor)
        object.__setattr__(actor, "_location", location)
        editor.actors.append(actor)
        return actor

    class EditorActorSubsystem:
        def spawn_actor_from_object(self, object_to_use, location, rotation=None, transient=False):
            assert isinstance(object_to_use, module.StaticMesh)
            return spawn(module.StaticMeshActor, location)

        def spawn_actor_from_class(self, actor_class, location, rotation=None, transient=False):
            return spawn(actor_class, location)

    return EditorActorSubsystem


def _levels(editor):
    class LevelEditorSubsystem:
        def new_level(self, asset_path):
            editor.level = asset_path
            editor.assets[asset_path] = objects.Object(editor, None, asset_path.rsplit("/", 1)[1])
            return True

        def load_level(self, asset_path):
            editor.level = asset_path
            return asset_path in editor.assets

    return LevelEditorSubsystem
