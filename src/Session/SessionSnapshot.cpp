// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Session/SessionSnapshot.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

/// Beyond it neighbouring integers cannot be told apart in JSON.
constexpr double largestInteger = 9007199254740991.0;
constexpr double longestSide = 100000;

/// Takes the values out of an object, and remembers whether all were there.
class Reader final {
public:
    explicit Reader(const QJsonValue &value) : m_object(value.toObject()), m_isValid(value.isObject()) {}

    QString string(QLatin1StringView key) { return checked(key, &QJsonValue::isString).toString(); }
    bool boolean(QLatin1StringView key) { return checked(key, &QJsonValue::isBool).toBool(); }
    QJsonArray array(QLatin1StringView key) { return checked(key, &QJsonValue::isArray).toArray(); }

    double real(QLatin1StringView key)
    {
        const double number = checked(key, &QJsonValue::isDouble).toDouble();
        m_isValid = m_isValid && std::isfinite(number);
        return number;
    }

    qint64 integer(QLatin1StringView key)
    {
        const double number = real(key);
        m_isValid = m_isValid && std::abs(number) <= largestInteger && std::trunc(number) == number;
        return m_isValid ? qint64(number) : 0;
    }

    QUuid id(QLatin1StringView key)
    {
        const QUuid id(string(key));
        m_isValid = m_isValid && !id.isNull();
        return id;
    }

    std::optional<QString> optionalString(QLatin1StringView key)
    {
        const QJsonValue value = m_object.value(key);
        return value.isUndefined() || value.isNull() ? std::nullopt : std::optional(string(key));
    }

    void reject() { m_isValid = false; }
    [[nodiscard]] bool isValid() const { return m_isValid; }

private:
    QJsonValue checked(QLatin1StringView key, bool (QJsonValue::*isOfType)() const)
    {
        const QJsonValue value = m_object.value(key);
        m_isValid = m_isValid && (value.*isOfType)();
        return value;
    }

    QJsonObject m_object;
    bool m_isValid;
};

QString textOf(const QUuid &id)
{
    return id.toString(QUuid::WithoutBraces).toUpper();
}

void insert(QJsonObject &object, QLatin1StringView key, const std::optional<QString> &text)
{
    if (text) {
        object.insert(key, *text);
    }
}

/// Numbers that JSON does not hold exactly are texts.
QJsonObject objectOf(const FileState &state)
{
    QJsonObject object = {{"device"_L1, QString::number(state.device)},
                          {"inode"_L1, QString::number(state.inode)},
                          {"size"_L1, state.stamp.size},
                          {"modifiedSeconds"_L1, qint64(state.stamp.modified.tv_sec)},
                          {"modifiedNanoseconds"_L1, qint64(state.stamp.modified.tv_nsec)},
                          {"mode"_L1, qint64(state.mode)},
                          {"isFresh"_L1, state.isFresh}};
    if (state.hash) {
        object.insert("hash"_L1, QString::number(*state.hash));
    }
    return object;
}

std::optional<FileState> fileStateFrom(const QJsonValue &value)
{
    Reader reader(value);
    bool areNumbers = true;
    const auto number = [&areNumbers](const QString &text) {
        bool isNumber = false;
        const quint64 result = text.toULongLong(&isNumber);
        areNumbers = areNumbers && isNumber;
        return result;
    };
    FileState state{
        .stamp = {.modified = {.tv_sec = reader.integer("modifiedSeconds"_L1), .tv_nsec = long(reader.integer("modifiedNanoseconds"_L1))},
                  .size = reader.integer("size"_L1)},
        .device = number(reader.string("device"_L1)),
        .inode = number(reader.string("inode"_L1)),
        .mode = quint32(reader.integer("mode"_L1)) & 0777,
        .isFresh = reader.boolean("isFresh"_L1)};
    if (const auto hash = reader.optionalString("hash"_L1)) {
        state.hash = number(*hash);
    }
    return reader.isValid() && areNumbers ? std::optional(state) : std::nullopt;
}

struct OriginName {
    TextOrigin::Kind kind;
    QLatin1StringView name;
};

constexpr OriginName originNames[] = {{TextOrigin::Kind::otherVersion, "otherVersion"_L1}, {TextOrigin::Kind::insertions, "insertions"_L1}};

QJsonObject objectOf(const TextOrigin &origin)
{
    const auto *row = std::ranges::find(originNames, origin.kind, &OriginName::kind);
    return {{"kind"_L1, row->name}, {"filePath"_L1, origin.path}};
}

std::optional<TextOrigin> originFrom(const QJsonValue &value)
{
    Reader reader(value);
    const QString name = reader.string("kind"_L1);
    const QString path = reader.string("filePath"_L1);
    const auto *row = std::ranges::find(originNames, name, &OriginName::name);
    return reader.isValid() && row != std::end(originNames) ? std::optional(TextOrigin{row->kind, path}) : std::nullopt;
}

QJsonObject objectOf(const SessionSnapshot::Document &document)
{
    QJsonObject object = {{"id"_L1, textOf(document.id)},
                          {"encodingRawValue"_L1, qint64(document.encodingRawValue)},
                          {"lineEnding"_L1, document.lineEnding},
                          {"selectionLocation"_L1, qint64(document.selection.location)},
                          {"selectionLength"_L1, qint64(document.selection.length)},
                          {"scrollOffset"_L1, document.scrollOffset}};
    insert(object, "filePath"_L1, document.filePath);
    insert(object, "draftFilename"_L1, document.draftFilename);
    insert(object, "languageID"_L1, document.languageID);
    if (document.fileState) {
        object.insert("fileState"_L1, objectOf(*document.fileState));
    }
    if (document.origin) {
        object.insert("origin"_L1, objectOf(*document.origin));
    }
    return object;
}

