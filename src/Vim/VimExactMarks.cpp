// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// The user's marks in exact modal editing, of which A–Z are places in all texts.

#include "Vim/VimExact.h"

#include "Base/Translation.h"
#include "Commands/Actions.h"
#include "Vim/VimConfiguration.h"
#include "Vim/VimExEdits.h"

using namespace Qt::StringLiterals;

VimEngine::Marking::~Marking()
{
    if (VimFileMarks *marks = shared()) {
        marks->release(*this);
    }
}

void VimEngine::Marking::join()
{
    if (VimFileMarks *marks = shared()) {
        marks->join(*this);
    }
}

QString VimEngine::Marking::heldText() const
{
    return m_engine.m_view.name().id;
}

VimMarks &VimEngine::Marking::heldMarks()
{
    return m_exact.marks;
}

VimFileMarks *VimEngine::Marking::shared() const
{
    return m_engine.m_configuration ? &m_engine.m_configuration->fileMarks() : nullptr;
}

std::optional<VimFileMarks::Place> VimEngine::Marking::heldMark(char16_t mark) const
{
    const auto place = m_exact.marks.place(mark);
    if (!place) {
        return std::nullopt;
    }
    const VimLines lines(text());
    const qsizetype line = lines.number(std::min(*place, text().length()));
    const VimTextName name = m_engine.m_view.name();
    return VimFileMarks::Place{.text = name.lasting(),
                               .title = name.title,
                               .line = line,
                               .column = *place - lines.startOf(line),
                               .isPrivate = m_engine.isPrivate()};
}

void VimEngine::Marking::share(char16_t name)
{
    if (VimFileMarks *marks = shared(); marks && marks->isShared(*this)) {
        m_engine.m_view.showRun();
        marks->share(name, *this);
    }
}

void VimEngine::Marking::set(char16_t name, qsizetype place)
{
    m_exact.marks.set(name, place);
    if (VimFileMarks *marks = shared(); marks && VimFileMarks::isName(name)) {
        marks->set(name, *this);
    } else if (VimMarks::isUsers(name)) {
        share(name);
    }
}

void VimEngine::Marking::remove(char16_t name)
{
    m_exact.marks.remove(name);
    if (VimFileMarks *marks = shared()) {
        marks->remove(name);
        if (VimMarks::isUsers(name)) {
            share(name);
        }
    }
}

void VimEngine::Marking::update()
{
    VimFileMarks *marks = shared();
    if (!marks) {
        return;
    }
    const QString here = m_engine.m_view.name().lasting();
    for (char16_t name = u'A'; name <= u'Z'; ++name) {
        if (marks->holder(name) == this) {
            continue;
        }
        const auto place = marks->place(name);
        if (!place || place->text != here) {
            m_exact.marks.remove(name);
            continue;
        }
        const VimLines lines(text());
        const qsizetype line = std::min(place->line, lines.count());
        m_exact.marks.set(name, std::min(lines.startOf(line) + place->column, lines.endOf(line)));
        if (!marks->holder(name)) {
            marks->set(name, *this);
        }
    }
}

std::vector<VimFileMarks::Mark> VimEngine::Marking::elsewhere() const
{
    const VimFileMarks *marks = shared();
    std::vector<VimFileMarks::Mark> all = marks ? marks->all() : std::vector<VimFileMarks::Mark>();
    std::erase_if(all, [here = m_engine.m_view.name().lasting()](const VimFileMarks::Mark &mark) { return mark.place.text == here; });
    return all;
}

bool VimEngine::Marking::goElsewhere(char16_t name, bool isExact)
{
    const std::vector<VimFileMarks::Mark> others = elsewhere();
    const auto mark = std::ranges::find(others, name, &VimFileMarks::Mark::name);
    if (mark == others.end()) {
        return false;
    }
    if (m_engine.m_pendingOperator || m_engine.isVisual()) {
        m_engine.m_delegate.vimEngineSays(m_engine, formatted(localized(u"The mark %@ is in another text"), QString(QChar(name))));
        fail();
        return true;
    }
    m_exact.going.rememberJump();
    finish();
    m_engine.m_delegate.vimEnginePerforms(
        m_engine, Actions::goToPlace, u"%1 %2 %3"_s.arg(mark->place.line).arg(isExact ? mark->place.column + 1 : 0).arg(mark->place.text));
    return true;
}

// Before each step

void VimEngine::Exact::rememberStep(const TextChange &change, ChangedBy by)
{
    constexpr size_t limit = 1000;
    const qsizetype number = engine.m_view.undoSteps(); // the one that is under way counts
    while (!m_steps.empty() && (m_steps.back().number > number || (m_steps.back().number == number && m_steps.back().isUndone))) {
        m_steps.pop_back();
    }
    const bool isNew = m_steps.empty() || m_steps.back().number < number;
    if (isNew) {
        m_steps.push_back({number, marks, selecting.selected(), changing.stepOf(change)});
    }
    if (isNew || by == ChangedBy::keys) {
        m_steps.back().caret.add(change, changing.takenLines());
    }
    if (m_steps.size() > limit) {
        m_steps.pop_front();
    }
}

VimEngine::Exact::Step *VimEngine::Exact::step(qsizetype number)
{
    const auto found = std::ranges::find(m_steps, number, &Step::number);
    return found == m_steps.end() ? nullptr : &*found;
}

void VimEngine::Exact::restoreMarks()
{
    const Step *undone = step(engine.m_view.undoSteps() + 1);
    if (!undone) {
        return;
    }
    for (const VimMarks::Mark &mark : undone->marks.all()) {
        if (VimMarks::isUsers(mark.name) && !marks.place(mark.name)) {
            marks.set(mark.name, mark.place);
        }
    }
    if (undone->selected) {
        selecting.setSelected(*undone->selected);
    }
}

const VimStepCaret *VimEngine::Exact::replayedStep(VimStepCaret::Replay replay)
{
    const bool isUndo = replay == VimStepCaret::Replay::undo;
    Step *replayed = step(engine.m_view.undoSteps() + (isUndo ? 1 : 0));
    if (!replayed) {
        return nullptr;
    }
    replayed->isUndone = isUndo;
    return &replayed->caret;
}
