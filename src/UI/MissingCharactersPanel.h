// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/NotificationCenter.h"
#include "Base/Scheduler.h"
#include "Text/LineNumber.h"
#include "Text/Rope.h"

#include <QDialog>
#include <QPointer>

#include <vector>

class CharacterSet;
class EditorViewController;
class QLabel;
class QTreeWidget;
class QTreeWidgetItem;
class TextDocument;

/// A character that cannot be saved in the encoding of its text, and where it stands.
struct MissingCharacter {
    TextRange range;
    LineNumber line = LineNumber::first;
    /// From 1, in UTF-16 code units.
    qsizetype column = 1;
    char32_t character = 0;
};
/// The first `most` of a text.
[[nodiscard]] std::vector<MissingCharacter> missingCharactersOf(const Rope &text, const CharacterSet &characters, size_t most);

/// Lists the characters of an editor's text that its encoding lacks. Who goes through the list sees each of them in the text, which may be
/// edited meanwhile. Main thread only.
class MissingCharactersPanel final : public QDialog {
public:
    static constexpr size_t mostListed = 1000;
    static constexpr Scheduler::Milliseconds updateDelay{250};

    MissingCharactersPanel(Scheduler &scheduler, NotificationCenter &notifications, QWidget *window);
    ~MissingCharactersPanel() override;

    /// Takes the place of an editor that it was about before.
    void showFor(EditorViewController &editor);

private:
    void update();
    void goTo(const QTreeWidgetItem *item);
    void goToText();

    Scheduler &m_scheduler;
    NotificationCenter &m_notifications;
    QPointer<EditorViewController> m_editor;
    NotificationCenter::Token m_observer;
    QMetaObject::Connection m_edits;
    DelayedTask m_updating;
    QLabel *m_summary;
    QTreeWidget *m_list;
    bool m_isUpdating = false;
};
