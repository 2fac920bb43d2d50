// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimSavedState.h"

#include "Settings/Preferences.h"
#include "Vim/VimFileMarks.h"
#include "Vim/VimRegisters.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr auto registersKey = "registers"_L1;
constexpr auto marksKey = "marks"_L1;
constexpr auto nameKey = "name"_L1;

using Contents = VimRegisterContents;

struct Type {
    QLatin1StringView name;
    bool isLinewise;
    bool isBlock;
};
constexpr Type types[]{{"characters"_L1, false, false}, {"lines"_L1, true, false}, {"block"_L1, false, true}};

/// Of one character; else 0.
char16_t nameOf(const QJsonObject &object)
{
    const QString name = object[nameKey].toString();
    return name.size() == 1 ? name.front().unicode() : u'\0';
}

QJsonObject toJson(char16_t name, const Contents &contents)
{
    const auto *type = std::ranges::find_if(
        types, [&](const Type &each) { return each.isLinewise == contents.isLinewise && each.isBlock == contents.isBlock; });
    QJsonObject object{{nameKey, QString(QChar(name))}, {"text"_L1, contents.text.toString()}};
    object["type"_L1] = type == std::end(types) ? types[0].name : type->name;
    if (contents.isBlock) {
        object["width"_L1] = contents.blockWidth;
    }
    return object;
}

std::optional<Contents> contentsFrom(const QJsonObject &object)
{
    const QString text = object["text"_L1].toString();
    const auto *type = std::ranges::find(types, object["type"_L1].toString(), &Type::name);
    if (text.isEmpty() || text.size() > VimSavedState::largestRegister || type == std::end(types)) {
        return std::nullopt;
    }
    const qsizetype width = type->isBlock ? qsizetype(object["width"_L1].toInteger()) : 0;
    return Contents{.text = Rope(text),
                    .isLinewise = type->isLinewise,
                    .isBlock = type->isBlock,
                    .blockWidth = std::clamp(width, qsizetype(0), VimSavedState::largestRegister)};
}

QJsonObject toJson(const VimFileMarks::Mark &mark)
{
    return {
        {nameKey, QString(QChar(mark.name))}, {"path"_L1, mark.place.text}, {"line"_L1, mark.place.line}, {"column"_L1, mark.place.column}};
}

std::optional<VimFileMarks::Place> placeFrom(const QJsonObject &object)
{
    const QString path = object["path"_L1].toString();
    if (!QDir::isAbsolutePath(path)) {
        return std::nullopt;
    }
    const auto number = [&](QLatin1StringView key, qsizetype least) { return std::max(qsizetype(object[key].toInteger()), least); };
    return VimFileMarks::Place{
        .text = path, .title = QFileInfo(path).fileName(), .line = number("line"_L1, 1), .column = number("column"_L1, 0)};
}

} // namespace

VimSavedState::VimSavedState(const QString &file, const Services &services) : m_services(services), m_file(file, services.workers)
{
    load();
    m_preferences = services.notifications.observe(Preferences::didChange, nullptr, [this] { load(); });
    services.registers.whenChanged([this] { noteChange(); });
    services.marks.whenChanged([this] { noteChange(); });
}

VimSavedState::~VimSavedState()
{
    m_services.registers.whenChanged({});
    m_services.marks.whenChanged({});
    write();
}

bool VimSavedState::isKept() const
{
    return m_services.preferences.value(Settings::vimExact);
}

void VimSavedState::load()
{
    if (!isKept() || std::exchange(m_isLoaded, true)) {
        return;
    }
    m_written = m_file.content(largestFile);
    const QJsonObject kept = QJsonDocument::fromJson(m_written).object();
    for (const auto &value : kept[registersKey].toArray()) {
        const char16_t name = nameOf(value.toObject());
        if (const auto contents = contentsFrom(value.toObject()); contents && name != 0) {
            m_services.registers.restore(name, *contents);
        }
    }
    for (const auto &value : kept[marksKey].toArray()) {
        if (const auto place = placeFrom(value.toObject())) {
            m_services.marks.restore(nameOf(value.toObject()), *place);
        }
    }
}

void VimSavedState::noteChange()
{
    m_hasChanged = true;
    if (isKept() && !m_pending.isPending()) {
        m_pending = m_services.scheduler.after(delay, [this] { write(); });
    }
}

void VimSavedState::write()
{
    if (!isKept() || !m_isLoaded || !m_hasChanged) {
        return;
    }
    if (const QByteArray content = toJson(); content != m_written) {
        m_written = content;
        m_file.write(content);
    }
}

QByteArray VimSavedState::toJson() const
{
    QJsonArray registers;
    const auto add = [&](char16_t name, const Contents &contents) {
        if (!contents.isPrivate && !contents.text.isEmpty() && contents.text.length() <= largestRegister) {
            registers << ::toJson(name, contents);
        }
    };
    for (const auto &[name, contents] : m_services.registers.named()) {
        add(name, contents);
    }
    add(VimRegisters::unnamedName, m_services.registers.unnamed());
    QJsonArray marks;
    for (const VimFileMarks::Mark &mark : m_services.marks.all()) {
        if (!mark.place.isPrivate && QDir::isAbsolutePath(mark.place.text)) {
            marks << ::toJson(mark);
        }
    }
    return QJsonDocument(QJsonObject{{registersKey, registers}, {marksKey, marks}}).toJson(QJsonDocument::Compact);
}
