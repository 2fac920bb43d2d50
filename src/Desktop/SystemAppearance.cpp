// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Desktop/SystemAppearance.h"

#include "Desktop/KdeGlobals.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QEvent>
#include <QFileInfo>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QPalette>
#include <QProcess>
#include <QSet>
#include <QStandardPaths>
#include <QThread>

#include <algorithm>
#include <array>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

const auto portalService = u"org.freedesktop.portal.Desktop"_s;
const auto portalPath = u"/org/freedesktop/portal/desktop"_s;
const auto settingsInterface = u"org.freedesktop.portal.Settings"_s;
const auto changedSignal = u"SettingChanged"_s;
// GNOME's own keeper of settings, and where it has those that are looked at.
const auto keeperPath = u"/ca/desrt/dconf/Writer/user"_s;
const auto keeperInterface = u"ca.desrt.dconf.Writer"_s;
const auto keptInterfaces = u"/org/gnome/desktop/"_s;

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

/// What was answered, by whom.
struct Answers {
    std::optional<Appearance> scheme;
    std::optional<QColor> accent;
    bool hasHighContrast = false;
    bool hasGnomeHighContrast = false;
    QString gnomeFont;
    KdeGlobals::Values kde;

    [[nodiscard]] RequestedAppearance merged() const
    {
        const FamilyQuery isFamily = [](const QString &family) { return QFontDatabase::hasFamily(family); };
        const auto gnome = fontOfDescription(gnomeFont, isFamily);
        const auto ofKde = fontOfList(kde.fixedFont, isFamily);
        const auto &first = KdeGlobals::isDesktop() ? ofKde : gnome;
        return {.scheme = scheme,
                .accent = accent,
                .hasHighContrast = hasHighContrast || hasGnomeHighContrast || kde.hasHighContrast,
                .fixedFont = first   ? first
                             : ofKde ? ofKde
                                     : gnome};
    }
};

struct Setting {
    QLatin1StringView space;
    QLatin1StringView key;
    void (*store)(Answers &answers, const QVariant &value);
    /// GNOME itself can be asked where the portal does not know.
    enum class Owner { portal, gnome } owner = Owner::portal;
};

constexpr auto appearanceSpace = "org.freedesktop.appearance"_L1;
constexpr auto settings = std::to_array<Setting>({
    {appearanceSpace, "color-scheme"_L1, [](Answers &answers, const QVariant &value) { answers.scheme = schemeOf(value); }},
    {appearanceSpace, "accent-color"_L1, [](Answers &answers, const QVariant &value) { answers.accent = colorOf(value); }},
    {appearanceSpace, "contrast"_L1, [](Answers &answers, const QVariant &value) { answers.hasHighContrast = value.toUInt() == 1; }},
    {"org.gnome.desktop.a11y.interface"_L1, "high-contrast"_L1,
     [](Answers &answers, const QVariant &value) { answers.hasGnomeHighContrast = value.toBool(); }, Setting::Owner::gnome},
    {"org.gnome.desktop.interface"_L1, "monospace-font-name"_L1,
     [](Answers &answers, const QVariant &value) { answers.gnomeFont = value.toString(); }, Setting::Owner::gnome},
});

/// As `gsettings` prints a boolean or a text.
QVariant parsedAnswer(QString text)
{
    text = text.trimmed();
    const bool isQuoted = text.size() >= 2 && (text.front() == u'\'' || text.front() == u'"') && text.back() == text.front();
    return isQuoted ? QVariant(text.sliced(1, text.size() - 2)) : QVariant(text == "true"_L1);
}

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

} // namespace

class PortalAppearanceSource::Client final : public QObject {
    Q_OBJECT

public:
    ~Client() override
    {
        if (m_connecting) {
            m_connecting->wait();
        }
        for (QProcess *process : findChildren<QProcess *>()) {
            process->disconnect();
            process->kill();
            process->waitForFinished();
        }
    }

    void start(std::function<void(const RequestedAppearance &)> notify)
    {
        m_notify = std::move(notify);
        connect(&m_kde, &KdeGlobals::changed, this, &Client::readKde);
        QMetaObject::invokeMethod(this, &Client::readKde, Qt::QueuedConnection);
        if (!hasSessionBus()) {
            askGnome();
            return;
        }
        m_connecting.reset(QThread::create([] { (void)QDBusConnection::sessionBus(); }));
        connect(m_connecting.get(), &QThread::finished, this, &Client::ask);
        m_connecting->start();
    }

private slots:
    void settingChanged(const QString &space, const QString &key, const QDBusVariant &value)
    {
        const auto *setting = std::ranges::find_if(settings, [&](const Setting &row) { return row.space == space && row.key == key; });
        if (setting != settings.end()) {
            m_changed.insert(setting);
            store(*setting, value.variant());
        }
    }

