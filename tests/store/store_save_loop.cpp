// Saves a store over and over until killed, for the crash tests of tst_storefaults.
// Usage: store_save_loop <data-folder> <settings-file>
#include "datastore.h"

#include <QCoreApplication>
#include <QRandomGenerator>
#include <QSettings>

#include <cstdio>

using namespace Qt::StringLiterals;

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    if (argc != 3)
        return 2;
    QSettings settings(QString::fromLocal8Bit(argv[2]), QSettings::IniFormat);
    DataStore store(QString::fromLocal8Bit(argv[1]), &settings);
    const QUuid id = store.selectedDocumentId();
    auto *random = QRandomGenerator::global();
    for (quint64 round = 0;; ++round) {
        // Texts of varied length, so that a kill lands in writes of every size.
        const QString line = u"SELECT %1 FROM t -- 第%1轮 / \"q\"\n"_s.arg(round);
        store.updateDocumentContent(id, line.repeated(1 + random->bounded(8000)));
        if (round % 3 == 0)
            store.saveVersion(id, u"round %1"_s.arg(round));
        if (round % 5 == 0)
            store.addKnowledgeItem(KnowledgeCategory::Other, line, KnowledgeSource::UserAdded);
        store.saveData();
        if (round == 0) {
            store.flush();
            std::puts("ready");
            std::fflush(stdout);
        }
    }
}
