// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Commands/Responder.h"

#include <QObject>

#include <algorithm>

const ActionRow *Responder::actionFor(const Action &) const
{
    return nullptr;
}

Responder *Responder::nextResponder() const
{
    if (m_next) {
        return m_next;
    }
    const auto *object = dynamic_cast<const QObject *>(this);
    return object ? nearestResponder(object->parent()) : nullptr;
}

Responder *Responder::target(const Action &wanted)
{
    Responder *responder = this;
    while (responder && !responder->actionFor(wanted)) {
        responder = responder->nextResponder();
    }
    return responder;
}

bool Responder::perform(const Action &wanted, const QVariant &represented)
{
    for (Responder *responder = this; responder; responder = responder->nextResponder()) {
        responder->willPerform(wanted);
    }
    return carryOut(wanted, represented);
}

bool Responder::carryOut(const Action &wanted, const QVariant &represented)
{
    Responder *responder = target(wanted);
    if (!responder) {
        return false;
    }
    responder->actionFor(wanted)->perform(*responder, {wanted.tag, represented});
    return true;
}

ActionState Responder::state(const Action &wanted, const QVariant &represented) const
{
    for (const Responder *responder = this; responder; responder = responder->nextResponder()) {
        if (const ActionRow *row = responder->actionFor(wanted)) {
            return row->state ? row->state(*responder, {wanted.tag, represented}) : ActionState{};
        }
    }
    return {.isEnabled = false};
}

const ActionRow *Responder::findAction(std::span<const ActionRow> rows, const Action &wanted)
{
    const auto found = std::ranges::find_if(rows, [&wanted](const ActionRow &row) { return row.action->isNamedLike(wanted); });
    return found == rows.end() ? nullptr : &*found;
}

Responder *nearestResponder(QObject *object)
{
    for (; object; object = object->parent()) {
        if (auto *responder = dynamic_cast<Responder *>(object)) {
            return responder;
        }
    }
    return nullptr;
}
