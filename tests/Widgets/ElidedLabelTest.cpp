// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Widgets/ElidedLabel.h"

#include <QApplication>
#include <QHelpEvent>
#include <QToolTip>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(ElidedLabel, ReportsWhatDoesNotFitLetterByLetter)
{
    ElidedLabel label(Qt::ElideLeft);
    label.setText(u"/folder/<b>bold</b>.txt"_s);
    label.show();
    QHelpEvent event(QEvent::ToolTip, {}, label.mapToGlobal(QPoint()));
    label.resize(label.sizeHint());
    QApplication::sendEvent(&label, &event);
    EXPECT_EQ(QToolTip::text(), QString());
    label.resize(40, 20);
    QApplication::sendEvent(&label, &event);
    EXPECT_EQ(QToolTip::text(), u"<p>/folder/&lt;b&gt;bold&lt;/b&gt;.txt</p>"_s);
    QToolTip::hideText();
}
