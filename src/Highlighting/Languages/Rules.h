// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Highlighting/Languages/LanguageRow.h"

// What the language table points to; each family of languages has a file of its own.

extern const LanguageRules swiftRules;
extern const LanguageRules cRules;
extern const LanguageRules objectiveCRules;
extern const LanguageRules javaRules;
extern const LanguageRules csharpRules;
extern const LanguageRules javascriptRules;
extern const LanguageRules typescriptRules;
extern const LanguageRules jsonRules;
extern const LanguageRules cssRules;
extern const LanguageRules htmlRules;
extern const LanguageRules pythonRules;
extern const LanguageRules rubyRules;
extern const LanguageRules goRules;
extern const LanguageRules rustRules;
extern const LanguageRules phpRules;
extern const LanguageRules luaRules;
extern const LanguageRules shellRules;
extern const LanguageRules makefileRules;
extern const LanguageRules cmakeRules;
extern const LanguageRules dockerfileRules;
extern const LanguageRules yamlRules;
extern const LanguageRules tomlRules;
extern const LanguageRules iniRules;
extern const LanguageRules sqlRules;
extern const LanguageRules diffRules;
extern const LanguageRules markdownRules;
