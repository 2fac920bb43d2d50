// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// Where Vim's caret goes by marks, jumps, searches and the screen.

#include "Vim/VimExact.h"

#include "Base/Translation.h"
#include "Commands/Actions.h"
#include "Text/LineEditing.h"

using namespace Qt::StringLiterals;
using VimMotion::Kind;

void VimEngine::Going::go(VimExactMotion::Motion motion)
{
    VimExactMotion::Result result;
    {
        const Sight sight = see();
        result = motion(request(sight));
    }
    if (motion == VimExactMotion::lineStart || motion == VimExactMotion::firstNonBlank) {
        m_exact.inserting.comeBackBefore();
    } else if (motion == VimExactMotion::characterBefore && text().lineAt(result.place) < text().lineAt(caret())) {
        m_exact.inserting.comeBackBehind(text().lineAt(result.place));
    }
    m_exact.operating.arrive(result);
}

void VimEngine::Going::find(QStringView key, VimMotion::FindKind kind)
{
    if (key == QChar(VimKey::escape) || key.isEmpty()) {
        fail();
        return;
    }
    m_last =
        LastFind{key.size() > 1 && key[0].isHighSurrogate() ? QChar::surrogateToUcs4(key[0], key[1]) : char32_t(key[0].unicode()), kind};
    VimExactMotion::Result result;
    {
        const Sight sight = see();
        result = VimExactMotion::find(request(sight), m_last->character, kind, false);
    }
    m_exact.operating.arrive(result);
}

void VimEngine::Going::findAgain(bool isReversed)
{
    if (!m_last) {
        fail();
        return;
    }
    VimExactMotion::Result result;
    {
        const Sight sight = see();
        const VimMotion::FindKind kind = isReversed ? VimMotion::reversed(m_last->kind) : m_last->kind;
        result = VimExactMotion::find(request(sight), m_last->character, kind, true);
    }
    m_exact.operating.arrive(result);
}

// The screen

void VimEngine::Going::toVisibleLine(VisibleLine line)
{
    VimExactMotion::Result result{.kind = Kind::linewise, .isJump = true};
    {
        const Sight sight = see();
        const VimLines &lines = sight.lines;
        const TextRange seen = m_engine.m_view.visibleRange();
        const qsizetype first = lines.number(seen.location);
        const qsizetype last = seen.end() >= text().length() ? lines.count() : lines.number(std::max(seen.end() - 1, seen.location));
        const qsizetype by = m_engine.effectiveCount() - 1;
        const qsizetype number = line == VisibleLine::first    ? std::min(first + by, last)
                                 : line == VisibleLine::middle ? first + (last - first) / 2
                                                               : std::max(last - by, first);
        result.place = lines.firstNonBlank(lines.startOf(number));
    }
    m_exact.operating.arrive(result);
}

void VimEngine::Going::scrollHalf(qsizetype direction)
{
    if (m_engine.m_pendingOperator) {
        fail();
        return;
    }
    if (m_engine.hasCount()) {
        m_scroll = m_engine.effectiveCount();
    }
    const qsizetype lines = m_scroll > 0 ? m_scroll : std::max<qsizetype>(m_engine.m_view.visibleLineCount() / 2, 1);
    scrollPage(direction * lines, 0);
}

void VimEngine::Going::scrollPage(qsizetype direction, qsizetype count)
{
    const qsizetype by = count > 0 ? direction * std::max<qsizetype>(m_engine.m_view.visibleLineCount() - 2, 1) * count : direction;
    qsizetype place = caret();
    {
        const Sight sight = see();
        if (by > 0 ? sight.lines.isLast(place) : sight.lines.isFirst(place)) {
            place = -1;
        } else {
            place = sight.lines.firstNonBlank(sight.lines.startNear(place, by));
        }
    }
    const TextRange seen = m_engine.m_view.visibleRange();
    if (m_engine.m_pendingOperator || place < 0 || (count > 0 && by < 0 && seen.location == 0)) {
        fail();
        return;
    }
    // Half a page brings up lines that are not seen yet, and no others.
    const qsizetype hidden = std::max(see().lines.count() - see().lines.number(std::max(seen.end() - 1, seen.location)), qsizetype(0));
    m_engine.m_view.scrollRows(count > 0 ? by : std::min(by, hidden));
    setCaret(place);
    finish();
}

