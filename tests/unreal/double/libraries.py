"""The editor's static function libraries: assets, materials, textures, console, progress."""

import pathlib

from . import tables


def fill(module, editor):
    module.EditorAssetLibrary = _assets(editor)
    module.MaterialEditingLibrary = _materials(module, editor)
    module.AssetToolsHelpers = _asset_tools(module, editor)
    module.AssetImportTask = _import_task(module)
    module.SystemLibrary = _system(editor)
    module.Paths = _paths(editor)
    module.ScopedSlowTask = _slow_task(editor)
    module.ScopedEditorTransaction = _transaction(editor)
    module.MaterialFactoryNew = type("MaterialFactoryNew", (), {})
    module.MaterialInstanceConstantFactoryNew = type("MaterialInstanceConstantFactoryNew", (), {})
    for level in ("log", "log_warning", "log_error"):
        setattr(module, level, lambda text, level=level: editor.log.append((level, _text(text))))

    def new_object(type, outer=None, name="", base_type=None):
        return prepared(type(editor, outer, name or "Object_0"))

    def register(function):
        handle = object()
        editor.ticks[handle] = function
        return handle

    module.new_object = new_object
    module.register_slate_post_tick_callback = register
    module.unregister_slate_post_tick_callback = lambda handle: editor.ticks.pop(handle)


def _text(text):
    if not isinstance(text, str):
        raise TypeError(f"a text, not {text!r}")
    return text


def prepared(asset):
    """Initializes what an asset of its class has besides its properties."""
    values = asset._values
    if type(asset).__name__ == "Material":
        object.__setattr__(asset, "_expressions", [])
        object.__setattr__(asset, "_attributes", None)
        module = asset._module
        values["shading_model"] = module.MaterialShadingModel.MSM_DEFAULT_LIT
        values["blend_mode"] = module.BlendMode.BLEND_OPAQUE
        values["tangent_space_normal"] = True
        values["translucency_lighting_mode"] = module.TranslucencyLightingMode.TLM_VOLUMETRIC_NON_DIRECTIONAL
        values["float_precision_mode"] = module.MaterialFloatPrecisionMode.MFPM_DEFAULT
        values["opacity_mask_clip_value"] = 0.3333
    return asset


def _assets(editor):
    class EditorAssetLibrary:
        @staticmethod
        def does_asset_exist(path):
            return _text(path) in editor.assets

        @staticmethod
        def load_asset(path):
            return editor.assets.get(_text(path))

        @staticmethod
        def delete_asset(path):
            editor.unsaved.discard(path)
            return editor.assets.pop(path, None) is not None

        @staticmethod
        def save_asset(path, only_if_is_dirty=True):
            editor.unsaved.discard(path)
            return path in editor.assets

        @staticmethod
        def get_metadata_tag(asset, tag):
            return asset._tags.get(_text(tag), "")

        @staticmethod
        def set_metadata_tag(asset, tag, value):
            asset._tags[_text(tag)] = _text(value)
            asset._touch()

    return EditorAssetLibrary


FACTORIES = {"Material": "MaterialFactoryNew", "MaterialInstanceConstant": "MaterialInstanceConstantFactoryNew"}
REFUSED_IN_NAMES = set("\"' ,/.:|&!~\n\r\t@#\\*?<>")


