#!/usr/bin/python3
# Prints the accessibility tree of a running Varnholt as a screen reader reads it over the
# AT-SPI bus: role, name, description, the states that matter and the actions offered.
# Each argument names a control to act on first, in order (its Press action, or Toggle).
import sys
import time

import pyatspi

STATES = ('focusable', 'focused', 'selected', 'selectable', 'checked', 'editable', 'modal', 'multi line')


def find_application():
    desktop = pyatspi.Registry.getDesktop(0)
    for _ in range(30):
        for i in range(desktop.childCount):
            application = desktop.getChildAtIndex(i)
            if application and (application.name or '').lower() == 'varnholt':
                return application
        time.sleep(1)
    sys.exit('Varnholt did not appear on the accessibility bus')


def showing(node):
    return node.getState().contains(pyatspi.STATE_SHOWING)


def find_shown(node, name):
    if node.name == name and showing(node):
        return node
    for i in range(node.childCount):
        child = node.getChildAtIndex(i)
        found = find_shown(child, name) if child is not None else None
        if found:
            return found
    return None


def actions_of(node):
    try:
        action = node.queryAction()
    except NotImplementedError:
        return []
    return [action.getName(i) for i in range(action.nActions)]


def show(node, depth=0):
    if showing(node):
        states = [pyatspi.stateToString(s) for s in node.getState().getStates()]
        marks = [s for s in states if s in STATES]
        if 'enabled' not in states:
            marks.append('disabled')
        text = ''
        try:
            content = node.queryText()
            text = ' text=%r' % content.getText(0, min(content.characterCount, 40))
        except NotImplementedError:
            pass
        description = ' (%s)' % node.description if node.description else ''
        print('%s[%s] %r%s %s %s%s' % ('  ' * depth, node.getRoleName(), node.name, description, marks,
                                        sorted(set(actions_of(node))), text))
    for i in range(node.childCount):
        child = node.getChildAtIndex(i)
        if child is not None:
            show(child, depth + 1)


application = find_application()
for name in sys.argv[1:]:
    application.clearCache()
    control = find_shown(application, name)
    if control is None:
        sys.exit('nothing named %r is shown' % name)
    names = actions_of(control)
    action = 'Press' if 'Press' in names else 'Toggle'
    control.queryAction().doAction(names.index(action))
    time.sleep(1.2)
application.clearCache()
for i in range(application.childCount):
    show(application.getChildAtIndex(i))