void VimEngine::Going::scrollRows(qsizetype rows)
{
    if (m_engine.m_pendingOperator) {
        fail();
        return;
    }
    m_engine.m_view.scrollRows(rows);
    const TextRange seen = m_engine.m_view.visibleRange();
    qsizetype place = caret();
    auto column = m_exact.columnPlace == place ? m_exact.column : std::nullopt;
    const bool isSeen = seen.contains(place) || (place == text().length() && seen.end() == place);
    if (!isSeen && !seen.isEmpty()) {
        // The caret stays in sight.
        const Sight sight = see();
        const VimLines &lines = sight.lines;
        const qsizetype line = lines.start(place < seen.location ? seen.location : std::max(seen.end() - 1, seen.location));
        column = column.value_or(VimExactMotion::columnOf(lines, place));
        place = *column >= VimLines::endless ? lines.last(line) : std::min(lines.placeAt(line, *column), lines.last(line));
    }
    setCaret(place, column);
    finish();
}

void VimEngine::Going::reveal(std::optional<VimTextView::Edge> edge, bool toFirstNonBlank)
{
    if (m_engine.hasCount()) {
        const Sight sight = see();
        setCaret(sight.lines.startOf(std::min(m_engine.effectiveCount(), sight.lines.count())));
    }
    if (toFirstNonBlank) {
        const Sight sight = see();
        setCaret(sight.lines.firstNonBlank(caret()));
    }
    if (edge) {
        m_engine.m_view.revealAt(*edge);
    } else {
        m_engine.m_view.centerSelection();
    }
    finish();
}

void VimEngine::Going::goRows(qsizetype rows)
{
    const bool isEndless = m_exact.column && *m_exact.column >= VimLines::endless && m_exact.columnPlace == caret();
    const auto x = isEndless ? std::optional(double(VimLines::endless)) : m_row.place == caret() ? m_row.x : std::nullopt;
    auto moved = m_engine.m_view.movedByRows({caret(), x}, rows);
    if (!moved) {
        fail();
        return;
    }
    const qsizetype others = rows - (rows > 0 ? 1 : -1);
    const auto before = others != 0 ? m_engine.m_view.movedByRows({caret(), x}, others) : std::nullopt;
    const bool isTooFar = before && before->place == moved->place;
    VimExactMotion::Result result{.kind = isEndless ? Kind::inclusive : Kind::exclusive};
    {
        const Sight sight = see();
        const VimLines &lines = sight.lines;
        const TextRange row = m_engine.m_view.rowAt(caret());
        const bool isWhole = row.location == lines.start(caret()) && row.end() >= lines.end(caret());
        if (isWhole && lines.number(moved->place) - lines.number(caret()) == rows) {
            // No line is wrapped, so it goes by columns.
            VimExactMotion::Request wanted = request(sight);
            wanted.count = std::abs(rows);
            const VimExactMotion::Result gone = rows > 0 ? VimExactMotion::down(wanted) : VimExactMotion::up(wanted);
            moved->place = gone.place;
            result.column = gone.column;
        } else {
            moved->place = std::min(moved->place, lines.last(moved->place));
            result.column = isEndless ? m_exact.column : std::nullopt;
        }
        result.place = moved->place;
    }
    m_row = *moved;
    result.failed = result.goesNonetheless = isTooFar;
    m_exact.operating.arrive(result);
}

