"""Checks that every link within the tree points to an existing file and heading."""

from documents import markdown


def broken(documents):
    """Yields a line of text for each broken link."""
    for document in documents:
        for number, target in markdown.links(markdown.read(document)):
            reason = fault(document, target)
            if reason:
                yield f"{document}:{number}: {target}: {reason}"


def fault(document, target):
    """Returns why a link is broken; None if it is not, or if it points outside the tree."""
    if "://" in target or target.startswith("mailto:"):
        return None
    name, _, anchor = target.partition("#")
    path = (document.parent / name) if name else document
    if not path.exists():
        return "no such file"
    if anchor and anchor not in markdown.anchors(markdown.read(path)):
        return "no such heading"
    return None
