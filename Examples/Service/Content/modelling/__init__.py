"""A small modelling kit: shapes made of triangles, painted pictures, and binary glTF 2.0 files of both."""
