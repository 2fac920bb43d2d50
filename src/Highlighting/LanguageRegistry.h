// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Highlighting/Language.h"

#include <optional>
#include <vector>

/// The languages that are built in. Built on first use, the same for the whole life of the program. Any thread.
class LanguageRegistry final {
public:
    LanguageRegistry() = delete;

    /// In the order that decides between languages that claim the same first line; plain text is the last.
    [[nodiscard]] static const std::vector<Language> &all();

    /// The language of a file by its extension, else by its name, else by a first line that begins with "#!", else plain text.
    /// An empty `path` is that of a text that is no file yet; `firstLine` may be empty when it is not known.
    [[nodiscard]] static Language detect(QStringView path, QStringView firstLine);

    /// The language with exactly this id, in this case; none when there is none.
    [[nodiscard]] static std::optional<Language> withID(QStringView id);
};
