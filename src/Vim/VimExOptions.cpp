// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimExOptions.h"

#include "Base/Translation.h"
#include "Settings/Preferences.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// A switch of the preferences that Vim has as a list of words.
struct WordRow {
    std::array<QStringView, 2> names;
    const Setting<bool> &setting;
    /// Any of them turns it on; the first is shown.
    std::array<QStringView, 2> words;
};

const auto wordRows = std::to_array<WordRow>({
    {{u"clipboard", u"cb"}, Settings::vimSharesClipboard, {u"unnamedplus", u"unnamed"}},
});

const AnySetting *settingNamed(QStringView name)
{
    for (const AnySetting *setting : Settings::all()) {
        const auto &names = setting->details.option.names;
        if (setting->details.option.exists() && !name.isEmpty() && std::ranges::find(names, name) != names.end()) {
            return setting;
        }
    }
    return nullptr;
}

const WordRow *rowNamed(QStringView name)
{
    const auto found = std::ranges::find_if(
        wordRows, [name](const WordRow &row) { return !name.isEmpty() && std::ranges::find(row.names, name) != row.names.end(); });
    return found == wordRows.end() ? nullptr : &*found;
}

/// One option as it was typed, taken apart.
struct Assignment {
    QStringView name;
    /// "=", "+", "-", "^", "!", "?", "&" or none.
    QChar sign;
    QStringView value;
};

Assignment taken(QStringView typed)
{
    const auto isOfName = [](QChar unit) { return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') || unit == u'_'; };
    const auto end = std::ranges::find_if_not(typed, isOfName);
    Assignment assignment{.name = typed.first(end - typed.begin()), .sign = {}, .value = {}};
    const QStringView rest = typed.sliced(assignment.name.size());
    if (rest.isEmpty()) {
        return assignment;
    }
    const bool isCombined = rest.size() > 1 && rest[1] == u'=' && QStringView(u"+-^").contains(rest[0]);
    const bool isValue = rest[0] == u'=' || rest[0] == u':';
    assignment.sign = isValue ? QChar(u'=') : rest[0];
    assignment.value = rest.sliced(isCombined ? 2 : 1);
    const bool mayHaveMore = isCombined || isValue || (rest[0] == u'&' && (rest.sliced(1) == u"vim" || rest.sliced(1) == u"vi"));
    if (!mayHaveMore && (rest.size() > 1 || !QStringView(u"!?&").contains(rest[0]))) {
        assignment.name = {};
    }
    return assignment;
}

class Setter {
public:
    Setter(Preferences &preferences, VimExOptions::Lasting lasting) : m_preferences(preferences), m_lasting(lasting) {}

    [[nodiscard]] Result<void> apply(QStringView typed)
    {
        const Assignment whole = taken(typed);
        if (const WordRow *row = rowNamed(whole.name)) {
            return applyWords(*row, whole);
        }
        const AnySetting *setting = settingNamed(whole.name);
        if (setting && setting->type == SettingType::integer) {
            return applyNumber(*setting, typed, whole);
        }
        if (setting) {
            return applySwitch(*setting, typed, whole.sign, true);
        }
        for (const auto &[prefix, sign] : {std::pair(u"no"_s, QChar()), std::pair(u"inv"_s, QChar(u'!'))}) {
            const AnySetting *other = whole.name.startsWith(prefix) ? settingNamed(whole.name.sliced(prefix.size())) : nullptr;
            if (other && other->type == SettingType::boolean && whole.sign.isNull()) {
                return applySwitch(*other, typed, sign, false);
            }
        }
        return failure(formatted(localized(u"Not an option: %@"), typed.toString()));
    }

    void showChanged(bool isAll)
    {
        for (const AnySetting *setting : Settings::all()) {
            if (setting->details.option.exists() && (isAll || value(*setting) != defaultOf(*setting))) {
                show(*setting);
            }
        }
        for (const WordRow &row : wordRows) {
            showWords(row);
        }
    }

    [[nodiscard]] const QStringList &shown() const { return m_shown; }

private:
    [[nodiscard]] static QVariant defaultOf(const AnySetting &setting)
    {
        const auto *isOn = std::get_if<bool>(&setting.byDefault);
        const auto *number = std::get_if<int>(&setting.byDefault);
        return isOn ? QVariant(*isOn) : number ? QVariant(*number) : QVariant();
    }
    [[nodiscard]] QVariant value(const AnySetting &setting) const { return m_preferences.storedValue(setting); }

    void set(const AnySetting &setting, const QVariant &value)
    {
        if (m_lasting == VimExOptions::Lasting::thisRun) {
            m_preferences.setForRun(setting, value);
        } else if (const auto *isOn = setting.as<bool>()) {
            m_preferences.set(*isOn, value.toBool());
        } else if (const auto *number = setting.as<int>()) {
            m_preferences.set(*number, value.toInt());
        }
    }

    void show(const AnySetting &setting)
    {
        const QString name = setting.details.option.names.front().toString();
        m_shown << (setting.type == SettingType::boolean ? (value(setting).toBool() ? u"  "_s : u"no"_s) + name
                                                         : u"  "_s + name + u'=' + value(setting).toString());
    }

    void showWords(const WordRow &row)
    {
        m_shown << u"  "_s + row.names.front().toString() + u'=' +
                       (m_preferences.value(row.setting) ? row.words.front().toString() : QString());
    }

    [[nodiscard]] Result<void> applySwitch(const AnySetting &setting, QStringView typed, QChar sign, bool isOn)
    {
        if (sign == u'?') {
            show(setting);
        } else if (sign == u'&') {
            set(setting, defaultOf(setting));
        } else if (sign == u'!') {
            set(setting, !value(setting).toBool());
        } else if (sign.isNull()) {
            set(setting, isOn);
        } else {
            return failure(formatted(localized(u"Takes no value: %@"), typed.toString()));
        }
        return {};
    }

    [[nodiscard]] Result<void> applyNumber(const AnySetting &setting, QStringView typed, const Assignment &assignment)
    {
        if (assignment.sign.isNull() || assignment.sign == u'?') {
            show(setting);
            return {};
        }
        if (assignment.sign == u'&') {
            set(setting, defaultOf(setting));
            return {};
        }
        bool isNumber = false;
        const qint64 number = assignment.value.toLongLong(&isNumber, 0);
        if (!isNumber || assignment.sign == u'!') {
            return failure(formatted(localized(u"Needs a number: %@"), typed.toString()));
        }
        const qint64 old = value(setting).toInt();
        const qint64 anew = assignment.sign == u'+'   ? old + number
                            : assignment.sign == u'-' ? old - number
                            : assignment.sign == u'^' ? old * number
                                                      : number;
        set(setting, int(std::clamp(double(anew), setting.details.minimum, setting.details.maximum)));
        return {};
    }

    [[nodiscard]] Result<void> applyWords(const WordRow &row, const Assignment &assignment)
    {
        const QList<QStringView> words = assignment.value.split(u',');
        const bool isNamed =
            std::ranges::any_of(words, [&row](QStringView word) { return std::ranges::find(row.words, word) != row.words.end(); });
        if (assignment.sign.isNull() || assignment.sign == u'?') {
            showWords(row);
        } else if (assignment.sign == u'=') {
            set(row.setting, isNamed);
        } else if (assignment.sign == u'&') {
            set(row.setting, false);
        } else if (isNamed) {
            set(row.setting, assignment.sign != u'-');
        }
        return {};
    }

    Preferences &m_preferences;
    VimExOptions::Lasting m_lasting;
    QStringList m_shown;
};

} // namespace

