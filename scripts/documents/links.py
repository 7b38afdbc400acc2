"""Checks that every link inside the tree leads to a file and a heading that exist."""

from documents import markdown


def broken(documents):
    """One line of text for each link that leads nowhere."""
    for document in documents:
        for number, target in markdown.links(markdown.read(document)):
            reason = fault(document, target)
            if reason:
                yield f"{document}:{number}: {target}: {reason}"


def fault(document, target):
    """Why a link is broken; None for a good one, and for one that leads out of the tree."""
    if "://" in target or target.startswith("mailto:"):
        return None
    name, _, anchor = target.partition("#")
    path = (document.parent / name) if name else document
    if not path.exists():
        return "no such file"
    if anchor and anchor not in markdown.anchors(markdown.read(path)):
        return "no such heading"
    return None
