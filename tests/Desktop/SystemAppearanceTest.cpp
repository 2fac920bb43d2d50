// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Desktop/SystemAppearance.h"

#include "SessionBus.h"
#include "TestFolder.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QGuiApplication>
#include <QPalette>

#include <gmock/gmock.h>

using namespace Qt::StringLiterals;
using testing::ElementsAre;

namespace {

class FakeSource final : public AppearanceSource {
public:
    explicit FakeSource(std::function<void(const RequestedAppearance &)> &notify) : m_notify(notify) {}
    void start(std::function<void(const RequestedAppearance &requested)> notify) override { m_notify = std::move(notify); }

private:
    std::function<void(const RequestedAppearance &)> &m_notify;
};

class SystemAppearanceTest : public testing::Test {
protected:
    const QPalette before = QGuiApplication::palette();
    std::function<void(const RequestedAppearance &)> notify;
    std::vector<Appearance> reported;

    SystemAppearanceTest() { setPalette(Qt::white, Qt::black); }
    ~SystemAppearanceTest() override { QGuiApplication::setPalette(before); }

    static void setPalette(Qt::GlobalColor ground, Qt::GlobalColor text)
    {
        QPalette palette;
        palette.setColor(QPalette::Window, ground);
        palette.setColor(QPalette::WindowText, text);
        QGuiApplication::setPalette(palette);
    }
    std::unique_ptr<SystemAppearance> made()
    {
        auto appearance = std::make_unique<SystemAppearance>(std::make_unique<FakeSource>(notify));
        QObject::connect(appearance.get(), &SystemAppearance::changed, [this, made = appearance.get()](Appearance now) {
            EXPECT_EQ(made->current(), now) << "whoever is notified asks";
            reported.push_back(now);
        });
        return appearance;
    }
};

/// Before it says that the scheme is light, it says that it has become dark.
class FakePortal final : public QDBusVirtualObject {
public:
    QString introspect(const QString & /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage &question, const QDBusConnection &bus) override
    {
        const QVariantList setting = question.arguments();
        const bool isScheme = setting.at(1) == u"color-scheme"_s;
        if (isScheme) {
            QDBusMessage change = QDBusMessage::createSignal(question.path(), question.interface(), u"SettingChanged"_s);
            change.setArguments(setting + QVariantList{wrapped(1U)});
            bus.send(change);
        }
        const QVariant answer =
            setting.at(1) == u"monospace-font-name"_s ? QVariant(u"DejaVu Sans Mono 11.5"_s) : QVariant(isScheme ? 2U : 1U);
        return bus.send(question.createReply(wrapped(wrapped(answer)))); // as older ones wrap it
    }

private:
    static QVariant wrapped(const QVariant &value) { return QVariant::fromValue(QDBusVariant(value)); }
};

} // namespace

TEST(PortalAppearanceSource, AChangeIsNewerThanTheAnswerThatComesAfterIt)
{
    const SessionBus session;
    QDBusConnection bus = session.connection(u"portal"_s);
    FakePortal portal;
    ASSERT_TRUE(bus.registerVirtualObject(u"/org/freedesktop/portal/desktop"_s, &portal));
    ASSERT_TRUE(bus.registerService(u"org.freedesktop.portal.Desktop"_s));

    PortalAppearanceSource source;
    RequestedAppearance requested;
    source.start([&requested](const RequestedAppearance &now) { requested = now; });
    while (!requested.fixedFont) { // what is asked last
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    EXPECT_EQ(requested.scheme, Appearance::dark);
    EXPECT_TRUE(requested.hasHighContrast);
    EXPECT_EQ(requested.fixedFont, (DesktopFont{u"DejaVu Sans Mono"_s, 11.5}));
    QDBusConnection::disconnectFromBus(bus.name());
}

TEST(PortalAppearanceSource, WithoutAPortalItAsksTheDesktopsThemselves)
{
    const TestFolder folder;
    const auto requestedOf = [] {
        PortalAppearanceSource source;
        std::optional<RequestedAppearance> requested;
        source.start([&requested](const RequestedAppearance &now) { requested = now; });
        while (!requested || !requested->hasHighContrast) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        return *requested;
    };
    // GNOME's tool; there is no bus at all.
    folder.put(u"gsettings"_s, "#!/bin/sh\n[ $3 = high-contrast ] && echo true || echo \"'DejaVu Sans Mono Bold 9'\"\n");
    ASSERT_TRUE(QFile::setPermissions(folder.path(u"gsettings"_s), QFile::ReadOwner | QFile::ExeOwner));
    const QByteArray before = qgetenv("PATH");
    qputenv("PATH", folder.path({}).toUtf8() + ':' + before);
    EXPECT_TRUE(requestedOf().hasHighContrast);
    qputenv("PATH", "");
    const QByteArray config = qgetenv("XDG_CONFIG_HOME");
    qputenv("XDG_CONFIG_HOME", folder.path({}).toUtf8());
    folder.put(u"kdeglobals"_s, "[General]\nfixed=DejaVu Sans Mono,12,-1,5,50,0,0,0,0,0\nColorScheme=Breeze High Contrast\n");
    EXPECT_EQ(requestedOf().fixedFont, (DesktopFont{u"DejaVu Sans Mono"_s, 12}));
    qputenv("PATH", before);
    qputenv("XDG_CONFIG_HOME", config);
}

TEST_F(SystemAppearanceTest, GoesByThePaletteWhereTheDesktopSaysNothing)
{
    const auto appearance = made();
    EXPECT_EQ(appearance->current(), Appearance::light);
    setPalette(Qt::darkGray, Qt::white);
    setPalette(Qt::lightGray, Qt::black);
    EXPECT_THAT(std::exchange(reported, {}), ElementsAre(Appearance::dark, Appearance::light));

    notify({.scheme = Appearance::dark});
    notify({.scheme = Appearance::dark});
    setPalette(Qt::white, Qt::black);
    EXPECT_THAT(std::exchange(reported, {}), ElementsAre(Appearance::dark));
    notify({});
    EXPECT_THAT(std::exchange(reported, {}), ElementsAre(Appearance::light));
    notify({.scheme = Appearance::light});
    setPalette(Qt::black, Qt::white);
    EXPECT_TRUE(reported.empty());
    notify({});
    EXPECT_THAT(reported, ElementsAre(Appearance::dark));
    EXPECT_EQ(made()->current(), Appearance::dark);
}
