// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Base/NotificationCenter.h"

#include <algorithm>

NotificationCenter::Token &NotificationCenter::Token::operator=(Token &&other) noexcept
{
    if (this != &other) {
        reset();
        m_observer = std::move(other.m_observer);
    }
    return *this;
}

void NotificationCenter::Token::reset()
{
    const auto observer = std::exchange(m_observer, {}).lock();
    if (observer && observer->center) {
        observer->center->remove(observer.get());
    }
}

bool NotificationCenter::Token::isObserving() const
{
    const auto observer = m_observer.lock();
    return observer && observer->center;
}

NotificationCenter::~NotificationCenter()
{
    // Callbacks may hold tokens: these must find their observations ended, and not this map.
    const auto observers = std::exchange(m_observers, {});
    for (const auto &[name, list] : observers) {
        for (const auto &observer : list) {
            observer->center = nullptr;
        }
    }
}

void NotificationCenter::post(NotificationName name, const void *object)
{
    const auto found = m_observers.find(name);
    if (found == m_observers.end()) {
        return;
    }
    const auto observers = found->second;
    for (const auto &observer : observers) {
        if (observer->center && (!observer->object || observer->object == object)) {
            observer->callback(object);
        }
    }
}

NotificationCenter::Token NotificationCenter::observe(NotificationName name, const void *object, Callback callback)
{
    auto observer = std::make_shared<Observer>(Observer{.name = name, .object = object, .callback = std::move(callback), .center = this});
    m_observers[name].push_back(observer);
    return Token(observer);
}

void NotificationCenter::remove(const Observer *observer)
{
    const auto list = m_observers.find(observer->name);
    const auto place = std::ranges::find(list->second, observer, &std::shared_ptr<Observer>::get);
    // Kept until the end: what the callback holds may remove other observers while it goes.
    const std::shared_ptr<Observer> kept = *place;
    kept->center = nullptr;
    list->second.erase(place);
    if (list->second.empty()) {
        m_observers.erase(list);
    }
}
