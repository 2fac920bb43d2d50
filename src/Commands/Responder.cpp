// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Commands/Responder.h"

#include <QObject>

#include <algorithm>

const ActionRow *Responder::actionFor(Selector) const
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

Responder *Responder::target(Selector selector)
{
    Responder *responder = this;
    while (responder && !responder->actionFor(selector)) {
        responder = responder->nextResponder();
    }
    return responder;
}

namespace {

Responder::Observer &theObserver()
{
    static Responder::Observer observer;
    return observer;
}

} // namespace

void Responder::setObserver(Observer observer)
{
    theObserver() = std::move(observer);
}

bool Responder::perform(Selector selector, const ActionSender &sender)
{
    if (const Observer &observer = theObserver()) {
        observer(selector);
    }
    Responder *responder = target(selector);
    if (!responder) {
        return false;
    }
    responder->actionFor(selector)->perform(*responder, sender);
    return true;
}

ActionState Responder::state(Selector selector, const ActionSender &sender) const
{
    for (const Responder *responder = this; responder; responder = responder->nextResponder()) {
        if (const ActionRow *row = responder->actionFor(selector)) {
            return row->state ? row->state(*responder, sender) : ActionState{};
        }
    }
    return {.isEnabled = false};
}

const ActionRow *Responder::findAction(std::span<const ActionRow> rows, Selector selector)
{
    const auto found = std::ranges::find(rows, selector, &ActionRow::selector);
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
