// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Files/FileForm.h"

#include <map>
#include <optional>

class Preferences;
class UndoManager;
struct TextChange;

/// The form in which a document's text was found in its file, as it is to be written with the text as it is now: line endings follow every
/// edit, and come back with what is undone. Main thread only.
class DocumentForm final {
public:
    /// How many states of the text, the latest ones, have their line endings remembered for undoing. Of an older one lines that come back
    /// end like their neighbours.
    static constexpr size_t mostRemembered = 2000;

    /// Both must outlive this.
    DocumentForm(const UndoManager &undoManager, const Preferences &preferences) : m_undoManager(undoManager), m_preferences(preferences) {}

    [[nodiscard]] const FileForm &value() const { return m_value; }
    /// The same, if it is to be written again; none where the settings want the normal form.
    [[nodiscard]] std::optional<FileForm> kept() const;
    void set(const FileForm &form);
    /// All lines end alike from now on.
    void setUniform(LineEnding ending);
    /// The same, and no byte-order mark.
    void setNormal(LineEnding ending);
    /// The text was changed; the undo manager has heard of it. Who adds the first line break means `fallback`.
    void noteEdit(const TextChange &change, LineEnding fallback);

private:
    void remember();

    const UndoManager &m_undoManager;
    const Preferences &m_preferences;
    FileForm m_value;
    /// By the undo manager's numbers; empty while all lines end alike and did so since the text was read.
    std::map<quint64, LineEndings> m_states;
};
