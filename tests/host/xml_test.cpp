// The XML reader: queries, and documents that try to do harm.
#include "NRenderUtl/host/hostxml.h"

#include <unistd.h>

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace {

TEST(Xml, FindsElementsInDocumentOrder) {
    std::optional<XmlDocument> parsed = XmlDocument::parse(R"(<?xml version="1.0"?>
        <root><!-- <m n="comment"/> --><group><deep>text<m n="1" note="&lt;&#xE9;&quot;"/></deep></group>
        <m n="2"/></root>)");
    ASSERT_TRUE(parsed);
    const XmlDocument document = std::move(*parsed);
    const XmlElement first = document.findFirst("m");
    ASSERT_TRUE(first);
    EXPECT_EQ(first.attribute("n"), GuString(L"1"));
    EXPECT_EQ(first.attribute("note"), GuString(L"<\u00E9\""));
    EXPECT_FALSE(first.attribute("absent"));
    EXPECT_FALSE(document.findFirst("text"));
    EXPECT_TRUE(document.findFirst("root").child("group").child("deep"));
    EXPECT_FALSE(document.findFirst("root").child("deep")) << "a grandchild is no child";
    EXPECT_FALSE(XmlElement().child("m"));
    EXPECT_FALSE(XmlElement().nextSibling());
}

TEST(Xml, WalksSiblingsOfAnyName) {
    const std::optional<XmlDocument> document = XmlDocument::parse(
        "<r><a i='0'/>text<!-- x --><b i='1'><a i='9'/></b><![CDATA[<c/>]]><c i='2'/></r>");
    ASSERT_TRUE(document);
    std::wstring order;
    for (XmlElement e = document->findFirst("a"); e; e = e.nextSibling())
        order += e.attribute("i")->Wide();
    EXPECT_EQ(order, L"012");
}

TEST(Xml, ThatDoesNotParseIsRefused) {
    for (const char* text :
         {"", "text", "<a>", "<a></b>", "<a b=c/>", "<a b='c'", "<a><!-- </a>", "<a", "<!DOCTYPE a ["})
        EXPECT_FALSE(XmlDocument::parse(text)) << text;
}

TEST(Xml, EntitiesOfTheDocumentAreNotExpanded) {
    const fs::path secret = fs::temp_directory_path() / (std::to_string(::getpid()) + "-nru-secret.txt");
    std::ofstream(secret) << "secret";
    const std::optional<XmlDocument> document = XmlDocument::parse(
        "<!DOCTYPE r [<!ENTITY a \"aaaa\"><!ENTITY b \"&a;&a;\"><!ENTITY f SYSTEM \"file://" +
        secret.string() + "\">]><r v='&b;&f;'/>");
    fs::remove(secret);
    ASSERT_TRUE(document);
    EXPECT_EQ(document->findFirst("r").attribute("v"), GuString(L"&b;&f;"));
}

// A search that recursed would need more than the stack holds.
TEST(Xml, MayNestDeeply) {
    constexpr int kDepth = 1'000'000;
    std::string text;
    for (int i = 0; i < kDepth; ++i)
        text += "<d>";
    text += "<m/>";
    for (int i = 0; i < kDepth; ++i)
        text += "</d>";
    const std::optional<XmlDocument> document = XmlDocument::parse(text);
    ASSERT_TRUE(document);
    EXPECT_TRUE(document->findFirst("m"));
    EXPECT_FALSE(document->findFirst("absent"));
}

TEST(Xml, FileIsLoadedUpToALimit) {
    const fs::path file = fs::temp_directory_path() / (std::to_string(::getpid()) + "-nru-\u00E9.xml");
    const GuStringFileName name(file.string());
    constexpr std::size_t kLimit = std::size_t{64} << 20;
    std::ofstream(file) << "<r n='1'/>" << std::string(kLimit - 10, ' ');
    EXPECT_TRUE(XmlDocument::load(name)) << "as large as allowed";
    std::ofstream(file, std::ios::app) << ' ';
    EXPECT_FALSE(XmlDocument::load(name)) << "one byte more";
    fs::remove(file);
    EXPECT_FALSE(XmlDocument::load(name)) << "missing";
    EXPECT_FALSE(XmlDocument::load(GuStringFileName(fs::temp_directory_path().string()))) << "a folder";
}

} // namespace