Result<QStringList> VimExOptions::apply(QStringView typed, Preferences &preferences, Lasting lasting)
{
    Setter setter(preferences, lasting);
    QStringList options;
    bool goesOn = false;
    for (qsizetype at = 0; at < typed.size(); ++at) {
        const bool isBlank = typed[at] == u' ' || typed[at] == u'\t';
        if (!isBlank && !goesOn) {
            options.emplace_back();
        }
        goesOn = !isBlank;
        if (typed[at] == u'\\' && at + 1 < typed.size()) {
            options.back() += typed[++at];
        } else if (!isBlank) {
            options.back() += typed[at];
        }
    }
    // A comment may follow.
    const auto comment = std::ranges::find_if(options, [](const QString &option) { return option.startsWith(u'"'); });
    options.erase(comment, options.end());
    if (options.isEmpty() || options == QStringList(u"all"_s)) {
        setter.showChanged(!options.isEmpty());
    } else {
        for (const QString &option : options) {
            if (const auto done = setter.apply(option); !done) {
                return tl::make_unexpected(done.error());
            }
        }
    }
    return setter.shown();
}

QStringList VimExOptions::names()
{
    QStringList all;
    for (const AnySetting *setting : Settings::all()) {
        if (setting->details.option.exists()) {
            all << setting->details.option.names.front().toString();
        }
    }
    for (const WordRow &row : wordRows) {
        all << row.names.front().toString();
    }
    std::ranges::sort(all);
    return all;
}
