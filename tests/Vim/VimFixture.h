// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Pasteboard.h"
#include "Commands/Actions.h"
#include "Settings/DefaultsStore.h"
#include "Settings/Preferences.h"
#include "Text/TextBoundaries.h"
#include "Text/UndoManager.h"
#include "Vim/VimConfiguration.h"
#include "Vim/VimEngine.h"
#include "Vim/VimLines.h"

#include <gtest/gtest.h>

#include <map>

/// A text with modal editing and nothing to show it: a screen of twenty lines follows the caret as Vim's window does.
class VimView final : public VimTextView, private VimEngineDelegate {
public:
    explicit VimView(const QString &content, VimKeymapPreset preset = VimKeymapPreset::plain) : VimView(content, VimOptions(preset)) {}
    VimView(const QString &content, const VimOptions &options) : engine(*this, *this, registers, options)
    {
        {
            const UndoManager::Pause pause(undoManager);
            storage.apply({{}, content});
        }
        preferences.set(Settings::vimSharesClipboard, false);
        engine.setConfiguration(&configuration);
        QObject::connect(&storage, &TextStorage::changed, &storage, [this](const TextChange &change) { engine.textChanged(change); });
    }

    /// As Vim users write them: <Esc>, <CR>, <C-r>, <A-j>, <Left>, <lt>.
    void press(const QString &keys)
    {
        for (qsizetype place = 0; place < keys.size(); ++place) {
            VimKeyEvent event;
            QString key = keys.mid(place, keys[place].isHighSurrogate() ? 2 : 1);
            if (key == u'<') {
                const QString name = keys.mid(place + 1, keys.indexOf(u'>', place) - place - 1);
                place += name.size() + 1;
                event.control = name.startsWith(u"C-");
                event.option = name.startsWith(u"A-");
                event.shift = name.startsWith(u"S-");
                key = named(event.control || event.option || event.shift ? name.mid(2) : name);
            } else {
                place += key.size() - 1;
            }
            event.charactersIgnoringModifiers = key;
            const bool isText = !event.control && (key.front() < QChar(VimKey::up) || key.front() > QChar(VimKey::backtab));
            event.characters = isText ? key : QString();
            handle(event, isText ? key : QString());
        }
    }
    /// A key that types `text` where the engine leaves it to the view.
    void handle(const VimKeyEvent &event, const QString &text)
    {
        if (!engine.handle(event) && !text.isEmpty()) {
            insertText(text == u"\r" ? QStringLiteral("\n") : text);
        }
        followCaret();
    }
    [[nodiscard]] QString string() const { return storage.string(); }
    /// With "|" for the caret; with the selection between "^" and "|" in the visual modes, "|" where it is moved.
    [[nodiscard]] QString marked() const
    {
        QString all = string();
        const bool isBackward = caret == selected.location && selected.length > 1;
        all.insert(selected.end(), isBackward ? u'^' : u'|');
        return selected.isEmpty() ? all : all.insert(selected.location, isBackward ? u'|' : u'^');
    }

