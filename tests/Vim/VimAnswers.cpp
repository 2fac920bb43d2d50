// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "VimAnswers.h"

#include "VimFixture.h"

using namespace Qt::StringLiterals;

namespace {

VimKeyEvent eventOf(QStringView key)
{
    const char16_t unit = key.front().unicode();
    // 0x1C to 0x1F are Control with the signs that follow Z.
    const bool isControl = unit < u' ' && unit != u'\r' && unit != VimKey::escape;
    const bool typesNothing =
        isControl || unit == VimKey::escape || unit == VimKey::backspace || (unit >= VimKey::up && unit <= VimKey::pageDown);
    const QString character = isControl ? QString(QChar(unit + u'@')).toLower() : key.toString();
    return {.characters = typesNothing ? QString() : character, .charactersIgnoringModifiers = character, .control = isControl};
}

void press(VimView &view, const QString &keys)
{
    for (qsizetype place = 0; place < keys.size();) {
        const QStringView key = QStringView(keys).mid(place, keys[place].isHighSurrogate() ? 2 : 1);
        place += key.size();
        const VimKeyEvent event = eventOf(key);
        view.handle(event, event.characters);
    }
}

QString modeName(VimEngine::Mode mode)
{
    switch (mode) {
    case VimEngine::Mode::normal:
        return u"n"_s;
    case VimEngine::Mode::insert:
        return u"i"_s;
    case VimEngine::Mode::visual:
        return u"v"_s;
    case VimEngine::Mode::visualLine:
        return u"V"_s;
    case VimEngine::Mode::commandLine:
        return u"c"_s;
    case VimEngine::Mode::visualBlock:
        return u"\u0016"_s;
    }
    return {};
}

/// As Vim keeps them: lines end in LF whatever ends those of the text, and all of them do.
QString plainText(const VimRegisterContents &contents)
{
    QString text = contents.text.toString().replace(u"\r\n"_s, u"\n"_s);
    return contents.isLinewise && !text.endsWith(u'\n') ? text + u'\n' : text;
}

QJsonObject registersOf(const VimView &view)
{
    QJsonObject all;
    for (const QChar name : u"\"0123456789-abc"_s) {
        const VimRegisterContents contents = view.registers.contents(name == u'"' ? std::nullopt : std::optional<char16_t>(name.unicode()));
        const QString text = plainText(contents);
        if (!text.isEmpty() || contents.isBlock) {
            all[QString(name)] = QJsonObject{{u"text"_s, text},
                                             {u"type"_s, contents.isLinewise ? u"lines"_s
                                                         : contents.isBlock  ? u"block"_s
                                                                             : u"characters"_s}};
        }
    }
    return all;
}

} // namespace

QJsonObject VimAnswers::answer(const QJsonObject &question)
{
    VimOptions options(VimKeymapPreset::plain);
    options.isExact = true;
    VimView view(question[u"text"_s].toString(), options);
    VimHistory history;
    view.engine.setHistory(history, [] { return VimHistory::Kept::whileRunning; });
    const qsizetype caret = question[u"caret"_s].toInteger();
    view.select({caret, 0}, caret);
    view.engine.settleCaret();
    press(view, question[u"keys"_s].toString());

    const VimEngine::Mode mode = view.engine.mode();
    QJsonObject result{
        {u"text"_s, view.string()}, {u"mode"_s, view.engine.isReplacing() ? u"R"_s : modeName(mode)}, {u"registers"_s, registersOf(view)}};
    const bool isVisual = mode == VimEngine::Mode::visual || mode == VimEngine::Mode::visualLine || mode == VimEngine::Mode::visualBlock;
    const TextSelection ends = view.engine.visualEnds();
    result[u"caret"_s] = isVisual ? ends.caret : view.selected.location;
    if (isVisual) {
        const bool isOfLines = mode == VimEngine::Mode::visualLine;
        result[u"anchor"_s] = isOfLines ? view.text().lineStart(view.text().lineAt(ends.anchor)) : ends.anchor;
    }
    return result;
}
