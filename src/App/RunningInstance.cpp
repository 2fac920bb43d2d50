// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "App/RunningInstance.h"

#include <QDBusAbstractAdaptor>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QUrl>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr auto serviceName = "org.quillet.Quillet"_L1;
constexpr auto objectPath = "/org/quillet/Quillet"_L1;
constexpr auto tokenKey = "activation-token"_L1;
constexpr auto newWindowKey = "new-window"_L1;
constexpr auto streamKey = "stream"_L1;

OpenRequest requestOf(const QVariantMap &options)
{
    return {.opensNewWindow = options.value(newWindowKey).toBool(), .activationToken = options.value(tokenKey).toString()};
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
            if (const QString path = QUrl(uri).toLocalFile(); !path.isEmpty()) {
                request.files.push_back({.path = path});
            }
        }
        m_instance.take(request);
    }
    void ActivateAction(const QString &name, const QVariantList & /*parameters*/, const QVariantMap &platformData)
    {
        OpenRequest request = requestOf(platformData);
        request.opensNewWindow = name == newWindowKey;
        m_instance.take(request);
    }
    // NOLINTEND(readability-identifier-naming)

private:
    RunningInstance &m_instance;
};

/// What a second start says.
class FilesAdaptor final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.quillet.Quillet")

public:
    explicit FilesAdaptor(RunningInstance &instance) : QDBusAbstractAdaptor(&instance), m_instance(instance) {}

public slots:
    /// Lines and columns as in CommandLine::File, one of each for every path. Options: "new-window", "activation-token", "stream".
    // NOLINTNEXTLINE(readability-identifier-naming): the bus calls it so
    void Open(const QStringList &paths, const QList<qlonglong> &lines, const QList<qlonglong> &columns, const QVariantMap &options)
    {
        OpenRequest request = requestOf(options);
        for (qsizetype index = 0; index < paths.size(); ++index) {
            request.files.push_back({paths[index], qsizetype(lines.value(index)), qsizetype(columns.value(index))});
        }
        if (const auto stream = options.value(streamKey).value<QDBusUnixFileDescriptor>(); stream.isValid()) {
            request.stream = ::dup(stream.fileDescriptor());
        }
        m_instance.take(request);
    }

private:
    RunningInstance &m_instance;
};

RunningInstance::Answer RunningInstance::handOver(QDBusConnection bus, const OpenRequest &request, std::chrono::milliseconds patience)
{
    if (!bus.isConnected() || !bus.interface()->isServiceRegistered(serviceName)) {
        return Answer::nobodyRuns;
    }
    QStringList paths;
    QList<qlonglong> lines;
    QList<qlonglong> columns;
    for (const CommandLine::File &file : request.files) {
        paths << file.path;
        lines << file.line;
        columns << file.column;
    }
    QVariantMap options{{newWindowKey, request.opensNewWindow}, {tokenKey, request.activationToken}};
    if (request.stream >= 0) {
        options.insert(streamKey, QVariant::fromValue(QDBusUnixFileDescriptor(request.stream)));
    }
    QDBusMessage call = QDBusMessage::createMethodCall(serviceName, objectPath, serviceName, u"Open"_s);
    call.setAutoStartService(false);
    call << paths << QVariant::fromValue(lines) << QVariant::fromValue(columns) << options;
    const QDBusMessage reply = bus.call(call, QDBus::Block, int(patience.count()));
    return reply.type() == QDBusMessage::ReplyMessage ? Answer::taken : Answer::none;
}

RunningInstance::RunningInstance(const QDBusConnection &bus, std::function<void(const OpenRequest &request)> open)
    : m_bus(bus), m_open(std::move(open))
{
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

bool RunningInstance::registerHere()
{
    // The object first: whoever finds the name may call at once.
    m_isRegistered = m_bus.isConnected() && m_bus.registerObject(objectPath, this) && m_bus.registerService(serviceName);
    return m_isRegistered;
}

#include "RunningInstance.moc"
