"""Reads the folder of one material as the Blender extension writes it, and validates it.

An Export that `read` returns is consistent: every input has a kind that can be wired, every parameter and texture has
its record, every file exists. Otherwise it raises Refused, or Unfinished if the files don't match yet.
"""

from __future__ import annotations

import hashlib
import json
import re
from pathlib import Path
from typing import Any, NamedTuple, NoReturn

from . import wiring
from .errors import Refused, Unfinished

MANIFEST = "material.json"
FORMAT, VALUES_FORMAT, VERSION = "quillgen-material", "quillgen-parameters", 1

MODES = ("surface", "emission")
SHADINGS = ("default_lit", "clear_coat", "unlit")
BLENDS = ("opaque", "masked", "translucent")
PROPERTIES = (
    "metallic",
    "roughness",
    "specular",
    "emissive",
    "normal",
    "opacity",
    "clear_coat",
    "clear_coat_roughness",
)
TYPES = ("float", "float2", "float3", "float4")
LARGEST = 3.402823466e38
Record = dict[str, Any]  # from a manifest
IDENTIFIER = re.compile(r"[A-Za-z_][A-Za-z0-9_]*\Z")


class Text(NamedTuple):
    code: str
    inputs: tuple[Record, ...]
    outputs: tuple[Record, ...]


class Parameter(NamedTuple):
    name: str
    kind: str
    default: float | tuple[float, ...]
    label: str
    group: str
    order: int
    color: bool
    least: float | None
    most: float | None
    description: str


class Picture(NamedTuple):
    name: str
    image: str
    path: Path | None  # None if it wasn't exported this time
    sha256: str
    floats: bool


class Export(NamedTuple):
    folder: Path
    name: str
    library: str  # the file that the material is linked from, "" for the exported file itself
    mode: str
    settings: Record
    surface: Text
    displacement: Text | None
    magnitude: float  # of the displacement, in centimetres
    parameters: tuple[Parameter, ...]
    pictures: tuple[Picture, ...]
    values: dict[str, float | tuple[float, ...]]
    remarks: tuple[Record, ...]


class _Reader:
    """A folder that is being read. It knows the material's name for error messages."""

    def __init__(self, folder: str | Path) -> None:
        self.folder = Path(folder)
        self.material = self.folder.name

    def refuse(self, file: str, what: str) -> NoReturn:
        raise Refused(self.material, self.folder / file, what)

    def unfinished(self, file: str, what: str) -> NoReturn:
        raise Unfinished(self.material, self.folder / file, what)

    def content(self, file: str) -> bytes:
        """The bytes of a file beside the manifest."""
        path = self.folder / file
        try:
            return path.read_bytes()
        except FileNotFoundError:
            self.unfinished(file, "the file is missing")
        except OSError as error:
            self.refuse(file, f"the file can't be read: {error.strerror or error}")

    def json(self, file: str, name: str, version: int = VERSION) -> Record:
        try:
            found = json.loads(self.content(file).decode("utf-8"))
        except (UnicodeDecodeError, ValueError) as error:
            self.unfinished(file, f"this is no JSON: {error}")
        if not isinstance(found, dict) or found.get("format") != name:
            self.refuse(file, f"this is no file of the format {name!r}")
        if found.get("version") != version:
            newer = "the plugin and the Blender extension are of different ages: bring both up to date"
            self.refuse(file, f"version {found.get('version')!r} of the format, this plugin reads {version}; {newer}")
        return found

    def get(self, record: object, key: str, kinds: Any, where: str) -> Any:
        """A value of a record, which must have one of these types."""
        value = record.get(key) if isinstance(record, dict) else None
        if not isinstance(value, kinds) or (isinstance(value, bool) and kinds in (int, NUMBER)):
            self.refuse(MANIFEST, f"{where} has no usable {key!r}: {value!r}")
        return value

    def one_of(self, record: object, key: str, choices: tuple[str, ...], where: str) -> str:
        value = self.get(record, key, str, where)
        if value not in choices:
            self.refuse(MANIFEST, f"{where} has an unknown {key!r}: {value!r}")
        return value

    def file(self, record: object, where: str) -> bytes:
        """The bytes of a file that a record names with its checksum."""
        name = self.get(record, "file", str, where)
        if "/" in name or "\\" in name or name.startswith("."):
            self.refuse(MANIFEST, f"{where} lies in another folder: {name!r}")
        content = self.content(name)
        if hashlib.sha256(content).hexdigest() != self.get(record, "sha256", str, where):
            self.unfinished(name, "the file isn't the one that the manifest names")
        return content


