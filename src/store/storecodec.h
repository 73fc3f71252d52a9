#pragma once

#include "knowledgeitem.h"
#include "sqldocument.h"
#include "sqlversion.h"

#include <QByteArray>
#include <QList>
#include <QMap>

#include <optional>

// The three store files: encoding to their exact form, and strict all-or-nothing decoding.
namespace StoreCodec {

[[nodiscard]] QByteArray encodeDocuments(const QList<SQLDocument> &documents);
// The versions of every document in one flat array, each document's versions together.
[[nodiscard]] QByteArray encodeVersions(const QMap<QUuid, QList<SQLVersion>> &versions);
[[nodiscard]] QByteArray encodeKnowledge(const QList<KnowledgeItem> &items);

// Every key must be present with the right type; unknown keys are ignored. On failure the
// result is empty and `error` says why.
[[nodiscard]] std::optional<QList<SQLDocument>> decodeDocuments(const QByteArray &json,
                                                                QString *error = nullptr);
[[nodiscard]] std::optional<QList<SQLVersion>> decodeVersions(const QByteArray &json,
                                                              QString *error = nullptr);
[[nodiscard]] std::optional<QList<KnowledgeItem>> decodeKnowledge(const QByteArray &json,
                                                                  QString *error = nullptr);

// What still reads of a damaged file of our own form: every record that decodes on its own.
// `candidates` (if given) tells how many records the file seemed to hold.
[[nodiscard]] QList<SQLDocument> recoverDocuments(const QByteArray &json, qsizetype *candidates = nullptr);
[[nodiscard]] QList<SQLVersion> recoverVersions(const QByteArray &json, qsizetype *candidates = nullptr);
[[nodiscard]] QList<KnowledgeItem> recoverKnowledge(const QByteArray &json, qsizetype *candidates = nullptr);

// Groups a flat list of versions by document, each group in list order.
[[nodiscard]] QMap<QUuid, QList<SQLVersion>> groupVersions(QList<SQLVersion> versions);

// "YYYY-MM-DDTHH:MM:SSZ" only; and a 36-character UUID in either case.
[[nodiscard]] std::optional<QDateTime> parseDate(QStringView text);
[[nodiscard]] std::optional<QUuid> parseUuid(QStringView text);

} // namespace StoreCodec
