// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QStringView>

#include <array>

/// What a piece of text is, as far as its colour goes. The set is closed: rules name a scope, themes give each of them a look.
enum class Scope {
    plain,
    comment,
    string,
    escape,
    number,
    keyword,
    builtin,
    type,
    function,
    variable,
    attribute,
    preprocessor,
    punctuation,
    operatorToken,
    heading,
    emphasis,
    link,
    invalid,
};

struct ScopeRow {
    Scope scope;
    QStringView rawValue;
};

/// In the order of the cases.
inline constexpr auto scopes = std::to_array<ScopeRow>({
    {Scope::plain, u"plain"},
    {Scope::comment, u"comment"},
    {Scope::string, u"string"},
    {Scope::escape, u"escape"},
    {Scope::number, u"number"},
    {Scope::keyword, u"keyword"},
    {Scope::builtin, u"builtin"},
    {Scope::type, u"type"},
    {Scope::function, u"function"},
    {Scope::variable, u"variable"},
    {Scope::attribute, u"attribute"},
    {Scope::preprocessor, u"preprocessor"},
    {Scope::punctuation, u"punctuation"},
    {Scope::operatorToken, u"operatorToken"},
    {Scope::heading, u"heading"},
    {Scope::emphasis, u"emphasis"},
    {Scope::link, u"link"},
    {Scope::invalid, u"invalid"},
});

static_assert([] {
    for (size_t place = 0; place < scopes.size(); ++place) {
        if (size_t(scopes[place].scope) != place) {
            return false;
        }
    }
    return scopes.size() == size_t(Scope::invalid) + 1;
}());

[[nodiscard]] constexpr QStringView rawValue(Scope scope)
{
    return scopes[size_t(scope)].rawValue;
}
