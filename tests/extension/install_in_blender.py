"""Installs the extension in a fresh Blender, uses it and removes it. Arguments: the zip, a folder to export to. Prints
a JSON object. BLENDER_USER_RESOURCES must name an empty folder."""

import json
import os
import sys
from pathlib import Path

import bpy

HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "host"))

MODULE = "bl_ext.user_default.quillgen"


def leftovers():
    """Everything of the extension that is registered in Blender. After removal it must be empty."""
    handlers = [
        f"{kind}: {each}"
        for kind in dir(bpy.app.handlers)
        if isinstance(getattr(bpy.app.handlers, kind), list)
        for each in getattr(bpy.app.handlers, kind)
        if "quillgen" in getattr(each, "__module__", "")
    ]
    types = [name for name in dir(bpy.types) if "quillgen" in name.lower()]
    types += [f"Scene.{name}" for name in ("quillgen",) if hasattr(bpy.types.Scene, name)]
    operators = [name for name in dir(bpy.ops.quillgen) if not name.startswith("_")]
    modules = [name for name in sys.modules if "quillgen" in name]
    user = Path(os.environ["BLENDER_USER_RESOURCES"])
    files = [
        str(path.relative_to(user)) for path in user.rglob("*") if "quillgen" in path.name and "cache" not in str(path)
    ]
    return {"handlers": handlers, "types": types, "operators": operators, "modules": modules, "files": files}


def main(archive, out):
    bpy.ops.wm.read_factory_settings(use_empty=True)
    before = leftovers()
    installed = bpy.ops.extensions.package_install_files(filepath=archive, repo="user_default", enable_on_install=True)
    import addon_utils  # importable after bpy

    enabled = addon_utils.check(MODULE)
    import materials  # materials.py in this folder

    names = materials.build()
    bpy.context.scene.quillgen.folder = out
    exported = bpy.ops.quillgen.export(scope="FILE")
    import quillgen

    report = {
        "before": before,
        "installed": sorted(installed),
        "enabled": list(enabled),
        "names": names,
        "exported": sorted(exported),
        "module": quillgen.__file__,
        "preferences": bpy.context.preferences.addons[MODULE].preferences.folder,
    }
    bpy.ops.preferences.addon_disable(module=MODULE)
    report["disabled"] = {key: found for key, found in leftovers().items() if key not in ("modules", "files")}
    bpy.ops.extensions.package_uninstall(
        repo_index=next(
            i for i, repo in enumerate(bpy.context.preferences.extensions.repos) if repo.module == "user_default"
        ),
        pkg_id="quillgen",
    )
    report["removed"] = leftovers()
    print(json.dumps(report))


if __name__ == "__main__":
    sys.path.insert(0, str(HERE))
    main(*sys.argv[1:])
    sys.stdout.flush()
    os._exit(0)  # bpy 4.2 as a module crashes at exit if a property had an update function
