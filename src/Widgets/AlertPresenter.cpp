// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Widgets/AlertPresenter.h"

#include <algorithm>
#include <utility>

namespace {

/// Takes the first of `queue`, if there is one.
template<typename T>
std::optional<T> takeFirst(std::deque<T> &queue)
{
    if (queue.empty()) {
        return std::nullopt;
    }
    T first = std::move(queue.front());
    queue.pop_front();
    return first;
}

} // namespace

int Alert::cancelAnswer() const
{
    const auto cancel = std::ranges::find(buttons, AlertButtonRole::cancel, &AlertButton::role);
    const auto place = cancel == buttons.end() ? std::max<qsizetype>(buttons.size() - 1, 0) : cancel - buttons.begin();
    return AlertReply::firstButton + int(place);
}

Alert Alert::forError(const QString &description, const QString &recoverySuggestion)
{
    return {.style = AlertStyle::critical, .messageText = description, .informativeText = recoverySuggestion};
}

void ScriptedAlertPresenter::present(const Alert &alert, QWidget *, AlertCompletion completion)
{
    m_alerts.push_back(alert);
    if (m_holds) {
        m_held.push_back({alert, std::move(completion)});
    } else {
        reply(alert, completion);
    }
}

void ScriptedAlertPresenter::answerHeld()
{
    if (const std::optional<HeldAlert> oldest = takeFirst(m_held)) {
        reply(oldest->alert, oldest->completion);
    }
}

void ScriptedAlertPresenter::reply(const Alert &alert, const AlertCompletion &completion)
{
    AlertReply reply{.button = alert.cancelAnswer(), .text = alert.textField ? alert.textField->text : QString()};
    if (const auto given = takeFirst(m_replies)) {
        reply = *given;
    }
    if (completion) {
        completion(reply);
    }
}

void ScriptedAlertPresenter::present(const OpenPanel &panel, QWidget *, OpenCompletion completion)
{
    m_openPanels.push_back(panel);
    const QStringList paths = takeFirst(m_openPaths).value_or(QStringList());
    completion(paths);
}

void ScriptedAlertPresenter::present(const SavePanel &panel, QWidget *, SaveCompletion completion)
{
    m_savePanels.push_back(panel);
    const std::optional<QString> path = takeFirst(m_savePaths);
    completion(path);
}

void ScriptedAlertPresenter::present(const ChoicePanel &panel, QWidget *, ChoiceCompletion completion)
{
    m_choicePanels.push_back(panel);
    const QString title = takeFirst(m_choices).value_or(QString());
    const auto found = std::ranges::find(panel.choices, title, &ChoicePanel::Choice::title);
    completion(found == panel.choices.end() ? std::nullopt : std::optional(int(found - panel.choices.begin())));
}

void ScriptedAlertPresenter::present(const FontPanel & /*panel*/, QWidget *, FontCompletion completion)
{
    completion(takeFirst(m_fonts));
}
