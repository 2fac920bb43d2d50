// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// The yardstick for start-up: what Qt Widgets cost before a program has done anything of its own.
#include <QApplication>
#include <QMainWindow>

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QMainWindow window;
    window.show();
    return QApplication::exec();
}
