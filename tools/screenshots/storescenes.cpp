#include "datastore.h"
#include "screenshotsession.h"

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

// A write the data folder refuses: the banner that says so, and the sheet before the window goes.
void shootStoreScenes(ScreenshotSession &session)
{
    DataStore *store = session.store();
    const QString documents = store->dataDirectory() + u'/' + DataStore::documentsFileName;
    store->flush();
    QFile::remove(documents);
    QDir().mkpath(documents);
    store->createDocument(u"Kept in memory"_s, u"SELECT 1;"_s);
    store->flush();
    session.shoot(u"store-save-failure"_s, 400);

    QObject *sheet = session.find("unwrittenSheet");
    QMetaObject::invokeMethod(sheet, "open");
    session.shoot(u"store-unwritten-sheet"_s, 400);
    QMetaObject::invokeMethod(sheet, "close");

    QDir(documents).removeRecursively();
    store->retrySaving();
    ScreenshotSession::wait(300);
}
