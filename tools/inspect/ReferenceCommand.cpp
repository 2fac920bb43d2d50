// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Command.h"

#include "Settings/Preferences.h"
#include "Vim/VimOptions.h"
#include "Vim/VimReference.h"

#include <array>

using namespace Qt::StringLiterals;

namespace {

constexpr auto &presets = choicesOf<VimKeymapPreset>;

QJsonObject runKeyReference(const Arguments &arguments)
{
    useInterfaceLanguage(arguments);
    const bool isLazyVim = arguments.value(u"preset") == presets[size_t(VimKeymapPreset::lazyVim)].name;
    return {{u"markdown"_s, VimReference::markdown(VimOptions(isLazyVim ? VimKeymapPreset::lazyVim : VimKeymapPreset::plain))}};
}

constexpr auto options = std::to_array<OptionRow>({
    {u"preset", u"plain|lazyvim",
     [](const QString &value) { return std::ranges::find(presets, value, &SettingChoice::name) != presets.end(); }},
    interfaceLanguageOption,
});

constexpr auto rows = std::to_array<CommandRow>({
    {u"key-reference", u"", options, u"the reference of the keys of modal editing", runKeyReference},
});

} // namespace

std::span<const CommandRow> referenceCommands()
{
    return rows;
}
