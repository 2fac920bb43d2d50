// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

/// The name of a notification, such as "QLT.PreferencesDidChange": a literal, it is kept by reference.
using NotificationName = std::string_view;

/// Notifies whoever wants to know that something happened, by name, at once and on the calling thread, which must be the main thread.
/// Observers may be added and removed, and further notifications posted, at any time, also while one is being delivered.
class NotificationCenter final {
    struct Observer;

public:
    /// Gets the object that the notification is about.
    using Callback = std::function<void(const void *object)>;

    /// An observer's place on the list; destroying it ends the observation. It may outlive the centre.
    class Token {
    public:
        Token() = default;
        Token(Token &&other) noexcept = default;
        Token &operator=(Token &&other) noexcept;
        ~Token() { reset(); }

        /// Ends the observation: the callback is not called again, not even by a delivery under way.
        void reset();
        [[nodiscard]] bool isObserving() const;

    private:
        friend class NotificationCenter;
        explicit Token(std::weak_ptr<Observer> observer) : m_observer(std::move(observer)) {}

        std::weak_ptr<Observer> m_observer;
    };

    NotificationCenter() = default;
    NotificationCenter(const NotificationCenter &) = delete;
    NotificationCenter &operator=(const NotificationCenter &) = delete;
    ~NotificationCenter();

    /// Calls the observers of `name` that wait for `object` or for any, in the order in which they came. Those that come meanwhile
    /// wait for the next one. `object` is compared and passed on, never followed; null when the notification is about none.
    void post(NotificationName name, const void *object);

    /// `object` null: whatever the notification is about.
    [[nodiscard]] Token observe(NotificationName name, const void *object, Callback callback);
    template<typename Function>
    requires std::is_invocable_v<Function &>
    [[nodiscard]] Token observe(NotificationName name, const void *object, Function callback)
    {
        return observe(name, object, Callback([wrapped = std::move(callback)](const void *) mutable { wrapped(); }));
    }

private:
    struct Observer {
        NotificationName name;
        const void *object = nullptr;
        Callback callback;
        /// Null once the observation has ended.
        NotificationCenter *center = nullptr;
    };

    void remove(const Observer *observer);

    std::unordered_map<NotificationName, std::vector<std::shared_ptr<Observer>>> m_observers;
};
