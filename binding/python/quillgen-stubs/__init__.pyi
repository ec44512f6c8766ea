from collections.abc import Iterable, Sequence
from typing import Any, Final

from quillgen_tools.types import Document, Mode, Parts, Result

__version__: Final[str]
NODES: Final[tuple[str, ...]]

class Unsupported(Exception): ...

def compile(ir: Document | dict[str, Any], mode: Mode = "surface", use_params: bool = True) -> Result: ...
def parts(
    ir: Document | dict[str, Any],
    mode: Mode = "emission",
    use_params: bool = False,
    uv_bias: Sequence[float] | None = None,
) -> Parts: ...
def assemble(
    bodies: Sequence[tuple[list[str], str]],
    structs: Iterable[str],
    need: Iterable[str],
    selector: str | None = None,
    wrap: str = "%s",
    extra_lib: str = "",
) -> str: ...
def param_name(node_id: str, socket: str) -> str: ...
def tex_input(image_name: str) -> str: ...
