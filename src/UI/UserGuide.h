// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QLatin1StringView>
#include <QString>

/// The user's guide, which is part of the program.
namespace UserGuide {

/// The name of the document; its tab has it in the language of the interface.
inline constexpr QLatin1StringView title("Quillet Guide.md");

/// All of it as Markdown, in the language of the interface.
[[nodiscard]] QString markdown();

} // namespace UserGuide
