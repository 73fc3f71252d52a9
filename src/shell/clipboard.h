#pragma once

#include <QClipboard>
#include <QGuiApplication>
#include <QObject>
#include <QQmlEngine>

// The desktop's clipboard, for views that copy text they show (a code block, a version).
class Clipboard : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    Q_INVOKABLE static void setText(const QString &text) { QGuiApplication::clipboard()->setText(text); }
};
