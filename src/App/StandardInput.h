// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Files/TextFile.h"

/// All that comes on a descriptor until its end, as if it were a file. Blocks, so for a worker; leaves nothing behind. What is too large
/// for a file is not read to the end.
[[nodiscard]] TextFile::ReadResult readStream(int descriptor);
