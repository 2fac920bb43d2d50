// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Platform/SystemAppearance.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QEvent>
#include <QFileInfo>
#include <QGuiApplication>
#include <QPalette>
#include <QThread>

using namespace Qt::StringLiterals;

namespace {

const auto portalService = u"org.freedesktop.portal.Desktop"_s;
const auto portalPath = u"/org/freedesktop/portal/desktop"_s;
const auto settingsInterface = u"org.freedesktop.portal.Settings"_s;
const auto appearanceNamespace = u"org.freedesktop.appearance"_s;
const auto colorSchemeKey = u"color-scheme"_s;

/// Values come wrapped once, and from older portals twice.
AppearanceSource::Answer answerOf(QVariant value)
{
    while (value.metaType() == QMetaType::fromType<QDBusVariant>()) {
        value = value.value<QDBusVariant>().variant();
    }
    switch (value.toUInt()) {
    case 1:
        return Appearance::dark;
    case 2:
        return Appearance::light;
    default:
        return std::nullopt;
    }
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

    void start(std::function<void(Answer)> tell)
    {
        m_tell = std::move(tell);
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
        if (space == appearanceNamespace && key == colorSchemeKey) {
            m_wasTold = true;
            m_tell(answerOf(value.variant()));
        }
    }

private:
    std::unique_ptr<QThread> m_connecting;
    std::function<void(Answer)> m_tell;
    bool m_wasTold = false;

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
        QDBusMessage question = QDBusMessage::createMethodCall(portalService, portalPath, settingsInterface, u"Read"_s);
        question << appearanceNamespace << colorSchemeKey;
        auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(question), this);
        connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
            const QDBusPendingReply<QDBusVariant> reply = *watcher;
            watcher->deleteLater();
            // A change that came meanwhile is newer.
            if (reply.isValid() && !m_wasTold) {
                m_tell(answerOf(reply.value().variant()));
            }
        });
    }
};

PortalAppearanceSource::PortalAppearanceSource() : m_client(std::make_unique<Client>()) {}

PortalAppearanceSource::~PortalAppearanceSource() = default;

void PortalAppearanceSource::start(std::function<void(Answer)> tell)
{
    m_client->start(std::move(tell));
}

SystemAppearance::SystemAppearance(std::unique_ptr<AppearanceSource> source, QObject *parent)
    : QObject(parent), m_source(std::move(source)), m_current(paletteAppearance())
{
    qGuiApp->installEventFilter(this);
    m_source->start([this](AppearanceSource::Answer answer) {
        m_answer = answer;
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
    const Appearance appearance = m_answer.value_or(paletteAppearance());
    if (appearance != m_current) {
        m_current = appearance;
        emit changed(appearance);
    }
}

#include "SystemAppearance.moc"
