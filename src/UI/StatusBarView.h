// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/NotificationCenter.h"
#include "Base/Scheduler.h"
#include "Files/LineEnding.h"
#include "Files/TextEncoding.h"
#include "Highlighting/Language.h"
#include "Model/DocumentConventions.h"
#include "Text/LineNumber.h"
#include "UI/TextStatistics.h"

#include <QPointer>
#include <QStringList>
#include <QWidget>

#include <array>
#include <functional>
#include <optional>
#include <vector>

class ElidedLabel;
class FlatButton;
class QLabel;
class PopUpButton;
class StatisticsPopUp;
class TextIndentationMenu;
class VimBadge;
struct Theme;

/// The bar below the panes of a window: where the caret is, what the document is, and short messages. It knows no document; it shows the
/// state it was last given and reports what the user chose. Where the window is narrow the path gives way first, then the controls, the
/// least important first. Main thread only.
class StatusBarView final : public QWidget {
    Q_OBJECT

public:
    struct VimState {
        /// "NORMAL", "INSERT", "REPLACE", "VISUAL", "V-LINE", "V-BLOCK" or "COMMAND"; without Vim editing "OVERWRITE".
        QString mode;
        /// What goes on besides, as a macro that is recorded.
        QString note = {};
        /// Asked until it is answered; empty when nothing is.
        QString question = {};
        /// The keys so far of a command that is not complete.
        QString pending;
        /// With its prefix, while it is open.
        std::optional<QString> commandLine;
        /// In that line; none stays behind its end.
        std::optional<qsizetype> cursor = std::nullopt;
        bool isInsert = false;

        friend bool operator==(const VimState &, const VimState &) = default;
    };

    /// Dictionaries, by their names.
    struct SpellingState {
        QStringList inUse;
        /// None when the words of the text decide.
        QStringList chosen;
        QStringList installed;
    };

    struct State {
        /// As the user is to read it.
        QString path;
        /// The user may not write to the file.
        bool isReadOnly = false;
        /// The file's bytes can be read again in another encoding.
        bool canReopen = false;
        LineNumber line = LineNumber::first;
        /// From 1, in UTF-16 code units.
        qsizetype column = 1;
        /// UTF-16 code units.
        /// Several carets are counted instead of telling where one is.
        qsizetype caretCount = 1;
        /// Of all selections.
        qsizetype selectionLength = 0;
        /// Lines that the selection touches; 0 without one.
        qsizetype selectedLineCount = 0;
        Language language;
        TextEncoding encoding = TextEncoding::utf8;
        /// The user named it, and wants to see it also where the menu does not have it.
        bool isNamedEncoding = false;
        /// The file begins with one.
        bool hasByteOrderMark = false;
        /// Characters of the text that the encoding lacks.
        qsizetype missingCharacters = 0;
        LineEnding lineEnding = LineEnding::lf;
        /// How many lines of the file end in each way, in the order of `lineEndings`.
        std::array<qsizetype, lineEndings.size()> lineEndingCounts = {};
        /// Columns.
        int indentWidth = 4;
        /// The tab key inserts spaces.
        bool usesSpaces = true;
        /// Who says so.
        DocumentConventions::Source indentationSource = DocumentConventions::Source::preference;
        /// For this text alone; none where it is found out.
        std::optional<Indentation> chosenIndentation;
        /// None while Vim editing is off and what is typed is inserted.
        std::optional<VimState> vim;
        /// How its spelling is checked; none while it is not.
        std::optional<SpellingState> spelling;
        /// None where nothing is counted.
        std::optional<TextStatistics> statistics;
        /// What is told of the character at the caret, in lines, when somebody wants to know. May be empty.
        std::function<QString()> caretHint;
    };

    /// The scheduler and the centre must outlive the bar. The bar follows the interface's language by itself.
    StatusBarView(Scheduler &scheduler, NotificationCenter &notifications, QWidget *parent = nullptr);
    ~StatusBarView() override;

    /// `theme` must outlive the bar, as the built-in ones do.
    void setTheme(const Theme &theme);
    /// None: there is no document. An encoding or indentation that the menus do not have leaves their choice as it was.
    void setState(const std::optional<State> &state);
    /// Shows `message` in place of the path for so long, or until the next; screen readers are notified.
    void flash(const QString &message, Scheduler::Milliseconds duration);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

signals:
    void flashed(const QString &message);
    void languageChosen(const Language &language);
    void encodingChosen(TextEncoding encoding);
    void reopenWithEncodingChosen();
    void lineEndingChosen(LineEnding lineEnding);
    /// For all texts.
    void indentationChosen(Indentation indentation);
    /// For this one; none to have it found out.
    void textIndentationChosen(std::optional<Indentation> indentation);
    void conversionChosen(Indentation::Unit unit);
    void dictionariesChosen(const QStringList &names);
    void positionClicked();
    void missingCharactersClicked();

protected:
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void makeControls();
    void retranslate();
    void updateFonts();
    void applyPalette();
    void showState();
    void showMessageOrPath();
    void layOut();
    void updateLock();

    [[nodiscard]] ElidedLabel &shownLabel() const { return m_flashMessage ? *m_flashLabel : *m_pathLabel; }
    [[nodiscard]] QString positionTitle() const;
    [[nodiscard]] QString caretHint() const { return m_state && m_state->caretHint ? m_state->caretHint() : QString(); }
    void showStatistics();
    void updateStatistics();
    void showEncoding();
    void showLineEnding();
    void showIndentation();
    [[nodiscard]] QString hintFor(const QWidget &control) const;
    void showMissingCharacters();
    void chooseLanguage(int index);
    void chooseEncoding(int index);
    void chooseLineEnding(int index);
    void chooseIndentation(int index);
    void chooseDictionary(int index);
    void updateSpelling();

    Scheduler &m_scheduler;
    const Theme *m_theme;
    std::optional<State> m_state;
    DelayedTask m_flashWork;
    std::optional<QString> m_flashMessage;
    std::vector<Language> m_sortedLanguages;

    VimBadge *m_vimBadge;
    /// Before the path of a file that is read-only.
    QLabel *m_lock;
    ElidedLabel *m_pathLabel;
    /// In its place while there is a message.
    ElidedLabel *m_flashLabel;
    PopUpButton *m_spellingPopUp;
    FlatButton *m_statisticsButton;
    /// While it is open.
    QPointer<StatisticsPopUp> m_statisticsPopUp;
    /// Only while there are some.
    FlatButton *m_missingButton;
    FlatButton *m_positionButton;
    PopUpButton *m_indentPopUp;
    TextIndentationMenu *m_textIndentationMenu;
    PopUpButton *m_lineEndingPopUp;
    PopUpButton *m_encodingPopUp;
    PopUpButton *m_languagePopUp;
    NotificationCenter::Token m_languageObserver;
    NotificationCenter::Token m_keyboardObserver;
};
