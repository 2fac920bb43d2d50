// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "App/RunningInstance.h"

#include "Base/FilePath.h"

#include <QDBusAbstractAdaptor>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QEventLoop>
#include <QTimer>
#include <QUrl>

#include <limits>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr auto serviceName = "org.quillet.Quillet"_L1;
constexpr auto objectPath = "/org/quillet/Quillet"_L1;
constexpr auto tokenKey = "activation-token"_L1;
constexpr auto newWindowKey = "new-window"_L1;
constexpr auto newTabKey = "new-tab"_L1;
constexpr auto problemsKey = "problems"_L1;
constexpr auto streamKey = "stream"_L1;
constexpr auto waitKey = "wait"_L1;

OpenRequest requestOf(const QVariantMap &options)
{
    return {.opensNewWindow = options.value(newWindowKey).toBool(),
            .opensNewTab = options.value(newTabKey).toBool(),
            .activationToken = options.value(tokenKey).toString()};
}

} // namespace

/// What every program of the desktop answers to.
class ApplicationAdaptor final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    explicit ApplicationAdaptor(RunningInstance &instance) : QDBusAbstractAdaptor(&instance), m_instance(instance) {}

public slots:
    // NOLINTBEGIN(readability-identifier-naming): the bus calls them so
    void Activate(const QVariantMap &platformData) { m_instance.take(requestOf(platformData)); }
    void Open(const QStringList &uris, const QVariantMap &platformData)
    {
        OpenRequest request = requestOf(platformData);
        for (const QString &uri : uris) {
            if (const QString path = localPath(QUrl(uri)); !path.isEmpty()) {
                request.files.push_back({.path = path});
            }
        }
        m_instance.take(request);
    }
    void ActivateAction(const QString &name, const QVariantList & /*parameters*/, const QVariantMap &platformData)
    {
        OpenRequest request = requestOf(platformData);
        request.opensNewWindow = name == newWindowKey;
        request.opensNewTab = name == newTabKey;
        m_instance.take(request);
    }
    // NOLINTEND(readability-identifier-naming)

private:
    RunningInstance &m_instance;
};

/// Nothing that is below the first is one.
std::optional<LineNumber> lineFrom(qlonglong number)
{
    return number < 1 ? std::nullopt : std::optional(static_cast<LineNumber>(number));
}

/// What a second start says.
class FilesAdaptor final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.quillet.Quillet")

public:
    explicit FilesAdaptor(RunningInstance &instance) : QDBusAbstractAdaptor(&instance), m_instance(instance) {}

public slots:
    /// Lines and columns as in CommandLine::File, 0 for no line, one of each for every path. Options: "new-window", "new-tab",
    /// "activation-token", "problems", "stream", and "wait", with which the exit status is answered when all is closed.
    // NOLINTNEXTLINE(readability-identifier-naming): the bus calls it so
    int Open(const QStringList &paths, const QList<qlonglong> &lines, const QList<qlonglong> &columns, const QVariantMap &options,
             const QDBusMessage &call)
    {
        OpenRequest request = requestOf(options);
        request.mayNameNewFiles = true;
        request.problems = options.value(problemsKey).toStringList();
        for (qsizetype index = 0; index < paths.size(); ++index) {
            request.files.push_back({paths[index], lineFrom(lines.value(index)), qsizetype(columns.value(index))});
        }
        if (const auto stream = options.value(streamKey).value<QDBusUnixFileDescriptor>(); stream.isValid()) {
            request.stream = ::dup(stream.fileDescriptor());
        }
        if (options.value(waitKey).toBool()) {
            call.setDelayedReply(true);
            request.closed = [bus = m_instance.bus(), call](int status) { bus.send(call.createReply(status)); };
            request.waiter = call.service();
        }
        m_instance.take(request);
        return 0;
    }

private:
    RunningInstance &m_instance;
};

