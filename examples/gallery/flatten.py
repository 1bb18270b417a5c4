"""Flattens the gradients of an SVG file, so that a program without them can be compared in the rest."""

import xml.etree.ElementTree as ElementTree

SVG = "{http://www.w3.org/2000/svg}"
GRADIENTS = (SVG + "linearGradient", SVG + "radialGradient")


def flatten(source, target):
    """Writes the file again with every gradient in one colour, that of its middle stop."""
    tree = ElementTree.parse(source)
    for element in tree.iter():
        stops = [child for child in element if child.tag == SVG + "stop"]
        if element.tag not in GRADIENTS or not stops:
            continue
        middle = dict(stops[(len(stops) - 1) // 2].attrib)
        for stop in stops:
            offset = stop.get("offset", "0")
            stop.attrib.clear()
            stop.attrib.update(middle, offset=offset)
    tree.write(target, encoding="utf-8")
