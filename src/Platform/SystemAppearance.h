// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Appearance.h"

#include <QObject>

#include <functional>
#include <memory>
#include <optional>

/// Where the desktop says whether programs shall be light or dark.
class AppearanceSource {
public:
    /// None: no preference, or none that is known.
    using Answer = std::optional<Appearance>;

    virtual ~AppearanceSource() = default;
    /// Asks, and from then on calls `tell` in the thread of the call for the answer and for every change; never before this returns.
    /// Is called once. A source that has nothing to say never calls.
    virtual void start(std::function<void(Answer)> tell) = 0;
};

/// The desktop portal's setting, asked for over the session bus. Nothing waits for the bus: not even connecting to it.
class PortalAppearanceSource final : public AppearanceSource {
public:
    PortalAppearanceSource();
    ~PortalAppearanceSource() override;

    void start(std::function<void(Answer)> tell) override;

private:
    class Client;

    std::unique_ptr<Client> m_client;
};

/// Whether the desktop is light or dark at the moment: as the source says, and while it says nothing, as the application's palette is.
/// Main thread only; needs the application object.
class SystemAppearance final : public QObject {
    Q_OBJECT

public:
    explicit SystemAppearance(std::unique_ptr<AppearanceSource> source, QObject *parent = nullptr);
    ~SystemAppearance() override;

    [[nodiscard]] Appearance current() const { return m_current; }

signals:
    /// `current()` is another than before.
    void changed(Appearance appearance);

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    std::unique_ptr<AppearanceSource> m_source;
    AppearanceSource::Answer m_answer;
    Appearance m_current;

    void update();
};
