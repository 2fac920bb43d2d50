// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/SettingControls.h"

#include "Base/Localization.h"
#include "Base/Translation.h"
#include "Settings/Preferences.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>

#include <algorithm>
#include <cmath>

namespace {

/// In letters.
constexpr int fieldWidth = 8;

/// As the settings file has it, or with the comma of other languages.
std::optional<double> parsedNumber(QString text)
{
    bool isNumber = false;
    const double number = text.trimmed().replace(u',', u'.').toDouble(&isNumber);
    return isNumber && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

QString shownNumber(double number)
{
    QLocale locale = Localization::current().locale();
    locale.setNumberOptions(QLocale::OmitGroupSeparator);
    return locale.toString(number, 'f', QLocale::FloatingPointShortest);
}

std::vector<SettingControls::Choice> choicesFrom(std::span<const SettingChoice> values)
{
    std::vector<SettingControls::Choice> choices;
    for (const SettingChoice &value : values) {
        choices.push_back({localized(value.title), value.name});
    }
    return choices;
}

/// The numbers `offered`, and `stored`.
std::vector<SettingControls::Choice> choicesFrom(std::span<const int> offered, int stored)
{
    std::vector<int> numbers(offered.begin(), offered.end());
    if (std::ranges::find(numbers, stored) == numbers.end()) {
        numbers.insert(std::ranges::upper_bound(numbers, stored), stored);
    }
    std::vector<SettingControls::Choice> choices;
    for (const int number : numbers) {
        choices.push_back({QString::number(number), QString::number(number)});
    }
    return choices;
}

void show(const std::vector<SettingControls::Choice> &choices, QComboBox &popUp)
{
    popUp.clear();
    for (const SettingControls::Choice &choice : choices) {
        if (choice.title.isEmpty()) {
            popUp.insertSeparator(popUp.count());
        } else {
            popUp.addItem(choice.title, choice.value);
        }
    }
}

} // namespace

SettingControls::SettingControls(Preferences &preferences, QString folder) : m_preferences(preferences), m_folder(std::move(folder)) {}

void SettingControls::add(SettingsForm &form, const SettingRow &row, QWidget *beside)
{
    place(form, row, makeControl(row), beside);
}

void SettingControls::addChoices(SettingsForm &form, const SettingRow &row, const std::vector<Choice> &choices)
{
    place(form, row, makePopUp(row.setting, [choices] { return choices; }), nullptr);
}

QWidget &SettingControls::makeControl(const SettingRow &row)
{
    if (const auto *onOff = row.setting.as<bool>()) {
        return makeCheckBox(*onOff);
    }
    if (const auto *real = row.setting.as<double>()) {
        return makeField(*real);
    }
    if (const auto *number = row.setting.as<int>()) {
        return makePopUp(*number, [this, number, offered = row.offered] { return choicesFrom(offered, m_preferences.value(*number)); });
    }
    return makePopUp(row.setting, [&setting = row.setting] { return choicesFrom(setting.choices); });
}

QWidget &SettingControls::makeCheckBox(const Setting<bool> &setting)
{
    auto *box = new QCheckBox(localized(setting.details.title));
    connect(box, &QCheckBox::clicked, this, [this, &setting](bool isOn) { m_preferences.set(setting, isOn); });
    m_refreshers.emplace_back([this, &setting, box] { box->setChecked(m_preferences.value(setting)); });
    return *box;
}

QWidget &SettingControls::makeField(const Setting<double> &setting)
{
    auto *field = new QLineEdit;
    field->setAlignment(Qt::AlignRight);
    field->setFixedWidth(field->fontMetrics().averageCharWidth() * fieldWidth + field->sizeHint().height() / 2);
    const auto show = [this, &setting, field] { field->setText(shownNumber(m_preferences.value(setting))); };
    const auto commit = [this, &setting, field, show] {
        if (!field->isModified()) {
            return;
        }
        field->setModified(false);
        if (const auto number = parsedNumber(field->text())) {
            m_preferences.set(setting, *number);
        }
        show();
    };
    connect(field, &QLineEdit::editingFinished, this, commit);
    m_commits.emplace_back(commit);
    m_refreshers.emplace_back([field, show] {
        if (!field->isModified()) {
            show();
        }
    });
    return *field;
}

QWidget &SettingControls::makePopUp(const AnySetting &setting, std::function<std::vector<Choice>()> choices)
{
    auto *popUp = new FormPopUp;
    connect(popUp, &QComboBox::activated, this,
            [this, &setting, popUp] { m_preferences.setFromText(setting, popUp->currentData().toString()); });
    m_refreshers.emplace_back([this, &setting, popUp, choices = std::move(choices), shown = std::vector<Choice>()]() mutable {
        if (const std::vector<Choice> now = choices(); now != shown) {
            show(now, *popUp);
            shown = now;
        }
        popUp->setCurrentIndex(std::max(0, popUp->findData(m_preferences.storedValue(setting).toString())));
    });
    return *popUp;
}

void SettingControls::place(SettingsForm &form, const SettingRow &row, QWidget &control, QWidget *beside)
{
    control.setObjectName(row.controlName());
    m_controls.insert(&row.setting, &control);
    const auto level = row.place == SettingRow::Place::below ? SettingsForm::Level::below : SettingsForm::Level::top;
    if (row.place == SettingRow::Place::startsGroup) {
        form.addGap();
    }
    if (row.setting.type == SettingType::boolean) {
        form.addControl(control, level);
    } else {
        auto *line = new QHBoxLayout;
        line->addWidget(&control);
        if (row.unit) {
            line->addWidget(new QLabel(localized(row.unit)));
            control.setAccessibleDescription(localized(row.unit));
        }
        if (beside) {
            line->addWidget(beside);
        }
        line->addStretch();
        form.addRow(localized(row.setting.details.title), *line, control);
    }
    if (row.note) {
        QWidget &explained = row.noteIsAbout ? *m_controls.value(row.noteIsAbout) : control;
        form.addNote(formatted(localized(row.note), m_folder), explained, level);
    }
}

void SettingControls::refresh()
{
    for (const auto &refresh : m_refreshers) {
        refresh();
    }
}

void SettingControls::commit()
{
    for (const auto &commit : m_commits) {
        commit();
    }
}