    [[nodiscard]] const Rope &text() const override { return storage.text(); }
    [[nodiscard]] VimTextName name() const override { return textName; }
    [[nodiscard]] TextRange selectedRange() const override { return selected; }
    void select(TextRange range, qsizetype at) override
    {
        several.clear();
        caret = at;
        const qsizetype from = TextBoundaries::snapped(text(), range.location);
        selected = TextRange::between(from, std::max(from, TextBoundaries::snapped(text(), range.end())));
    }
    void selectSeveral(const std::vector<TextRange> &ranges, size_t primary, std::optional<qsizetype> at = std::nullopt) override
    {
        several = ranges;
        selected = ranges[primary];
        caret = at.value_or(selected.location);
    }
    bool apply(const TextEdits &edits) override
    {
        if (isReadOnly) {
            return false;
        }
        undoManager.beginGroup(GroupKind::other, TextSelection::at(selected.location), this);
        storage.apply(edits);
        selected = {edits[0].range.location, 0};
        undoManager.endGroup(TextSelection::at(selected.location));
        return true;
    }
    void insertText(const QString &inserted) override
    {
        if (several.size() > 1) {
            TextEdits edits;
            qsizetype shift = 0;
            std::vector<TextRange> after;
            for (const TextRange &range : several) {
                edits.add(range, Rope(inserted));
                shift += inserted.size() - range.length;
                after.push_back({range.end() + shift, 0});
            }
            apply(edits);
            selectSeveral(after, 0);
            return;
        }
        const qsizetype end = selected.location + inserted.size();
        if (apply({selected, inserted})) {
            select({end, 0}, end);
        }
    }
    void putText(const QString &text) override { insertText(text); }
    void deleteBackward(VimDeletion what) override
    {
        if (several.size() > 1) {
            TextEdits edits;
            qsizetype shift = 0;
            std::vector<TextRange> after;
            for (const TextRange &range : several) {
                const qsizetype start = TextBoundaries::previousGrapheme(text(), range.location);
                edits.add(TextRange::between(start, range.location), Rope());
                shift += range.location - start;
                after.push_back({range.location - shift, 0});
            }
            apply(edits);
            selectSeveral(after, 0);
            return;
        }
        const qsizetype place = selected.location;
        const qsizetype from = what == VimDeletion::letter ? TextBoundaries::previousGrapheme(text(), place)
                               : what == VimDeletion::word ? TextBoundaries::previousWordStart(text(), place)
                                                           : text().lineStart(text().lineAt(place));
        if (from < place) {
            apply({TextRange::between(from, place), QString()});
        }
    }
    void undo() override { show(undoManager.undo()); }
    void redo() override { show(undoManager.redo()); }
    [[nodiscard]] qsizetype undoSteps() const override { return undoManager.steps(); }
    void beginUndoGroup() override { undoManager.beginGroup(GroupKind::other, TextSelection::at(selected.location), this); }
    void endUndoGroup() override { undoManager.endGroup(TextSelection::at(selected.location)); }
    [[nodiscard]] qsizetype visibleLineCount() const override { return screenLines; }
    [[nodiscard]] TextRange visibleRange() const override
    {
        const qsizetype behind = topLine + screenLines;
        const TextRange seen = TextRange::between(text().lineStart(std::min(topLine, lastLine())),
                                                  behind > lastLine() ? text().length() : text().lineStart(behind));
        return visible.value_or(seen);
    }
    void centerSelection() override
    {
        actions << QStringLiteral("center");
        showLine(caretLine(), screenLines / 2 - 1);
    }
    void revealSelection() override { actions << QStringLiteral("reveal"); }
    void revealAt(Edge edge) override
    {
        actions << (edge == Edge::top ? QStringLiteral("top") : QStringLiteral("bottom"));
        showLine(caretLine(), edge == Edge::top ? 0 : screenLines - 1);
    }
    [[nodiscard]] std::optional<RowPlace> movedByRows(const RowPlace &from, qsizetype rows) const override
    {
        const VimLines lines(text(), indent.tabWidth(), VimLines::LastLine::hasText);
        if (rows > 0 ? lines.isLast(from.place) : lines.isFirst(from.place)) {
            return std::nullopt;
        }
        const double x = from.x.value_or(double(lines.cells(from.place).first));
        const qsizetype line = lines.startNear(from.place, rows);
        return RowPlace{std::min(lines.placeAt(line, qsizetype(x)), lines.end(line)), x};
    }
    [[nodiscard]] TextRange rowAt(qsizetype place) const override
    {
        const VimLines lines(text(), indent.tabWidth(), VimLines::LastLine::hasText);
        return TextRange::between(lines.start(place), lines.end(place));
    }
    void scrollRows(qsizetype rows) override { topLine = std::clamp<qsizetype>(topLine + rows, 0, lastLine()); }
    void seek(std::function<Seeking()> prepare, std::function<void(TextRange hit)> arrive) override
    {
        if (const auto hit = prepare()({})) {
            arrive(*hit);
        }
    }
    void showIndicator(TextRange range) override { indicator = range; }
    [[nodiscard]] Indentation indentation() const override { return indent; }
    void beginRun() override { ++runs; }
    void endRun() override {}
    void showRun() override {}
    [[nodiscard]] bool goesOn() override { return !isStopped; }
    [[nodiscard]] bool compute(const Computing &computing) override
    {
        computing(text(), {});
        return true;
    }
    void toggleComment() override
    {
        actions << QStringLiteral("toggleComment");
        const auto step = LineEditing::commentToggled(text(), selected, u"//");
        if (step && apply(step->edits)) {
            select(step->after.range(), step->after.caret);
        }
    }
    void setCaretLook(VimCaret look) override { caretLook = look; }
    [[nodiscard]] std::vector<Rope> otherTexts() const override { return others; }
    void showOffer(const std::optional<VimOffer> &wanted) override { offer = wanted; }
    void perform(const Action &action) override { actions << action.name(); }
    void beep() override { ++beeps; }

