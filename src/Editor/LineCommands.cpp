// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/LineCommands.h"

#include "Base/Localization.h"
#include "Base/Translation.h"
#include "Commands/Actions.h"
#include "Editor/EditorTextView.h"
#include "Text/LineTransformations.h"

#include <array>
#include <numeric>
#include <utility>

using namespace std::chrono_literals;
using namespace LineTransformations;

namespace {

constexpr Scheduler::Milliseconds toBeRead = 5s;

using Context = LineCommands::Context;
using Step = std::optional<TextStep>;

template<LineEditing::Neighbour neighbour>
Step movedTo(const Rope &text, TextRange selection, const Context & /*context*/)
{
    return LineEditing::movedLines(text, selection, neighbour);
}

template<LineEditing::Neighbour neighbour>
Step openedAt(const Rope &text, TextRange selection, const Context &context)
{
    return LineEditing::openedLine(text, selection, neighbour, context.indentsNewLines ? std::optional(context.indentation) : std::nullopt);
}

Step joinedTo(const Rope &text, TextRange selection, const Context & /*context*/)
{
    return LineEditing::joinedLines(text, selection);
}

Step transposedAt(const Rope &text, TextRange selection, const Context & /*context*/)
{
    return LineEditing::transposed(text, selection);
}

Step sortedIn(const Rope &text, TextRange selection, const Context &context)
{
    return sorted(text, selection, context.language, context.stop);
}

/// Of those that go by nothing else.
template<auto transformation>
Step transformed(const Rope &text, TextRange selection, const Context &context)
{
    return transformation(text, selection, context.stop);
}

template<LetterCase letters>
Step recasedTo(const Rope &text, TextRange selection, const Context &context)
{
    return recased(text, selection, letters, context.stop);
}

template<Indentation::Unit unit>
Step reindentedWith(const Rope &text, TextRange selection, const Context &context)
{
    return reindented(text, selection, {context.indentation.width, unit, context.indentation.otherTabStops}, context.stop);
}

/// All lines, whatever is selected, and stays so.
template<Indentation::Unit unit>
Step wholeReindentedWith(const Rope &text, TextRange selection, const Context &context)
{
    Step step = reindentedWith<unit>(text, {selection.location, 0}, context);
    if (step) {
        const TextRange kept = step->edits.mapped(selection);
        step->after = {kept.location, kept.end()};
    }
    return step;
}

TextRange wholeText(const Rope &text, TextRange /*selection*/)
{
    return {0, text.length()};
}

TextRange wholeLines(const Rope &text, TextRange selection)
{
    return selectedLines(text, selection);
}

TextRange nothing(const Rope & /*text*/, TextRange selection)
{
    return {selection.location, 0};
}

} // namespace

LineCommands::LineCommands(EditorTextView &view, CommandServices services, QObject *parent)
    : QObject(parent), m_view(view), m_services(std::move(services)), m_work(m_services)
{
    view.setNextResponder(this);
}

LineCommands::~LineCommands()
{
    m_view.setNextResponder(nullptr);
}

void LineCommands::convertIndentation(Indentation::Unit unit)
{
    if (!canEdit()) {
        return;
    }
    if (unit == Indentation::Unit::spaces) {
        run<wholeReindentedWith<Indentation::Unit::spaces>, Scope::text, wholeText>();
    } else {
        run<wholeReindentedWith<Indentation::Unit::tab>, Scope::text, wholeText>();
    }
    emit converted(unit);
}

template<Indentation::Unit unit>
void LineCommands::convert()
{
    if (m_view.selection().isEmpty()) {
        convertIndentation(unit);
    } else {
        run<reindentedWith<unit>, Scope::text, linesToTidy>();
    }
}

const ActionRow *LineCommands::actionFor(const Action &wanted) const
{
    using enum LineEditing::Neighbour;
    using enum LetterCase;
    using enum Indentation::Unit;
    static constexpr auto rows = std::to_array<ActionRow>({
        action<&LineCommands::run<movedTo<before>, Scope::movedLines, wholeLines>, &LineCommands::canEdit>(Actions::moveLinesUp),
        action<&LineCommands::run<movedTo<behind>, Scope::movedLines, wholeLines>, &LineCommands::canEdit>(Actions::moveLinesDown),
        action<&LineCommands::run<openedAt<before>, Scope::letters, wholeLines>, &LineCommands::canEdit>(Actions::insertLineAbove),
        action<&LineCommands::run<openedAt<behind>, Scope::letters, wholeLines>, &LineCommands::canEdit>(Actions::insertLineBelow),
        action<&LineCommands::run<joinedTo, Scope::lines, wholeLines>, &LineCommands::canEdit>(Actions::joinLines),
        action<&LineCommands::run<sortedIn, Scope::text, linesToArrange>, &LineCommands::canEdit>(Actions::sortLines),
        action<&LineCommands::run<transformed<reversed>, Scope::text, linesToArrange>, &LineCommands::canEdit>(Actions::reverseLines),
        action<&LineCommands::run<transformed<withoutRepeats>, Scope::text, linesToArrange>, &LineCommands::canEdit>(Actions::uniqueLines),
        action<&LineCommands::run<transformed<trimmed>, Scope::text, linesToTidy>, &LineCommands::canEdit>(Actions::trimTrailingWhitespace),
        action<&LineCommands::run<recasedTo<upper>, Scope::letters, lettersToChange>, &LineCommands::canEdit>(Actions::upperCase),
        action<&LineCommands::run<recasedTo<lower>, Scope::letters, lettersToChange>, &LineCommands::canEdit>(Actions::lowerCase),
        action<&LineCommands::run<recasedTo<title>, Scope::letters, lettersToChange>, &LineCommands::canEdit>(Actions::titleCase),
        action<&LineCommands::run<transposedAt, Scope::letters, nothing>, &LineCommands::canEdit>(Actions::transposeCharacters),
        action<&LineCommands::convert<spaces>, &LineCommands::canEdit>(Actions::tabsToSpaces),
        action<&LineCommands::convert<tab>, &LineCommands::canEdit>(Actions::spacesToTabs),
    });
    return findAction(rows, wanted);
}

