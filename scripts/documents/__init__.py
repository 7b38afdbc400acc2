"""Checks of the documents: their command lines, links and messages."""
