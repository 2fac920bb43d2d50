// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// A script of edits, styles, undo and redo, played on a storage and on plain vectors side by side.
#include "Require.h"
#include "Text/TextTreeCode.h"
#include "Text/UndoManager.h"

#include <fuzzer/FuzzedDataProvider.h>

namespace {

using SmallTree = TextTree<32, 4>;
constexpr size_t longestText = 40'000;

class Script {
public:
    Script(const uint8_t *data, size_t size) : m_input(data, size)
    {
        for (int i = 1; i < 3; ++i) {
            (void)m_storage.styles().intern({.foreground = i});
        }
        QObject::connect(&m_storage, &TextStorage::changed, [this](const TextChange &change) {
            REQUIRE(change.edits.applied(change.before) == change.after && change.after == m_storage.text());
        });
    }

    void play()
    {
        while (m_input.remaining_bytes() > 0) {
            step();
            check();
        }
        for (const Way way : {Way::back, Way::forth}) {
            while (go(way)) {
                check();
            }
        }
    }

private:
    enum class Action { edit, group, style, undo, redo, savePoint, kMaxValue = savePoint };
    enum class Way { back, forth };

    void step()
    {
        switch (m_input.ConsumeEnum<Action>()) {
        case Action::edit:
            group(1);
            break;
        case Action::group:
            group(m_input.ConsumeIntegralInRange(0, 40));
            break;
        case Action::style:
            style();
            break;
        case Action::undo:
            go(Way::back);
            break;
        case Action::redo:
            go(Way::forth);
            break;
        case Action::savePoint:
            m_undo.markSavePoint();
            m_saved = m_current;
            break;
        }
    }

    TextRange range()
    {
        const auto length = qsizetype(m_text.size());
        const qsizetype from = m_input.ConsumeIntegralInRange<qsizetype>(0, length);
        const qsizetype most = m_input.ConsumeBool() ? length - from : std::min<qsizetype>(length - from, 4);
        const qsizetype to = from + m_input.ConsumeIntegralInRange<qsizetype>(0, most);
        const Rope &text = m_storage.text();
        return TextRange::between(from - text.splitsPair(from), to + text.splitsPair(to));
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

    /// Inserts new text, or what stands somewhere else with its leaves.
    void edit()
    {
        const TextRange where = range();
        const TextRange source = m_input.ConsumeBool() ? range() : TextRange();
        const std::u16string inserted = source.isEmpty() ? text() : m_text.substr(size_t(source.location), size_t(source.length));
        if (m_text.size() + inserted.size() > longestText) {
            return;
        }
        const QStringView shown(inserted);
        m_storage.apply({where, source.isEmpty() ? Rope(shown) : m_storage.text().slice(source)});
        m_small.replace(where, source.isEmpty() ? SmallTree(shown) : m_small.slice(source));
        m_text.replace(size_t(where.location), size_t(where.length), inserted);
        const StyleId before = where.location > 0 ? m_styles[size_t(where.location) - 1] : plainStyle;
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

    void group(int edits)
    {
        const quint64 revision = m_storage.revision();
        m_undo.breakCoalescing();
        m_undo.beginGroup(GroupKind::other, {}, this);
        for (; edits > 0; --edits) {
            edit();
            if (edits > 1 && m_input.ConsumeIntegralInRange(0, 3) == 0) {
                style();
            }
        }
        m_undo.endGroup({});
        if (m_storage.revision() != revision) {
            if (m_saved && *m_saved > m_current) {
                m_saved.reset();
            }
            m_texts.resize(++m_current);
            m_texts.push_back(m_text);
        }
    }

    /// False at the end of the history.
    bool go(Way way)
    {
        const bool isBack = way == Way::back;
        const bool isPossible = isBack ? m_current > 0 : m_current + 1 < m_texts.size();
        REQUIRE((isBack ? m_undo.canUndo() : m_undo.canRedo()) == isPossible);
        REQUIRE((isBack ? m_undo.undo() : m_undo.redo()).has_value() == isPossible);
        if (isPossible) {
            m_text = m_texts[isBack ? --m_current : ++m_current];
            m_small = SmallTree(QStringView(m_text));
            // Which style text gets that comes back follows from how the group was kept.
            m_styles = styles();
        }
        return isPossible;
    }

    [[nodiscard]] std::vector<StyleId> styles() const
    {
        std::vector<StyleId> found;
        m_storage.forEachStyle({0, m_storage.length()},
                               [&](TextRange run, StyleId style) { found.insert(found.end(), size_t(run.length), style); });
        return found;
    }

    void check() const
    {
        REQUIRE(m_storage.checkInvariants() && m_small.checkInvariants());
        REQUIRE(m_storage.string().toStdU16String() == m_text);
        REQUIRE(m_small == SmallTree(QStringView(m_text)) && m_small.lineCount() == m_storage.text().lineCount());
        REQUIRE(styles() == m_styles);
        REQUIRE(m_undo.isAtSavePoint() == (m_saved == m_current));
    }

    FuzzedDataProvider m_input;
    TextStorage m_storage;
    UndoManager m_undo{m_storage, [] { return std::chrono::milliseconds(0); }};
    /// The same text in leaves so small that the tree gets deep.
    SmallTree m_small;
    std::u16string m_text;
    std::vector<StyleId> m_styles;
    std::vector<std::u16string> m_texts{{}};
    size_t m_current = 0;
    std::optional<size_t> m_saved = 0;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Script(data, size).play();
    return 0;
}
