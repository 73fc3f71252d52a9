#pragma once

#include <QList>
#include <QObject>
#include <QQmlEngine>
#include <QStringList>
#include <QUrl>

class DataStore;

// SQL files into the store and out of it: File ▸ Open… and files dropped on the window become
// new documents named after their files; File ▸ Export… writes the selected document. Files are
// read, decoded and written off the GUI thread, so that a large one never holds the window.
class DocumentTransfer : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(bool isBusy READ isBusy NOTIFY isBusyChanged)
    // What went wrong in the last import or export, one line a file, for the user.
    Q_PROPERTY(QStringList problems READ problems NOTIFY problemsChanged)
    Q_PROPERTY(QString suggestedFileName READ suggestedFileName NOTIFY suggestedFileNameChanged)

public:
    explicit DocumentTransfer(QObject *parent = nullptr);
    explicit DocumentTransfer(DataStore *store, QObject *parent = nullptr);

    [[nodiscard]] bool isBusy() const { return m_pending > 0; }
    [[nodiscard]] QStringList problems() const { return m_problems; }
    // A file name for the selected document.
    [[nodiscard]] QString suggestedFileName() const;

    // Each readable file becomes a new document, in the order given; the last one is selected.
    Q_INVOKABLE void importFiles(const QList<QUrl> &urls);
    Q_INVOKABLE void exportSelectedDocument(const QUrl &url);
    Q_INVOKABLE void clearProblems();

Q_SIGNALS:
    void isBusyChanged();
    void problemsChanged();
    void suggestedFileNameChanged();
    void imported(int count);
    void exported(const QString &path);

private:
    void begin();
    void end(const QStringList &problems);

    DataStore *m_store = nullptr;
    int m_pending = 0;
    QStringList m_problems;
};