void VimEngine::Going::toRowEdge(RowEdge edge)
{
    const TextRange row = m_engine.m_view.rowAt(caret());
    bool isOfLine = false;
    VimExactMotion::Result result{.place = row.location};
    {
        const Sight sight = see();
        const VimLines &lines = sight.lines;
        if (edge == RowEdge::end) {
            isOfLine = lines.isAtEnd(row.end()) || m_engine.hasCount();
            result = {.place = isOfLine ? row.end() : lines.before(row.end()), .kind = Kind::inclusive};
        } else {
            isOfLine = row.location == lines.start(caret());
            while (edge == RowEdge::firstNonBlank && result.place + 1 < row.end() && isSpaceOrTab(lines.at(result.place))) {
                ++result.place;
            }
        }
    }
    if (isOfLine) {
        go(edge == RowEdge::end     ? VimExactMotion::rowEnd
           : edge == RowEdge::start ? VimExactMotion::lineStart
                                    : VimExactMotion::firstNonBlank);
        return;
    }
    m_exact.operating.arrive(result);
}

// Marks and lists of places

void VimEngine::Going::rememberJump()
{
    m_exact.marks.leave(caret());
    m_exact.jumps.add(caret(), text());
}

void VimEngine::Going::rememberObject(char16_t key)
{
    if (QStringView(u"()[]{}<>bBt").contains(QChar(key))) {
        rememberJump();
    }
}

void VimEngine::Going::toMark(char16_t name, bool isExact)
{
    struct Place {
        char16_t name;
        VimExactMotion::Motion motion;
    };
    static constexpr Place motions[] = {{u'(', VimExactMotion::sentenceBackward},
                                        {u')', VimExactMotion::sentenceForward},
                                        {u'{', VimExactMotion::paragraphBackward},
                                        {u'}', VimExactMotion::paragraphForward}};
    if (const auto *motion = std::ranges::find(motions, name, &Place::name); motion != std::end(motions)) {
        VimExactMotion::Result result = motion->motion(request(see()));
        if (!isExact && !result.failed) {
            result.kind = VimMotion::Kind::linewise;
            result.place = see().lines.firstNonBlank(result.place);
        }
        m_exact.operating.arrive(result);
        return;
    }
    const char16_t known = name == u'`' ? u'\'' : name;
    m_exact.marking.update();
    auto place = m_exact.marks.place(known);
    if (!place && m_exact.marking.goElsewhere(known, isExact)) {
        return;
    }
    if (!place && (known == u'[' || known == u'"')) {
        place = 0; // as in a text that was just opened
    } else if (!place && known == u']') {
        place = VimLines(text()).lastStart();
    }
    if (!place) {
        say(localized(u"Mark not set"));
        fail();
        return;
    }
    VimExactMotion::Result result{.place = std::min(*place, text().length()), .isJump = true};
    {
        const Sight sight = see();
        result.failed = sight.lines.isBehindAll(result.place);
        if (isExact) {
            result.place = m_engine.isVisual() ? result.place : sight.lines.settled(result.place);
            result.isLarge = true;
        } else {
            result.kind = Kind::linewise;
            result.place = sight.lines.firstNonBlank(result.place);
        }
    }
    m_exact.operating.arrive(result);
}

void VimEngine::Going::toOtherText()
{
    const QString wanted = m_engine.hasCount() ? QString::number(m_engine.effectiveCount()) : u"#"_s;
    finish();
    m_engine.m_delegate.vimEnginePerforms(m_engine, Actions::showTab, wanted);
}

void VimEngine::Going::setMark(char16_t name)
{
    const char16_t known = name == u'`' ? u'\'' : name;
    if (!VimMarks::isName(known)) {
        fail();
        return;
    }
    m_exact.marking.set(known, caret());
    finish();
}

void VimEngine::Going::jump(bool isOlder, qsizetype count)
{
    const auto place = isOlder ? m_exact.jumps.older(count, caret(), text()) : m_exact.jumps.newer(count, text());
    if (!place) {
        fail();
        return;
    }
    if (see().lines.isBehindAll(*place)) {
        fail();
        return;
    }
    m_exact.marks.leave(caret());
    setCaret(*place);
    finish();
}

