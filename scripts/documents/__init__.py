"""Checks of documents: their command lines, links and messages."""
