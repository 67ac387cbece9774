// The XML reader: queries, and documents that try to do harm.
#include "NRenderUtl/host/hostxml.h"

#include <unistd.h>

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

namespace {

TEST(Xml, FindsElementsInDocumentOrderAndExpandsNoEntities) {
    std::optional<XmlDocument> parsed = XmlDocument::parse(
        R"(<!DOCTYPE r [<!ENTITY a "aa"><!ENTITY f SYSTEM "file:///proc/self/comm">]>
        <r><!-- <m n="comment"/> --><deep>m<m n="1" note="&lt;&#xE9;&quot;&a;&f;"/>text<b n="2"><a n="9"/></b>
        <![CDATA[<c n="8"/>]]><c n="3"/></deep><m n="4"/></r>)");
    ASSERT_TRUE(parsed);
    const XmlDocument document = std::move(*parsed);
    const XmlElement first = document.findFirst("m");
    ASSERT_TRUE(first);
    EXPECT_EQ(first.attribute("note"), GuString(L"<\u00E9\"&a;&f;"));
    EXPECT_FALSE(first.attribute("absent"));
    std::wstring order;
    for (XmlElement e = first; e; e = e.nextSibling())
        order += e.attribute("n")->Wide();
    EXPECT_EQ(order, L"123");
    EXPECT_TRUE(document.findFirst("r").child("deep").child("b"));
    EXPECT_FALSE(document.findFirst("r").child("b")) << "a grandchild is no child";
    EXPECT_FALSE(document.findFirst("text") || XmlElement().child("m") || XmlElement().nextSibling());
}

TEST(Xml, ThatDoesNotParseIsRefused) {
    for (const char* text :
         {"", "text", "<a>", "<a></b>", "<a b=c/>", "<a b='c'", "<a><!-- </a>", "<a", "<!DOCTYPE a ["})
        EXPECT_FALSE(XmlDocument::parse(text)) << text;
    const std::filesystem::path file =
        std::filesystem::temp_directory_path() / (std::to_string(::getpid()) + "-\u00E9.xml");
    EXPECT_FALSE(XmlDocument::load(GuString(file.native()))) << "missing";
    std::ofstream(file) << "<r n='1'/>" << std::string((std::size_t{64} << 20) - 10, ' ');
    EXPECT_TRUE(XmlDocument::load(GuString(file.native()))) << "as large as allowed";
    std::ofstream(file, std::ios::app) << ' ';
    EXPECT_FALSE(XmlDocument::load(GuString(file.native()))) << "one byte more";
    std::filesystem::remove(file);
}

// A search that recursed would need more than the stack holds.
TEST(Xml, MayNestDeeply) {
    std::string open, close;
    for (int i = 0; i < 1'000'000; ++i)
        open += "<d>", close += "</d>";
    const std::optional<XmlDocument> document = XmlDocument::parse(open + "<m/>" + close);
    ASSERT_TRUE(document);
    EXPECT_TRUE(document->findFirst("m"));
    EXPECT_FALSE(document->findFirst("absent"));
}

} // namespace
