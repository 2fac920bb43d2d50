// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// What anybody may say on the session bus, of the types that the methods have and with options of any type: nothing crashes, each call is
// one request, and its places are places.
#include "App/RunningInstance.h"
#include "Require.h"

#include <QCoreApplication>
#include <QDBusAbstractAdaptor>
#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>

#include <fuzzer/FuzzedDataProvider.h>

#include <array>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr std::array keys{"new-window", "new-tab", "activation-token", "problems", "stream", "wait"};

QString textFrom(FuzzedDataProvider &data)
{
    return QString::fromUtf8(QByteArray::fromStdString(data.ConsumeRandomLengthString(40)));
}

template<class Make>
auto listFrom(FuzzedDataProvider &data, Make make)
{
    QList<decltype(make())> list;
    while (data.remaining_bytes() > 0 && data.ConsumeBool()) {
        list << make();
    }
    return list;
}

QVariant valueFrom(FuzzedDataProvider &data)
{
    switch (data.ConsumeIntegralInRange(0, 7)) {
    case 0:
        return data.ConsumeBool();
    case 1:
        return textFrom(data);
    case 2:
        return QStringList(listFrom(data, [&] { return textFrom(data); }));
    case 3:
        return data.ConsumeIntegral<qlonglong>();
    case 4:
        return QVariant::fromValue(QDBusUnixFileDescriptor(data.ConsumeBool() ? STDERR_FILENO : -1));
    case 5:
        return QVariantMap{{textFrom(data), textFrom(data)}};
    case 6:
        return textFrom(data).toUtf8();
    default:
        return {};
    }
}

QVariantMap optionsFrom(FuzzedDataProvider &data)
{
    QVariantMap options;
    while (data.remaining_bytes() > 0 && data.ConsumeBool()) {
        options.insert(data.ConsumeBool() ? QString::fromLatin1(data.PickValueInArray(keys)) : textFrom(data), valueFrom(data));
    }
    return options;
}

QObject &adaptor(const RunningInstance &instance, const char *method)
{
    for (QDBusAbstractAdaptor *each : instance.findChildren<QDBusAbstractAdaptor *>()) {
        if (each->metaObject()->indexOfSlot(method) >= 0) {
            return *each;
        }
    }
    REQUIRE(false);
    std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static int argumentCount = 1;
    static char name[] = "fuzz-bus";
    static char *arguments[] = {name, nullptr};
    static const QCoreApplication application(argumentCount, arguments);
    static int requests = 0;
    static const auto check = [](const OpenRequest &request) {
        ++requests;
        for (const CommandLine::File &file : request.files) {
            REQUIRE(!file.line || *file.line >= LineNumber::first);
        }
        if (request.closed) {
            request.closed(1);
        }
        if (request.stream >= 0) {
            REQUIRE(::fcntl(request.stream, F_GETFD) >= 0);
            ::close(request.stream);
        }
    };
    // A bus that is none: nobody is asked, and no answer arrives.
    static const RunningInstance instance(QDBusConnection(u"none"_s), {.open = check, .gone = [](const QString &) {}});

    FuzzedDataProvider provider(data, size);
    const int before = requests;
    switch (provider.ConsumeIntegralInRange(0, 3)) {
    case 0:
        QMetaObject::invokeMethod(&adaptor(instance, "Activate(QVariantMap)"), "Activate", Q_ARG(QVariantMap, optionsFrom(provider)));
        break;
    case 1: {
        const QVariantMap options = optionsFrom(provider);
        const QStringList uris =
            listFrom(provider, [&] { return (provider.ConsumeBool() ? u"file://"_s : QString()) + textFrom(provider); });
        QMetaObject::invokeMethod(&adaptor(instance, "Activate(QVariantMap)"), "Open", Q_ARG(QStringList, uris),
                                  Q_ARG(QVariantMap, options));
        break;
    }
    case 2:
        QMetaObject::invokeMethod(&adaptor(instance, "Activate(QVariantMap)"), "ActivateAction", Q_ARG(QString, textFrom(provider)),
                                  Q_ARG(QVariantList, listFrom(provider, [&] { return valueFrom(provider); })),
                                  Q_ARG(QVariantMap, optionsFrom(provider)));
        break;
    default: {
        const QVariantMap options = optionsFrom(provider);
        const auto numbers = [&] { return listFrom(provider, [&] { return provider.ConsumeIntegral<qlonglong>(); }); };
        const QList<qlonglong> lines = numbers();
        const QList<qlonglong> columns = numbers();
        const QStringList paths = listFrom(provider, [&] { return textFrom(provider); });
        int answer = -1;
        QMetaObject::invokeMethod(&adaptor(instance, "Open(QStringList,QList<qlonglong>,QList<qlonglong>,QVariantMap,QDBusMessage)"),
                                  "Open", Q_RETURN_ARG(int, answer), Q_ARG(QStringList, paths), Q_ARG(QList<qlonglong>, lines),
                                  Q_ARG(QList<qlonglong>, columns), Q_ARG(QVariantMap, options), Q_ARG(QDBusMessage, QDBusMessage()));
        REQUIRE(answer == 0);
    }
    }
    REQUIRE(requests == before + 1);
    return 0;
}
