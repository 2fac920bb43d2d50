// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Desktop/DesktopRecentFiles.h"

#include "Base/AtomicFile.h"
#include "Base/FilePath.h"
#include "Base/StandardFolder.h"

#include <QDir>
#include <QDomDocument>
#include <QFile>
#include <QFileInfo>
#include <QMimeDatabase>
#include <QTextStream>
#include <QUrl>
#include <QXmlStreamReader>

#include <array>
#include <mutex>

using namespace Qt::StringLiterals;

namespace {

/// Trees of elements are walked by recursion, and their depth is others' to choose. The list needs six.
constexpr int greatestDepth = 64;

struct Namespace {
    QLatin1StringView attribute;
    QLatin1StringView name;
};
constexpr auto namespaces = std::to_array<Namespace>({
    {"xmlns:bookmark"_L1, "http://www.freedesktop.org/standards/desktop-bookmarks"_L1},
    {"xmlns:mime"_L1, "http://www.freedesktop.org/standards/shared-mime-info"_L1},
});

bool isWellFormed(const QByteArray &xml)
{
    QXmlStreamReader reader(xml);
    for (int depth = 0; !reader.atEnd() && depth <= greatestDepth;) {
        const auto token = reader.readNext();
        depth += token == QXmlStreamReader::StartElement ? 1 : token == QXmlStreamReader::EndElement ? -1 : 0;
    }
    return reader.atEnd() && !reader.hasError();
}

/// The root of the list in `document`; null when that is none.
QDomElement listIn(QDomDocument &document)
{
    QDomElement list = document.documentElement();
    for (const auto &[attribute, name] : namespaces) {
        if (!list.hasAttribute(attribute)) {
            list.setAttribute(attribute, name);
        }
        if (list.tagName() != "xbel"_L1 || list.attribute(attribute) != name) {
            return {};
        }
    }
    return list;
}

QDomElement append(QDomElement parent, const QString &tag)
{
    return parent.appendChild(parent.ownerDocument().createElement(tag)).toElement();
}

/// The child of this name, made when there is none.
QDomElement child(const QDomElement &parent, const QString &tag)
{
    const QDomElement found = parent.firstChildElement(tag);
    return found.isNull() ? append(parent, tag) : found;
}

QDomElement childWith(const QDomElement &parent, const QString &tag, const QString &attribute, const QString &value)
{
    for (QDomElement found = parent.firstChildElement(tag); !found.isNull(); found = found.nextSiblingElement(tag)) {
        if (found.attribute(attribute) == value) {
            return found;
        }
    }
    QDomElement made = append(parent, tag);
    made.setAttribute(attribute, value);
    return made;
}

/// By the name, among the types of texts: what was opened here was one, even if it is called like a film.
QString typeOf(const QString &path)
{
    const QString text = u"text/plain"_s;
    const auto candidates = QMimeDatabase().mimeTypesForFileName(path);
    const auto found = std::ranges::find_if(candidates, [&](const QMimeType &type) { return type.inherits(text); });
    return found == candidates.end() ? text : found->name();
}

void fill(QDomElement &bookmark, const QString &path, const QString &time)
{
    for (const QString &attribute : {u"added"_s, u"modified"_s, u"visited"_s}) {
        if (attribute != "added"_L1 || !bookmark.hasAttribute(attribute)) {
            bookmark.setAttribute(attribute, time);
        }
    }
    const QDomElement metadata = childWith(child(bookmark, u"info"_s), u"metadata"_s, u"owner"_s, u"http://freedesktop.org"_s);
    if (QDomElement type = child(metadata, u"mime:mime-type"_s); !type.hasAttribute(u"type"_s)) {
        type.setAttribute(u"type"_s, typeOf(path));
    }
    QDomElement application = childWith(child(metadata, u"bookmark:applications"_s), u"bookmark:application"_s, u"name"_s, u"Quillet"_s);
    application.setAttribute(u"exec"_s, u"'quillet %u'"_s);
    application.setAttribute(u"modified"_s, time);
    application.setAttribute(u"count"_s, application.attribute(u"count"_s).toUInt() + 1);
}

void addTo(const QString &path, const QStringList &files)
{
    QFile file(path);
    const bool isThere = QFileInfo::exists(path);
    if (isThere && (!QFileInfo(path).isFile() || file.size() > DesktopRecentFiles::largestFile || !file.open(QIODevice::ReadOnly))) {
        return;
    }
    if (const auto list = withRecentFiles(isThere ? file.readAll() : QByteArray(), files, QDateTime::currentDateTimeUtc())) {
        makePrivateFolder(QFileInfo(path).path());
        std::ignore = writeAtomically(path, *list, AtomicFile::NewFile::privateToUser);
    }
}

} // namespace

std::optional<QByteArray> withRecentFiles(const QByteArray &xbel, const QStringList &paths, const QDateTime &now)
{
    QDomDocument document;
    const QByteArray old = xbel.isEmpty() ? QByteArray("<xbel version=\"1.0\"/>") : xbel;
    if (!isWellFormed(old) || !document.setContent(old)) {
        return std::nullopt;
    }
    const QDomElement list = listIn(document);
    if (list.isNull()) {
        return std::nullopt;
    }
    const QString tag = u"bookmark"_s;
    const QString address = u"href"_s;
    // By path, since programs do not agree on what has to be escaped in an address.
    QHash<QString, QDomElement> bookmarks;
    for (QDomElement bookmark = list.firstChildElement(tag); !bookmark.isNull(); bookmark = bookmark.nextSiblingElement(tag)) {
        const QString path = localPath(QUrl(bookmark.attribute(address)));
        if (!bookmarks.contains(path)) {
            bookmarks[path] = bookmark;
        }
    }
    const QString time = now.toUTC().toString(Qt::ISODate);
    for (const QString &path : paths) {
        QDomElement &bookmark = bookmarks[path];
        if (bookmark.isNull()) {
            bookmark = append(list, tag);
            bookmark.setAttribute(address, addressOf(path));
        }
        fill(bookmark, path, time);
    }
    QByteArray bytes;
    QTextStream stream(&bytes);
    // Not in the encoding that the old one declared, if it was another.
    document.save(stream, 2, QDomNode::EncodingFromTextStream);
    stream.flush();
    return bytes;
}

struct DesktopRecentFiles::State {
    explicit State(QString path) : file(std::move(path)) {}

    const QString file;
    std::mutex mutex;
    // Under the mutex:
    QStringList pending;
    bool isWorking = false;

    /// Nothing when all is done, after which the next note begins a job of its own.
    [[nodiscard]] QStringList next()
    {
        const std::lock_guard lock(mutex);
        isWorking = !pending.isEmpty();
        return std::exchange(pending, {});
    }
};

DesktopRecentFiles::DesktopRecentFiles(QString file, Workers &workers)
    : m_workers(workers), m_state(std::make_shared<State>(std::move(file)))
{}

QString DesktopRecentFiles::standardPath()
{
    return standardFolder("XDG_DATA_HOME", u".local/share") + u"/recently-used.xbel"_s;
}

void DesktopRecentFiles::note(const QStringList &paths)
{
    {
        const std::lock_guard lock(m_state->mutex);
        m_state->pending << paths;
        if (m_state->isWorking) {
            return;
        }
        m_state->isWorking = true;
    }
    m_workers.run([state = m_state] {
        for (QStringList noted = state->next(); !noted.isEmpty(); noted = state->next()) {
            addTo(state->file, noted);
        }
    });
}
