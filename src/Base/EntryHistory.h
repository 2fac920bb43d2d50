// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/KeptFile.h"

#include <QLatin1StringView>
#include <QStringList>

#include <optional>
#include <span>
#include <vector>

/// What was typed into fields of a few kinds, the latest first, each once; kept from one run to the next. Main thread only.
///
/// The file, which only the user may read, is a JSON object with an array of texts for each kind. It is never trusted: what is no text is
/// left out. When it cannot be read nothing is known, and when it cannot be written nobody is notified. It is written on a worker, and by
/// the destructor.
class EntryHistory final {
public:
    /// UTF-16 units of an entry that is kept for the next run.
    static constexpr qsizetype largestEntry = 2000;
    /// Bytes of a file that is still read.
    static constexpr qint64 largestFile = 1024 * 1024;

    /// What concerns a private file is forgotten when the program ends.
    enum class Kept { whileRunning, forNextRun };
    struct Form {
        /// The names of the kinds in the file, which must outlive the history. A kind is its place among them.
        std::span<const QLatin1StringView> kinds;
        /// Of each kind; older ones go.
        qsizetype mostEntries;
    };

    /// Keeps all in memory.
    explicit EntryHistory(const Form &form) : m_form(form), m_entries(form.kinds.size()), m_private(form.kinds.size()) {}
    /// `file` is absolute; its folder is made, for its user only, when something is first written. `workers` must outlive this.
    EntryHistory(const Form &form, QString file, Workers &workers);

    [[nodiscard]] const QStringList &entries(size_t kind) const { return m_entries[kind]; }
    [[nodiscard]] bool isEmpty() const;
    /// Puts an entry in front; an empty one is none. Once kept for the next run it stays so.
    void add(size_t kind, const QString &entry, Kept kept);
    void clear();

private:
    void load();
    void write();

    Form m_form;
    std::vector<QStringList> m_entries;
    /// Of each kind, those that are not for the next run.
    std::vector<QStringList> m_private;
    /// None that keeps all in memory.
    std::optional<KeptFile> m_file;
};
