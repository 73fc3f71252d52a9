#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

// Points the user's folders at a scratch folder before anything reads them, so that the
// application's shared store and settings live there and never touch the user's own data.
class ScratchHome
{
public:
    ScratchHome()
    {
        const QString path = m_dir.path();
        qputenv("HOME", path.toLocal8Bit());
        qputenv("XDG_CONFIG_HOME", (path + QStringLiteral("/config")).toLocal8Bit());
        qputenv("XDG_DATA_HOME", (path + QStringLiteral("/data")).toLocal8Bit());
    }

    [[nodiscard]] QString path() const { return m_dir.path(); }
    [[nodiscard]] QString dataFolder() const { return m_dir.path() + QStringLiteral("/data/Varnholt"); }

private:
    QTemporaryDir m_dir;
};
