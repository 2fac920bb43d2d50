// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// The yardstick for start-up: what Qt Widgets cost before a program has done anything of its own. With a text as its argument the window
// shows that, and has the size of the program's first window.
#include <QApplication>
#include <QLabel>
#include <QMainWindow>

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QMainWindow window;
    if (argc > 1) {
        window.setCentralWidget(new QLabel(QString::fromLocal8Bit(argv[1])));
        window.resize(1040, 700);
    }
    window.show();
    return QApplication::exec();
}
