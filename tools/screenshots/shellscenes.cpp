#include "datastore.h"
#include "screenshotsession.h"

#include <QVariant>

using namespace Qt::StringLiterals;

// The document list, a panel slot, the sheets of the sidebar and the editor, and a deletion.
void shootShellScenes(ScreenshotSession &session)
{
    session.shoot(u"documents"_s);

    QObject *content = session.find("contentView");
    QMetaObject::invokeMethod(content, "setShowVersionHistory", Q_ARG(bool, true));
    ScreenshotSession::wait(500);
    session.shoot(u"panel-open"_s);
    QMetaObject::invokeMethod(content, "setShowVersionHistory", Q_ARG(bool, false));
    ScreenshotSession::wait(500);

    auto *newDocumentSheet = session.find("sidebar")->property("newDocumentSheet").value<QObject *>();
    QMetaObject::invokeMethod(newDocumentSheet, "open");
    ScreenshotSession::wait(300);
    session.shoot(u"new-document-sheet"_s);
    QMetaObject::invokeMethod(newDocumentSheet, "cancel");
    ScreenshotSession::wait(300);

    if (QObject *saveSheet = session.find("saveVersionSheet")) {
        QMetaObject::invokeMethod(saveSheet, "open");
        ScreenshotSession::wait(300);
        session.shoot(u"save-version-sheet"_s);
        QMetaObject::invokeMethod(saveSheet, "cancel");
        ScreenshotSession::wait(300);
    }
    session.shoot(u"editing"_s);
}

// Runs last: it throws every document away, one of them mid-animation first.
void shootEmptyStoreScene(ScreenshotSession &session)
{
    DataStore *store = session.store();
    const QString doomed =
        store->sidebarDocuments(QString()).at(1).id.toString(QUuid::WithoutBraces).toUpper();
    QMetaObject::invokeMethod(session.find("sidebar"), "startDeletion", Q_ARG(QString, doomed));
    session.shoot(u"deleting"_s, 200); // between the crumple and the throw
    ScreenshotSession::wait(800);
    session.shoot(u"undo-deletion"_s); // the notice with Undo

    const QList<SQLDocument> all = store->documents();
    for (const SQLDocument &document : all)
        store->deleteDocument(document.id);
    ScreenshotSession::wait(300);
    session.shoot(u"empty-store"_s);
}