    ManualScheduler scheduler;
    NotificationCenter notifications;
    DefaultsStore defaults{QString(), scheduler};
    Preferences preferences{defaults, notifications};
    MemoryPasteboard pasteboard;
    VimRegisters registers{pasteboard, preferences};
    TextStorage storage;
    UndoManager undoManager{storage, [] { return std::chrono::milliseconds(0); }};
    TextRange selected;
    std::vector<TextRange> several;
    qsizetype caret = 0;
    std::optional<TextRange> visible;
    /// The first one that is seen, from 0.
    qsizetype topLine = 0;
    TextRange indicator;
    std::vector<Rope> others;
    std::optional<VimOffer> offer;
    Indentation indent;
    VimTextName textName{.path = QStringLiteral("/folder/file"), .title = QStringLiteral("file")};
    QStringList commandLines;
    QStringList messages;
    bool isReadOnly = false;
    bool isStopped = false;
    int runs = 0;
    VimCaret caretLook = VimCaret::bar;
    QStringList actions;
    int beeps = 0;
    VimConfiguration configuration{preferences};
    VimEngine engine;

private:
    static QString named(const QString &name)
    {
        static const std::map<QString, char16_t> names = {
            {QStringLiteral("Esc"), VimKey::escape},
            {QStringLiteral("CR"), u'\r'},
            {QStringLiteral("BS"), VimKey::backspace},
            {QStringLiteral("lt"), u'<'},
            {QStringLiteral("Up"), VimKey::up},
            {QStringLiteral("Down"), VimKey::down},
            {QStringLiteral("Left"), VimKey::left},
            {QStringLiteral("Right"), VimKey::right},
            {QStringLiteral("Home"), VimKey::home},
            {QStringLiteral("End"), VimKey::end},
            {QStringLiteral("PageUp"), VimKey::pageUp},
            {QStringLiteral("PageDown"), VimKey::pageDown},
            {QStringLiteral("Del"), VimKey::forwardDelete},
            {QStringLiteral("Tab"), u'\t'},
            {QStringLiteral("Backtab"), VimKey::backtab},
            {QStringLiteral("F5"), char16_t(VimKey::functionKey + 4)},
        };
        const auto known = names.find(name);
        return known == names.end() ? name : QString(QChar(known->second));
    }
    static constexpr qsizetype screenLines = 20;

    [[nodiscard]] qsizetype caretLine() const { return text().lineAt(std::min(caret, text().length())); }
    /// From 0; the empty one behind a last break only if the caret is there.
    [[nodiscard]] qsizetype lastLine() const
    {
        const qsizetype last = text().lineCount() - 1;
        return std::max({caretLine(), text().lineStart(last) < text().length() ? last : last - 1, qsizetype(0)});
    }
    /// So many lines below the first one that is seen, as far as there are lines above it.
    void showLine(qsizetype line, qsizetype below) { topLine = std::max<qsizetype>(line - below, 0); }
    /// Goes as far as it has to, or has the line in the middle where that would be half of the screen.
    void followCaret()
    {
        const qsizetype line = caretLine();
        const qsizetype above = topLine - line;
        const qsizetype below = line - (topLine + screenLines - 1);
        if (above > 0) {
            showLine(line, above >= screenLines / 2 - 1 ? screenLines / 2 - 1 : 0);
        } else if (below > 0) {
            const qsizetype last = std::max<qsizetype>(lastLine() - screenLines + 1, 0);
            showLine(line, below > screenLines / 2 ? screenLines / 2 : screenLines - 1);
            topLine = std::min(topLine, last);
        }
    }

    void show(const std::optional<Selections> &selections)
    {
        if (selections) {
            select(selections->primary().range(), selections->primary().caret.offset);
        }
    }
    void vimEngineRunsCommand(VimEngine &, const QString &command) override { commandLines << command; }
    void vimEngineSays(VimEngine &, const QString &message) override { messages << message; }
    void vimEngineLists(VimEngine &, const QString &title, const QString &) override { messages << title; }
    void vimEnginePerforms(VimEngine &, const Action &action, const QString &argument) override { actions << action.name() + argument; }
    void vimEngineSubstitutes(VimEngine &, const VimSubstituteJob &) override {}
    void vimEngineDidChangeState(VimEngine &) override {}
};
