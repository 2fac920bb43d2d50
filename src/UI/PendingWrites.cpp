// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/PendingWrites.h"

#include "Base/Translation.h"
#include "Widgets/AlertPresenter.h"

void PendingWrites::await(const Documents &documents, QWidget *window, Then then)
{
    Documents slow;
    std::ranges::copy_if(documents, std::back_inserter(slow), [](const auto &document) { return document->isSaving(); });
    const bool isImpatient = std::exchange(m_state->wait, nullptr) != nullptr;
    if (slow.empty()) {
        then(Outcome::written);
        return;
    }
    const auto wait = m_state->wait = std::make_shared<Wait>(Wait{.then = std::move(then), .left = slow.size()});
    for (const auto &document : slow) {
        document->whenSaved([state = std::weak_ptr(m_state), wait](bool isWritten) {
            const auto alive = state.lock();
            if (!alive || alive->wait != wait) {
                return;
            }
            wait->isWritten = wait->isWritten && isWritten;
            if (--wait->left == 0) {
                alive->wait.reset();
                wait->then(wait->isWritten ? Outcome::written : Outcome::failed);
            }
        });
    }
    if (isImpatient && !m_state->isAsking) {
        ask(*slow.front(), window);
    }
}

void PendingWrites::ask(const TextDocument &slow, QWidget *window)
{
    const Alert question{.messageText = formatted(localized(u"“%@” is still being saved."), slow.displayName()),
                         .informativeText =
                             localized(u"Its folder does not answer. What is not written yet may be lost if you do not wait."),
                         .buttons = {{localized(u"Keep Waiting"), AlertButtonRole::cancel},
                                     {localized(u"Close Without Saving"), AlertButtonRole::destructive}}};
    m_state->isAsking = true;
    m_presenter.present(question, window, [state = std::weak_ptr(m_state)](const AlertReply &reply) {
        const auto alive = state.lock();
        if (!alive) {
            return;
        }
        alive->isAsking = false;
        if (reply.button == AlertReply::secondButton) {
            if (const auto wait = std::exchange(alive->wait, nullptr)) {
                wait->then(Outcome::abandoned);
            }
        }
    });
}
