// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/SubstitutionPreview.h"

#include "Editor/SubstitutionPanel.h"
#include "View/TextView.h"
#include "Vim/VimBuffer.h"
#include "Vim/VimEngine.h"

#include <algorithm>

namespace {

/// Units; nothing is shown in lines that are longer.
constexpr qsizetype longestSeen = 0x40000;

struct Typed {
    VimSubstituteJob job;
    bool hasReplacement = false;
};

/// Takes the lines that `command` is for off its front: "%", or up to two of "12", ".", "$" with "+3" or "-" behind them. None where marks
/// or patterns tell them.
std::optional<VimSubstituteJob::Lines> takeLines(QStringView &command, const Rope &text, qsizetype caret)
{
    const qsizetype last = text.lineAt(VimBuffer(text).lastLineStart());
    const auto skips = [&command](QChar unit) {
        const bool isThere = command.startsWith(unit);
        command = command.sliced(isThere ? 1 : 0);
        return isThere;
    };
    const auto takeNumber = [&command]() -> std::optional<qsizetype> {
        const auto *end = std::ranges::find_if_not(command, [](QChar unit) { return unit >= u'0' && unit <= u'9'; });
        const QStringView digits = command.first(std::min<qsizetype>(end - command.begin(), 9));
        command = command.sliced(digits.size());
        return digits.isEmpty() ? std::nullopt : std::optional(qsizetype(digits.toLongLong()));
    };
    const auto takeLine = [&] {
        const auto number = takeNumber();
        qsizetype line = number ? *number - 1 : skips(u'$') ? last : (skips(u'.'), text.lineAt(caret));
        while (command.startsWith(u'+') || command.startsWith(u'-')) {
            const qsizetype sign = skips(u'+') ? 1 : (skips(u'-'), -1);
            line += sign * takeNumber().value_or(1);
        }
        return std::clamp<qsizetype>(line, 0, last);
    };
    while (skips(u':') || skips(u' ')) {
    }
    VimSubstituteJob::Lines lines{0, last};
    if (!skips(u'%')) {
        lines.first = takeLine();
        lines.last = skips(u',') ? takeLine() : lines.first;
    }
    while (skips(u' ')) {
    }
    return lines.first <= lines.last && VimSubstituteCommand::isOne(command) ? std::optional(lines) : std::nullopt;
}

/// None while no substitution is typed that could be carried out.
std::optional<Typed> typedJob(const VimEngine &engine, const Rope &text, qsizetype caret)
{
    const VimCommandLine &line = engine.commandLine();
    const bool isCommand = engine.mode() == VimEngine::Mode::commandLine && line.prefix() == u':';
    if (!isCommand || !engine.options().isExact || !engine.options().searchesWhileTyping) {
        return std::nullopt;
    }
    QStringView rest = line.text();
    const auto lines = takeLines(rest, text, caret);
    const auto command = lines ? VimSubstituteCommand::parse(rest) : Result<VimSubstituteCommand>(VimSubstituteCommand{});
    if (!command || command->patternKind != VimSubstituteCommand::Pattern::typed) {
        return std::nullopt;
    }
    // What it remembers is forgotten with it.
    VimSubstituteMemory memory;
    auto search = engine.lastSearch();
    auto job = VimSubstituteJob::prepare(*command, *lines, engine.options(), memory, search);
    return job ? std::optional(Typed{std::move(*job), command->hasReplacement}) : std::nullopt;
}

} // namespace

SubstitutionPreview::SubstitutionPreview(TextView &view) : m_view(view), m_panel(std::make_unique<SubstitutionPanel>(view))
{
    connect(&view, &TextView::visibleRowsChanged, this, &SubstitutionPreview::show);
}

SubstitutionPreview::~SubstitutionPreview()
{
    if (m_job) {
        m_view.setLook(&TextLooks::replacedHits, {});
    }
}

void SubstitutionPreview::follow(VimEngine &engine)
{
    const QString line = engine.commandLine().text();
    const bool isOpen = engine.mode() == VimEngine::Mode::commandLine;
    if (isOpen && m_job && line == m_line) {
        return;
    }
    auto typed = typedJob(engine, m_view.storage().text(), m_view.shownCaret());
    if (!typed) {
        end();
        return;
    }
    if (!m_job) {
        m_place = m_view.textViewport().place();
        m_view.setLook(&TextLooks::replacedHits, [this](TextRange seen) { return hitsIn(seen); });
    }
    m_line = line;
    m_job = std::move(typed->job);
    m_hasReplacement = typed->hasReplacement;
    revealFirstHit();
    show();
}

void SubstitutionPreview::end()
{
    if (std::exchange(m_job, std::nullopt)) {
        m_hits.clear();
        m_panel->show({});
        m_view.setLook(&TextLooks::replacedHits, {});
        m_view.scrollTo(m_place);
    }
}

void SubstitutionPreview::revealFirstHit()
{
    const Rope &text = m_view.storage().text();
    m_view.scrollTo(m_place);
    if (text.length() > VimSearch::nearby) {
        return;
    }
    if (const auto hit = VimSubstituteWalk(*m_job, text).next()) {
        const TextRange seen = TextViewRepaint(m_view).seen();
        if (hit->range.location < seen.location || hit->range.location > seen.end() || m_job->preview(text, seen).empty()) {
            m_view.revealOffset(hit->range.location);
        }
    }
}

/// Of the rows that are seen now.
void SubstitutionPreview::show()
{
    if (!m_job) {
        return;
    }
    const Rope &text = m_view.storage().text();
    const TextRange seen = TextViewRepaint(m_view).seen();
    const bool isTooLong = seen.end() - text.lineStart(text.lineAt(seen.location)) > longestSeen;
    m_hits = isTooLong ? std::vector<VimSubstituteHit>() : m_job->preview(text, seen);
    m_panel->show(m_hasReplacement ? SubstitutionPanel::rows(text, m_hits, m_panel->mostRows()) : std::vector<SubstitutionPanel::Row>());
    m_view.viewport()->update();
}

std::vector<TextRange> SubstitutionPreview::hitsIn(TextRange seen) const
{
    std::vector<TextRange> found;
    for (const VimSubstituteHit &hit : m_hits) {
        if (hit.range.touches(seen)) {
            found.push_back(hit.range);
        }
    }
    return found;
}
