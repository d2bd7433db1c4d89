#!/usr/bin/python3
"""Checks what the listener heard during one keyboard-only capture (see real-stack.sh):
every instruction and "SMILE!" spoken through the focused status, each change once, the review's
question told with its focused answer, and the focus never on a control the user cannot see.
GUIDANCE, when given, is an instruction the user must have heard too (such as "Move closer").

    check.py HEARD_TSV [GUIDANCE]
"""
import sys

STATUS = ["Looking for face"] + [f"Checking your face, photo {n} of 5" for n in range(1, 5)] + ["SMILE!"]
GUIDANCE = ("Move closer", "Move back", "Center your face", "Find more light", "Hold still", "Relax your face")
REVIEW = {"Yes, send", "No, take another photo.", "Back"}
QUESTION = "Do you want to submit this video for review?"


def main():
    lines = [line.rstrip("\n").split("\t") for line in open(sys.argv[1])]
    events = [(float(l[0]), l[1], l[2], l[3], l[4] if len(l) > 4 else "") for l in lines if len(l) >= 4]
    problems = []

    focus = [(t, name, detail) for t, kind, _, name, detail in events if kind.endswith("state-changed:focused")]
    names = [name for _, name, _ in focus]
    # The status takes the focus as the capture starts; from then on its changes are spoken.
    started = next((t for t, name, _ in focus if name == "Looking for face"), None)
    if started is None:
        problems.append("the status never had the focus")
        started = 0.0
    # What the focused status said, while it had the focus.
    moved = next((t for t, name, _ in focus if t > started and name != "Looking for face"), float("inf"))
    spoken = [name for t, kind, role, name, _ in events
              if started <= t < moved and kind.endswith("accessible-name") and role == "label"
              and name.split(",")[0] in ("Looking for face", "Checking your face", "SMILE!") + GUIDANCE]
    expected = STATUS[1:] + ([sys.argv[2]] if len(sys.argv) > 2 and sys.argv[2] else [])
    for text in expected:
        if text not in spoken:
            problems.append(f"never heard {text!r}")
    for first, second in zip(spoken, spoken[1:]):
        if first == second:
            problems.append(f"{first!r} sent twice for one change")

    # The review: its question told with the focused answer, and only its own buttons focused.
    review = [i for i, name in enumerate(names) if name == "Yes, send"]
    ended = [i for i, name in enumerate(names) if name == "Take selfie" and review and i > review[0]]
    if not review or not ended:
        problems.append("the review's focus or the return to the host was not heard")
    else:
        during = names[review[0]:ended[0]]
        # As the flow ends the focus passes through the camera screen itself (named, no control).
        if during and during[-1] == "Register selfie":
            during = during[:-1]
        strays = sorted(set(during) - REVIEW)
        if strays:
            problems.append(f"covered controls took the focus during the review: {strays}")
        if set(during) != REVIEW:
            problems.append(f"Tab did not go round the review's three buttons: {sorted(set(during))}")
        if QUESTION not in focus[review[0]][2]:
            problems.append("the review's question was not told with its focused answer")
    between = names[names.index("OK, I got it") + 1:review[0]] if "OK, I got it" in names and review else []
    if "Take selfie" in between or "Send" in between:
        problems.append("the host's window took the focus during the capture")

    print("focus moves heard:", " > ".join(names))
    print("status heard:", " | ".join(dict.fromkeys(spoken)))
    for problem in problems:
        print("PROBLEM:", problem)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