bool LineCommands::canEdit() const
{
    return !m_view.isReadOnly();
}

LineCommands::Context LineCommands::context() const
{
    return {.indentation = m_view.indentation(),
            .indentsNewLines = m_view.autoIndent() == EditorTextView::AutoIndent::on,
            .language = Localization::current().locale().bcp47Name().toLatin1()};
}

std::optional<CaretStep> LineCommands::Row::step(const Rope &text, const Selections &selections, const Context &context) const
{
    const auto run = [&](TextSelection asked) {
        Step made = command(text, asked.range(), context);
        if (made && asked.caret < asked.anchor) {
            std::swap(made->after.anchor, made->after.caret);
        }
        return made;
    };
    const auto atEach = [&run](const Selections &all) -> std::optional<CaretStep> {
        CaretStep made = CaretEditing::atEach(all, [&run](const CaretSelection &one) { return run(one.ends()); });
        return made.edits.isEmpty() ? std::nullopt : std::optional(std::move(made));
    };
    switch (scope) {
    case Scope::lines:
        return CaretEditing::atLines(text, selections, run);
    case Scope::movedLines:
        return CaretEditing::atLines(text, selections, run, CaretEditing::Places::withLines);
    case Scope::letters:
        return atEach(selections);
    case Scope::text:
        return atEach(Selections(selections.primary()));
    }
    Q_UNREACHABLE();
}

qsizetype LineCommands::Row::unitsRead(const Rope &text, const Selections &selections) const
{
    if (scope == Scope::text) {
        return extent(text, selections.primary().range()).length;
    }
    const auto read = [&](qsizetype sum, const CaretSelection &one) { return sum + extent(text, one.range()).length; };
    return std::accumulate(selections.begin(), selections.end(), qsizetype(0), read);
}

void LineCommands::start(const Row &row)
{
    if (!canEdit()) {
        return;
    }
    stop({});
    m_view.commitInput();
    const Rope &text = m_view.storage().text();
    if (row.unitsRead(text, m_view.selections()) > readAtOnce) {
        m_work.begin(m_view, localized(u"Working… Esc stops."), LongWork::Keys::pass,
                     [this] { stop(localized(u"Stopped; nothing was changed")); });
        startOnWorker(row);
    } else {
        apply(row.step(text, m_view.selections(), context()), m_view.selections());
    }
}

void LineCommands::startOnWorker(const Row &row)
{
    const auto work = [row, selections = m_view.selections(), text = m_view.storage().text(),
                       known = context()](const std::stop_token &stop) {
        Context asked = known;
        asked.stop = stop;
        return row.step(text, selections, asked);
    };
    m_task = BackgroundTask::start(
        m_services.workers, work,
        [this, row, selections = m_view.selections(), revision = m_view.storage().revision()](const std::optional<CaretStep> &step) {
            if (m_view.storage().revision() != revision) {
                startOnWorker(row);
                return;
            }
            stop({});
            apply(step, selections);
        });
}

void LineCommands::apply(const std::optional<CaretStep> &step, const Selections &asked)
{
    if (!step || !canEdit()) {
        m_services.beep();
        return;
    }
    if (m_view.selections() == asked) {
        m_view.apply(step->edits, GroupKind::other, step->after);
        return;
    }
    // The user has gone elsewhere meanwhile.
    const TextSelection kept = m_view.selection();
    const auto mapped = [&](qsizetype offset) { return step->edits.mapped(offset, Bias::after); };
    m_view.apply(step->edits, GroupKind::other, TextSelection{mapped(kept.anchor), mapped(kept.caret)}, TextView::Reveal::no);
}

/// Whatever was under way is over. What is said of it may be nothing.
void LineCommands::stop(const QString &message)
{
    m_task.cancel();
    const bool wasShown = m_work.end();
    if (!message.isEmpty()) {
        m_services.showMessage(message, toBeRead);
    } else if (wasShown) {
        m_services.showMessage(localized(u"Done"), toBeRead);
    }
}
