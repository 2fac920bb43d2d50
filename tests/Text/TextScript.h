// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/RandomText.h"
#include "Text/StyleRunsCode.h"
#include "Text/TextTreeCode.h"
#include "Text/UndoManager.h"
#include "fuzz/Require.h"

/// Random edits, styles, undo and redo, played on a storage and on plain vectors side by side.
class TextScript {
public:
    explicit TextScript(Random &random) : m_random(random)
    {
        for (int i = 1; i < 3; ++i) {
            (void)m_storage.styles().intern({.foreground = i});
        }
        QObject::connect(&m_storage, &TextStorage::changed, [this](const TextChange &change) {
            ++m_changes;
            REQUIRE(change.before == Rope(QStringView(m_text)) && change.after == m_storage.text());
            REQUIRE(change.edits.applied(change.before) == change.after);
        });
        QObject::connect(&m_storage, &TextStorage::didProcessEditing, [this] { REQUIRE(++m_processed == m_changes); });
        QObject::connect(&m_storage, &TextStorage::stylesChanged, [this](const std::vector<TextRange> &ranges) { m_restyled = ranges; });
    }

    void step()
    {
        switch (m_random.below(8)) {
        case 0:
            m_undo.markSavePoint();
            m_saved = m_current;
            break;
        case 1:
            style();
            break;
        case 2:
        case 3:
            go(Way::back);
            break;
        case 4:
            go(Way::forth);
            break;
        default:
            group();
        }
        check();
    }
    /// Back to the beginning, and forth again.
    void end()
    {
        for (const Way way : {Way::back, Way::forth}) {
            while (go(way)) {
                check();
            }
        }
    }

private:
    enum class Way { back, forth };
    using SmallTree = TextTree<32, 4>;
    using SmallRuns = RunTree<4, 4>;
    struct State {
        TextSelection before;
        TextSelection after;
        std::u16string text;
    };

    TextRange range(qsizetype from, qsizetype longest)
    {
        const Rope &text = m_storage.text();
        const auto wholePair = [&](qsizetype offset) { return text.splitsPair(offset) ? offset + 1 : offset; };
        const qsizetype start = wholePair(std::min(text.length(), from));
        return TextRange::between(start, wholePair(std::min(text.length(), start + m_random.below(longest + 1))));
    }

    /// New text, or what stands somewhere with its leaves.
    Rope piece()
    {
        const qsizetype length = m_storage.length();
        const qsizetype longest = length > 1000 ? 1 : m_random.oneIn(20) ? 60 : 4;
        return m_random.oneIn(4) ? m_storage.text().slice(range(m_random.below(length + 1), longest))
                                 : Rope(QStringView(m_random.text(m_random.below(longest))));
    }

    void edit()
    {
        TextEdits edits;
        const qsizetype farthest = m_random.oneIn(5) ? 4 : m_storage.length() + 1;
        for (qsizetype at = m_random.below(m_storage.length() + 1); at <= m_storage.length(); at += 1 + m_random.below(farthest)) {
            const TextRange place = range(at, m_random.oneIn(20) ? 60 : 3);
            edits.add(place, piece());
            at = place.end();
        }
        m_storage.apply(edits);
        for (size_t i = 0; i < edits.count(); ++i) {
            const qsizetype from = edits.newRange(i).location;
            const qsizetype removed = edits[i].range.length;
            const std::u16string inserted = edits[i].text.toString().toStdU16String();
            const StyleId before = from > 0 ? m_styles[size_t(from) - 1] : plainStyle;
            m_small.replace({from, removed}, QStringView(inserted));
            m_smallRuns.replace({from, removed}, qsizetype(inserted.size()));
            m_text.replace(size_t(from), size_t(removed), inserted);
            m_styles.erase(m_styles.begin() + from, m_styles.begin() + from + removed);
            m_styles.insert(m_styles.begin() + from, inserted.size(), before);
        }
    }

