// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QProcess>

/// A session bus of the test's own, which what asks for the session's bus finds too, if it asks for the first time.
class SessionBus final {
public:
    SessionBus()
    {
        using namespace Qt::StringLiterals;
        m_daemon.start(u"dbus-daemon"_s, {u"--session"_s, u"--nofork"_s, u"--print-address"_s});
        m_daemon.waitForReadyRead();
        m_address = m_daemon.readLine().trimmed();
        qputenv("DBUS_SESSION_BUS_ADDRESS", m_address);
    }
    ~SessionBus()
    {
        m_daemon.kill();
        m_daemon.waitForFinished();
    }
    Q_DISABLE_COPY_MOVE(SessionBus)

    /// Another program on the bus.
    [[nodiscard]] QDBusConnection connection(const QString &name) const
    {
        return QDBusConnection::connectToBus(QString::fromUtf8(m_address), name);
    }

private:
    QProcess m_daemon;
    QByteArray m_address;
};
