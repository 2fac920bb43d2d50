// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/PendingWrites.h"

#include "Base/Translation.h"
#include "Widgets/AlertPresenter.h"

void PendingWrites::await(const Documents &documents, QWidget *window, Then then)
{
    Documents slow;
    std::ranges::copy_if(documents, std::back_inserter(slow), [](const auto &document) { return document->saves().isActive(); });
    const auto earlier = std::exchange(m_state->wait, nullptr);
    const bool isImpatient = earlier != nullptr;
    if (earlier) {
        earlier->then = nullptr; // it may hold the document that holds it
    }
    if (slow.empty()) {
        then(Outcome::written);
        return;
    }
    const auto wait = m_state->wait = std::make_shared<Wait>(Wait{.then = std::move(then), .left = slow.size()});
    for (const auto &document : slow) {
        document->saves().whenOver([state = std::weak_ptr(m_state), wait](bool isWritten) {
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

void PendingWrites::ask(TextDocument &slow, QWidget *window)
{
    const bool isAskedFor = slow.requests().activity() == FileRequests::Activity::authorizing;
    const Alert question{.messageText = formatted(localized(u"“%@” is still being saved."), slow.displayName()),
                         .informativeText = localized(
                             isAskedFor ? u"The question for the password has not been answered. What is not written yet may be lost if "
                                          u"you do not wait."
                                        : u"Its folder does not answer. What is not written yet may be lost if you do not wait."),
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
                // What is closed calls off what it waits for, such as a question for a password.
                std::exchange(wait->then, nullptr)(Outcome::abandoned);
            }
        }
    });
}
