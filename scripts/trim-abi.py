#!/usr/bin/env python3
"""Trims a dump of abidw to what the library promises: its functions, its objects, its records.

Qt's classes and those of C++'s library keep their names and sizes alone, so that their insides, which
are Qt's to change, fill no file and raise no alarm. What nothing refers to any more is left out, and so
are the paths of the machine that has built it.
"""

import os
import re
import sys
import xml.etree.ElementTree as ElementTree

SOMEBODY_ELSES_NAMESPACES = ("std", "Qt", "QtPrivate", "__gnu_cxx")
REFERENCES = ("type-id", "naming-typedef-id")
INTERFACE = ("function-decl", "var-decl")


def declarations(parent, foreign=False):
    """Each declaration under parent, with the node that it stands in and whether it is not ours."""
    for node in list(parent):
        if node.tag == "namespace-decl":
            name = node.get("name")
            yield from declarations(node, foreign or name in SOMEBODY_ELSES_NAMESPACES)
        else:
            name = node.get("name", "")
            foreign_class = node.tag == "class-decl" and (foreign or name.startswith("Q"))
            yield parent, node, foreign_class


def referred(node):
    return {part.get(name) for part in node.iter() for name in REFERENCES} - {None}


def put_elements(foreign_class, records):
    """Says of a list which records it holds: some of ours are reached through such a list alone."""
    for name in re.findall(r"[<, ](\w+)(?=[,>])", foreign_class.get("name")):
        if name in records:
            member = ElementTree.SubElement(foreign_class, "data-member",
                                            {"access": "public", "layout-offset-in-bits": "0"})
            ElementTree.SubElement(member, "var-decl", {
                "name": "element", "type-id": records[name], "visibility": "default"})


def check_all_are_described(corpus, found):
    """abidiff compares no symbol that nothing in the dump says is one of its own declarations."""
    described = {node.get("elf-symbol-id") for _, node, _ in found}
    bare = {symbol.get("name") for symbol in corpus.iter("elf-symbol")} - described
    if bare:
        sys.exit(f"Nothing describes {', '.join(sorted(bare))}: was the library built with -g, and "
                 "not across its files?")


def drop_empty_namespaces(parent):
    for node in list(parent):
        if node.tag == "namespace-decl":
            drop_empty_namespaces(node)
            if len(node) == 0:
                parent.remove(node)


def trim(corpus):
    units = corpus.findall("abi-instr")
    found = [entry for unit in units for entry in declarations(unit)]
    check_all_are_described(corpus, found)
    records = {node.get("name"): node.get("id") for _, node, foreign in found
               if node.tag == "class-decl" and not foreign and node.get("size-in-bits")}
    for _, node, foreign in found:
        if foreign:
            for part in list(node):
                node.remove(part)
            put_elements(node, records)
    by_id = {}
    for _, node, _ in found:
        by_id.setdefault(node.get("id"), []).append(node)

    wanted = set()
    waiting = set().union(*(referred(node) for _, node, _ in found if node.tag in INTERFACE))
    while waiting:
        wanted |= waiting
        nodes = [node for name in waiting for node in by_id.get(name, [])]
        waiting = set().union(*(referred(node) for node in nodes)) - wanted
    for parent, node, _ in found:
        if node.tag not in INTERFACE and node.get("id") not in wanted:
            parent.remove(node)
    for unit in units:
        unit.set("path", os.path.relpath(unit.get("path")))
        drop_empty_namespaces(unit)
        if len(unit) == 0:
            corpus.remove(unit)


dump = ElementTree.parse(sys.stdin)
trim(dump.getroot())
ElementTree.indent(dump)
dump.write(sys.stdout, encoding="unicode")
print()
