// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "VimAnswers.h"

#include <gmock/gmock.h>

#include <QFile>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace {

std::string line(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString();
}

} // namespace

// A question a line, with the answer that Vim itself gave: "tests/fuzz/vim/vim_differences.py --record FILE" has it answer those that are
// new, "--corpus" shows what differs in a form for reading.
TEST(VimCorpus, ExactModeAnswersAsVimDoes)
{
    QFile file(QStringLiteral(QUILLET_TEST_DATA "/vim/corpus.jsonl"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    int number = 0;
    while (!file.atEnd()) {
        ++number;
        const QJsonObject row = QJsonDocument::fromJson(file.readLine()).object();
        EXPECT_EQ(line(VimAnswers::answer(row)), line(row[u"answer"_s].toObject()))
            << "line " << number << ", keys and text: " << line({{u"keys"_s, row[u"keys"_s]}, {u"text"_s, row[u"text"_s]}});
    }
    EXPECT_GE(number, 300);
}
