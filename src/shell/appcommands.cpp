#include "appcommands.h"

#include "datastore.h"
#include "localizedtext.h"

#include <QCoreApplication>
#include <QKeySequence>

namespace {

bool quitting = false;
bool ending = false;
bool discarding = false;

} // namespace

void AppCommands::newDocument()
{
    DataStore *store = DataStore::shared();
    const SQLDocument document =
        store->createDocument(localized(u"Untitled SQL", u"未命名 SQL", u"無題の SQL"), QString());
    store->setSelectedDocumentId(document.id);
}

void AppCommands::quickSave()
{
    DataStore *store = DataStore::shared();
    const QUuid id = store->selectedDocumentId();
    if (id.isNull())
        return;
    store->saveVersion(id, localized(u"Quick save", u"快速保存", u"クイック保存"));
}

void AppCommands::quit()
{
    quitting = true;
    QCoreApplication::quit();
}

bool AppCommands::isQuitting()
{
    return quitting;
}

void AppCommands::endNow()
{
    ending = true;
    QCoreApplication::quit();
}

bool AppCommands::isEnding()
{
    return ending;
}

void AppCommands::discardUnwritten()
{
    discarding = true;
}

bool AppCommands::isDiscardingUnwritten()
{
    return discarding;
}

QString AppCommands::keysText(const QVariant &shortcut)
{
    QKeySequence keys;
    if (shortcut.typeId() == QMetaType::QString)
        keys = QKeySequence(shortcut.toString());
    else if (shortcut.canConvert<int>() && shortcut.toInt() != 0)
        keys = QKeySequence(QKeySequence::StandardKey(shortcut.toInt()));
    return keys.toString(QKeySequence::NativeText);
}

QString AppCommands::withoutMnemonic(const QString &title)
{
    QString plain;
    plain.reserve(title.size());
    for (qsizetype i = 0; i < title.size(); ++i) {
        if (title.at(i) == u'&') {
            // "(&F)" after a Chinese or Japanese title marks the key by itself; it goes whole.
            if (i > 0 && title.at(i - 1) == u'(' && i + 2 < title.size() && title.at(i + 2) == u')') {
                plain.chop(1);
                i += 2;
                continue;
            }
            if (++i == title.size())
                break;
        }
        plain.append(title.at(i));
    }
    return plain;
}
