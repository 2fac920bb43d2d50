// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// Answers a list of questions: JSON objects on the standard input, one a line, each answered by a line before the next is read, so that
// whoever asks knows which one a crash or an endless loop belongs to.
#include "Vim/VimAnswers.h"

#include <QCoreApplication>
#include <QJsonDocument>

#include <cstdio>
#include <iostream>
#include <string>

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    for (std::string line; std::getline(std::cin, line);) {
        const QJsonDocument question = QJsonDocument::fromJson(QByteArray::fromStdString(line));
        if (!question.isObject()) {
            std::cerr << "Not a JSON object: " << line << '\n';
            return 1;
        }
        const QByteArray answer = QJsonDocument(VimAnswers::answer(question.object())).toJson(QJsonDocument::Compact);
        std::cout << answer.constData() << std::endl;
    }
    return 0;
}
