// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// A script of edits, styles, undo and redo, played on a storage and on plain vectors side by side.
#include "Require.h"
#include "Text/TextTreeCode.h"
#include "Text/UndoManager.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <set>

namespace {

constexpr qsizetype longestText = 40'000;

class Script {
public:
    Script(const uint8_t *data, size_t size) : m_input(data, size)
    {
        for (int i = 1; i < 3; ++i) {
            (void)m_storage.styles().intern({.foreground = i});
        }
        QObject::connect(&m_storage, &TextStorage::changed, [this](const TextChange &change) { follow(change); });
        m_texts.push_back({});
        m_follower = {};
    }

    void play()
    {
        while (m_input.remaining_bytes() > 0) {
            step();
            check();
        }
        checkLines();
        for (const auto &[snapshot, text] : m_snapshots) {
            REQUIRE(snapshot.text.toString().toStdU16String() == text);
        }
        while (m_current > 0) {
            undo();
            check();
        }
        while (m_current + 1 < m_texts.size()) {
            redo();
            check();
        }
    }

private:
    enum class Action { edit, editWithPiece, group, style, undo, redo, savePoint, snapshot, kMaxValue = snapshot };

    void step()
    {
        switch (m_input.ConsumeEnum<Action>()) {
        case Action::edit:
            beginGroup();
            edit();
            endGroup();
            break;
        case Action::editWithPiece:
            beginGroup();
            editWithPiece();
            endGroup();
            break;
        case Action::group:
            beginGroup();
            for (int edits = m_input.ConsumeIntegralInRange(0, 40); edits > 0; --edits) {
                m_input.ConsumeBool() ? edit() : editWithPiece();
                if (m_input.ConsumeIntegralInRange(0, 3) == 0) {
                    style();
                }
            }
            endGroup();
            break;
        case Action::style:
            style();
            break;
        case Action::undo:
            undo();
            break;
        case Action::redo:
            redo();
            break;
        case Action::savePoint:
            m_undo.markSavePoint();
            m_saved = m_current;
            break;
        case Action::snapshot:
            m_snapshots.emplace_back(m_storage.snapshot(), m_text);
            break;
        }
    }

    TextRange range()
    {
        const auto length = qsizetype(m_text.size());
        qsizetype from = m_input.ConsumeIntegralInRange<qsizetype>(0, length);
        qsizetype to = from + m_input.ConsumeIntegralInRange<qsizetype>(0, m_input.ConsumeBool() ? length - from
                                                                                                 : std::min<qsizetype>(length - from, 4));
        const auto splitsPair = [this, length](qsizetype offset) {
            return offset > 0 && offset < length && QChar::isLowSurrogate(m_text[size_t(offset)]) &&
                   QChar::isHighSurrogate(m_text[size_t(offset) - 1]);
        };
        from -= splitsPair(from);
        to += splitsPair(to);
        return TextRange::between(from, to);
    }

    std::u16string text()
    {
        static const std::u16string alphabet[] = {u"a",      u"\n",         u"\r",     u"\r\n",   u"\u00ff",
                                                  u"\u4e2d", u"\U0001F600", u"\xd83d", u"\xde00", u"\t"};
        std::u16string piece;
        for (int length = m_input.ConsumeIntegralInRange(0, 6); length > 0; --length) {
            piece += alphabet[m_input.ConsumeIntegralInRange<size_t>(0, std::size(alphabet) - 1)];
        }
        std::u16string result;
        for (int copies = m_input.ConsumeBool() ? 1 : m_input.ConsumeIntegralInRange(1, 3000); copies > 0; --copies) {
            result += piece;
        }
        return result;
    }

    void edit()
    {
        const TextRange where = range();
        std::u16string inserted = text();
        if (m_text.size() + inserted.size() > size_t(longestText)) {
            inserted.clear();
        }
        m_storage.apply({where, QStringView(inserted)});
        m_small.replace(where, QStringView(inserted));
        replaceInModel(where, inserted);
    }

    void editWithPiece()
    {
        const TextRange source = range();
        const TextRange where = range();
        std::u16string inserted = m_text.substr(size_t(source.location), size_t(source.length));
        if (m_text.size() + inserted.size() > size_t(longestText)) {
            inserted.clear();
        }
        const TextRange taken{source.location, qsizetype(inserted.size())};
        m_storage.apply({where, m_storage.text().slice(taken)});
        m_small.replace(where, m_small.slice(taken));
        replaceInModel(where, inserted);
    }

    void replaceInModel(TextRange where, const std::u16string &inserted)
    {
        const StyleId before = where.location > 0 ? m_styles[size_t(where.location) - 1] : plainStyle;
        m_text.replace(size_t(where.location), size_t(where.length), inserted);
        m_styles.erase(m_styles.begin() + where.location, m_styles.begin() + where.end());
        m_styles.insert(m_styles.begin() + where.location, inserted.size(), before);
    }

