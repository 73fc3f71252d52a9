#pragma once

#include "sqltextfinder.h"

#include <QQmlEngine>

// The editor's windowless types, as the views see them.

struct SQLTextFinderForeign
{
    Q_GADGET
    QML_FOREIGN(SQLTextFinder)
    QML_NAMED_ELEMENT(SQLTextFinder)
};
