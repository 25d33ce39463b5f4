#!/usr/bin/env python3
"""Holds the picture of the house against the code: an arrow for each pair of rooms of which one
includes the other, and no other arrow. Arrows run down: the rooms have no circle.

  house.py DOT ROOT
"""
import os
import re
import sys


def rooms_and_arrows(dot):
    with open(dot, encoding="utf-8") as file:
        text = re.sub(r"//.*", "", file.read())
    rooms = {found[2]: found[1] for found in re.finditer(r"(\w+) +\[label=\"[^\"\[]*\[([^\]]+)\]", text)}
    arrows = {(found[1], found[2]) for found in re.finditer(r"^ *(\w+) -> (\w+) *(\[.*)?$", text, re.M)
              if not found[3]}
    return rooms, arrows


def room_of(path, rooms):
    """The room whose label is the longest beginning of the path."""
    fitting = [place for place in rooms if path.startswith(place)]
    return rooms[max(fitting, key=len)] if fitting else None


def includes(root, rooms):
    """Yields (room, room, file, included) for each include that leaves a room."""
    for top in ("src", "tools"):
        for folder, _, files in os.walk(os.path.join(root, top)):
            for name in files:
                path = os.path.relpath(os.path.join(folder, name), root)
                if not name.endswith((".cc", ".h", ".inc")):
                    continue
                with open(os.path.join(root, path), encoding="utf-8") as file:
                    text = file.read()
                for found in re.finditer(r'^#include ["<]([^">]+)[">]', text, re.M):
                    target = "crypto" if found[1].startswith("openssl/") else None
                    for base in (top, "src", "include"):
                        if not target and os.path.exists(os.path.join(root, base, found[1])):
                            target = room_of(os.path.join(base, found[1]), rooms)
                    here = room_of(path, rooms)
                    # Every family knows the public headers, its own among them.
                    if target and target != here and (top == "tools" or target != "headers"):
                        yield here, target, path, found[1]


def has_circle(arrows):
    left = set(arrows)
    while left:
        ends = {a for a, b in left} & {b for a, b in left}
        kept = {(a, b) for a, b in left if b in ends}
        if kept == left:
            return True
        left = kept
    return False


def main():
    rooms, arrows = rooms_and_arrows(sys.argv[1])
    seen = {}
    for here, there, path, included in includes(sys.argv[2], rooms):
        seen.setdefault((here, there), "%s includes %s" % (path, included))
    for pair in sorted(seen.keys() - arrows):
        print("not drawn: %s -> %s: %s" % (*pair, seen[pair]))
    for pair in sorted(arrows - seen.keys()):
        print("drawn, but no include: %s -> %s" % pair)
    circle = has_circle(arrows)
    if circle:
        print("the arrows run in a circle")
    print("%d rooms, %d arrows" % (len(rooms), len(arrows)))
    return 1 if circle or seen.keys() != arrows or not arrows else 0


if __name__ == "__main__":
    sys.exit(main())
