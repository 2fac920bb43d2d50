// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Pasteboard.h"
#include "Settings/DefaultsStore.h"
#include "Settings/Preferences.h"
#include "Text/TextBoundaries.h"
#include "Text/UndoManager.h"
#include "Vim/VimConfiguration.h"
#include "Vim/VimExLine.h"
#include "Vim/VimExTarget.h"
#include "Vim/VimMarks.h"
#include "Vim/VimRegisters.h"
#include "Vim/VimSearch.h"
#include "Vim/VimSubstituteCommand.h"
#include "Vim/VimTextView.h"

/// A text for commands behind ":" without an engine.
class VimExText final : public VimExTarget, private VimRunning {
public:
    explicit VimExText(const QString &content)
    {
        {
            const UndoManager::Pause pause(undoManager);
            storage.apply({{}, content});
        }
        QObject::connect(&storage, &TextStorage::changed, &storage, [this](const TextChange &change) { m_marks.follow(change); });
        preferences.set(Settings::vimSharesClipboard, false);
        preferences.set(Settings::vimMode, true);
        preferences.set(Settings::vimExact, true);
    }

    bool run(const QString &typed) { return VimExLine(*this, configuration).run(typed); }

    [[nodiscard]] const Rope &text() const override { return storage.text(); }
    [[nodiscard]] VimLines::LastLine lastLine() const override { return VimLines::LastLine::hasText; }
    [[nodiscard]] qsizetype caret() const override { return place; }
    void moveCaret(qsizetype to) override { place = TextBoundaries::snapped(text(), VimBuffer(text()).clampToNormalMode(to)); }
    bool apply(const TextEdits &edits) override
    {
        if (edits.isEmpty()) {
            return true;
        }
        storage.apply(edits);
        place = std::min(place, text().length());
        return true;
    }
    void beginChange(std::optional<TextRange> /*taken*/) override {}
    void beginUndoGroup() override { undoManager.beginGroup(GroupKind::other, TextSelection::at(place), this); }
    void endUndoGroup() override { undoManager.endGroup(TextSelection::at(place)); }
    bool substituteElsewhere(const VimSubstituteJob & /*job*/) override { return false; }
    bool confirm(const VimSubstituteJob & /*job*/) override { return false; }
    void undo() override { show(undoManager.undo()); }
    void redo() override { show(undoManager.redo()); }
    [[nodiscard]] qsizetype undoSteps() const override { return undoManager.steps(); }
    void noteChange(qsizetype changed) override { m_changes.moveLast(changed); }
    void forgetLine() override {}
    [[nodiscard]] VimRunning &running() override { return *this; }
    void beginRun() override {}
    void endRun() override {}
    void showRun() override {}
    [[nodiscard]] bool goesOn() override { return true; }
    [[nodiscard]] bool compute(const Computing &computing) override
    {
        computing(text(), {});
        return true;
    }
    [[nodiscard]] VimTextName name() const override { return {.path = {}, .title = QStringLiteral("Untitled")}; }
    [[nodiscard]] VimMarks &marks() override { return m_marks; }
    void setMark(char16_t name, qsizetype at) override { m_marks.set(name, at); }
    void removeMark(char16_t name) override { m_marks.remove(name); }
    [[nodiscard]] std::vector<VimFileMarks::Mark> marksElsewhere() const override { return {}; }
    [[nodiscard]] VimPlaces &jumps() override { return m_jumps; }
    [[nodiscard]] VimPlaces &changes() override { return m_changes; }
    [[nodiscard]] const VimRegisters &registers() const override { return m_registers; }
    void keep(const VimRegisterContents &contents, std::optional<char16_t> name, VimRegisters::Taken taken) override
    {
        m_registers.keep(contents, name, taken);
    }
    /// "x" and "A" with what is to be added are all there is.
    bool runNormal(const QString &keys, bool) override
    {
        const VimLines lines(text());
        const qsizetype end = lines.endOf(lines.number(place));
        if (keys.startsWith(u'A')) {
            apply({{end, 0}, keys.sliced(1)});
            moveCaret(end + keys.size() - 2);
        } else if (place < end) {
            const TextRange character = TextRange::between(place, TextBoundaries::nextGrapheme(text(), place));
            m_registers.set({.text = text().slice(character)}, std::nullopt);
            apply({character, Rope()});
            moveCaret(std::max(lines.startOf(lines.number(character.location)), std::min(place, end - character.length - 1)));
        }
        return true;
    }
    [[nodiscard]] std::optional<VimSearch> &lastSearch() override { return m_search; }
    [[nodiscard]] VimSubstituteMemory &lastSubstitution() override { return m_substitution; }
    [[nodiscard]] Indentation indentation() const override
    {
        return {.width = preferences.value(Settings::tabWidth),
                .unit = preferences.value(Settings::insertSpaces) ? Indentation::Unit::spaces : Indentation::Unit::tab};
    }
    [[nodiscard]] const VimOptions &options() const override { return m_options = configuration.options(); }
    void hideHits() override { said << QStringLiteral("hits hidden"); }
    void say(const QString &message) override { said << message; }
    void list(const QString &title, const QString &lines) override { said << title + u'\n' + lines; }
    void perform(const Action &action, const QString &argument) override { said << action.name() + argument; }

    ManualScheduler scheduler;
    NotificationCenter notifications;
    DefaultsStore defaults{QString(), scheduler};
    Preferences preferences{defaults, notifications};
    VimConfiguration configuration{preferences};
    MemoryPasteboard pasteboard;
    TextStorage storage;
    UndoManager undoManager{storage, [] { return std::chrono::milliseconds(0); }};
    qsizetype place = 0;
    QStringList said;

private:
    void show(const std::optional<Selections> &selections)
    {
        if (selections) {
            moveCaret(selections->primary().range().location);
        }
    }

    VimMarks m_marks;
    VimPlaces m_jumps{VimPlaces::Kind::jumps};
    VimPlaces m_changes{VimPlaces::Kind::changes};
    VimRegisters m_registers{pasteboard, preferences};
    std::optional<VimSearch> m_search;
    VimSubstituteMemory m_substitution;
    mutable VimOptions m_options{VimKeymapPreset::plain};
};
