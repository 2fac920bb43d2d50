// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// `replacement` in the case of what it replaces: "foo" → "bar", "Foo" → "Bar", "FOO" → "BAR". Where both have the same number of words,
/// such as "foo_bar" and "one-two", each goes by its own. What has no case, or mixes it otherwise, leaves the replacement as it is, but for
/// a capital at its start. Any thread.
[[nodiscard]] QString inCaseOf(QStringView found, const QString &replacement);
