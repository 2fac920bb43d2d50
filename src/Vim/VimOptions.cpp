// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimOptions.h"

#include "Settings/Preferences.h"

VimOptions VimOptions::of(const Preferences &preferences)
{
    VimOptions options(preferences.value(Settings::vimKeymapPreset));
    options.isExact = preferences.value(Settings::vimExact);
    options.ignoresCase = preferences.value(Settings::vimIgnoreCase);
    options.smartCase = preferences.value(Settings::vimSmartCase);
    options.substitutesAll = preferences.value(Settings::vimGDefault);
    options.wrapsSearch = preferences.value(Settings::vimWrapScan);
    options.searchesWhileTyping = preferences.value(Settings::vimIncSearch);
    options.marksHits = preferences.value(Settings::vimHlSearch);
    options.startsAtFirst = preferences.value(Settings::vimStartOfLine);
    options.textWidth = preferences.value(Settings::vimTextWidth);
    options.scrollOffset = preferences.value(Settings::vimScrollOff);
    options.mappingTimeout = preferences.value(Settings::vimTimeoutLen);
    return options;
}
