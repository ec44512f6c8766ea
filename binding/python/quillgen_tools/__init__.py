"""What goes with quillgen's modules and needs no C++: the wiring of a result's inputs, tables of it, files."""
