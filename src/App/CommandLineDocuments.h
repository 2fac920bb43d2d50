// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// What is installed beside the program about its command line, made of the table of options. In the language of the interface; ends with
/// a line break.
namespace CommandLineDocuments {

/// For man, section 1.
[[nodiscard]] QString manPage();
[[nodiscard]] QString bashCompletion();
[[nodiscard]] QString zshCompletion();
[[nodiscard]] QString fishCompletion();

} // namespace CommandLineDocuments
