// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "monkey/Stage.h"

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

QByteArray PlayGround::anyContent() const
{
    const auto text = QString::fromStdU16String(m_random.text(m_random.below(400)));
    switch (m_random.below(12)) {
    case 0:
        return {};
    case 1: // A text that workers would have, of lines that are cut into segments.
        return (text.toUtf8().replace('\n', ' ') + "word ").repeated(3000);
    case 2:
        return text.toLatin1();
    case 3:
        return "bin\0ary"_ba + text.toUtf8();
    case 4:
        return "\xFF\xFE"_ba + QByteArray(reinterpret_cast<const char *>(text.utf16()), text.size() * 2);
    case 5:
        return "/* \" ' <b> # ``` ${x} */ { [ ( "_ba.repeated(1 + m_random.below(50)) + text.toUtf8();
    default:
        return text.toUtf8();
    }
}

void PlayGround::write(const QString &path) const
{
    QFile file(path);
    if (file.open(QIODevice::WriteOnly)) {
        file.write(anyContent());
    }
}

QString PlayGround::change() const
{
    const QString path = anyPath();
    const QString fresh = path + u".new"_s;
    switch (m_random.below(6)) {
    case 0:
        QFile::remove(path);
        return u"remove "_s + path;
    case 1:
        QFile::rename(path, path + u"~"_s);
        return u"rename "_s + path;
    case 2:
        write(fresh);
        QFile::remove(path);
        QFile::rename(fresh, path);
        return u"replace "_s + path;
    case 3:
        QFile::setPermissions(path, m_random.oneIn(2) ? QFile::Permissions(QFile::ReadOwner) : QFile::ReadOwner | QFile::WriteOwner);
        return u"permissions "_s + path;
    default:
        write(path);
        return u"write "_s + path;
    }
}

void MoodyPresenter::ask(QWidget *window, std::function<void()> answer)
{
    m_open.push_back({window, window != nullptr, std::move(answer)});
    if (m_random.oneIn(2)) {
        answerOne();
    }
}

void MoodyPresenter::answerOne()
{
    if (m_open.empty()) {
        return;
    }
    const Question question = std::move(m_open.front());
    m_open.pop_front();
    // A question goes with its window.
    if (!question.hasWindow || question.window) {
        question.answer();
    }
}

void MoodyPresenter::present(const Alert &alert, QWidget *window, AlertCompletion completion)
{
    const int count = std::max(1, int(alert.buttons.size()));
    static constexpr auto texts = std::to_array<QStringView>({u"", u"1", u"3:7", u"999999999999", u"-4", u"x", u"2,2"});
    const AlertReply reply{.button = AlertReply::firstButton + int(m_random.below(count)), .text = m_random.of(texts).toString()};
    ask(window, [reply, completion = std::move(completion)] {
        if (completion) {
            completion(reply);
        }
    });
}

void MoodyPresenter::present(const OpenPanel &panel, QWidget *window, OpenCompletion completion)
{
    QStringList paths;
    const bool isOne = panel.choice != OpenPanel::Choice::files;
    for (qsizetype count = m_random.below(isOne ? 2 : 4); count > 0; --count) {
        paths << (panel.choice == OpenPanel::Choice::folder ? m_ground.folder() : m_ground.anyPath());
    }
    ask(window, [paths, completion = std::move(completion)] { completion(paths); });
}

void MoodyPresenter::present(const SavePanel & /*panel*/, QWidget *window, SaveCompletion completion)
{
    const auto path = m_random.oneIn(4) ? std::nullopt : std::optional(m_ground.anyPath());
    ask(window, [path, completion = std::move(completion)] { completion(path); });
}

void MoodyPresenter::present(const ChoicePanel &panel, QWidget *window, ChoiceCompletion completion)
{
    const auto choice =
        m_random.oneIn(4) || panel.choices.empty() ? std::nullopt : std::optional(m_random.below(int(panel.choices.size())));
    ask(window, [choice, completion = std::move(completion)] { completion(choice); });
}

void MoodyPresenter::present(const FontPanel &panel, QWidget *window, FontCompletion completion)
{
    const auto font = m_random.oneIn(4) ? std::nullopt : std::optional(FontChoice{panel.current.family, double(m_random.below(120))});
    ask(window, [font, completion = std::move(completion)] { completion(font); });
}
