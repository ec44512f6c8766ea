"""The host process exits normally while daemon threads translate."""

import pytest

from robustness.isolated import run

# Names with characters that identifiers can't contain, and other strings that are looked up or composed.
CODE = """
import threading, time
import quillgen
from golden.documents import IMAGES, link, material, node

noise = node("TexNoise", id="Bruit n\\u00b0 1.001")
image = node("TexImage", {"Vector": link(node("TexNoise", id="Bruit n\\u00b0 1.001"), "Color")}, id="Bild 1.001",
             props={"image": "D\\u00e9cor 01.png"})
ramp = node("ValToRGB", {"Fac": link(noise, "Fac")}, id="Farbverlauf \\u00fc.1")
shader = node("BsdfPrincipled", {"Base Color": link(ramp, "Color"), "Roughness": link(image, "Color")}, id="BSDF .1")
document = material(shader, noise, image, ramp, images={"D\\u00e9cor 01.png": IMAGES["wood.png"]})

def work():
    while True:
        quillgen.compile(document)
        quillgen.parts(document)
        quillgen.param_name("Bruit n\\u00b0 1.001", "Base Color"), quillgen.tex_input("D\\u00e9cor 01.png")

for _ in range(4):
    threading.Thread(target=work, daemon=True).start()
time.sleep(0.2)
print("the end")
"""


@pytest.mark.parametrize("attempt", range(8))
def test_daemon_threads_in_the_middle_of_a_translation(attempt):
    assert run(CODE) == "the end"
