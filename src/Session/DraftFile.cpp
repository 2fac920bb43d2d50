// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Session/DraftFile.h"

#include "Files/TextEncoding.h"
#include "Files/TextFile.h"

#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

constexpr auto suffix = ".draft"_L1;
constexpr qint64 portion = 256 * 1024;

class RopeSink final : public TextSink {
public:
    void append(std::span<uchar> latin1) override { m_builder.appendLatin1(latin1.data(), qsizetype(latin1.size())); }
    void append(std::span<char16_t> units) override { m_builder.append(QStringView(units.data(), qsizetype(units.size()))); }
    [[nodiscard]] Rope build() { return m_builder.build(); }

private:
    RopeBuilder m_builder;
};

} // namespace

QString DraftFile::nameFor(const QUuid &document)
{
    return document.toString(QUuid::WithoutBraces).toUpper() + suffix;
}

QUuid DraftFile::documentOf(const QString &name)
{
    const QUuid id(name.endsWith(suffix) ? name.chopped(suffix.size()) : QString());
    return nameFor(id) == name ? id : QUuid();
}

Result<void> DraftFile::write(const Rope &text, const QString &path, FileCalls &calls)
{
    // A link would be followed, and what it leads to be written.
    struct stat status = {};
    const QByteArray name = QFile::encodeName(path);
    if (calls.lstat(name.constData(), &status) == 0 && S_ISLNK(status.st_mode)) {
        calls.unlink(name.constData());
    }
    return TextFile::write(text, path, TextEncoding::utf8, LineEnding::lf, calls, {.newFile = AtomicFile::NewFile::privateToUser})
        .map([](const AtomicFile::Written &) {})
        .map_error([](const TextFile::WriteError &error) { return Error(error); });
}

std::optional<Rope> DraftFile::read(const QString &path)
{
    QFile file(path);
    // Anything else would have to be waited for.
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    const auto decoder = TextDecoder::lossyUtf8();
    RopeSink sink;
    QByteArray bytes(portion, Qt::Uninitialized);
    for (;;) {
        const qint64 count = file.read(bytes.data(), portion);
        if (count < 0) {
            return std::nullopt;
        }
        if (count == 0) {
            break;
        }
        std::ignore = decoder->decode(std::span(reinterpret_cast<uchar *>(bytes.data()), size_t(count)), sink);
    }
    std::ignore = decoder->finish(sink);
    return sink.build();
}
