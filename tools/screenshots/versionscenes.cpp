#include "datastore.h"
#include "screenshotsession.h"

#include <QVariant>

using namespace Qt::StringLiterals;

// The history panel of a document with a few versions, one of them in the reading sheet, and
// compared with the version before it.
void shootVersionScenes(ScreenshotSession &session)
{
    DataStore *store = session.store();
    const QUuid id = store->selectedDocumentId();
    const std::optional<SQLDocument> document = store->document(id);
    if (!document)
        return;
    const QString original = document->content;
    store->updateDocumentContent(id, u"SELECT id, total FROM orders;"_s);
    store->saveVersion(id, u"First draft"_s);
    store->updateDocumentContent(id,
                                 u"SELECT id, total\nFROM orders\nWHERE status = 'paid'; -- settled only"_s);
    store->saveVersion(id, u"Only paid orders"_s);
    store->updateDocumentContent(id, original);
    store->saveVersion(id, QString());

    QObject *content = session.find("contentView");
    QMetaObject::invokeMethod(content, "setShowVersionHistory", Q_ARG(bool, true));
    ScreenshotSession::wait(500);
    session.shoot(u"versions-panel"_s);

    QObject *panel = session.find("versionPanel");
    panel->setProperty("viewingIndex", 1);
    ScreenshotSession::wait(500);
    session.shoot(u"versions-sheet"_s);
    if (QObject *sheet = session.find("versionSheet")) {
        sheet->setProperty("compareMode", 2);
        ScreenshotSession::wait(500);
        session.shoot(u"versions-compare"_s);
    }
    panel->setProperty("viewingIndex", -1);
    ScreenshotSession::wait(300);

    QMetaObject::invokeMethod(content, "setShowVersionHistory", Q_ARG(bool, false));
    store->clearVersions(id);
    ScreenshotSession::wait(300);
}
