// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Base/Translation.h"

#include "Base/Localization.h"

#include <array>
#include <cmath>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

struct Placeholder {
    qsizetype length = 0;
    /// 0-based; absent for a per cent sign of its own and for "the next one".
    std::optional<qsizetype> argument;
    bool isPercentSign = false;
};

/// What stands at the per cent sign that `text` begins with; nothing when it is no placeholder.
std::optional<Placeholder> placeholderAt(QStringView text)
{
    qsizetype at = 1;
    qsizetype number = 0;
    while (at < text.size() && at < 3 && text[at] >= u'0' && text[at] <= u'9') {
        number = number * 10 + (text[at++].unicode() - u'0');
    }
    const bool isNumbered = at > 1 && at < text.size() && text[at] == u'$';
    if (isNumbered) {
        ++at;
    } else if (at > 1) {
        return std::nullopt;
    }
    if (at >= text.size()) {
        return std::nullopt;
    }
    if (text[at] == u'@' || text[at] == u'd') {
        return Placeholder{at + 1, isNumbered ? std::optional(number - 1) : std::nullopt, false};
    }
    if (text[at] == u'%' && !isNumbered) {
        return Placeholder{at + 1, std::nullopt, true};
    }
    return std::nullopt;
}

} // namespace

QString localized(QStringView english)
{
    return Localization::current().text(english);
}

QString formattedList(QStringView pattern, const QStringList &arguments)
{
    QString result;
    qsizetype next = 0;
    for (qsizetype at = 0; at < pattern.size();) {
        const auto placeholder = pattern[at] == u'%' ? placeholderAt(pattern.sliced(at)) : std::nullopt;
        if (!placeholder) {
            result += pattern[at++];
            continue;
        }
        if (placeholder->isPercentSign) {
            result += u'%';
        } else {
            const qsizetype index = placeholder->argument ? *placeholder->argument : next++;
            if (index >= 0 && index < arguments.size()) {
                result += arguments[index];
            } else {
                result += pattern.sliced(at, placeholder->length);
            }
        }
        at += placeholder->length;
    }
    return result;
}

QString formattedByteCount(qint64 bytes)
{
    struct Unit {
        QStringView name;
        double size;
        int digits;
    };
    static constexpr auto units =
        std::to_array<Unit>({{u"KB", 1e3, 0}, {u"MB", 1e6, 1}, {u"GB", 1e9, 2}, {u"TB", 1e12, 2}, {u"PB", 1e15, 2}});

    if (bytes == 1) {
        return localized(u"1 byte");
    }
    if (bytes < 1000) {
        return formatted(localized(u"%d bytes"), bytes);
    }
    for (const Unit &unit : units) {
        const double scale = std::pow(10.0, unit.digits);
        const double value = std::round(double(bytes) / unit.size * scale) / scale;
        if (value < 1000 || &unit == &units.back()) {
            // "1.5 GB", not "1.50 GB"; "5000 PB", not "5,000 PB".
            QLocale locale = Localization::current().locale();
            locale.setNumberOptions(QLocale::OmitGroupSeparator);
            return locale.toString(value, 'f', QLocale::FloatingPointShortest) + u' ' + unit.name.toString();
        }
    }
    Q_UNREACHABLE();
}