    void keptChanged(const QString &prefix, const QStringList & /*changes*/, const QString & /*tag*/)
    {
        if (m_asksGnome && prefix.startsWith(keptInterfaces)) {
            askGnome();
        }
    }

private:
    std::unique_ptr<QThread> m_connecting;
    std::function<void(const RequestedAppearance &)> m_notify;
    KdeGlobals m_kde;
    Answers m_answers;
    RequestedAppearance m_requested;
    /// What was reported without being asked for.
    QSet<const Setting *> m_changed;
    bool m_asksGnome = false;

    void store(const Setting &setting, const QVariant &value)
    {
        setting.store(m_answers, unwrapped(value));
        report();
    }

    void readKde()
    {
        m_answers.kde = m_kde.values();
        report();
    }

    void report()
    {
        if (const RequestedAppearance requested = m_answers.merged(); requested != m_requested) {
            m_requested = requested;
            m_notify(m_requested);
        }
    }

    void ask()
    {
        QDBusConnection bus = QDBusConnection::sessionBus();
        if (!bus.isConnected()) {
            askGnome();
            return;
        }
        // Without it the library does not know the slot's parameter and connects nothing.
        qRegisterMetaType<QDBusVariant>();
        // From whoever sends it: to know the sender the library would ask the bus for it and wait.
        bus.connect(QString(), portalPath, settingsInterface, changedSignal, this, SLOT(settingChanged(QString, QString, QDBusVariant)));
        bus.connect(QString(), keeperPath, keeperInterface, u"Notify"_s, this, SLOT(keptChanged(QString, QStringList, QString)));
        for (const Setting &setting : settings) {
            QDBusMessage question = QDBusMessage::createMethodCall(portalService, portalPath, settingsInterface, u"Read"_s);
            question << QString(setting.space) << QString(setting.key);
            auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(question), this);
            connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, &setting] {
                const QDBusPendingReply<QDBusVariant> reply = *watcher;
                watcher->deleteLater();
                // A change that came meanwhile is newer. An older portal does not know every setting.
                if (reply.isValid() && !m_changed.contains(&setting)) {
                    store(setting, reply.value().variant());
                } else if (!reply.isValid() && setting.owner == Setting::Owner::gnome) {
                    askGnome(setting);
                }
            });
        }
    }

    /// For all that is GNOME's.
    void askGnome()
    {
        for (const Setting &setting : settings) {
            if (setting.owner == Setting::Owner::gnome) {
                askGnome(setting);
            }
        }
    }

    /// Its tool knows settings that were never made, too.
    void askGnome(const Setting &setting)
    {
        m_asksGnome = true;
        const QString tool = QStandardPaths::findExecutable(u"gsettings"_s);
        if (tool.isEmpty()) {
            return;
        }
        auto *process = new QProcess(this);
        connect(process, &QProcess::finished, this, [this, process, &setting](int code) {
            process->deleteLater();
            if (code == 0) {
                store(setting, parsedAnswer(QString::fromUtf8(process->readAllStandardOutput())));
            }
        });
        process->start(tool, {u"get"_s, QString(setting.space), QString(setting.key)});
    }
};

PortalAppearanceSource::PortalAppearanceSource() : m_client(std::make_unique<Client>()) {}

PortalAppearanceSource::~PortalAppearanceSource() = default;

void PortalAppearanceSource::start(std::function<void(const RequestedAppearance &requested)> notify)
{
    m_client->start(std::move(notify));
}

Appearance SystemAppearance::paletteAppearance()
{
    const QPalette palette = QGuiApplication::palette();
    const int ground = palette.color(QPalette::Window).lightness();
    return ground < palette.color(QPalette::WindowText).lightness() ? Appearance::dark : Appearance::light;
}

SystemAppearance::SystemAppearance(std::unique_ptr<AppearanceSource> source, std::function<Appearance()> palette)
    : m_source(std::move(source)), m_palette(std::move(palette)), m_current(m_palette())
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
    const Appearance appearance = m_requested.scheme.value_or(m_palette());
    if (appearance != m_current) {
        m_current = appearance;
        emit changed(appearance);
    }
}

#include "SystemAppearance.moc"
