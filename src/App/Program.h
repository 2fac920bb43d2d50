// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "App/CommandLine.h"

#include <memory>

class AppDelegate;
class QApplication;

/// Everything that lives as long as the program. There is one, made on the main thread after the application object and gone before it.
class Program final {
public:
    /// For what `line` asks: in its language, this time, if there is one, and without a session when it is a comparison.
    Program(QApplication &application, const CommandLine &line);
    Program(const Program &) = delete;
    Program &operator=(const Program &) = delete;
    ~Program();

    [[nodiscard]] AppDelegate &delegate();
    /// Shows the first window, or a comparison, with what `line` names. Returns when the program is to end, with its exit code.
    int run(const CommandLine &line);
    /// Other starts find this one from now on; false when there is another that they find, or no bus.
    [[nodiscard]] bool listen();

private:
    struct Parts;
    std::unique_ptr<Parts> m_parts;
};