def _asset_tools(module, editor):
    class AssetTools:
        def create_asset(self, asset_name, package_path, asset_class, factory):
            if asset_class is not None and type(factory).__name__ != FACTORIES[asset_class.__name__]:
                raise TypeError(f"{type(factory).__name__} makes no {asset_class.__name__}")
            path = f"{package_path}/{asset_name}"
            if set(asset_name) & REFUSED_IN_NAMES or path in editor.assets or not path.startswith("/"):
                editor.log.append(("log_error", f"Cannot create {path}"))
                return None
            return self._add(path, asset_class)

        def _add(self, path, kind):
            made = prepared(kind(editor, None, path.rsplit("/", 1)[1]))
            editor.assets[path] = made
            editor.unsaved.add(path)
            return made

        def import_asset_tasks(self, tasks):
            for task in tasks:
                file = pathlib.Path(task.filename)
                path = f"{task.destination_path}/{task.destination_name}"
                named = not set(task.destination_name) & REFUSED_IN_NAMES
                if not file.is_file() or file.name in editor.unloadable or not named:
                    editor.log.append(("log_error", f"Failed to import {file}"))
                    continue
                if path in editor.assets and not task.replace_existing:
                    continue
                texture = editor.assets.get(path) or self._add(path, module.Texture2D)
                editor.unsaved.add(path)
                self._as_imported(texture, file)

        def _as_imported(self, texture, file):
            floats = file.suffix.lower() in (".exr", ".hdr")
            kinds, values = module.TextureCompressionSettings, texture._values
            object.__setattr__(texture, "_file", file)
            values["srgb"] = not floats
            values["compression_settings"] = kinds.TC_HDR if floats else kinds.TC_DEFAULT
            for word, guess in (("grey", kinds.TC_GRAYSCALE), ("normal", kinds.TC_NORMALMAP)):
                if word in file.name.lower():  # stands for the editor's guess, which is based on the pixels
                    values["compression_settings"] = guess
            values["mip_gen_settings"] = module.TextureMipGenSettings.TMGS_FROM_TEXTURE_GROUP
            values["lod_group"] = module.TextureGroup.TEXTUREGROUP_WORLD
            values["virtual_texture_streaming"] = editor.virtual_textures

    tools = AssetTools()
    return type("AssetToolsHelpers", (), {"get_asset_tools": staticmethod(lambda: tools)})


def _import_task(module):
    from .objects import Struct

    fields = {
        "filename": "str",
        "destination_path": "str",
        "destination_name": "str",
        "automated": "bool",
        "replace_existing": "bool",
        "replace_existing_settings": "bool",
        "save": "bool",
    }
    return type("AssetImportTask", (Struct,), {"_types": fields, "_module": module})


def _materials(module, editor):
    class MaterialEditingLibrary:
        @staticmethod
        def create_material_expression(material, expression_class, node_pos_x=0, node_pos_y=0):
            if not isinstance(material, module.Material) or not issubclass(expression_class, module.MaterialExpression):
                raise TypeError("create_material_expression: a material and a class of expressions")
            if type(node_pos_x) is not int or type(node_pos_y) is not int:
                raise TypeError("create_material_expression: whole numbers as a place")
            kind = expression_class.__name__
            count = sum(type(e) is expression_class for e in material._expressions)
            made = expression_class(editor, material, f"{kind}_{count}")
            object.__setattr__(made, "_place", (node_pos_x, node_pos_y))
            material._expressions.append(made)
            material._touch()
            return made

        @staticmethod
        def get_num_material_expressions(material):
            return len(material._expressions)

        @staticmethod
        def delete_all_material_expressions(material):
            # Every other expression is kept, because the editor changes the list while iterating over it.
            material._expressions[:] = material._expressions[1::2]
            object.__setattr__(material, "_attributes", None)
            material._touch()

        @staticmethod
        def connect_material_expressions(from_expression, from_output_name, to_expression, to_input_name):
            index = from_expression.output_index(_text(from_output_name))
            pin = to_expression.input_index(_text(to_input_name))
            if index is None or pin is None or from_expression._outer is not to_expression._outer:
                return False
            to_expression._wires[pin] = (from_expression, index)
            to_expression._touch()
            return True

        @staticmethod
        def connect_material_property(from_expression, from_output_name, property_):
            index = from_expression.output_index(_text(from_output_name))
            if property_ is not module.MaterialProperty.MP_MATERIAL_ATTRIBUTES or index is None:
                return False
            if not from_expression._outer.use_material_attributes:
                return False
            object.__setattr__(from_expression._outer, "_attributes", (from_expression, index))
            from_expression._touch()
            return True

        @staticmethod
        def recompile_material(material):
            editor.compiled.append(editor.path_of(material))
            editor.log += [("log_error", error) for error in compile_errors(material)]
            material._touch()

        @staticmethod
        def set_material_instance_parent(instance, new_parent):
            instance.set_editor_property("parent", new_parent)

        @staticmethod
        def set_material_instance_scalar_parameter_value(instance, parameter_name, value):
            return _override(module, instance, "scalar", parameter_name, value)

        @staticmethod
        def set_material_instance_vector_parameter_value(instance, parameter_name, value):
            return _override(module, instance, "vector", parameter_name, value)

        @staticmethod
        def update_material_instance(instance):
            instance._touch()

    return MaterialEditingLibrary


