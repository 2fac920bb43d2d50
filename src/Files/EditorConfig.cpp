// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Files/EditorConfig.h"

#include "Base/FileCalls.h"
#include "Base/FilePath.h"
#include "Base/Translation.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>

#include <editorconfig/editorconfig.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <map>
#include <memory>
#include <mutex>

using namespace Qt::StringLiterals;

namespace {

constexpr int mostColumns = 16;
constexpr int longestLineEver = 100'000;

template<class Value>
struct NamedValue {
    QByteArrayView name;
    Value value;
};

template<class Value, size_t count>
std::optional<Value> valueNamed(QByteArrayView name, const std::array<NamedValue<Value>, count> &names)
{
    const auto found = std::ranges::find(names, name, &NamedValue<Value>::name);
    return found == names.end() ? std::nullopt : std::optional(found->value);
}

constexpr std::array<NamedValue<Indentation::Unit>, 2> styles = {{{"space", Indentation::Unit::spaces}, {"tab", Indentation::Unit::tab}}};
constexpr std::array<NamedValue<LineEnding>, 3> lineEnds = {{{"lf", LineEnding::lf}, {"crlf", LineEnding::crlf}, {"cr", LineEnding::cr}}};
constexpr std::array<NamedValue<bool>, 2> answers = {{{"true", true}, {"false", false}}};
// Without a mark nobody else would know what the latter two are.
constexpr std::array<NamedValue<EditorConfig::Charset>, 5> charsets = {{
    {"latin1", {TextEncoding::isoLatin1, false}},
    {"utf-8", {TextEncoding::utf8, false}},
    {"utf-8-bom", {TextEncoding::utf8, true}},
    {"utf-16be", {TextEncoding::utf16BigEndian, true}},
    {"utf-16le", {TextEncoding::utf16LittleEndian, true}},
}};

std::optional<int> numberUpTo(int most, QByteArrayView text)
{
    bool isNumber = false;
    const int number = text.toByteArray().toInt(&isNumber);
    return isNumber && number > 0 && number <= most ? std::optional(number) : std::nullopt;
}

struct PropertyRow {
    QByteArrayView name;
    void (*take)(EditorConfig &config, QByteArrayView value);
};
constexpr auto properties = std::to_array<PropertyRow>({
    {"indent_style", [](EditorConfig &config, QByteArrayView value) { config.indentStyle = valueNamed(value, styles); }},
    {"indent_size", [](EditorConfig &config, QByteArrayView value) { config.indentSize = numberUpTo(mostColumns, value); }},
    {"tab_width", [](EditorConfig &config, QByteArrayView value) { config.tabWidth = numberUpTo(mostColumns, value); }},
    {"max_line_length", [](EditorConfig &config, QByteArrayView value) { config.longestLine = numberUpTo(longestLineEver, value); }},
    {"end_of_line", [](EditorConfig &config, QByteArrayView value) { config.lineEnding = valueNamed(value, lineEnds); }},
    {"charset", [](EditorConfig &config, QByteArrayView value) { config.charset = valueNamed(value, charsets); }},
    {"trim_trailing_whitespace",
     [](EditorConfig &config, QByteArrayView value) { config.trimsTrailingWhitespace = valueNamed(value, answers); }},
    {"insert_final_newline", [](EditorConfig &config, QByteArrayView value) { config.endsWithNewline = valueNamed(value, answers); }},
});

/// The bytes of a small file; none when it cannot be read.
std::optional<QByteArray> bytesOf(const QByteArray &name, qsizetype size, FileCalls &calls)
{
    const int file = calls.open(name.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK, 0);
    if (file < 0) {
        return std::nullopt;
    }
    QByteArray bytes(size, Qt::Uninitialized);
    qsizetype done = 0;
    for (ssize_t count = 1; count > 0 && done < size; done += std::max<ssize_t>(count, 0)) {
        count = calls.read(file, bytes.data() + done, size_t(size - done));
    }
    calls.close(file);
    return bytes.first(done);
}

/// It says that no folder above counts.
bool isTopmost(const QByteArray &bytes)
{
    for (const QByteArray &line : bytes.split('\n')) {
        const QByteArray said = line.trimmed().toLower().replace(' ', "").replace('\t', "");
        if (said.startsWith('[')) {
            return false;
        }
        if (said == "root=true" || said == "root:true") {
            return true;
        }
    }
    return false;
}

/// What a look at the files themselves tells before they are understood.
struct Look {
    bool isAnyThere = false;
    /// They are not to be opened, or are too large.
    bool isDangerous = false;
    QString problem;
    /// All names, and what is in those that count.
    QByteArray contents;
};

Look lookAtFiles(const QString &path, FileCalls &calls)
{
    Look look;
    bool counts = true;
    for (QString folder = QFileInfo(path).path(), last; folder != last; folder = QFileInfo(last).path()) {
        last = folder;
        const QString file = QDir(folder).filePath(u".editorconfig"_s);
        const QByteArray name = encodedPath(file);
        struct stat status = {};
        if (calls.stat(name.constData(), &status) != 0) {
            continue;
        }
        look.isAnyThere = true;
        if (!S_ISREG(status.st_mode) || status.st_size > EditorConfig::largestFile) {
            look.isDangerous = true;
            look.problem = formatted(localized(u".editorconfig is ignored: “%@” is not a file that can be read."), shownPath(file));
            return look;
        }
        const auto bytes = counts ? bytesOf(name, status.st_size, calls) : QByteArray();
        look.contents += name + '\0' + bytes.value_or(QByteArray()) + '\0';
        if (!bytes && look.problem.isEmpty()) {
            look.problem = formatted(localized(u".editorconfig is ignored: “%@” cannot be read."), shownPath(file));
        }
        counts = counts && !(bytes && isTopmost(*bytes));
    }
    return look;
}

/// What the library made of files for a path. It keeps some 20 kB whenever it matches a range of numbers, and whenever it finds an error,
/// so it is not asked twice about the same.
class Understood {
public:
    [[nodiscard]] std::optional<EditorConfig> of(const QString &path, const QByteArray &digest)
    {
        const std::lock_guard lock(m_mutex);
        const auto found = m_entries.find(path);
        return found != m_entries.end() && found->second.first == digest ? std::optional(found->second.second) : std::nullopt;
    }
    void keep(const QString &path, const QByteArray &digest, const EditorConfig &config)
    {
        constexpr size_t most = 256;
        const std::lock_guard lock(m_mutex);
        if (m_entries.size() >= most) {
            m_entries.clear();
        }
        m_entries.insert_or_assign(path, std::pair(digest, config));
    }

private:
    std::mutex m_mutex;
    std::map<QString, std::pair<QByteArray, EditorConfig>> m_entries;
};

void understand(const QString &path, EditorConfig &config)
{
    const std::unique_ptr<void, int (*)(editorconfig_handle)> parsed(editorconfig_handle_init(), editorconfig_handle_destroy);
    const int error = editorconfig_parse(encodedPath(path).constData(), parsed.get());
    if (error > 0) {
        const char *const name = editorconfig_handle_get_err_file(parsed.get());
        config.problem = formatted(localized(u".editorconfig is ignored: line %d of “%@” is damaged."), error,
                                   shownPath(decodedPath(name ? name : ".editorconfig")));
    }
    if (error != 0) {
        return;
    }
    for (int index = 0; index < editorconfig_handle_get_name_value_count(parsed.get()); ++index) {
        const char *name = nullptr;
        const char *value = nullptr;
        editorconfig_handle_get_name_value(parsed.get(), index, &name, &value);
        const auto row = std::ranges::find(properties, QByteArrayView(name), &PropertyRow::name);
        if (row != properties.end()) {
            row->take(config, QByteArray(value).toLower());
        }
    }
}

} // namespace

EditorConfig EditorConfig::of(const QString &path, FileCalls &calls)
{
    static Understood understood;
    const QString clean = QDir::cleanPath(path);
    const Look look = lookAtFiles(clean, calls);
    EditorConfig config;
    config.problem = look.problem;
    if (!look.isAnyThere || look.isDangerous) {
        return config;
    }
    const QByteArray digest = QCryptographicHash::hash(look.contents, QCryptographicHash::Sha256);
    if (const auto known = understood.of(clean, digest)) {
        return *known;
    }
    understand(clean, config);
    understood.keep(clean, digest, config);
    return config;
}