void VimEngine::Going::toChange(bool isOlder, qsizetype count)
{
    const bool isBehindAll = m_exact.changes.position() >= m_exact.changes.places().size();
    const auto place =
        isOlder || isBehindAll ? m_exact.changes.older(isOlder ? count : 1, caret(), text()) : m_exact.changes.newer(count, text());
    if (!place) {
        fail();
        return;
    }
    m_exact.operating.arrive({.place = *place, .failed = see().lines.isBehindAll(*place)});
}

// Searching

void VimEngine::Going::search(const QString &typed, SearchDirection direction)
{
    const qsizetype from = std::exchange(m_engine.m_searchOrigin, std::nullopt).value_or(caret());
    const VimSearch common = VimSearch::exact({}, direction, m_engine.m_options, m_exact.lastSubstitute());
    auto searches = VimSearch::parse(typed, common, m_engine.m_lastSearch);
    if (!searches) {
        say(searches.error().message);
        fail();
        return;
    }
    m_engine.m_lastSearch = searches->back();
    const qsizetype count = m_engine.effectiveCount();
    seek(from, searches->back(),
         [searches = *searches, count](const Rope &text, qsizetype place, const std::stop_token &stop, qsizetype most) {
             std::optional<VimSearchMove> move;
             for (const VimSearch &one : searches) {
                 move = one.move(text, move ? move->position : place, move ? 1 : count, stop, most);
                 if (!move) {
                     break;
                 }
             }
             return move;
         });
}

void VimEngine::Going::searchAgain(bool isReversed)
{
    if (!m_engine.m_lastSearch) {
        m_exact.column.reset();
        say(localized(u"No pattern was searched for yet"));
        fail();
        return;
    }
    VimSearch search = *m_engine.m_lastSearch;
    if (isReversed) {
        search.direction = search.direction == SearchDirection::forward ? SearchDirection::backward : SearchDirection::forward;
    }
    const qsizetype count = m_engine.effectiveCount();
    seek(caret(), search, [search, count](const Rope &text, qsizetype place, const std::stop_token &stop, qsizetype /*most*/) {
        return search.repeated(text, place, count, stop);
    });
}

void VimEngine::Going::searchWord(SearchDirection direction, bool isWhole)
{
    const auto pattern = VimSearch::patternOfWord(text(), caret(), isWhole ? VimSearch::Words::whole : VimSearch::Words::parts);
    if (!pattern) {
        fail();
        return;
    }
    qsizetype start = caret();
    {
        // The word itself is no hit, nor is one that lies on. Where there is none, signs are one.
        const Sight sight = see();
        const VimLines &lines = sight.lines;
        const auto firstOf = [&](int least) {
            qsizetype place = caret();
            while (!lines.isAtEnd(place) && lines.wordClass(place) < least) {
                place = lines.after(place);
            }
            return place;
        };
        start = lines.isAtEnd(firstOf(2)) ? firstOf(1) : firstOf(2);
        const int kind = lines.wordClass(start);
        while (kind >= 1 && start > lines.start(start) && lines.wordClass(lines.before(start)) == kind) {
            start = lines.before(start);
        }
    }
    VimSearch search = VimSearch::exact(*pattern, direction, m_engine.m_options, m_exact.lastSubstitute());
    m_engine.m_lastSearch = search;
    const qsizetype count = m_engine.effectiveCount();
    seek(start, search, [search, count](const Rope &text, qsizetype place, const std::stop_token &stop, qsizetype most) {
        return search.move(text, place, count, stop, most);
    });
}

