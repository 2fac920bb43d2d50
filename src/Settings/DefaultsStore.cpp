// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Settings/DefaultsStore.h"

#include "Base/AtomicFile.h"
#include "Base/FilePath.h"
#include "Base/StandardFolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>

#include <array>
#include <cmath>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

// Long enough to take a whole drag of a slider in one go, short enough to be on disk before the power fails.
constexpr auto writeDelay = 500ms;

std::optional<QString> asString(const QVariant &value)
{
    // The file's format reads a comma outside quotation marks as the end of a list's item.
    if (value.typeId() == QMetaType::QStringList) {
        return value.toStringList().join(u", "_s);
    }
    return value.typeId() == QMetaType::QString ? std::optional(value.toString()) : std::nullopt;
}

std::optional<QStringList> asStringList(const QVariant &value)
{
    // The format has no list of one item, and none of no items: they come back as a string and as nothing.
    if (!value.isValid()) {
        return QStringList();
    }
    if (value.typeId() == QMetaType::QString) {
        return value.toString().isEmpty() ? QStringList() : QStringList(value.toString());
    }
    return value.typeId() == QMetaType::QStringList ? std::optional(value.toStringList()) : std::nullopt;
}

std::optional<int> asInteger(const QVariant &value)
{
    bool isValid = false;
    const int number = value.toString().toInt(&isValid);
    return isValid ? std::optional(number) : std::nullopt;
}

std::optional<double> asReal(const QVariant &value)
{
    bool isValid = false;
    const double number = value.toDouble(&isValid);
    return isValid && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

std::optional<bool> asBoolean(const QVariant &value)
{
    const QString text = value.toString();
    if (text.compare("true"_L1, Qt::CaseInsensitive) == 0 || text == "1"_L1) {
        return true;
    }
    if (text.compare("false"_L1, Qt::CaseInsensitive) == 0 || text == "0"_L1) {
        return false;
    }
    return std::nullopt;
}

} // namespace

DefaultsStore::DefaultsStore(QString path, Scheduler &scheduler)
    : m_path(std::move(path)), m_scheduler(scheduler), m_isLoaded(m_path.isEmpty())
{}

DefaultsStore::~DefaultsStore()
{
    synchronize();
}

QString DefaultsStore::standardPath()
{
    return standardFolder("XDG_CONFIG_HOME", u".config") + u"/Quillet/Quillet.conf"_s;
}

void DefaultsStore::registerDefault(QLatin1StringView key, QVariant value)
{
    m_registered.insert_or_assign(QString(key), std::move(value));
}

template<typename T>
T DefaultsStore::read(QLatin1StringView key, std::optional<T> (*convert)(const QVariant &value)) const
{
    load();
    for (const Values *values : std::array<const Values *, 2>{&m_overrides, &m_values}) {
        if (const auto set = values->find(key); set != values->end()) {
            if (auto value = convert(set->second)) {
                return *std::move(value);
            }
        }
    }
    const auto registered = m_registered.find(key);
    return registered == m_registered.end() ? T() : convert(registered->second).value_or(T());
}

QString DefaultsStore::string(QLatin1StringView key) const
{
    return read(key, asString);
}

QStringList DefaultsStore::stringList(QLatin1StringView key) const
{
    return read(key, asStringList);
}

int DefaultsStore::integer(QLatin1StringView key) const
{
    return read(key, asInteger);
}

double DefaultsStore::real(QLatin1StringView key) const
{
    return read(key, asReal);
}

bool DefaultsStore::boolean(QLatin1StringView key) const
{
    return read(key, asBoolean);
}

void DefaultsStore::set(QLatin1StringView key, const QVariant &value)
{
    load();
    forgetOverride(key);
    m_values.insert_or_assign(QString(key), value);
    noteChange(key);
}

void DefaultsStore::forgetOverride(QLatin1StringView key)
{
    if (const auto found = m_overrides.find(key); found != m_overrides.end()) {
        m_overrides.erase(found);
    }
}

void DefaultsStore::remove(QLatin1StringView key)
{
    load();
    forgetOverride(key);
    if (const auto found = m_values.find(key); found != m_values.end()) {
        m_values.erase(found);
        noteChange(key);
    }
}

bool DefaultsStore::isSet(QLatin1StringView key) const
{
    load();
    return m_values.find(key) != m_values.end();
}

void DefaultsStore::noteChange(QLatin1StringView key)
{
    m_changed.insert(QString(key));
    if (!m_path.isEmpty() && !m_writing.isPending()) {
        m_writing = m_scheduler.after(writeDelay, [this] { synchronize(); });
    }
}

void DefaultsStore::load() const
{
    if (m_isLoaded) {
        return;
    }
    m_isLoaded = true;
    // A pipe would keep the program waiting for a writer.
    if (!QFileInfo(m_path).isFile()) {
        return;
    }
    const QSettings file(m_path, QSettings::IniFormat);
    for (const QString &key : file.allKeys()) {
        m_values.emplace(key, file.value(key));
    }
    m_isDamaged = file.status() == QSettings::FormatError;
}

bool DefaultsStore::setDamagedFileAside()
{
    QString aside = m_path + u".damaged"_s;
    for (int number = 2; QFileInfo::exists(aside); ++number) {
        aside = m_path + u".damaged-%1"_s.arg(number);
    }
    return QFile::rename(m_path, aside);
}

/// As it is, or empty, since the format's own would be readable by all.
bool DefaultsStore::makePrivateFile() const
{
    const QByteArray name = encodedPath(m_path);
    struct stat status = {};
    if (::stat(name.constData(), &status) == 0) {
        return S_ISREG(status.st_mode) &&
               ((status.st_mode & (S_IRWXG | S_IRWXO)) == 0 || ::chmod(name.constData(), status.st_mode & S_IRWXU) == 0);
    }
    const int file = ::open(name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
    return file >= 0 && ::close(file) == 0;
}

bool DefaultsStore::synchronize()
{
    m_writing.cancel();
    if (m_changed.empty() || m_path.isEmpty()) {
        return m_changed.empty();
    }
    makePrivateFolder(QFileInfo(m_path).path());
    if (m_isDamaged) {
        if (!setDamagedFileAside()) {
            return false;
        }
        m_isDamaged = false;
        for (const auto &[key, value] : m_values) {
            m_changed.insert(key);
        }
    }
    if (!makePrivateFile()) {
        return false;
    }
    QSettings file(m_path, QSettings::IniFormat);
    for (const QString &key : m_changed) {
        if (const auto value = m_values.find(key); value != m_values.end()) {
            file.setValue(key, value->second);
        } else {
            file.remove(key);
        }
    }
    file.sync();
    if (file.status() != QSettings::NoError) {
        return false;
    }
    m_changed.clear();
    return true;
}
