// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Commands/Action.h"

#include <QVariant>

#include <optional>
#include <type_traits>

class QObject;

/// What the function that carries an action out is given about the item that sent it.
struct ActionSender {
    /// The action's: the number of a tab, the kind of a find command.
    int tag = 0;
    /// What the item stands for: the path of a recent file, the name of a theme.
    QVariant represented = {};
};

enum class CheckMark { none, on, mixed };

/// How a menu item or a button of an action is to be shown now.
struct ActionState {
    bool isEnabled = true;
    CheckMark checkMark = CheckMark::none;
    /// Instead of the item's own title, already in the language of the interface.
    std::optional<QString> title = std::nullopt;
};

class Responder;

/// One action that a class takes, or several of one name.
struct ActionRow {
    const Action *action;
    void (*perform)(Responder &responder, const ActionSender &sender) = nullptr;
    /// Null when the action is always enabled and never checked.
    ActionState (*state)(const Responder &responder, const ActionSender &sender) = nullptr;
};

/// A link of the chain along which actions travel from the focused view to the application. A class takes part by inheriting it and
/// listing its actions:
///
///     const ActionRow *TextView::actionFor(const Action &wanted) const
///     {
///         static constexpr auto rows = std::to_array<ActionRow>({
///             action<&TextView::undo, &TextView::undoState>(Actions::undo),
///             action<&TextView::selectAll>(Actions::selectAll),
///         });
///         return findAction(rows, wanted);
///     }
///
/// A subclass looks into its own rows first and asks its base class last. Main thread only.
class Responder {
public:
    Responder() = default;
    Responder(const Responder &) = delete;
    Responder &operator=(const Responder &) = delete;
    virtual ~Responder() = default;

    /// The row of `wanted`, or null when this responder does not take it.
    [[nodiscard]] virtual const ActionRow *actionFor(const Action &wanted) const;

    /// The one that was set; else the nearest responder among the QObject parents, if this is a QObject; else null.
    [[nodiscard]] virtual Responder *nextResponder() const;
    /// `next` must live as long as it is set; null goes back to the parents.
    void setNextResponder(Responder *next) { m_next = next; }

    /// The first in the chain from here that takes `wanted`, or null.
    [[nodiscard]] Responder *target(const Action &wanted);
    /// Lets the target act, whether or not it calls the action enabled; false when nobody takes it.
    bool perform(const Action &wanted, const QVariant &represented = {});
    /// The same for a command that was spelled out rather than chosen: the chain is not told.
    bool carryOut(const Action &wanted, const QVariant &represented = {});
    /// What the target says, and it alone: a disabled action is not offered to the rest of the chain. Disabled when nobody takes it.
    [[nodiscard]] ActionState state(const Action &wanted, const QVariant &represented = {}) const;

protected:
    /// The row that calls `Perform` (a member function without parameters or with a `const ActionSender &`) and asks `State` (a const
    /// one that returns ActionState, likewise; or one that returns bool: enabled or not; or a function of the responder that does).
    template<auto Perform, auto State = nullptr>
    [[nodiscard]] static constexpr ActionRow action(const Action &taken);

    /// Told to the whole chain of every action before it is carried out, whoever takes it.
    virtual void willPerform(const Action &) {}

    [[nodiscard]] static const ActionRow *findAction(std::span<const ActionRow> rows, const Action &wanted);

private:
    /// Only for its type: the class that a member function belongs to.
    template<typename Class, typename Function>
    static Class classOf(Function Class::*);

    template<auto Member>
    static auto call(auto &responder, const ActionSender &sender)
    {
        if constexpr (requires { (responder.*Member)(sender); }) {
            return (responder.*Member)(sender);
        } else {
            return (responder.*Member)();
        }
    }

    Responder *m_next = nullptr;
};

/// `object` itself if it is a responder, else the nearest one among its parents, else null.
[[nodiscard]] Responder *nearestResponder(QObject *object);

template<auto Perform, auto State>
constexpr ActionRow Responder::action(const Action &taken)
{
    ActionRow row{.action = &taken, .perform = [](Responder &responder, const ActionSender &sender) {
                      call<Perform>(static_cast<decltype(classOf(Perform)) &>(responder), sender);
                  }};
    if constexpr (!std::is_null_pointer_v<decltype(State)>) {
        row.state = [](const Responder &responder, const ActionSender &sender) -> ActionState {
            const auto &asked = static_cast<const decltype(classOf(Perform)) &>(responder);
            if constexpr (std::is_invocable_v<decltype(State), decltype(asked)> && !std::is_member_pointer_v<decltype(State)>) {
                return {State(asked)};
            } else {
                return {call<State>(asked, sender)};
            }
        };
    }
    return row;
}