NUMBER = (int, float)


def read(folder: str | Path) -> Export:
    """Returns the Export in a folder."""
    reader = _Reader(folder)
    manifest = reader.json(MANIFEST, FORMAT)
    reader.material = reader.get(manifest, "name", str, "the manifest") or reader.material
    mode = reader.one_of(manifest, "mode", MODES, "the manifest")
    displacement, magnitude = manifest.get("displacement"), 0.0
    if displacement is not None:
        magnitude = float(reader.get(displacement, "magnitude", NUMBER, "the displacement"))
        displacement = _text(reader, displacement, "the displacement", ())
    surface = reader.get(manifest, "surface", dict, "the manifest")
    outputs = tuple(_output(reader, o) for o in reader.get(surface, "outputs", list, "the surface"))
    surface = _text(reader, surface, "the surface", outputs)
    parameters, file = _parameters(reader, manifest)
    pictures = tuple(_picture(reader, r) for r in reader.get(manifest, "textures", list, "the manifest"))
    _complete(reader, (surface, displacement), parameters, pictures)
    remarks = tuple(r for r in manifest.get("remarks") or () if isinstance(r, dict))
    return Export(
        folder=reader.folder,
        name=reader.material,
        library=manifest.get("library") or "",
        mode=mode,
        settings=_settings(reader, manifest),
        surface=surface,
        displacement=displacement,
        magnitude=magnitude,
        parameters=parameters,
        pictures=pictures,
        values=_values(reader, file, parameters),
        remarks=remarks,
    )


def _settings(reader: _Reader, manifest: Record) -> Record:
    settings = reader.get(manifest, "settings", dict, "the manifest")
    where = "the record of settings"
    reader.one_of(settings, "shading", SHADINGS, where)
    reader.get(settings, "two_sided", bool, where)
    reader.get(settings, "tangent_space_normal", bool, where)
    if reader.one_of(settings, "blend", BLENDS, where) == "masked":
        reader.get(settings, "clip", NUMBER, where)
    return settings


def _text(reader: _Reader, record: Record, where: str, outputs: tuple[Record, ...]) -> Text:
    try:
        code = reader.file(record, where).decode("utf-8")
    except UnicodeDecodeError:
        reader.refuse(record["file"], "the text isn't UTF-8")
    inputs = tuple(reader.get(record, "inputs", list, where))
    names = [_identifier(reader, entry, f"an input of {where}") for entry in (*inputs, *outputs)]
    if len(set(names)) < len(names):
        reader.refuse(MANIFEST, f"two inputs or outputs of {where} have one name")
    for entry in inputs:
        trouble = wiring.unknown(entry)
        if trouble:
            newer = "a newer plugin may know it"
            reader.refuse(MANIFEST, f"the input {entry['name']!r} can't be wired: {trouble} is unknown, {newer}")
    return Text(code, inputs, outputs)


def _identifier(reader: _Reader, record: object, where: str) -> str:
    name = reader.get(record, "name", str, where)
    if not IDENTIFIER.match(name):
        reader.refuse(MANIFEST, f"{where} has a name that HLSL doesn't take: {name!r}")
    return name


def _output(reader: _Reader, record: Record) -> Record:
    where = f"the output {_identifier(reader, record, 'an output of the surface')!r}"
    reader.one_of(record, "type", TYPES, where)
    reader.one_of(record, "property", PROPERTIES, where)
    return record


