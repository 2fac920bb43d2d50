// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/AdministratorProtocol.h"

/// What the helper does: reads one request from the descriptor `input`, of which the user was shown `consentName`, and saves the file. The
/// working folder is another afterwards. Whatever is wrong with the request, or cut off, nothing has happened to the file.
[[nodiscard]] AdministratorProtocol::Answer saveOnRequest(int input, const QByteArray &consentName);
