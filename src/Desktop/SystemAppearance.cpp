// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Desktop/SystemAppearance.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QEvent>
#include <QFileInfo>
#include <QGuiApplication>
#include <QPalette>
#include <QSet>
#include <QThread>

#include <algorithm>
#include <array>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

const auto portalService = u"org.freedesktop.portal.Desktop"_s;
const auto portalPath = u"/org/freedesktop/portal/desktop"_s;
const auto settingsInterface = u"org.freedesktop.portal.Settings"_s;
const auto appearanceNamespace = u"org.freedesktop.appearance"_s;

std::optional<Appearance> schemeOf(const QVariant &value)
{
    switch (value.toUInt()) {
    case 1:
        return Appearance::dark;
    case 2:
        return Appearance::light;
    default:
        return std::nullopt;
    }
}

/// Red, green and blue, each from 0 to 1; anything else means that there is no colour.
std::optional<QColor> colorOf(const QVariant &value)
{
    if (value.metaType() != QMetaType::fromType<QDBusArgument>() || value.value<QDBusArgument>().currentSignature() != "(ddd)"_L1) {
        return std::nullopt;
    }
    std::array<double, 3> parts{};
    const auto argument = value.value<QDBusArgument>();
    argument.beginStructure();
    for (double &part : parts) {
        argument >> part;
        if (!std::isfinite(part) || part < 0 || part > 1) {
            return std::nullopt;
        }
    }
    argument.endStructure();
    return QColor::fromRgbF(float(parts[0]), float(parts[1]), float(parts[2]));
}

struct Setting {
    QLatin1StringView key;
    void (*store)(RequestedAppearance &requested, const QVariant &value);
};

constexpr auto settings = std::to_array<Setting>({
    {"color-scheme"_L1, [](RequestedAppearance &requested, const QVariant &value) { requested.scheme = schemeOf(value); }},
    {"accent-color"_L1, [](RequestedAppearance &requested, const QVariant &value) { requested.accent = colorOf(value); }},
    {"contrast"_L1, [](RequestedAppearance &requested, const QVariant &value) { requested.hasHighContrast = value.toUInt() == 1; }},
});

/// Values come wrapped once, and from older portals twice.
QVariant unwrapped(QVariant value)
{
    while (value.metaType() == QMetaType::fromType<QDBusVariant>()) {
        value = value.value<QDBusVariant>().variant();
    }
    return value;
}

/// Without a bus that runs already the library would try to start one, which takes its time and helps nobody.
bool hasSessionBus()
{
    return qEnvironmentVariableIsSet("DBUS_SESSION_BUS_ADDRESS") || QFileInfo::exists(qEnvironmentVariable("XDG_RUNTIME_DIR") + u"/bus"_s);
}

Appearance paletteAppearance()
{
    const QPalette palette = QGuiApplication::palette();
    const int ground = palette.color(QPalette::Window).lightness();
    return ground < palette.color(QPalette::WindowText).lightness() ? Appearance::dark : Appearance::light;
}

} // namespace

class PortalAppearanceSource::Client final : public QObject {
    Q_OBJECT

public:
    ~Client() override
    {
        if (m_connecting) {
            m_connecting->wait();
        }
    }

    void start(std::function<void(const RequestedAppearance &)> notify)
    {
        m_notify = std::move(notify);
        if (!hasSessionBus()) {
            return;
        }
        m_connecting.reset(QThread::create([] { (void)QDBusConnection::sessionBus(); }));
        connect(m_connecting.get(), &QThread::finished, this, &Client::ask);
        m_connecting->start();
    }

private slots:
    void settingChanged(const QString &space, const QString &key, const QDBusVariant &value)
    {
        const auto *setting = std::ranges::find(settings, key, &Setting::key);
        if (space == appearanceNamespace && setting != settings.end()) {
            m_changed.insert(key);
            store(*setting, value.variant());
        }
    }

private:
    std::unique_ptr<QThread> m_connecting;
    std::function<void(const RequestedAppearance &)> m_notify;
    RequestedAppearance m_requested;
    /// What was reported without being asked for.
    QSet<QString> m_changed;

    void store(const Setting &setting, const QVariant &value)
    {
        RequestedAppearance requested = m_requested;
        setting.store(requested, unwrapped(value));
        if (requested != m_requested) {
            m_requested = requested;
            m_notify(m_requested);
        }
    }

    void ask()
    {
        QDBusConnection bus = QDBusConnection::sessionBus();
        if (!bus.isConnected()) {
            return;
        }
        // Without it the library does not know the slot's parameter and connects nothing.
        qRegisterMetaType<QDBusVariant>();
        // From whoever sends it: to know the sender the library would ask the bus for it and wait.
        bus.connect(QString(), portalPath, settingsInterface, u"SettingChanged"_s, this,
                    SLOT(settingChanged(QString, QString, QDBusVariant)));
        for (const Setting &setting : settings) {
            QDBusMessage question = QDBusMessage::createMethodCall(portalService, portalPath, settingsInterface, u"Read"_s);
            question << appearanceNamespace << QString(setting.key);
            auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(question), this);
            connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, &setting] {
                const QDBusPendingReply<QDBusVariant> reply = *watcher;
                watcher->deleteLater();
                // A change that came meanwhile is newer. An older portal does not know every setting.
                if (reply.isValid() && !m_changed.contains(setting.key)) {
                    store(setting, reply.value().variant());
                }
            });
        }
    }
};

PortalAppearanceSource::PortalAppearanceSource() : m_client(std::make_unique<Client>()) {}

PortalAppearanceSource::~PortalAppearanceSource() = default;

void PortalAppearanceSource::start(std::function<void(const RequestedAppearance &requested)> notify)
{
    m_client->start(std::move(notify));
}

SystemAppearance::SystemAppearance(std::unique_ptr<AppearanceSource> source, QObject *parent)
    : QObject(parent), m_source(std::move(source)), m_current(paletteAppearance())
{
    qGuiApp->installEventFilter(this);
    m_source->start([this](const RequestedAppearance &requested) {
        m_requested = requested;
        emit requestChanged(requested);
        update();
    });
}

SystemAppearance::~SystemAppearance() = default;

bool SystemAppearance::eventFilter(QObject *object, QEvent *event)
{
    if (event->type() == QEvent::ApplicationPaletteChange && object == qGuiApp) {
        update();
    }
    return QObject::eventFilter(object, event);
}

void SystemAppearance::update()
{
    const Appearance appearance = m_requested.scheme.value_or(paletteAppearance());
    if (appearance != m_current) {
        m_current = appearance;
        emit changed(appearance);
    }
}

#include "SystemAppearance.moc"
