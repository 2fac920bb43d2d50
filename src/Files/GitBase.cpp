// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Files/GitBase.h"

#include "Base/FilePath.h"
#include "Files/FoldingSink.h"
#include "Files/GitLibrary.h"
#include "Files/TextFile.h"

#include <algorithm>
#include <array>
#include <memory>
#include <vector>

#include <sys/stat.h>

namespace {

constexpr size_t blockSize = 1 << 20;

/// Null if `make` fails to put something where its argument points.
template<class Object>
[[nodiscard]] std::unique_ptr<Object, void (*)(Object *)> made(void (*free)(Object *), const auto &make)
{
    Object *object = nullptr;
    return {make(&object) == 0 ? object : nullptr, free};
}

QByteArray folderOf(const QByteArray &path)
{
    return path.left(std::max<qsizetype>(path.lastIndexOf('/'), 1));
}

/// What all files that are in no repository are found by, without the library.
bool mayBeInRepository(QByteArray folder)
{
    for (struct stat status{};; folder = folderOf(folder)) {
        if (::stat((folder + "/.git").constData(), &status) == 0) {
            return true;
        }
        if (folder.size() <= 1) {
            return false;
        }
    }
}

/// One file in the work tree of one repository, as long as it is asked about.
class GitFile {
public:
    GitFile(const GitLibrary &git, const QByteArray &path)
        : m_git(git), m_repository(made(git.freeRepository, [&](git_repository **out) {
              return git.openRepository(out, folderOf(path).constData(), 0, nullptr);
          }))
    {
        const char *const folder = m_repository ? git.workFolder(m_repository.get()) : nullptr;
        QByteArray root = folder ? realPath(folder) : QByteArray();
        root += root.endsWith('/') ? "" : "/";
        m_name = folder && path.startsWith(root) ? path.sliced(root.size()) : QByteArray();
    }

    /// Of what the last commit has; none unless that is a regular file.
    [[nodiscard]] std::optional<git_oid> blob() const
    {
        if (m_name.isEmpty()) {
            return std::nullopt;
        }
        const auto head = made(m_git.freeReference, [this](git_reference **out) { return m_git.head(out, m_repository.get()); });
        const auto tree =
            made(m_git.freeObject, [&](git_object **out) { return head ? m_git.peel(out, head.get(), GIT_OBJECT_TREE) : -1; });
        const auto entry = made(m_git.freeEntry, [&](git_tree_entry **out) {
            return tree ? m_git.entryAt(out, reinterpret_cast<const git_tree *>(tree.get()), m_name.constData()) : -1;
        });
        const git_filemode_t mode = entry ? m_git.modeOf(entry.get()) : GIT_FILEMODE_UNREADABLE;
        return mode == GIT_FILEMODE_BLOB || mode == GIT_FILEMODE_BLOB_EXECUTABLE ? std::optional(*m_git.idOf(entry.get())) : std::nullopt;
    }

    [[nodiscard]] std::optional<Rope> read(const git_oid &id, TextEncoding encoding, const std::stop_token &stop) const;

private:
    /// The attribute has a value.
    [[nodiscard]] bool has(const char *attribute) const
    {
        const char *value = nullptr;
        return m_git.findAttribute(&value, m_repository.get(), GIT_ATTR_CHECK_FILE_THEN_INDEX, m_name.constData(), attribute) == 0 &&
               m_git.kindOfAttribute(value) == GIT_ATTR_VALUE_STRING;
    }
    [[nodiscard]] bool isTooLarge(const git_oid &id) const
    {
        const auto objects = made(m_git.freeObjects, [this](git_odb **out) { return m_git.objects(out, m_repository.get()); });
        size_t size = 0;
        git_object_t type = GIT_OBJECT_INVALID;
        return !objects || m_git.readHeader(&size, &type, objects.get(), &id) != 0 || size > size_t(TextFile::largestSize);
    }

    const GitLibrary &m_git;
    std::unique_ptr<git_repository, void (*)(git_repository *)> m_repository;
    /// In the work tree; empty when it is in none.
    QByteArray m_name;
};

QByteArrayView withoutMark(QByteArrayView bytes, TextEncoding encoding)
{
    struct Mark {
        TextEncoding encoding;
        QByteArrayView bytes;
    };
    static constexpr auto marks = std::to_array<Mark>({{TextEncoding::utf8, {"\xEF\xBB\xBF", 3}},
                                                       {TextEncoding::utf16LittleEndian, {"\xFF\xFE", 2}},
                                                       {TextEncoding::utf16BigEndian, {"\xFE\xFF", 2}}});
    const auto mark = std::ranges::find(marks, encoding, &Mark::encoding);
    return mark != marks.end() && bytes.startsWith(mark->bytes) ? bytes.sliced(mark->bytes.size()) : bytes;
}

std::optional<Rope> decoded(QByteArrayView bytes, TextEncoding encoding, const std::stop_token &stop)
{
    const auto decoder = TextDecoder::strict(encoding);
    if (!decoder) {
        return std::nullopt;
    }
    FoldingSink sink;
    std::vector<uchar> block;
    for (qsizetype at = 0; at < bytes.size(); at += qsizetype(block.size())) {
        const QByteArrayView next = bytes.sliced(at, std::min(qsizetype(blockSize), bytes.size() - at));
        block.assign(next.begin(), next.end());
        if (stop.stop_requested() || !decoder->decode(block, sink)) {
            return std::nullopt;
        }
    }
    return decoder->finish(sink) ? std::optional(sink.text()) : std::nullopt;
}

std::optional<Rope> GitFile::read(const git_oid &id, TextEncoding encoding, const std::stop_token &stop) const
{
    // What a program makes of the file before it is committed is not its text.
    if (isTooLarge(id) || has("filter")) {
        return std::nullopt;
    }
    const auto blob = made(m_git.freeBlob, [&](git_blob **out) { return m_git.findBlob(out, m_repository.get(), &id); });
    if (!blob) {
        return std::nullopt;
    }
    const QByteArrayView bytes(static_cast<const char *>(m_git.bytesOf(blob.get())), qsizetype(m_git.sizeOf(blob.get())));
    const TextEncoding kept = has("working-tree-encoding") ? TextEncoding::utf8 : encoding;
    return decoded(withoutMark(bytes, kept), kept, stop);
}

} // namespace

std::optional<GitBase> GitBase::read(const QString &path, TextEncoding encoding, const std::optional<GitBase> &known,
                                     const std::stop_token &stop)
{
    const QByteArray real = realPath(encodedPath(path));
    const GitLibrary *const git = !real.isEmpty() && mayBeInRepository(folderOf(real)) ? GitLibrary::load() : nullptr;
    if (!git) {
        return std::nullopt;
    }
    const GitFile file(*git, real);
    const auto blob = file.blob();
    if (!blob) {
        return std::nullopt;
    }
    const QByteArray id(reinterpret_cast<const char *>(blob->id), GIT_OID_RAWSZ);
    if (known && known->id == id && known->encoding == encoding) {
        return known;
    }
    const auto text = file.read(*blob, encoding, stop);
    return text ? std::optional(GitBase{id, encoding, *text}) : std::nullopt;
}
