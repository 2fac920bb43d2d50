// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimKeyNotation.h"

#include "Vim/VimKey.h"

#include <algorithm>
#include <array>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

struct NamedKey {
    QLatin1StringView name;
    char16_t key;
};

/// The first name of a key is the one that is shown.
constexpr auto namedKeys = std::to_array<NamedKey>({
    {"CR"_L1, u'\r'},
    {"Return"_L1, u'\r'},
    {"Enter"_L1, u'\r'},
    {"Esc"_L1, VimKey::escape},
    {"Space"_L1, u' '},
    {"Tab"_L1, u'\t'},
    {"BS"_L1, VimKey::backspace},
    {"Del"_L1, VimKey::forwardDelete},
    {"lt"_L1, u'<'},
    {"Bar"_L1, u'|'},
    {"Bslash"_L1, u'\\'},
    {"Up"_L1, VimKey::up},
    {"Down"_L1, VimKey::down},
    {"Left"_L1, VimKey::left},
    {"Right"_L1, VimKey::right},
    {"Home"_L1, VimKey::home},
    {"End"_L1, VimKey::end},
    {"PageUp"_L1, VimKey::pageUp},
    {"PageDown"_L1, VimKey::pageDown},
    {"S-Tab"_L1, VimKey::backtab},
});

std::optional<char16_t> keyNamed(QStringView name)
{
    const auto named =
        std::ranges::find_if(namedKeys, [name](const NamedKey &known) { return name.compare(known.name, Qt::CaseInsensitive) == 0; });
    if (named != namedKeys.end()) {
        return named->key;
    }
    bool isNumber = false;
    const int number = name.size() > 1 ? name.sliced(1).toInt(&isNumber) : 0;
    if (isNumber && name.front().toLower() == u'f' && number >= 1 && number <= VimKey::functionKeys) {
        return char16_t(VimKey::functionKey + number - 1);
    }
    return name.size() == 1 ? std::optional(name.front().unicode()) : std::nullopt;
}

/// What stands between angle brackets; none when that is no key.
std::optional<QString> keyIn(QStringView name, QStringView leader)
{
    if (name.compare("leader"_L1, Qt::CaseInsensitive) == 0 || name.compare("localleader"_L1, Qt::CaseInsensitive) == 0) {
        return leader.toString();
    }
    if (name.compare("nop"_L1, Qt::CaseInsensitive) == 0) {
        return QString();
    }
    if (name.compare("S-Tab"_L1, Qt::CaseInsensitive) == 0) {
        return QString(QChar(VimKey::backtab));
    }
    VimKeyStroke stroke;
    bool isShifted = false;
    while (name.size() > 2 && name[1] == u'-') {
        switch (name.front().toLower().unicode()) {
        case u'c':
            stroke.control = true;
            break;
        case u'a':
        case u'm':
            stroke.option = true;
            break;
        case u's':
            isShifted = true;
            break;
        default:
            return std::nullopt;
        }
        name = name.sliced(2);
    }
    const auto key = keyNamed(name);
    const bool isPlain = !stroke.control && !stroke.option && !isShifted;
    // What comes from the keyboard does not say whether such a key had Shift or Control.
    const bool isLost = key && VimKey::isNamed(*key) && (stroke.control || isShifted);
    if (!key || isLost || (isPlain && name.size() == 1)) {
        return std::nullopt;
    }
    stroke.character = char16_t(isShifted ? QChar::toUpper(*key) : stroke.control ? QChar::toLower(*key) : *key);
    return QString(QChar(VimKey::unit(stroke)));
}

} // namespace

QString VimKeyNotation::parsed(QStringView written, QStringView leader)
{
    QString keys;
    for (qsizetype at = 0; at < written.size(); ++at) {
        const qsizetype end = written[at] == u'<' ? written.indexOf(u'>', at + 2) : -1;
        const auto key = end > 0 ? keyIn(written.sliced(at + 1, end - at - 1), leader) : std::nullopt;
        if (key) {
            keys += *key;
            at = end;
        } else {
            keys += written[at];
        }
    }
    return keys;
}

std::optional<QString> VimKeyNotation::unknownKey(QStringView written)
{
    for (qsizetype at = written.indexOf(u'<'); at >= 0; at = written.indexOf(u'<', at + 1)) {
        const qsizetype end = written.indexOf(u'>', at + 2);
        const QStringView name = end < 0 ? QStringView() : written.sliced(at + 1, end - at - 1);
        const bool hasModifier = name.size() > 2 && name[1] == u'-' && u"csamdCSAMD"_s.contains(name[0]);
        if (hasModifier && !name.contains(u'<') && !name.contains(u' ') && !keyIn(name, {})) {
            return written.sliced(at, end + 1 - at).toString();
        }
    }
    return std::nullopt;
}

QString VimKeyNotation::written(QStringView keys)
{
    QString text;
    for (const QChar unit : keys) {
        const VimKeyStroke stroke = VimKey::stroke(unit.unicode());
        QString name(QChar(stroke.character));
        const auto named = std::ranges::find(namedKeys, stroke.character, &NamedKey::key);
        const bool isNamed = named != namedKeys.end() && stroke.character != u'|' && stroke.character != u'\\';
        const bool isFunctionKey = stroke.character >= VimKey::functionKey && stroke.character < VimKey::functionKey + VimKey::functionKeys;
        if (isNamed) {
            name = QString(named->name);
        } else if (isFunctionKey) {
            name = u"F%1"_s.arg(stroke.character - VimKey::functionKey + 1);
        } else if (stroke.control) {
            name = name.toUpper();
        }
        const QString modifier = stroke.control ? u"C-"_s : stroke.option ? u"A-"_s : QString();
        const bool isBracketed = isNamed || isFunctionKey || !modifier.isEmpty();
        text += isBracketed ? u'<' + modifier + name + u'>' : name;
    }
    return text;
}
