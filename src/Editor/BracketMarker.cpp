// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/BracketMarker.h"

#include "Base/Translation.h"
#include "Editor/EditorTextView.h"
#include "Editor/OutOfSightHint.h"
#include "Highlighting/ScopedText.h"
#include "Model/TextDocument.h"

#include <QLocale>

namespace {

constexpr qsizetype longestHint = 120;
/// What has its colours so far beside the view is looked through at once, too.
constexpr qsizetype nearby = 0x8000;

/// The line that holds `offset`, without its indentation; where that is the bracket alone, the line before it as well.
QString lineAround(const Rope &text, qsizetype offset)
{
    const auto shown = [&text](qsizetype line) {
        const auto range = TextRange::between(text.lineStart(line), line + 1 < text.lineCount() ? text.lineStart(line + 1) : text.length());
        return text.toString({range.location, std::min(range.length, longestHint)}).simplified();
    };
    const qsizetype line = text.lineAt(offset);
    const QString own = shown(line);
    return own.size() > 1 || line == 0 ? own : shown(line - 1) + u' ' + own;
}

} // namespace

BracketMarker::BracketMarker(EditorTextView &view, TextDocument &document, const CommandServices &services)
    : QObject(&view), m_view(view), m_document(document), m_services(services)
{
    connect(&view, &TextView::selectionChanged, this, &BracketMarker::update);
    connect(&view, &TextView::visibleRowsChanged, this, &BracketMarker::updateHint);
    connect(&view.storage(), &TextStorage::didProcessEditing, this, [this](const TextChange &change) {
        if (m_pair) {
            for (qsizetype *const place : {&m_pair->beside, &m_pair->partner}) {
                *place = change.mapped(*place, Bias::after);
            }
        }
        if (!m_view.isEditing()) {
            update();
        }
    });
    view.setLook(&TextLooks::brackets, [this](TextRange) { return marked(); });
}

template<class Answer>
std::optional<Answer> BracketMarker::askNear(const Question<Answer> &question)
{
    SyntaxHighlighter *const highlighter = m_document.highlighter();
    if (!highlighter) {
        return std::nullopt;
    }
    BracketSearch search(m_view.storage().text(), m_view.language().bracketPairs(), scopesOf(highlighter),
                         highlighter->colouredAround(m_view.visibleRange(), nearby));
    return question(search);
}

template<class Answer>
BackgroundTask BracketMarker::askFar(const Question<Answer> &question, std::function<void(const std::optional<Answer> &)> done)
{
    const qsizetype caret = m_view.selection().caret;
    const TextRange within{caret - BracketSearch::farthest, 2 * BracketSearch::farthest};
    return BackgroundTask::start(
        m_services.workers,
        [question, within, text = m_view.storage().text(), language = m_view.language()](const std::stop_token &stop) {
            ScopedText scoped(text, language);
            BracketSearch search(
                text, language.bracketPairs(), [&scoped](TextRange range, const auto &visit) { scoped.forEachScope(range, visit); }, within,
                stop);
            return question(search);
        },
        std::move(done));
}

void BracketMarker::update()
{
    m_soon.cancel();
    m_search.cancel();
    const TextSelection selection = m_view.selection();
    if (!selection.isEmpty() || m_view.isComposing()) {
        show(std::nullopt);
        return;
    }
    const Rope &text = m_view.storage().text();
    const auto bracket = BracketSearch(text, m_view.language().bracketPairs(), {}, {}).beside(selection.caret);
    if (!bracket) {
        show(std::nullopt); // mostly so: nothing has to be laid out or coloured for it
        return;
    }
    const Question<Pair> question = [bracket = *bracket](BracketSearch &search) -> std::optional<Pair> {
        const auto partner = search.partnerOf(bracket);
        return partner ? std::optional(Pair{bracket, *partner}) : std::nullopt;
    };
    const auto near = askNear(question);
    show(near);
    if (!near) {
        m_soon = m_services.scheduler.after(
            restTime, [this, question] { m_search = askFar<Pair>(question, [this](const std::optional<Pair> &pair) { show(pair); }); });
    }
}

void BracketMarker::show(const std::optional<Pair> &pair)
{
    if (m_pair != pair) {
        const auto before = marked();
        m_pair = pair;
        TextViewRepaint repaint(m_view);
        repaint.ranges(before);
        repaint.ranges(marked());
        updateHint();
    }
}

std::vector<TextRange> BracketMarker::marked() const
{
    if (!m_pair) {
        return {};
    }
    const auto [first, last] = std::minmax(m_pair->beside, m_pair->partner);
    return {TextRange{first, 1}, TextRange{last, 1}};
}

void BracketMarker::updateHint()
{
    const auto isSeen = [this](qsizetype offset) { return m_view.textViewport().topOf(m_view.layoutManager().rowOf(offset)).has_value(); };
    // What is away from the caret is of interest only to who is at the caret.
    if (!m_pair || isSeen(m_pair->partner) || !isSeen(m_pair->beside)) {
        if (m_hint) {
            m_hint->hide();
        }
        return;
    }
    if (!m_hint) {
        m_hint = new OutOfSightHint(m_view);
        connect(m_hint, &OutOfSightHint::clicked, this, &BracketMarker::goToMatch);
    }
    const Rope &text = m_view.storage().text();
    m_hint->show(
        formatted(localized(u"Line %@: %@"), QLocale().toString(text.lineAt(m_pair->partner) + 1), lineAround(text, m_pair->partner)));
}

template<class Answer>
void BracketMarker::find(const Question<Answer> &question, std::function<void(const Answer &)> then)
{
    if (const auto near = askNear(question)) {
        then(*near);
        return;
    }
    m_command = askFar<Answer>(question, [this, then = std::move(then), revision = m_view.storage().revision(),
                                          selection = m_view.selection()](const std::optional<Answer> &answer) {
        if (revision != m_view.storage().revision() || selection != m_view.selection()) {
            return;
        }
        if (answer) {
            then(*answer);
        } else {
            m_services.beep();
        }
    });
}

void BracketMarker::goToMatch()
{
    const Question<qsizetype> question = [caret = m_view.selection().caret](BracketSearch &search) -> std::optional<qsizetype> {
        if (const auto bracket = search.beside(caret)) {
            const auto partner = search.partnerOf(*bracket);
            return partner ? std::optional(*partner + (caret - *bracket)) : std::nullopt;
        }
        const auto pair = search.around({caret, 0});
        return pair ? std::optional(pair->end() - 1) : std::nullopt;
    };
    find<qsizetype>(question, [this](qsizetype place) { m_view.setSelection(TextSelection::at(place), TextView::Reveal::nearest); });
}

void BracketMarker::selectEnclosing()
{
    const Question<TextRange> question = [selected = m_view.selection().range()](BracketSearch &search) -> std::optional<TextRange> {
        const auto pair = search.around(selected);
        if (!pair) {
            return std::nullopt;
        }
        const TextRange inside{pair->location + 1, pair->length - 2};
        return inside != selected && !inside.isEmpty() ? inside : *pair;
    };
    find<TextRange>(question, [this](TextRange range) { m_view.setSelection({range.location, range.end()}, TextView::Reveal::nearest); });
}
