// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

/// Where it is, told with what fails.
inline std::string requirementContext;

/// Ends the program, which has the fuzzer keep its input, unless `condition` holds.
#define REQUIRE(condition) ((condition) ? void() : failRequirement(#condition, __FILE__, __LINE__))

[[noreturn]] inline void failRequirement(const char *condition, const char *file, int line)
{
    std::fprintf(stderr, "%s:%d: required: %s (%s)\n", file, line, condition, requirementContext.c_str());
    std::abort();
}
