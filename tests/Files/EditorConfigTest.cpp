// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Files/EditorConfig.h"

#include "GuardedFiles.h"
#include "TestFolder.h"

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

class EditorConfigTest : public testing::Test {
protected:
    EditorConfigTest() { folder.put(u".editorconfig"_s, "root = true\n[*]\nindent_size = 7\ncharset = latin1\n"); }

    [[nodiscard]] EditorConfig of(const QString &name) { return EditorConfig::of(folder.path(name), calls); }

    TestFolder folder;
    GuardedFiles calls;
};

} // namespace

TEST_F(EditorConfigTest, SaysWhatItsDocumentationSays)
{
    folder.put(u"project/.editorconfig"_s, R"(# top-most EditorConfig file
root = true

# Unix-style newlines with a newline ending every file
[*]
end_of_line = lf
insert_final_newline = true

# Matches multiple files with brace expansion notation
# Set default charset
[*.{js,py}]
charset = utf-8

# 4 space indentation
[*.py]
indent_style = space
indent_size = 4

# Tab indentation (no size specified)
[Makefile]
indent_style = tab

# Indentation override for all JS under lib directory
[lib/**.js]
indent_style = space
indent_size = 2

# Matches the exact files either package.json or .travis.yml
[{package.json,.travis.yml}]
indent_style = space
indent_size = 2
)");
    using Unit = Indentation::Unit;
    const EditorConfig every{.lineEnding = LineEnding::lf, .endsWithNewline = true};
    const auto with = [&every](auto change) {
        EditorConfig config = every;
        change(config);
        return config;
    };
    const auto indented = [](EditorConfig &config, int size) {
        config.indentStyle = Unit::spaces;
        config.indentSize = config.tabWidth = size;
    };
    const EditorConfig script = with([](EditorConfig &config) { config.charset = EditorConfig::Charset{TextEncoding::utf8}; });
    const std::vector<std::pair<QString, EditorConfig>> cases = {
        {u"a.txt"_s, every},
        {u"a.js"_s, script},
        {u"lib/not/there/a.js"_s, with([&](EditorConfig &config) { config = script, indented(config, 2); })},
        {u"a.py"_s, with([&](EditorConfig &config) { config = script, indented(config, 4); })},
        {u"Makefile"_s, with([](EditorConfig &config) { config.indentStyle = Unit::tab; })},
        {u"sub/package.json"_s, with([&](EditorConfig &config) { indented(config, 2); })},
    };
    for (const auto &[name, expected] : cases) {
        EXPECT_TRUE(of(u"project/"_s + name) == expected) << name.toStdString();
    }
}

TEST_F(EditorConfigTest, TheNearestSaysMost)
{
    folder.put(u"a/b/.editorconfig"_s,
               "\xEF\xBB\xBF[*]\r\nIndent_Style = TAB\r\ntab_width = 8\r\ncharset = utf-8-bom\r\nend_of_line = CRLF\r\n"
               "max_line_length = 100\r\ntrim_trailing_whitespace = True\r\n[*.md]\r\nmax_line_length = off\r\n"
               "trim_trailing_whitespace = false\r\nindent_size = unset\r\ntab_width = -1\r\nother = x\r\n");
    const EditorConfig text = of(u"a/b/c/x.txt"_s);
    EXPECT_EQ(text.indentStyle, Indentation::Unit::tab);
    EXPECT_EQ(text.indentSize, 7);
    EXPECT_EQ(text.tabWidth, 8);
    EXPECT_EQ(text.longestLine, 100);
    EXPECT_EQ(text.lineEnding, LineEnding::crlf);
    EXPECT_EQ(text.charset, (EditorConfig::Charset{TextEncoding::utf8, true}));
    EXPECT_EQ(text.trimsTrailingWhitespace, true);
    const EditorConfig page = of(u"a/b/x.md"_s);
    EXPECT_EQ(std::tuple(page.indentSize, page.tabWidth, page.longestLine), std::tuple(std::nullopt, std::nullopt, std::nullopt));
    EXPECT_EQ(page.trimsTrailingWhitespace, false);
}

TEST_F(EditorConfigTest, WhatCannotBeReadIsSaidAndHarmsNothing)
{
    EXPECT_EQ(of(u"x"_s).problem, QString());
    const QString damaged = folder.put(u"damaged/.editorconfig"_s, "[*]\nindent_size = 2\nwhat is this\n");
    const EditorConfig none = of(u"damaged/x"_s);
    EXPECT_EQ(none.problem, u".editorconfig is ignored: line 3 of “%1” is damaged."_s.arg(damaged));
    EXPECT_FALSE(none.indentSize);

    calls.secret = folder.put(u"secret/.editorconfig"_s, "");
    const EditorConfig outer = of(u"secret/x"_s);
    EXPECT_EQ(outer.problem, u".editorconfig is ignored: “%1” cannot be read."_s.arg(calls.secret));
    EXPECT_EQ(outer.indentSize, 7);
    folder.put(u"secret/project/.editorconfig"_s, "root=true\n");
    EXPECT_EQ(of(u"secret/project/x"_s).problem, QString()) << "it would not count anyway";

    folder.put(u"pipe/x"_s, "");
    ASSERT_EQ(::mkfifo(folder.path(u"pipe/.editorconfig"_s).toUtf8().constData(), S_IRUSR | S_IWUSR), 0);
    folder.put(u"large/.editorconfig"_s, QByteArray(EditorConfig::largestFile + 1, '\n'));
    for (const QString &name : {u"pipe"_s, u"large"_s}) {
        const EditorConfig config = of(name + u"/x"_s);
        EXPECT_TRUE(config.problem.contains(name + u"/.editorconfig” is not a file that can be read"_s)) << config.problem.toStdString();
        EXPECT_FALSE(config.indentSize);
    }
}
