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
    ASSERT_NE(responder.nextResponder(), &window);
    EXPECT_FALSE(responder.state(Actions::copy).isEnabled) << "nothing is selected";
    EXPECT_FALSE(responder.state(Actions::undo).isEnabled);
    edit.insert(u"needle"_s);
    EXPECT_TRUE(responder.state(Actions::undo).isEnabled);
    EXPECT_TRUE(responder.perform(Actions::selectAll));
    EXPECT_TRUE(responder.state(Actions::copy).isEnabled);
    EXPECT_TRUE(responder.perform(Actions::cut));
    EXPECT_EQ(edit.text(), QString());
    EXPECT_TRUE(responder.state(Actions::paste).isEnabled);
    responder.perform(Actions::paste);
    EXPECT_EQ(edit.text(), u"needle"_s);
    responder.perform(Actions::deleteSelection);
    EXPECT_EQ(edit.text(), u"needle"_s) << "there was no selection to delete";
    responder.perform(Actions::undo);
    EXPECT_EQ(edit.text(), QString());

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