RunningInstance::Outcome RunningInstance::handOver(QDBusConnection bus, const OpenRequest &request, Until until,
                                                   std::chrono::milliseconds timeout)
{
    const auto answerTo = [&bus](const QString &interface, const QString &method, const QVariantList &arguments, int milliseconds) {
        QDBusMessage call = QDBusMessage::createMethodCall(serviceName, objectPath, interface, method);
        call.setAutoStartService(false);
        call.setArguments(arguments);
        return bus.call(call, QDBus::Block, milliseconds);
    };
    if (!bus.isConnected() || !bus.interface()->isServiceRegistered(serviceName)) {
        return {Answer::nobodyRuns};
    }
    if (answerTo(u"org.freedesktop.DBus.Peer"_s, u"Ping"_s, {}, int(timeout.count())).type() != QDBusMessage::ReplyMessage) {
        return {Answer::none};
    }
    QStringList paths;
    QList<qlonglong> lines;
    QList<qlonglong> columns;
    for (const CommandLine::File &file : request.files) {
        paths << file.path;
        lines << qlonglong(file.line.value_or(LineNumber(0)));
        columns << file.column;
    }
    QVariantMap options{{newWindowKey, request.opensNewWindow}, {newTabKey, request.opensNewTab}, {tokenKey, request.activationToken}};
    if (!request.problems.isEmpty()) {
        options.insert(problemsKey, request.problems);
    }
    if (request.stream >= 0) {
        options.insert(streamKey, QVariant::fromValue(QDBusUnixFileDescriptor(request.stream)));
    }
    const bool waits = until == Until::closed;
    options.insert(waitKey, waits);
    const QDBusMessage reply = answerTo(serviceName, u"Open"_s, {paths, QVariant::fromValue(lines), QVariant::fromValue(columns), options},
                                        waits ? std::numeric_limits<int>::max() : int(timeout.count()));
    if (reply.type() == QDBusMessage::ReplyMessage) {
        return {Answer::taken, reply.arguments().value(0).toInt()};
    }
    // One that ended meanwhile has notified nobody of what became of the files.
    return waits ? Outcome{Answer::taken, 1} : Outcome{Answer::none};
}

bool RunningInstance::waitUntilOneRuns(QDBusConnection bus, std::chrono::milliseconds timeout)
{
    QEventLoop loop;
    QDBusServiceWatcher watcher(serviceName, bus, QDBusServiceWatcher::WatchForRegistration);
    QObject::connect(&watcher, &QDBusServiceWatcher::serviceRegistered, &loop, &QEventLoop::quit);
    QTimer::singleShot(timeout, &loop, &QEventLoop::quit);
    if (!bus.isConnected()) {
        return false;
    }
    if (!bus.interface()->isServiceRegistered(serviceName)) {
        loop.exec();
    }
    return bus.interface()->isServiceRegistered(serviceName);
}

RunningInstance::RunningInstance(const QDBusConnection &bus, Handlers handlers) : m_bus(bus), m_handlers(std::move(handlers))
{
    m_waiters.setConnection(bus);
    m_waiters.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    connect(&m_waiters, &QDBusServiceWatcher::serviceUnregistered, this, [this](const QString &name) {
        m_waiters.removeWatchedService(name);
        m_handlers.gone(name);
    });
    new ApplicationAdaptor(*this);
    new FilesAdaptor(*this);
}

RunningInstance::~RunningInstance()
{
    if (m_isRegistered) {
        m_bus.unregisterService(serviceName);
        m_bus.unregisterObject(objectPath);
    }
}

void RunningInstance::take(const OpenRequest &request)
{
    if (!request.waiter.isEmpty()) {
        m_waiters.addWatchedService(request.waiter);
    }
    m_handlers.open(request);
}

bool RunningInstance::registerHere()
{
    // The object first: whoever finds the name may call at once.
    m_isRegistered = m_bus.isConnected() && m_bus.registerObject(objectPath, this) && m_bus.registerService(serviceName);
    return m_isRegistered;
}

#include "RunningInstance.moc"
