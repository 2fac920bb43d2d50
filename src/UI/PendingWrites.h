// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Model/TextDocument.h"

#include <vector>

class AlertPresenter;
class QWidget;

/// What is to be closed waits here until all that is being written of it is in its files. Who closes once more while that takes its time is
/// asked whether to go on waiting, for it may take forever. Main thread only.
class PendingWrites final {
public:
    using Documents = std::vector<std::shared_ptr<TextDocument>>;
    /// `failed`: the user has been notified, by whoever had it saved. `abandoned`: the user does not wait any longer.
    enum class Outcome { written, failed, abandoned };
    using Then = std::function<void(Outcome outcome)>;

    explicit PendingWrites(AlertPresenter &presenter) : m_presenter(presenter) {}
    Q_DISABLE_COPY_MOVE(PendingWrites)

    /// Calls `then` when nothing of `documents` is being written any more, at once if nothing is. The latest call counts: those before it
    /// are forgotten.
    void await(const Documents &documents, QWidget *window, Then then);
    [[nodiscard]] bool isWaiting() const { return m_state->wait != nullptr; }

private:
    struct Wait {
        Then then;
        size_t left = 0;
        bool isWritten = true;
    };
    /// Held weakly by what may come when this is gone.
    struct State {
        std::shared_ptr<Wait> wait;
        bool isAsking = false;
    };
    void ask(TextDocument &slow, QWidget *window);

    AlertPresenter &m_presenter;
    std::shared_ptr<State> m_state = std::make_shared<State>();
};