def compile_errors(material):
    """The editor's messages for a material that can't be compiled, as far as they don't depend on its HLSL."""
    for e in material._expressions:
        kind = type(e).__name__
        if kind == "MaterialExpressionCustom":
            missing = [(k, name) for k, name in enumerate(e.inputs()) if k not in e._wires]
            yield from (f"Custom material {e.description} missing input {k + 1} ({name})" for k, name in missing)
        if kind == "MaterialExpressionTextureObjectParameter":
            wanted = sampler_type(e.texture)
            if e.sampler_type is not wanted:
                yield f"Sampler type is {e.sampler_type.name}, should be {wanted.name} for {e.texture.get_name()}"


def sampler_type(texture):
    """The sampler type that matches a texture's settings."""
    kinds, compression = texture._module.MaterialSamplerType, texture.compression_settings.name
    if compression == "TC_NORMALMAP":
        return kinds.SAMPLERTYPE_NORMAL
    if compression == "TC_GRAYSCALE":
        return kinds.SAMPLERTYPE_GRAYSCALE if texture.srgb else kinds.SAMPLERTYPE_LINEAR_GRAYSCALE
    return kinds.SAMPLERTYPE_COLOR if texture.srgb else kinds.SAMPLERTYPE_LINEAR_COLOR


def _override(module, instance, kind, name, value):
    """Sets a parameter of an instance. Returns False if its parent has no such parameter (ignoring case)."""
    wanted = f"MaterialExpression{kind.capitalize()}Parameter"
    parents = [e for e in instance.parent._expressions if type(e).__name__ == wanted]
    if not any(e.parameter_name.casefold() == name.casefold() for e in parents):
        return False
    records = instance._values[f"{kind}_parameter_values"]
    info = module.MaterialParameterInfo(name=name)
    made = getattr(module, f"{kind.capitalize()}ParameterValue")(parameter_info=info, parameter_value=value)
    records[:] = [r for r in records if r.parameter_info.name != name] + [made]
    instance._touch()
    return True


def _system(editor):
    class SystemLibrary:
        @staticmethod
        def is_unattended():
            return editor.unattended

        @staticmethod
        def get_engine_version():
            return "{}.{}.1-12345678+++UE5+Release".format(*editor.version)

        @staticmethod
        def get_console_variable_int_value(variable_name):
            return editor.console.get(variable_name, 0)

    return SystemLibrary


def _paths(editor):
    return type(
        "Paths",
        (),
        {
            "project_saved_dir": staticmethod(lambda: f"{editor.saved_folder}/"),
            "convert_relative_path_to_full": staticmethod(lambda path: path),
        },
    )


def _slow_task(editor):
    class ScopedSlowTask:
        def __init__(self, work, desc="", enabled=True):
            self.work, self.desc, self.frames, self.open, self.asked = float(work), _text(desc), [], False, 0
            editor.tasks.append(self)

        def __enter__(self):
            self.open = True
            return self

        def __exit__(self, *error):
            self.open = False

        def make_dialog(self, can_cancel=False, allow_in_pie=False):
            assert self.open

        def enter_progress_frame(self, work=1.0, desc=""):
            assert self.open
            self.frames.append((work, _text(desc)))
            if sum(w for w, _ in self.frames) > self.work + 1e-6:
                raise AssertionError("more progress than work")

        def should_cancel(self):
            self.asked += 1
            return editor.cancel_after is not None and self.asked > editor.cancel_after

    return ScopedSlowTask


def _transaction(editor):
    class ScopedEditorTransaction:
        def __init__(self, desc):
            self.desc = _text(desc)

        def __enter__(self):
            editor.transactions.append(self.desc)
            return self

        def __exit__(self, *error):
            editor.transactions.append("")

    return ScopedEditorTransaction


def width_of(expression, index):
    """The number of components of an output."""
    _, width = expression.outputs()[index]
    kind = type(expression).__name__.removeprefix("MaterialExpression")
    if kind == "ViewProperty":
        return tables.VIEW_WIDTHS[expression.property.name]
    if width in (0, "sum"):
        widths = [width_of(*expression._wires[pin]) for pin in range(len(expression.inputs()))]
        return sum(widths) if width == "sum" else widths[0]
    return width
