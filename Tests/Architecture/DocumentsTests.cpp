#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <regex>
#include <set>
#include <sstream>

// The documents must not promise what is gone, nor keep silent about what is there.

namespace {

namespace fs = std::filesystem;

const fs::path root(OMBREL_SOURCE_DIR);

std::string contents(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    EXPECT_TRUE(stream) << file;
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

/// The first group of every match.
std::set<std::string> matches(const std::string& text, const char* expression) {
    const std::regex pattern(expression);
    std::set<std::string> found;
    for (std::sregex_iterator match(text.begin(), text.end(), pattern), end; match != end; ++match)
        found.insert((*match)[1]);
    return found;
}

TEST(Documents, TheManualNamesEveryVerbAndOption) {
    const std::string source = contents(root / "OmbrelRecord/Entry/CommandLine.cpp");
    const std::string manual =
        std::regex_replace(contents(root / "Packaging/ombrel-record.1"), std::regex(R"(\\-)"), "-");

    const std::set<std::string> verbs = matches(source, R"re(add_subcommand\("([a-z-]+)")re");
    std::set<std::string> options = matches(source, R"re("(?:-\w,)?(--[a-z-]+)")re");
    options.merge(matches(contents(root / "OmbrelRecord/Entry/Entry.cpp"), R"re("(--[a-z-]+)")re"));
    EXPECT_GE(verbs.size(), 4u);
    EXPECT_GE(options.size(), 8u);

    const std::size_t from = manual.find("\n.SH VERBS");
    const std::size_t to = manual.find("\n.SH OPTIONS");
    ASSERT_TRUE(from < to && to != std::string::npos);
    const std::set<std::string> described =
        matches(manual.substr(from, to - from), R"re(\n\.TP\n\.BI? ([a-z-]+))re");
    EXPECT_EQ(described, verbs);

    const std::set<std::string> named = matches(manual, R"re((--[a-z-]+))re");
    EXPECT_THAT(named, testing::IsSupersetOf(options));
    for (const std::string& option : named)
        EXPECT_TRUE(options.contains(option) || option == "--help")
            << option << " is no option of the program";
}

TEST(Documents, WhatTheyPointToIsThere) {
    for (const char* document : {"README.md", "ARCHITECTURE.md", "CONTRIBUTING.md"}) {
        const std::string text = contents(root / document);
        std::set<std::string> targets = matches(text, R"re(\]\(([^)#:]+)\))re");
        targets.merge(matches(text, R"re((?:src|href)="([^"#:]+)")re"));
        targets.merge(matches(
            text,
            R"re(`((?:RecordCore|OmbrelRecord|Tests|Benchmarks|Scripts|Packaging)(?:/[A-Za-z0-9._-]+)+)/?)re"));
        for (const std::string& target : targets)
            EXPECT_TRUE(fs::exists(root / target)) << document << " points to " << target;
    }
}

} // namespace