namespace {

/// What Vim takes for a comment without knowing the language.
bool isComment(const Rope &text, qsizetype place)
{
    const VimLines lines(text);
    const qsizetype first = lines.firstNonBlank(place);
    const QString begin = text.toString(TextRange::between(first, std::min(first + 2, lines.end(first))));
    static constexpr QStringView marks[] = {u"//", u"/*", u"* ", u"*/", u"# ", u"%"};
    return begin == u"*" || std::ranges::any_of(marks, [&](QStringView mark) { return begin.startsWith(mark); });
}

} // namespace

void VimEngine::Going::toDeclaration(Scope scope)
{
    const auto pattern = VimSearch::patternOfWord(text(), caret(), VimSearch::Words::whole);
    if (!pattern) {
        fail();
        return;
    }
    qsizetype from = 0;
    if (scope == Scope::function) {
        // Behind the empty line before the function's brace.
        const Sight sight = see();
        const VimExactMotion::Result function =
            VimExactMotion::section<u'{', VimMotion::Direction::backward>({.lines = sight.lines, .caret = caret()});
        from = function.failed ? 0 : sight.lines.start(function.place);
        while (from > 0 && !sight.lines.isEmpty(from)) {
            from = sight.lines.start(from - 1);
        }
    }
    VimSearch search = VimSearch::exact(*pattern, SearchDirection::forward, m_engine.m_options, m_exact.lastSubstitute());
    m_engine.m_lastSearch = search;
    search.wraps = true; // from the end a search finds what the text begins with
    seek(from > 0 ? from - 1 : text().length(), search,
         [search](const Rope &text, qsizetype place, const std::stop_token &stop, qsizetype most) {
             auto move = search.move(text, place, 1, stop, most);
             while (move && isComment(text, move->hit.location)) {
                 const auto next = search.move(text, move->hit.location, 1, stop, most);
                 if (!next || next->hit.location <= move->hit.location) {
                     break;
                 }
                 move = next;
             }
             return move;
         });
}

/// At once where it is near or something waits for it, else on a worker.
void VimEngine::Going::seek(qsizetype from, const VimSearch &search, const Route &route)
{
    m_engine.m_showsHits = true;
    m_exact.column.reset();
    if (const QString problem = search.problem(); !problem.isEmpty()) {
        say(problem);
        fail();
        return;
    }
    const Rope all = text();
    const bool mayWait =
        all.length() > VimSearch::nearby && !m_engine.m_pendingOperator && !m_engine.isVisual() && !m_exact.repeating.isRunning();
    const auto found = route(all, from, {}, mayWait ? VimSearch::nearby : std::numeric_limits<qsizetype>::max());
    if (found) {
        arriveAtHit(*found);
    } else if (!mayWait) {
        say(search.messageForNone());
        fail();
    } else {
        finish();
        const auto move = std::make_shared<std::optional<VimSearchMove>>();
        const auto prepare = [this, route, move, from]() -> VimTextView::Seeking {
            return [route, move, all = Rope(text()), from](const std::stop_token &stop) {
                *move = route(all, from, stop, std::numeric_limits<qsizetype>::max());
                return *move ? std::optional((*move)->hit) : std::nullopt;
            };
        };
        m_engine.m_view.seek(prepare, [this, move](TextRange /*hit*/) {
            arriveAtHit(**move);
            m_engine.notify();
        });
    }
}

void VimEngine::Going::arriveAtHit(const VimSearchMove &move)
{
    const qsizetype place = [&] {
        const Sight sight = see();
        const bool isBehindLine = move.kind == Kind::exclusive && sight.lines.isAtEnd(move.position) && !m_engine.isVisual();
        return isBehindLine ? sight.lines.last(move.position) : move.position;
    }();
    m_exact.operating.arrive({.place = place, .kind = move.kind, .isLarge = true, .isJump = true});
    m_engine.m_view.showIndicator(move.hit);
}

void VimEngine::Going::say(const QString &message)
{
    if (!message.isEmpty()) {
        m_engine.m_delegate.vimEngineSays(m_engine, message);
    }
}
