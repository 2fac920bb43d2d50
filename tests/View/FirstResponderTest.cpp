// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "View/FirstResponder.h"

#include "Commands/Actions.h"
#include "Widgets/AlertPresenter.h"

#include <QLineEdit>

#include <gtest/gtest.h>

#include <array>

using namespace Qt::StringLiterals;

namespace {

class Pane final : public QWidget, public Responder {
public:
    using QWidget::QWidget;

    [[nodiscard]] const ActionRow *actionFor(const Action &wanted) const override
    {
        static constexpr auto rows =
            std::to_array<ActionRow>({action<&Pane::count>(Actions::copy), action<&Pane::count>(Actions::saveDocument)});
        return findAction(rows, wanted);
    }

    int calls = 0;

private:
    void count() { ++calls; }
};

} // namespace

TEST(FirstResponder, BeginsAtTheFocusWidget)
{
    Pane window;
    QWidget inner(&window);
    QLineEdit edit(&inner);
    inner.setFocusPolicy(Qt::StrongFocus);
    window.show();
    inner.setFocus();
    ScriptedAlertPresenter presenter;
    FirstResponder responder(window, presenter);
    ASSERT_EQ(responder.nextResponder(), &window);

    edit.setFocus();
    EXPECT_FALSE(responder.state(Actions::copy).isEnabled) << "nothing is selected";
    EXPECT_FALSE(responder.state(Actions::undo).isEnabled);
    edit.insert(u"needle"_s);
    for (const auto &[action, text] :
         {std::pair(&Actions::selectAll, u"needle"_s), std::pair(&Actions::cut, u""_s), std::pair(&Actions::paste, u"needle"_s),
          std::pair(&Actions::deleteSelection, u"needle"_s), std::pair(&Actions::undo, u""_s)}) {
        responder.perform(*action);
        EXPECT_EQ(edit.text(), text) << action->name().toStdString();
    }
    edit.setText(u"secret"_s);
    edit.setEchoMode(QLineEdit::Password);
    edit.selectAll();
    EXPECT_FALSE(responder.state(Actions::copy).isEnabled);
    edit.setReadOnly(true);
    EXPECT_FALSE(responder.state(Actions::paste).isEnabled);

    EXPECT_EQ(window.calls, 0);
    responder.choose(Actions::cut);
    EXPECT_EQ(presenter.beepCount(), 1);
    responder.choose(Actions::saveDocument);
    EXPECT_EQ(window.calls, 1);
}
