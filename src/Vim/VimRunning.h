// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/Rope.h"

#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <type_traits>

/// Keys and commands that run by themselves and may take long, as those of a macro do. Between them the user may stop them, and the text
/// may become another. Main thread only.
class VimRunning {
public:
    /// Nobody looks at the text and the caret till the end, so that what is to be seen of them may wait. Calls nest.
    virtual void beginRun() = 0;
    virtual void endRun() = 0;
    /// Others are to see the text as it is here.
    virtual void showRun() = 0;
    /// To be asked between two of them; false when the user has stopped them, and then until the end.
    [[nodiscard]] virtual bool goesOn() = 0;
    using Computing = std::function<void(const Rope &text, const std::stop_token &stop)>;
    /// Calls `computing`, of which there may be copies, on whatever thread; false when nothing may come of it.
    [[nodiscard]] virtual bool compute(const Computing &computing) = 0;

    /// What `function` makes of the text; none when the user has stopped it.
    template<class Function>
    [[nodiscard]] auto computed(Function function)
    {
        using Result = std::invoke_result_t<Function &, const Rope &, const std::stop_token &>;
        const auto result = std::make_shared<std::optional<Result>>();
        const bool isDone = compute([result, function = std::move(function)](const Rope &text, const std::stop_token &stop) {
            result->emplace(function(text, stop));
        });
        return isDone ? std::move(*result) : std::optional<Result>();
    }

    /// The same of `about` units of `text`, which is the text: at once where they are few.
    template<class Function>
    [[nodiscard]] auto computed(const Rope &text, qsizetype about, Function function)
    {
        constexpr qsizetype few = qsizetype(256) * 1024;
        return about <= few ? std::optional(function(text, std::stop_token())) : computed(std::move(function));
    }

    class Scope {
    public:
        explicit Scope(VimRunning &running) : m_running(running) { m_running.beginRun(); }
        ~Scope() { m_running.endRun(); }
        Q_DISABLE_COPY_MOVE(Scope)

    private:
        VimRunning &m_running;
    };

protected:
    ~VimRunning() = default;
};
