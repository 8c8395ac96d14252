#include "Platform/FileURL.h"
#include "Printers.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <filesystem>

namespace torvo::test {
namespace {

using Kind = FileURL::Kind;

TEST(FileURL, isTheRootByDefault) {
    EXPECT_EQ(FileURL().path(), "/");
    EXPECT_TRUE(FileURL().hasDirectoryPath());
    EXPECT_EQ(FileURL().absoluteString(), "file:///");
    EXPECT_EQ(FileURL().lastPathComponent(), "/");
    EXPECT_EQ(FileURL(), FileURL("/"));
}

TEST(FileURL, changesOnlySlashesOfPaths) {
    struct Row {
        const char* path;
        const char* expected;
        bool isDirectory;
    };
    const Row rows[] = {
        {"/a/b.wav", "/a/b.wav", false},       {"/a/b/", "/a/b", true}, {"//a///b", "/a/b", false},
        {"/a/./b/../c", "/a/./b/../c", false}, {"/", "/", true},        {"///", "/", true},
    };
    for (const auto& row : rows) {
        const FileURL url(row.path);
        EXPECT_EQ(url.path(), row.expected) << row.path;
        EXPECT_EQ(url.hasDirectoryPath(), row.isDirectory) << row.path;
    }
    EXPECT_TRUE(FileURL::directory("/a").hasDirectoryPath());
}

TEST(FileURL, relativePathsStartInTheCurrentFolder) {
    EXPECT_EQ(FileURL("kit/a.wav").path(), std::filesystem::current_path() / "kit/a.wav");
}

TEST(FileURL, distinguishesAFolderFromAFileOfTheSamePath) {
    EXPECT_NE(FileURL("/a"), FileURL::directory("/a"));
    EXPECT_EQ(FileURL("/a/"), FileURL::directory("/a"));
}

TEST(FileURL, percentEncodesReservedCharacters) {
    struct Row {
        const char* path;
        const char* text;
    };
    const Row rows[] = {
        {"/Kit/Kick 01.wav", "file:///Kit/Kick%2001.wav"},
        {"/a#b?c%d", "file:///a%23b%3Fc%25d"},
        {"/\"quoted\"'single'", "file:///%22quoted%22'single'"},
        {"/-._~!$&'()*+,;=:@", "file:///-._~!$&'()*+,;=:@"},
        {"/[x]{y}|\\^`<>", "file:///%5Bx%5D%7By%7D%7C%5C%5E%60%3C%3E"},
        {"/ドラム", "file:///%E3%83%89%E3%83%A9%E3%83%A0"},
        {"/\xFF\x01\x7F", "file:///%FF%01%7F"},
        {"/line\nbreak\t", "file:///line%0Abreak%09"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(FileURL(row.path).absoluteString(), row.text);
        EXPECT_EQ(FileURL::parse(row.text), FileURL(row.path)) << row.text;
    }
    EXPECT_EQ(FileURL::directory("/My Kit").absoluteString(), "file:///My%20Kit/");
}

TEST(FileURL, readsEveryFormOfAFileURL) {
    struct Row {
        const char* text;
        const char* path;
        Kind kind;
    };
    const Row rows[] = {
        {"file:///a/b", "/a/b", Kind::file},
        {"file:/a/b", "/a/b", Kind::file},
        {"file://localhost/a/b", "/a/b", Kind::file},
        {"FILE://LocalHost/a/b/", "/a/b", Kind::directory},
        {"file:///", "/", Kind::directory},
        {"file:///a%20b", "/a b", Kind::file},
        {"file:///%c3%A9", "/é", Kind::file},
        {"file:///é", "/é", Kind::file},
        {"file:////a", "/a", Kind::file},
        {"file:///a%2Fb", "/a/b", Kind::file},
    };
    for (const auto& row : rows)
        EXPECT_EQ(FileURL::parse(row.text), FileURL(row.path, row.kind)) << row.text;
}

TEST(FileURL, refusesOtherURLs) {
    for (const auto* text : {"",
                             "/a/b",
                             "a",
                             "http://a/b",
                             "https:///a",
                             "file",
                             "file:",
                             "file://",
                             "file:a/b",
                             "file://host/a",
                             "file://localhost",
                             "file://localhostess/a",
                             "file:///a?b",
                             "file:///a#b",
                             "file:///a%",
                             "file:///a%2",
                             "file:///a%2G",
                             "file:///a%G2",
                             "file:///a%00b",
                             " file:///a"})
        EXPECT_EQ(FileURL::parse(text), std::nullopt) << text;
}

TEST(FileURL, splitsTheLastComponent) {
    struct Row {
        const char* path;
        const char* name;
        const char* extension;
        const char* stem;
    };
    const Row rows[] = {
        {"/Kit/Kick 01.wav", "Kick 01.wav", "wav", "Kick 01"},
        {"/Kit/Kick.01.WAV", "Kick.01.WAV", "WAV", "Kick.01"},
        {"/Kit/Kick", "Kick", "", "Kick"},
        {"/Kit/Kick.", "Kick.", "", "Kick."},
        {"/Kit/.hidden", ".hidden", "", ".hidden"},
        {"/Kit/.hidden.wav", ".hidden.wav", "wav", ".hidden"},
        {"/Kit/..wav", "..wav", "wav", "."},
        {"/Kit.d/Kick", "Kick", "", "Kick"},
        {"/Kit.d/", "Kit.d", "d", "Kit"},
        {"/K\xFF.wav", "K\uFFFD.wav", "wav", "K\uFFFD"},
        {"/", "/", "", "/"},
    };
    for (const auto& row : rows) {
        const FileURL url(row.path);
        EXPECT_EQ(url.lastPathComponent(), row.name);
        EXPECT_EQ(url.pathExtension(), row.extension) << row.path;
        EXPECT_EQ(url.lastPathComponentWithoutExtension(), row.stem) << row.path;
    }
}

TEST(FileURL, showsInvalidUTF8AsReplacementCharacters) {
    EXPECT_EQ(FileURL("/a\xFF/b").shownPath(), "/a\uFFFD/b");
    EXPECT_EQ(FileURL("/a\xFF/b").nativePath(), "/a\xFF/b");
}

TEST(FileURL, appendsAndDeletesComponents) {
    const FileURL kit("/Kit");
    EXPECT_EQ(kit.appendingPathComponent("a.wav"), FileURL("/Kit/a.wav"));
    EXPECT_EQ(kit.appendingPathComponent("Kicks", Kind::directory),
              FileURL::directory("/Kit/Kicks"));
    EXPECT_EQ(kit.appendingPathComponent("/etc"), FileURL("/Kit/etc"))
        << "a leading slash does not make it absolute";
    EXPECT_EQ(FileURL().appendingPathComponent("a"), FileURL("/a"));
    EXPECT_EQ(FileURL("/Kit/a.wav").deletingLastPathComponent(), FileURL::directory("/Kit"));
    EXPECT_EQ(FileURL("/a").deletingLastPathComponent(), FileURL());
    EXPECT_EQ(FileURL().deletingLastPathComponent(), FileURL());
}

TEST(FileURL, standardizesLexically) {
    struct Row {
        const char* path;
        FileURL expected;
    };
    const Row rows[] = {
        {"/a/./b/../c", FileURL("/a/c")},
        {"/../..", FileURL("/")},
        {"/a/..", FileURL("/")},
        {"/a/b/.", FileURL("/a/b")},
        {"/a/b/./", FileURL::directory("/a/b")},
        {"/a/...", FileURL("/a/...")},
        {"/a/..b", FileURL("/a/..b")},
    };
    for (const auto& row : rows)
        EXPECT_EQ(FileURL(row.path).standardized(), row.expected) << row.path;
}

/// A path of arbitrary bytes except NUL, with slashes anywhere.
rc::Gen<std::string> anyPath() {
    return rc::gen::map(
        rc::gen::container<std::string>(rc::gen::suchThat(
            rc::gen::oneOf(rc::gen::arbitrary<char>(), rc::gen::element('/', '%', '.', '#', ' ')),
            [](char c) { return c != '\0'; })),
        [](const std::string& text) { return "/" + text; });
}

RC_GTEST_PROP(FileURL, roundTripsAnyBytes, ()) {
    const auto path = *anyPath();
    const auto kind = *rc::gen::element(Kind::file, Kind::directory);
    const FileURL url(path, kind);
    const auto text = url.absoluteString();
    RC_ASSERT(FileURL::parse(text) == url);
    RC_ASSERT(FileURL::parse(text)->absoluteString() == text);
    for (const char c : text)
        RC_ASSERT(c > ' ' && c < 0x7F);
}

RC_GTEST_PROP(FileURL, comparesLikeTheURLStrings, ()) {
    const FileURL left(*anyPath());
    const FileURL right(*anyPath());
    RC_ASSERT((left == right) == (left.absoluteString() == right.absoluteString()));
}

RC_GTEST_PROP(FileURL, parsesOrRefusesAnyText, (const std::string& text)) {
    const auto url = FileURL::parse("file:///" + text);
    if (url)
        RC_ASSERT(FileURL::parse(url->absoluteString()) == url);
}

RC_GTEST_PROP(FileURL, standardizingIsIdempotent, ()) {
    const auto once = FileURL(*anyPath()).standardized();
    RC_ASSERT(once.standardized() == once);
    RC_ASSERT(once.nativePath().find("//") == std::string::npos);
}

} // namespace
} // namespace torvo::test
