#!/usr/bin/python3
"""Walks the accessible tree of one application as a screen reader would ask it, and prints
every object that claims the focused state (role and name, one per line). Exits 1 unless
exactly one does: a reader follows one focus, and two claims leave it guessing.

    focused-now.py APP_NAME
"""
import sys

import pyatspi

LIMIT = 5000  # objects visited at most: a runaway tree is a failure, not a hang


def focused_objects(app):
    found, queue, seen = [], [app], 0
    while queue and seen < LIMIT:
        node = queue.pop()
        seen += 1
        try:
            # Hidden objects count too: a reader that lands on one speaks what the user cannot see.
            if node.getState().contains(pyatspi.STATE_FOCUSED):
                found.append(f"{node.getRoleName()}\t{node.name}")
            queue.extend(node[i] for i in range(node.childCount))
        except Exception:  # an object gone while we read it
            continue
    return found


def main():
    desktop = pyatspi.Registry.getDesktop(0)
    apps = [desktop[i] for i in range(desktop.childCount) if desktop[i] and desktop[i].name == sys.argv[1]]
    if not apps:
        print("no application", sys.argv[1])
        return 1
    found = focused_objects(apps[0])
    print("\n".join(found) if found else "(nothing focused)")
    return 0 if len(found) == 1 else 1


if __name__ == "__main__":
    sys.exit(main())