def _parameters(reader: _Reader, manifest: Record) -> tuple[tuple[Parameter, ...], str]:
    section = reader.get(manifest, "parameters", dict, "the manifest")
    records = reader.get(section, "records", list, "the section of parameters")
    return tuple(_parameter(reader, r) for r in records), reader.get(section, "file", str, "the section of parameters")


def _parameter(reader: _Reader, record: Record) -> Parameter:
    name = _identifier(reader, record, "a parameter")
    where = f"the parameter {name!r}"
    kind = reader.one_of(record, "kind", ("scalar", "vector"), where)
    default = _value(record.get("default"), kind)
    if default is None:
        reader.refuse(MANIFEST, f"{where} has no usable default: {record.get('default')!r}")
    least: Any = record.get("min")
    most: Any = record.get("max")
    ranged = all(_finite(v) for v in (least, most)) and least < most
    return Parameter(
        name=name,
        kind=kind,
        default=default,
        label=reader.get(record, "label", str, where),
        group=reader.get(record, "group", str, where),
        order=reader.get(record, "order", int, where),
        color=reader.get(record, "color", bool, where),
        least=float(least) if ranged else None,
        most=float(most) if ranged else None,
        description=record.get("description") or "",
    )


def _finite(value: object) -> bool:
    """Whether it is a finite number in the range of a 32-bit float."""
    return isinstance(value, NUMBER) and not isinstance(value, bool) and abs(value) <= LARGEST


def _value(value: Any, kind: str) -> float | tuple[float, ...] | None:
    """A parameter's value as one float or four, None if it is neither."""
    if kind == "scalar":
        return float(value) if _finite(value) else None
    if isinstance(value, (list, tuple)) and len(value) == 4 and all(map(_finite, value)):
        return tuple(map(float, value))
    return None


def _picture(reader: _Reader, record: Record) -> Picture:
    name = _identifier(reader, record, "a texture")
    where = f"the texture {name!r}"
    image, floats = reader.get(record, "image", str, where), reader.get(record, "float", bool, where)
    if record.get("file") is None:
        return Picture(name, image, None, "", floats)
    path = reader.folder / reader.get(record, "file", str, where)
    if not path.is_file():
        reader.unfinished(record["file"], f"the picture of {where} is missing")
    return Picture(name, image, path, reader.get(record, "sha256", str, where), floats)


def _complete(
    reader: _Reader,
    texts: tuple[Text | None, ...],
    parameters: tuple[Parameter, ...],
    pictures: tuple[Picture, ...],
) -> None:
    """Checks that every input with a value of the material has its record."""
    kinds = {p.name: p.kind for p in parameters}
    kinds.update({p.name: "texture" for p in pictures})
    labels = {p.label.strip().casefold() for p in parameters}
    if len(kinds) < len(parameters) + len(pictures) or len(labels) < len(parameters):
        reader.refuse(MANIFEST, "two parameters or textures have one name")
    for text in filter(None, texts):
        for entry in text.inputs:
            if entry["kind"] in wiring.PARAMETERS and kinds.get(entry["name"]) != entry["kind"]:
                reader.refuse(MANIFEST, f"the input {entry['name']!r} has no record as a {entry['kind']}")


def _values(reader: _Reader, file: str, parameters: tuple[Parameter, ...]) -> dict[str, float | tuple[float, ...]]:
    """The value of each parameter: from the file of values, or else the default."""
    found = reader.json(file, VALUES_FORMAT).get("values")
    if not isinstance(found, dict):
        reader.refuse(file, "there are no values")
    values = {}
    for parameter in parameters:
        value: float | tuple[float, ...] | None = parameter.default
        if parameter.name in found:
            value = _value(found[parameter.name], parameter.kind)
        if value is None:
            reader.refuse(file, f"the value of {parameter.name!r} isn't one: {found[parameter.name]!r}")
        values[parameter.name] = value
    return values
