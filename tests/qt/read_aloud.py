#!/usr/bin/python3
"""Prints what a screen reader is told while the strings of a sound file are tuned, and while the
values in the settings change.

usage: read_aloud.py ENDPIN FOUR_STRINGS.FLAC

Runs the program on an accessibility bus of its own. A reader speaks of its own accord what becomes
visible as a notification or an alert; exactly that is written down, with the seconds since the
window came. Fails unless every string is spoken in its turn; one that wavers between two bows is
judged, and told, again. Exit code 77: the packages that it takes are not here (python3-pyatspi,
at-spi2-core, xvfb, dbus-daemon).
"""

import itertools
import os
import shutil
import subprocess
import sys
import tempfile
import time

STRINGS = ["A3 in tune", "D3 in tune", "G2 in tune", "C2 in tune"]
VALUES = ["Calibration 441", "Microphone sensitivity 6"]
SECONDS = 45  # for each of the two runs


def skip(reason):
    print("skipped:", reason)
    sys.exit(77)


def enter_own_session():
    """Starts this script again, below a display, a session bus and settings of its own."""
    for program in ("dbus-run-session", "xvfb-run"):
        if not shutil.which(program):
            skip(program + " is not here")
    with tempfile.TemporaryDirectory() as folder:
        os.chmod(folder, 0o700)
        environment = dict(os.environ, ENDPIN_READING=folder, XDG_RUNTIME_DIR=folder,
                           XDG_DATA_HOME=folder, XDG_CONFIG_HOME=folder, HOME=folder,
                           PULSE_SERVER="unix:/nonexistent", LC_ALL="C.UTF-8", LANGUAGE="en",
                           QT_QPA_PLATFORM="xcb", QT_QUICK_BACKEND="software",
                           QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1")
        environment.pop("DBUS_SESSION_BUS_ADDRESS", None)
        command = ["xvfb-run", "-a", "dbus-run-session", "--", sys.executable] + sys.argv
        run = subprocess.run(command, env=environment, timeout=2 * SECONDS + 30,
                             stderr=subprocess.PIPE, text=True)
        if run.returncode:
            sys.stderr.write(run.stderr)
        sys.exit(run.returncode)


def listen(pyatspi, program, hear, ready=None):
    """Runs the program and hands over what a reader would hear, until `hear` says that it is done."""
    from gi.repository import GLib

    begin = time.monotonic()
    failed = []

    def told(event, text):
        print("%5.1f s  %s" % (time.monotonic() - begin, text), flush=True)
        if hear(text):
            pyatspi.Registry.stop()

    def shown(event):
        if event.detail1 and event.source.getRole() in (pyatspi.ROLE_NOTIFICATION,
                                                        pyatspi.ROLE_ALERT):
            told(event, event.source.name)

    def changed(event):
        told(event, "%s %g" % (event.source.name, event.source.queryValue().currentValue))

    def late():
        failed.append(True)
        pyatspi.Registry.stop()

    # Who does not follow the names is told old ones.
    listeners = [(lambda event: None, "object:property-change:accessible-name"),
                 (shown, "object:state-changed:showing"),
                 (changed, "object:property-change:accessible-value")]
    for listener, kind in listeners:
        pyatspi.Registry.registerEventListener(listener, kind)
    child = subprocess.Popen(program, stderr=subprocess.DEVNULL)
    timer = GLib.timeout_add_seconds(SECONDS, late)
    if ready:
        GLib.timeout_add(300, ready)
    try:
        pyatspi.Registry.start()
    finally:
        child.terminate()
        child.wait(10)
    for listener, kind in listeners:
        pyatspi.Registry.deregisterEventListener(listener, kind)
    if failed:
        return
    GLib.source_remove(timer)


def strings_are_told(pyatspi, endpin, sound):
    told = []

    def hear(text):
        told.append(text)
        return text == STRINGS[-1]

    listen(pyatspi, [endpin, "--input", sound, "--language", "en", "--no-network"], hear)
    return [text for text, _ in itertools.groupby(told) if text in STRINGS]


def values_are_told(pyatspi, endpin):
    """The slider and the stepper of the settings, moved by the reader's own actions."""
    told = []

    def hear(text):
        if text[-1].isdigit():  # there is no sound service here, which may be told in between
            told.append(text)
        return len(told) == 2

    def move():
        desktop = pyatspi.Registry.getDesktop(0)
        roles = (pyatspi.ROLE_SLIDER, pyatspi.ROLE_SPIN_BUTTON)
        found = [item for item in pyatspi.findAllDescendants(
            desktop, lambda item: item.getRole() in roles)]
        for item in found:
            action = item.queryAction()
            names = [action.getName(index).lower() for index in range(action.nActions)]
            action.doAction(names.index("increase"))
        return not found

    listen(pyatspi, [endpin, "--panel", "settings", "--language", "en", "--no-network"], hear, move)
    return sorted(told)


def main():
    if "ENDPIN_READING" not in os.environ:
        enter_own_session()
    try:
        import pyatspi
    except ImportError:
        skip("python3-pyatspi is not here")
    strings = strings_are_told(pyatspi, sys.argv[1], sys.argv[2])
    if strings != STRINGS:
        sys.exit("told of the strings: %s" % strings)
    values = values_are_told(pyatspi, sys.argv[1])
    if values != VALUES:
        sys.exit("told of the values: %s" % values)


main()
