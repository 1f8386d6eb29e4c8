"""Catalogue generator: reads catalogue/source and writes catalogue/generated."""