    void style()
    {
        const TextRange where = range();
        const auto style = StyleId(m_input.ConsumeIntegralInRange(0, 2));
        m_storage.setStyle(where, style);
        std::fill_n(m_styles.begin() + where.location, where.length, style);
    }

    void beginGroup()
    {
        m_undo.breakCoalescing();
        m_undo.beginGroup(GroupKind::other, {}, this);
        m_revision = m_storage.revision();
    }

    void endGroup()
    {
        m_undo.endGroup({});
        if (m_storage.revision() == m_revision) {
            return;
        }
        if (m_saved && *m_saved > m_current) {
            m_saved.reset();
        }
        m_texts.resize(m_current + 1);
        m_texts.push_back(m_text);
        ++m_current;
    }

    void undo()
    {
        REQUIRE(m_undo.canUndo() == (m_current > 0));
        const auto selection = m_undo.undo();
        REQUIRE(selection.has_value() == (m_current > 0));
        if (m_current > 0) {
            adopt(m_current - 1);
        }
    }

    void redo()
    {
        const bool canRedo = m_current + 1 < m_texts.size();
        REQUIRE(m_undo.canRedo() == canRedo);
        const auto selection = m_undo.redo();
        REQUIRE(selection.has_value() == canRedo);
        if (canRedo) {
            adopt(m_current + 1);
        }
    }

    void adopt(size_t state)
    {
        m_current = state;
        m_text = m_texts[state];
        m_small = TextTree<32, 4>(QStringView(m_text));
        // Which style text gets that comes back follows from how the group was kept.
        m_styles = styles();
    }

    [[nodiscard]] std::vector<StyleId> styles() const
    {
        std::vector<StyleId> found;
        m_storage.forEachStyle({0, m_storage.length()},
                               [&](TextRange run, StyleId style) { found.insert(found.end(), size_t(run.length), style); });
        return found;
    }

    /// What an observer makes of the reports must be the text.
    void follow(const TextChange &change)
    {
        for (size_t index = 0; index < change.edits.count(); ++index) {
            const TextRange fresh = change.edits.newRange(index);
            m_follower.replace(size_t(fresh.location), size_t(change.edits[index].range.length), m_storage.string(fresh).toStdU16String());
        }
    }

    void check() const
    {
        REQUIRE(m_storage.checkInvariants());
        REQUIRE(m_small.checkInvariants());
        REQUIRE(m_storage.string().toStdU16String() == m_text);
        REQUIRE(m_follower == m_text);
        std::u16string small(size_t(m_small.length()), u'\0');
        m_small.copy({0, m_small.length()}, small.data());
        REQUIRE(small == m_text);
        REQUIRE(styles() == m_styles);
        REQUIRE(m_undo.isAtSavePoint() == (m_saved == m_current));
    }

    void checkLines() const
    {
        std::vector<qsizetype> starts{0};
        for (size_t i = 0; i < m_text.size(); ++i) {
            if (m_text[i] == u'\n' || (m_text[i] == u'\r' && (i + 1 == m_text.size() || m_text[i + 1] != u'\n'))) {
                starts.push_back(qsizetype(i) + 1);
            }
        }
        const Rope &rope = m_storage.text();
        REQUIRE(rope.lineCount() == qsizetype(starts.size()));
        REQUIRE(m_small.lineCount() == rope.lineCount());
        for (size_t line = 0; line < starts.size(); line += 1 + starts.size() / 500) {
            const qsizetype start = starts[line];
            REQUIRE(rope.lineStart(qsizetype(line)) == start && m_small.lineStart(qsizetype(line)) == start);
            REQUIRE(rope.lineAt(start) == qsizetype(line) && m_small.lineAt(start) == qsizetype(line));
            REQUIRE(start == 0 || rope.lineAt(start - 1) == qsizetype(line) - 1);
        }
    }

    FuzzedDataProvider m_input;
    TextStorage m_storage;
    UndoManager m_undo{m_storage, [] { return std::chrono::milliseconds(0); }};
    /// The same text in leaves so small that the tree gets deep.
    TextTree<32, 4> m_small;

    std::u16string m_text;
    std::vector<StyleId> m_styles;
    std::u16string m_follower;
    std::vector<std::u16string> m_texts;
    size_t m_current = 0;
    std::optional<size_t> m_saved = 0;
    quint64 m_revision = 0;
    std::vector<std::pair<TextSnapshot, std::u16string>> m_snapshots;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Script(data, size).play();
    return 0;
}