    void style()
    {
        const TextRange window = range(m_random.below(m_storage.length() + 1), m_storage.length());
        std::vector<StyleRun> runs;
        const std::vector<StyleId> before = m_styles;
        for (qsizetype at = window.location; at < window.end(); at += runs.back().length) {
            runs.push_back({std::min(1 + m_random.below(m_random.oneIn(4) ? 60 : 5), window.end() - at), StyleId(m_random.below(3))});
            std::fill_n(m_styles.begin() + at, runs.back().length, runs.back().style);
        }
        m_restyled.clear();
        m_storage.setStyles(window, runs);
        for (const TextRange part : m_restyled) {
            REQUIRE(std::equal(before.begin() + part.location, before.begin() + part.end(), m_styles.begin() + part.location,
                               std::not_equal_to()));
        }
        REQUIRE(m_smallRuns.assign(window, runs) == m_restyled);
    }

    void group()
    {
        State state{{m_random.below(9), m_random.below(9)}, {m_random.below(9), m_random.below(9)}, {}};
        const int changes = m_changes;
        m_undo.beginGroup(GroupKind::other, state.before, nullptr);
        for (qsizetype edits = 1 + m_random.below(6); edits > 0; --edits) {
            m_undo.beginGroup(GroupKind::typing, {}, this); // Inner groups do not count.
            edit();
            m_undo.endGroup({});
            if (m_random.oneIn(4)) {
                style();
            }
        }
        m_undo.endGroup(state.after);
        if (m_changes != changes) {
            if (m_saved && *m_saved > m_current) {
                m_saved.reset();
            }
            state.text = m_text;
            m_states.resize(++m_current);
            m_states.push_back(state);
        }
    }

    /// False at the end of the history.
    bool go(Way way)
    {
        const bool isBack = way == Way::back;
        const bool isPossible = isBack ? m_current > 0 : m_current + 1 < m_states.size();
        const int changes = m_changes;
        const auto selection = isBack ? m_undo.undo() : m_undo.redo();
        REQUIRE(selection.has_value() == isPossible && m_changes <= changes + 1);
        if (isPossible) {
            REQUIRE(selection == (isBack ? m_states[m_current].before : m_states[m_current + 1].after));
            m_text = m_states[isBack ? --m_current : ++m_current].text;
            m_small = SmallTree(QStringView(m_text));
            // Which style text gets that comes back follows from how the group was kept.
            m_styles.clear();
            m_smallRuns = {};
            m_smallRuns.replace({}, m_storage.length());
            m_storage.forEachStyle({0, m_storage.length()}, [&](TextRange range, StyleId style) {
                const StyleRun run{range.length, style};
                m_styles.insert(m_styles.end(), size_t(range.length), style);
                (void)m_smallRuns.assign(range, {&run, 1});
            });
        }
        return isPossible;
    }

    void check()
    {
        REQUIRE(m_storage.checkInvariants() && m_small.checkInvariants() && m_smallRuns.checkInvariants());
        REQUIRE(m_storage.string().toStdU16String() == m_text);
        REQUIRE(m_small == SmallTree(QStringView(m_text)) && m_small.lineCount() == m_storage.text().lineCount());
        const qsizetype from = m_random.below(m_storage.length() + 1);
        const TextRange part{from, m_random.below(m_storage.length() - from + 1)};
        std::vector<StyleId> found;
        const auto collect = [&found](TextRange run, StyleId style) { found.insert(found.end(), size_t(run.length), style); };
        m_storage.forEachStyle({0, m_storage.length()}, collect);
        REQUIRE(std::exchange(found, {}) == m_styles);
        m_smallRuns.forEachRun(part, collect);
        REQUIRE(found == std::vector(m_styles.begin() + from, m_styles.begin() + part.end()));
        REQUIRE(m_undo.canUndo() == (m_current > 0) && m_undo.canRedo() == (m_current + 1 < m_states.size()));
        REQUIRE(m_undo.isAtSavePoint() == (m_saved == m_current));
    }

    Random &m_random;
    TextStorage m_storage;
    UndoManager m_undo{m_storage, [] { return std::chrono::milliseconds(0); }};
    int m_changes = 0;
    int m_processed = 0;
    std::vector<TextRange> m_restyled;
    /// The same in leaves so small that the trees get deep.
    SmallTree m_small;
    SmallRuns m_smallRuns;
    std::u16string m_text;
    std::vector<StyleId> m_styles;
    std::vector<State> m_states{{}};
    size_t m_current = 0;
    std::optional<size_t> m_saved = 0;
};