std::optional<SessionSnapshot::Document> documentFrom(const QJsonValue &value)
{
    Reader reader(value);
    const SessionSnapshot::Document document{
        .id = reader.id("id"_L1),
        .filePath = reader.optionalString("filePath"_L1),
        .draftFilename = reader.optionalString("draftFilename"_L1),
        .languageID = reader.optionalString("languageID"_L1),
        .encodingRawValue = quint32(reader.integer("encodingRawValue"_L1)),
        .lineEnding = reader.string("lineEnding"_L1),
        .selection = {qsizetype(reader.integer("selectionLocation"_L1)), qsizetype(reader.integer("selectionLength"_L1))},
        .scrollOffset = reader.real("scrollOffset"_L1),
        .fileState = fileStateFrom(value.toObject().value("fileState"_L1)),
        .origin = originFrom(value.toObject().value("origin"_L1)),
    };
    if (qint64(document.encodingRawValue) != reader.integer("encodingRawValue"_L1)) {
        reader.reject();
    }
    return reader.isValid() ? std::optional(document) : std::nullopt;
}

QJsonObject objectOf(const SessionSnapshot::Pane &pane)
{
    QJsonArray ids;
    for (const QUuid &id : pane.documentIDs) {
        ids << textOf(id);
    }
    return {{"documentIDs"_L1, ids}, {"selectedIndex"_L1, pane.selectedIndex}};
}

std::optional<SessionSnapshot::Pane> paneFrom(const QJsonValue &value)
{
    Reader reader(value);
    SessionSnapshot::Pane pane{.documentIDs = {}, .selectedIndex = reader.integer("selectedIndex"_L1)};
    const QJsonArray ids = reader.array("documentIDs"_L1);
    for (const QJsonValue &id : ids) {
        pane.documentIDs << QUuid(id.toString());
        if (!id.isString()) {
            reader.reject();
        }
    }
    return reader.isValid() ? std::optional(pane) : std::nullopt;
}

template<typename Value>
QJsonArray arrayOf(const QList<Value> &values)
{
    QJsonArray array;
    for (const Value &value : values) {
        array << objectOf(value);
    }
    return array;
}

template<typename Value>
QList<Value> listFrom(Reader &reader, QLatin1StringView key, std::optional<Value> (*read)(const QJsonValue &value))
{
    QList<Value> values;
    const QJsonArray array = reader.array(key);
    for (const QJsonValue &item : array) {
        if (const auto value = read(item)) {
            values << *value;
        } else {
            reader.reject();
        }
    }
    return values;
}

} // namespace

QJsonObject SessionSnapshot::Document::toObject() const
{
    return objectOf(*this);
}

std::optional<SessionSnapshot::Document> SessionSnapshot::Document::fromValue(const QJsonValue &value)
{
    return documentFrom(value);
}

QByteArray SessionSnapshot::toJson() const
{
    QJsonObject object = {{"documents"_L1, arrayOf(documents)},
                          {"panes"_L1, arrayOf(panes)},
                          {"focusedPaneIndex"_L1, focusedPaneIndex},
                          {"splitIsVertical"_L1, splitIsVertical},
                          {"savedAt"_L1, savedAt}};
    insert(object, "windowFrame"_L1, windowFrame);
    return QJsonDocument(object).toJson(); // its keys come sorted
}

std::optional<SessionSnapshot> SessionSnapshot::fromJson(const QByteArray &json)
{
    const QJsonDocument parsed = QJsonDocument::fromJson(json);
    Reader reader(parsed.isObject() ? QJsonValue(parsed.object()) : QJsonValue());
    const SessionSnapshot snapshot{
        .documents = listFrom(reader, "documents"_L1, documentFrom),
        .panes = listFrom(reader, "panes"_L1, paneFrom),
        .focusedPaneIndex = reader.integer("focusedPaneIndex"_L1),
        .splitIsVertical = reader.boolean("splitIsVertical"_L1),
        .windowFrame = reader.optionalString("windowFrame"_L1),
        .savedAt = reader.real("savedAt"_L1),
    };
    return reader.isValid() ? std::optional(snapshot) : std::nullopt;
}

QString WindowFrame::toString() const
{
    return u"{{%1, %2}, {%3, %4}}"_s.arg(x).arg(y).arg(width).arg(height);
}

std::optional<WindowFrame> WindowFrame::fromString(const QString &text)
{
    static const QRegularExpression form(u"^\\s*\\{\\s*\\{([^,{}]+),([^,{}]+)\\}\\s*,\\s*\\{([^,{}]+),([^,{}]+)\\}\\s*\\}\\s*$"_s);
    const QRegularExpressionMatch match = form.match(text);
    int sides[4] = {};
    for (int side = 0; side < 4; ++side) {
        bool isNumber = false;
        const double number = match.captured(side + 1).trimmed().toDouble(&isNumber);
        if (!isNumber || !(std::abs(number) <= longestSide)) {
            return std::nullopt;
        }
        sides[side] = int(std::lround(number));
    }
    const WindowFrame frame{sides[0], sides[1], sides[2], sides[3]};
    return frame.width > 0 && frame.height > 0 ? std::optional(frame) : std::nullopt;
}
