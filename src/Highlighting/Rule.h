// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Highlighting/Scope.h"
#include "Highlighting/WordList.h"
#include "Text/RegularExpression.h"

/// A token inside a line: every match of the expression has the scope, as far as capture group `group` reaches (0 is all of it).
struct TokenRule {
    Scope scope;
    RegularExpression regex;
    int group = 0;
    /// What the expression looks for if that is nothing but words.
    WordList words = {};
};

/// A construct that may go over many lines: every match of the expression has the scope as a whole.
struct SpanRule {
    Scope scope;
    RegularExpression regex;
};
