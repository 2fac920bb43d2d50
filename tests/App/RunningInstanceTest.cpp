// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "App/RunningInstance.h"

#include "SessionBus.h"

#include <QDBusMessage>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(RunningInstance, HearsThatSomebodyWhoWaitsIsGone)
{
    const SessionBus bus;
    QString waiter;
    QStringList gone;
    RunningInstance instance(bus.connection(u"here"_s), {.open = [&](const OpenRequest &request) { waiter = request.waiter; },
                                                         .gone = [&](const QString &name) { gone << name; }});
    ASSERT_TRUE(instance.registerHere());
    {
        const QDBusConnection other = bus.connection(u"there"_s);
        QDBusMessage call =
            QDBusMessage::createMethodCall(u"org.quillet.Quillet"_s, u"/org/quillet/Quillet"_s, u"org.quillet.Quillet"_s, u"Open"_s);
        call.setArguments({QStringList(), QVariant::fromValue(QList<qlonglong>()), QVariant::fromValue(QList<qlonglong>()),
                           QVariantMap{{u"wait"_s, true}}});
        ASSERT_TRUE(other.send(call));
        ASSERT_TRUE(QTest::qWaitFor([&] { return !waiter.isEmpty(); }));
        EXPECT_EQ(waiter, other.baseService());
    }
    QDBusConnection::disconnectFromBus(u"there"_s);
    EXPECT_TRUE(QTest::qWaitFor([&] { return gone == QStringList{waiter}; }));
    QDBusConnection::disconnectFromBus(u"here"_s);
}
