#!/usr/bin/python3
"""Listens on the AT-SPI bus as a screen reader does and writes one line per event of the
application under test: seconds, event type, role, name, detail. Prints "ready" once it listens.

    listener.py APP_NAME LOG_FILE
"""
import signal
import sys
import time

import pyatspi

EVENTS = [
    "object:state-changed:focused",
    "object:property-change:accessible-name",
    "object:property-change:accessible-description",
    "object:announcement",
    "window:activate",
]


def main():
    app_name, log_path = sys.argv[1], sys.argv[2]
    log = open(log_path, "w", buffering=1)
    start = time.monotonic()

    def heard(event):
        try:
            source = event.source
            if source is None or source.getApplication().name != app_name:
                return
            if event.type.startswith("object:state-changed:focused") and not event.detail1:
                return  # focus lost: the gain elsewhere says it all
            # A change carries its new value: by the time the source is asked, it may have
            # changed again.
            changed = event.type.startswith("object:property-change:accessible-name")
            name = event.any_data if changed and isinstance(event.any_data, str) else (source.name or "")
            role = source.getRoleName()
            # For a focus, what a reader says after the name: the description.
            detail = source.description if "focused" in event.type else (event.any_data if isinstance(event.any_data, str) else "")
            log.write(f"{time.monotonic() - start:.3f}\t{event.type}\t{role}\t{name}\t{detail}\n")
        except Exception as error:  # an object gone while we read it
            log.write(f"{time.monotonic() - start:.3f}\terror\t\t{error}\t\n")

    for kind in EVENTS:
        pyatspi.Registry.registerEventListener(heard, kind)
    signal.signal(signal.SIGTERM, lambda *_: pyatspi.Registry.stop())
    print("ready", flush=True)
    pyatspi.Registry.start()


if __name__ == "__main__":
    main()
