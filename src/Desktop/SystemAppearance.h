// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Appearance.h"

#include "Desktop/DesktopFont.h"

#include <QColor>
#include <QObject>

#include <functional>
#include <memory>
#include <optional>

/// How the desktop wants programs to look.
struct RequestedAppearance {
    /// None: no preference, or none that is known.
    std::optional<Appearance> scheme = {};
    /// Of what is chosen or stands out.
    std::optional<QColor> accent = {};
    bool hasHighContrast = false;
    /// For texts whose letters are to be equally wide. None: none that is installed.
    std::optional<DesktopFont> fixedFont = {};

    friend bool operator==(const RequestedAppearance &, const RequestedAppearance &) = default;
};

/// Where the desktop says what it requests.
class AppearanceSource {
public:
    virtual ~AppearanceSource() = default;
    /// Asks, and from then on calls `notify` in the thread of the call for every answer and every change; never before this returns.
    /// Is called once. A source that has nothing to say never calls.
    virtual void start(std::function<void(const RequestedAppearance &requested)> notify) = 0;
};

/// The desktop portal's settings, asked for over the session bus; what the portal does not know, GNOME's and KDE's own settings say.
/// Nothing waits for the bus: not even connecting to it.
class PortalAppearanceSource final : public AppearanceSource {
public:
    PortalAppearanceSource();
    ~PortalAppearanceSource() override;

    void start(std::function<void(const RequestedAppearance &requested)> notify) override;

private:
    class Client;

    std::unique_ptr<Client> m_client;
};

/// Whether the desktop is light or dark at the moment: as the source says, and while it says nothing, as the palette is. Main thread only;
/// needs the application object.
class SystemAppearance final : public QObject {
    Q_OBJECT

public:
    /// `palette` says how the desktop's own palette is; as the application's, by default.
    explicit SystemAppearance(std::unique_ptr<AppearanceSource> source, std::function<Appearance()> palette = paletteAppearance);
    ~SystemAppearance() override;

    [[nodiscard]] Appearance current() const { return m_current; }
    /// The desktop's palette may be another.
    void update();

signals:
    /// Whoever gives the application its palette does so before this returns.
    void requestChanged(const RequestedAppearance &requested);
    /// `current()` is another than before.
    void changed(Appearance appearance);

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    [[nodiscard]] static Appearance paletteAppearance();

    std::unique_ptr<AppearanceSource> m_source;
    std::function<Appearance()> m_palette;
    RequestedAppearance m_requested;
    Appearance m_current;
};
