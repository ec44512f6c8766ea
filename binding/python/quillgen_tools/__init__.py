"""Python tools for quillgen's modules: the wiring of a result's inputs, tables of it, files."""
