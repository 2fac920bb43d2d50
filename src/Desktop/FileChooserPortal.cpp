// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Desktop/FileChooserPortal.h"

#include "Base/FilePath.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QGuiApplication>
#include <QUrl>
#include <QUuid>
#include <QWindow>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

const auto service = u"org.freedesktop.portal.Desktop"_s;
const auto servicePath = u"/org/freedesktop/portal/desktop"_s;
const auto chooserInterface = u"org.freedesktop.portal.FileChooser"_s;
const auto requestInterface = u"org.freedesktop.portal.Request"_s;
const auto responseSignal = u"Response"_s;
/// Milliseconds. A portal that is started by the question needs its time.
constexpr int patience = 5000;

enum Response : uint { chosen = 0, cancelled = 1 };

/// How the portal knows the window; empty where windows have no names that others can use.
QString nameOf(const QWindow *window)
{
    return window && QGuiApplication::platformName() == "xcb"_L1 ? u"x11:"_s + QString::number(window->winId(), 16) : QString();
}

/// As the bus carries paths.
QByteArray terminated(const QString &path)
{
    return encodedPath(path) + '\0';
}

} // namespace

FileChooserPortal::FileChooserPortal(QDBusConnection bus) : m_bus(std::move(bus)) {}

FileChooserPortal::~FileChooserPortal()
{
    if (!m_path.isEmpty()) {
        m_bus.send(QDBusMessage::createMethodCall(service, m_path, requestInterface, u"Close"_s));
    }
}

void FileChooserPortal::ask(const Question &question, const QWindow *parent, Completion completion)
{
    m_completion = std::move(completion);
    const QString token = u"quillet_"_s + QUuid::createUuid().toString(QUuid::Id128);
    QVariantMap options{{u"handle_token"_s, token}, {u"modal"_s, true}};
    if (!question.acceptLabel.isEmpty()) {
        options.insert(u"accept_label"_s, question.acceptLabel);
    }
    if (!question.folder.isEmpty()) {
        options.insert(u"current_folder"_s, terminated(question.folder));
    }
    if (question.choice == Choice::save) {
        options.insert(u"current_name"_s, question.name);
    } else {
        options.insert(u"multiple"_s, question.choice == Choice::openFiles);
        options.insert(u"directory"_s, question.choice == Choice::openFolder);
    }
    // Where the answer will come from is known before the question is sent, so that none is missed.
    listenAt(u"/org/freedesktop/portal/desktop/request/%1/%2"_s.arg(m_bus.baseService().mid(1).replace(u'.', u'_'), token));
    QDBusMessage call = QDBusMessage::createMethodCall(service, servicePath, chooserInterface,
                                                       question.choice == Choice::save ? u"SaveFile"_s : u"OpenFile"_s);
    call << nameOf(parent) << question.title << options;
    m_call = new QDBusPendingCallWatcher(m_bus.asyncCall(call, patience), this);
    connect(m_call, &QDBusPendingCallWatcher::finished, this, [this] {
        const QDBusPendingReply<QDBusObjectPath> reply = *std::exchange(m_call, nullptr);
        if (reply.isError()) {
            finish(Outcome::unavailable);
        } else if (reply.value().path() != m_path) {
            // Older ones choose the place themselves.
            listenAt(reply.value().path());
        }
    });
}

void FileChooserPortal::listenAt(const QString &path)
{
    if (!m_path.isEmpty()) {
        m_bus.disconnect(QString(), m_path, requestInterface, responseSignal, this, SLOT(answered(uint, QVariantMap)));
    }
    m_path = path;
    // From whoever sends it: to know the sender the library would ask the bus for it and wait.
    m_bus.connect(QString(), m_path, requestInterface, responseSignal, this, SLOT(answered(uint, QVariantMap)));
}

void FileChooserPortal::answered(uint response, const QVariantMap &results)
{
    // It is gone by itself.
    m_path.clear();
    QStringList paths;
    for (const QString &address : results.value(u"uris"_s).toStringList()) {
        // Other places have no path.
        if (const QString path = localPath(QUrl(address)); !path.isEmpty()) {
            paths << path;
        }
    }
    if (response == Response::chosen && !paths.isEmpty()) {
        finish(Outcome::chosen, paths);
    } else {
        finish(Outcome::cancelled);
    }
}

void FileChooserPortal::finish(Outcome outcome, const QStringList &paths)
{
    // It may destroy this.
    if (const Completion completion = std::exchange(m_completion, {})) {
        completion(outcome, paths);
    }
}
