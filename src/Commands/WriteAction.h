// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Commands/Actions.h"

namespace Actions {

/// The text goes into the file whose name it represents, whatever that has. By saveDocument, which can have a name as well, it goes into
/// a file that does not exist yet.
inline constexpr Action writeOver{.id = saveDocument.id, .tag = 1};

} // namespace Actions
