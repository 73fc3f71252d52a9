#include "storecodec.h"

#include "jsonreader.h"
#include "jsonwriter.h"

#include <QThread>

#include <bitset>
#include <future>
#include <vector>

using namespace Qt::StringLiterals;

namespace StoreCodec {

namespace {

// Room for the keys, indents and dates of a record beside its strings.
constexpr qsizetype recordOverhead = 320;

bool isDigits(QStringView text)
{
    for (QChar c : text) {
        if (c < u'0' || c > u'9')
            return false;
    }
    return true;
}

// Reads an array of objects, calling `readMember(key, reader, record, seen)` for each member.
// A record counts only when all `requiredKeys` were seen.
// Where a piece of an array starts and ends: with its brackets, or cut at a comma.
struct Piece
{
    QByteArray text;
    bool opening = true;
    bool closing = true;
};

template<typename Record, size_t KeyCount, typename ReadMember>
std::optional<QList<Record>> decodePiece(const Piece &piece, QString *error,
                                         const std::array<QLatin1StringView, KeyCount> &requiredKeys,
                                         ReadMember readMember)
{
    JsonReader reader(piece.text);
    QList<Record> records;
    const auto failWith = [&](const QString &why) -> std::optional<QList<Record>> {
        if (error)
            *error = why;
        return std::nullopt;
    };
    if (reader.failed())
        return failWith(reader.error());
    if (!piece.opening)
        reader.continueArray();
    else if (!reader.beginArray())
        return failWith(reader.error());
    reader.setOpenEnded(!piece.closing);
    while (reader.nextElement()) {
        if (!reader.beginObject())
            return failWith(reader.error());
        Record record;
        std::bitset<KeyCount> seen;
        QString key;
        while (reader.nextKey(key)) {
            qsizetype index = -1;
            for (size_t i = 0; i < KeyCount; ++i) {
                if (key == requiredKeys[i]) {
                    index = qsizetype(i);
                    break;
                }
            }
            if (index < 0) {
                if (!reader.skipValue())
                    return failWith(reader.error());
                continue;
            }
            if (!readMember(index, reader, record)) {
                return failWith(reader.failed()
                                    ? reader.error()
                                    : u"bad value for \"%1\" in record %2"_s.arg(key).arg(records.size()));
            }
            seen.set(size_t(index));
        }
        if (reader.failed())
            return failWith(reader.error());
        if (!seen.all()) {
            for (size_t i = 0; i < KeyCount; ++i) {
                if (!seen.test(i))
                    return failWith(u"record %1 lacks \"%2\""_s.arg(records.size()).arg(requiredKeys[i]));
            }
        }
        records.append(std::move(record));
    }
    if (reader.failed())
        return failWith(reader.error());
    if (piece.closing && !reader.atEnd())
        return failWith(reader.failed() ? reader.error() : u"text after the array"_s);
    return records;
}

// Splits a large file in our own pretty-printed form into pieces at separators between
// top-level records. "\n  },\n  {\n" cannot stand inside a string, which cannot hold a raw
// line feed, so cutting there never lets an invalid file pass; it can stand inside a value of a
// key we do not know, and then a piece fails and the file is decoded whole (decodeArray).
QList<Piece> splitForThreads(const QByteArray &json)
{
    static constexpr qsizetype minimumPiece = 8 << 20;
    static constexpr QByteArrayView separator("\n  },\n  {\n");
    const int threads = std::max(1, QThread::idealThreadCount());
    QList<Piece> pieces;
    if (json.size() < 2 * minimumPiece || threads < 2 || !json.startsWith('['))
        return {Piece{json}};
    const qsizetype count = std::min<qsizetype>(threads, json.size() / minimumPiece);
    qsizetype start = 0;
    for (qsizetype i = 1; i < count; ++i) {
        const qsizetype found = json.indexOf(separator, std::max(start, json.size() * i / count));
        if (found < 0)
            break;
        const qsizetype comma = found + 4; // after "\n  }"
        pieces.append(
            Piece{QByteArray::fromRawData(json.constData() + start, comma - start), start == 0, false});
        start = comma + 1;
    }
    pieces.append(
        Piece{QByteArray::fromRawData(json.constData() + start, json.size() - start), start == 0, true});
    return pieces;
}

// How many records a damaged file seemed to hold, and how many of them still read.
struct Recovery
{
    qsizetype candidates = 0;
};

// The records of a damaged file of our own form that still read on their own: each record
// stands between a line "  {" and the next line "  }" (no raw line feed can stand inside a
// string, so these lines are structural), and is decoded alone.
template<typename Record, size_t KeyCount, typename ReadMember>
QList<Record> recoverArray(const QByteArray &json, Recovery &recovery,
                           const std::array<QLatin1StringView, KeyCount> &requiredKeys, ReadMember readMember)
{
    static constexpr QByteArrayView opening("\n  {\n");
    static constexpr QByteArrayView closing("\n  }");
    QList<Record> records;
    for (qsizetype start = json.indexOf(opening); start >= 0; start = json.indexOf(opening, start + 1)) {
        const qsizetype end = json.indexOf(closing, start + opening.size() - 1);
        if (end < 0)
            break;
        ++recovery.candidates;
        const QByteArray one = '[' + json.mid(start + 3, end + closing.size() - start - 3) + ']';
        if (std::optional<QList<Record>> decoded = decodePiece<Record>(Piece{one}, nullptr, requiredKeys, readMember);
            decoded && decoded->size() == 1)
            records.append(std::move(decoded->first()));
    }
    return records;
}

// Decodes the pieces of a large file on several threads; the records keep file order. With
// `recovery`, reads what still reads of a damaged file instead.
template<typename Record, size_t KeyCount, typename ReadMember>
std::optional<QList<Record>> decodeArray(const QByteArray &json, QString *error,
                                         const std::array<QLatin1StringView, KeyCount> &requiredKeys,
                                         ReadMember readMember, Recovery *recovery = nullptr)
{
    if (recovery)
        return recoverArray<Record>(json, *recovery, requiredKeys, readMember);
    const QList<Piece> pieces = splitForThreads(json);
    if (pieces.size() == 1)
        return decodePiece<Record>(pieces.constFirst(), error, requiredKeys, readMember);
    std::vector<std::future<std::pair<std::optional<QList<Record>>, QString>>> results;
    for (const Piece &piece : pieces) {
        results.push_back(std::async(std::launch::async, [&piece, &requiredKeys, readMember] {
            QString why;
            auto records = decodePiece<Record>(piece, &why, requiredKeys, readMember);
            return std::pair(std::move(records), why);
        }));
    }
    QList<Record> records;
    std::optional<QString> failure;
    for (auto &result : results) {
        auto [piece, why] = result.get();
        if (!piece && !failure)
            failure = why;
        else if (piece && !failure)
            records.append(std::move(*piece));
    }
    // A cut that was no record boundary after all (the separator inside a valid value of a key
    // we do not know) fails a piece of a valid file: the whole file then decides, on one thread.
    if (failure)
        return decodePiece<Record>(Piece{json}, error, requiredKeys, readMember);
    return records;
}

bool readUuid(JsonReader &reader, QUuid &value)
{
    QString text;
    if (!reader.readString(text))
        return false;
    const auto parsed = parseUuid(text);
    if (parsed)
        value = *parsed;
    return parsed.has_value();
}

bool readDate(JsonReader &reader, QDateTime &value)
{
    QString text;
    if (!reader.readString(text))
        return false;
    const auto parsed = parseDate(text);
    if (parsed)
        value = *parsed;
    return parsed.has_value();
}

bool readStringList(JsonReader &reader, QStringList &value)
{
    if (!reader.beginArray())
        return false;
    while (reader.nextElement()) {
        QString item;
        if (!reader.readString(item))
            return false;
        value.append(std::move(item));
    }
    return !reader.failed();
}

} // namespace

std::optional<QDateTime> parseDate(QStringView text)
{
    if (text.size() != 20 || text[4] != u'-' || text[7] != u'-' || text[10] != u'T' || text[13] != u':' ||
        text[16] != u':' || text[19] != u'Z')
        return std::nullopt;
    for (qsizetype at : {0, 5, 8, 11, 14, 17}) {
        if (!isDigits(text.sliced(at, at == 0 ? 4 : 2)))
            return std::nullopt;
    }
    const QDate date(text.sliced(0, 4).toInt(), text.sliced(5, 2).toInt(), text.sliced(8, 2).toInt());
    const QTime time(text.sliced(11, 2).toInt(), text.sliced(14, 2).toInt(), text.sliced(17, 2).toInt());
    if (!date.isValid() || !time.isValid())
        return std::nullopt;
    return QDateTime(date, time, Qt::UTC);
}

std::optional<QUuid> parseUuid(QStringView text)
{
    if (text.size() != 36)
        return std::nullopt;
    for (qsizetype i = 0; i < 36; ++i) {
        const QChar c = text[i];
        const bool dash = i == 8 || i == 13 || i == 18 || i == 23;
        const char16_t u = c.unicode();
        const bool hex = (u >= u'0' && u <= u'9') || (u >= u'a' && u <= u'f') || (u >= u'A' && u <= u'F');
        if (dash ? u != u'-' : !hex)
            return std::nullopt;
    }
    const QUuid id = QUuid::fromString(text);
    if (id.isNull() && text != u"00000000-0000-0000-0000-000000000000")
        return std::nullopt;
    return id;
}

QByteArray encodeDocuments(const QList<SQLDocument> &documents)
{
    qsizetype expected = 8;
    for (const SQLDocument &document : documents)
        expected += recordOverhead + document.name.size() + document.content.size() * 11 / 10;
    JsonWriter writer(expected);
    writer.beginArray();
    for (const SQLDocument &document : documents) {
        writer.beginObject();
        writer.key("id"_L1);
        writer.uuid(document.id);
        writer.key("name"_L1);
        writer.string(document.name);
        writer.key("content"_L1);
        writer.string(document.content);
        writer.key("createdAt"_L1);
        writer.date(document.createdAt);
        writer.key("updatedAt"_L1);
        writer.date(document.updatedAt);
        writer.key("tags"_L1);
        writer.beginArray();
        for (const QString &tag : document.tags)
            writer.string(tag);
        writer.endArray();
        writer.key("isFavorite"_L1);
        writer.boolean(document.isFavorite);
        writer.endObject();
    }
    writer.endArray();
    return writer.take();
}

QByteArray encodeVersions(const QMap<QUuid, QList<SQLVersion>> &versions)
{
    qsizetype expected = 8;
    for (const QList<SQLVersion> &list : versions) {
        for (const SQLVersion &version : list)
            expected += recordOverhead + version.note.size() + version.content.size() * 11 / 10;
    }
    JsonWriter writer(expected);
    writer.beginArray();
    for (const QList<SQLVersion> &list : versions) {
        for (const SQLVersion &version : list) {
            writer.beginObject();
            writer.key("id"_L1);
            writer.uuid(version.id);
            writer.key("documentId"_L1);
            writer.uuid(version.documentId);
            writer.key("content"_L1);
            writer.string(version.content);
            writer.key("note"_L1);
            writer.string(version.note);
            writer.key("createdAt"_L1);
            writer.date(version.createdAt);
            writer.key("versionNumber"_L1);
            writer.integer(version.versionNumber);
            writer.endObject();
        }
    }
    writer.endArray();
    return writer.take();
}

QByteArray encodeKnowledge(const QList<KnowledgeItem> &items)
{
    JsonWriter writer(8 + items.size() * (recordOverhead + 64));
    writer.beginArray();
    for (const KnowledgeItem &item : items) {
        writer.beginObject();
        writer.key("id"_L1);
        writer.uuid(item.id);
        writer.key("category"_L1);
        writer.string(KnowledgeEnums::rawValue(item.category));
        writer.key("content"_L1);
        writer.string(item.content);
        writer.key("source"_L1);
        writer.string(KnowledgeEnums::rawValue(item.source));
        writer.key("createdAt"_L1);
        writer.date(item.createdAt);
        writer.key("updatedAt"_L1);
        writer.date(item.updatedAt);
        writer.endObject();
    }
    writer.endArray();
    return writer.take();
}

namespace {

std::optional<QList<SQLDocument>> readDocuments(const QByteArray &json, QString *error, Recovery *recovery)
{
    static constexpr std::array keys{"id"_L1,        "name"_L1, "content"_L1,   "createdAt"_L1,
                                     "updatedAt"_L1, "tags"_L1, "isFavorite"_L1};
    return decodeArray<SQLDocument>(json, error, keys, [](qsizetype key, JsonReader &reader, SQLDocument &d) {
        switch (key) {
        case 0:
            return readUuid(reader, d.id);
        case 1:
            return reader.readString(d.name);
        case 2:
            return reader.readString(d.content);
        case 3:
            return readDate(reader, d.createdAt);
        case 4:
            return readDate(reader, d.updatedAt);
        case 5:
            d.tags.clear();
            return readStringList(reader, d.tags);
        default:
            return reader.readBool(d.isFavorite);
        }
    }, recovery);
}

} // namespace

std::optional<QList<SQLDocument>> decodeDocuments(const QByteArray &json, QString *error)
{
    return readDocuments(json, error, nullptr);
}

QList<SQLDocument> recoverDocuments(const QByteArray &json, qsizetype *candidates)
{
    Recovery recovery;
    QList<SQLDocument> records = readDocuments(json, nullptr, &recovery).value_or(QList<SQLDocument>());
    if (candidates)
        *candidates = recovery.candidates;
    return records;
}

namespace {

std::optional<QList<SQLVersion>> readVersions(const QByteArray &json, QString *error, Recovery *recovery)
{
    static constexpr std::array keys{"id"_L1,   "documentId"_L1, "content"_L1,
                                     "note"_L1, "createdAt"_L1,  "versionNumber"_L1};
    return decodeArray<SQLVersion>(json, error, keys, [](qsizetype key, JsonReader &reader, SQLVersion &v) {
        switch (key) {
        case 0:
            return readUuid(reader, v.id);
        case 1:
            return readUuid(reader, v.documentId);
        case 2:
            return reader.readString(v.content);
        case 3:
            return reader.readString(v.note);
        case 4:
            return readDate(reader, v.createdAt);
        default:
            return reader.readWholeNumber(v.versionNumber);
        }
    }, recovery);
}

} // namespace

std::optional<QList<SQLVersion>> decodeVersions(const QByteArray &json, QString *error)
{
    return readVersions(json, error, nullptr);
}

QList<SQLVersion> recoverVersions(const QByteArray &json, qsizetype *candidates)
{
    Recovery recovery;
    QList<SQLVersion> records = readVersions(json, nullptr, &recovery).value_or(QList<SQLVersion>());
    if (candidates)
        *candidates = recovery.candidates;
    return records;
}

namespace {

std::optional<QList<KnowledgeItem>> readKnowledge(const QByteArray &json, QString *error, Recovery *recovery)
{
    static constexpr std::array keys{"id"_L1,     "category"_L1,  "content"_L1,
                                     "source"_L1, "createdAt"_L1, "updatedAt"_L1};
    return decodeArray<KnowledgeItem>(json, error, keys,
                                      [](qsizetype key, JsonReader &reader, KnowledgeItem &k) {
                                          QString raw;
                                          switch (key) {
                                          case 0:
                                              return readUuid(reader, k.id);
                                          case 1: {
                                              if (!reader.readString(raw))
                                                  return false;
                                              const auto category = KnowledgeEnums::categoryFromRawValue(raw);
                                              k.category = category.value_or(KnowledgeCategory::Other);
                                              return category.has_value();
                                          }
                                          case 2:
                                              return reader.readString(k.content);
                                          case 3: {
                                              if (!reader.readString(raw))
                                                  return false;
                                              const auto source = KnowledgeEnums::sourceFromRawValue(raw);
                                              k.source = source.value_or(KnowledgeSource::UserAdded);
                                              return source.has_value();
                                          }
                                          case 4:
                                              return readDate(reader, k.createdAt);
                                          default:
                                              return readDate(reader, k.updatedAt);
                                          }
                                      }, recovery);
}

} // namespace

std::optional<QList<KnowledgeItem>> decodeKnowledge(const QByteArray &json, QString *error)
{
    return readKnowledge(json, error, nullptr);
}

QList<KnowledgeItem> recoverKnowledge(const QByteArray &json, qsizetype *candidates)
{
    Recovery recovery;
    QList<KnowledgeItem> records = readKnowledge(json, nullptr, &recovery).value_or(QList<KnowledgeItem>());
    if (candidates)
        *candidates = recovery.candidates;
    return records;
}

QMap<QUuid, QList<SQLVersion>> groupVersions(QList<SQLVersion> versions)
{
    QMap<QUuid, QList<SQLVersion>> grouped;
    for (SQLVersion &version : versions)
        grouped[version.documentId].append(std::move(version));
    return grouped;
}

} // namespace StoreCodec
