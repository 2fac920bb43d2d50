// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

#include <memory>

class AppDelegate;
class QApplication;

/// Everything that lives as long as the program. There is one, made on the main thread after the application object and gone before it.
class Program final {
public:
    explicit Program(QApplication &application);
    Program(const Program &) = delete;
    Program &operator=(const Program &) = delete;
    ~Program();

    [[nodiscard]] AppDelegate &delegate();
    /// Shows the first window and opens the files, absolute paths. Returns when the program is to end, with its exit code.
    int run(const QStringList &files);

private:
    struct Parts;
    std::unique_ptr<Parts> m_parts;
};
