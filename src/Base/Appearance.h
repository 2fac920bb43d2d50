// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

/// Whether the desktop wants light or dark programs.
enum class Appearance { light, dark };
