// The XML reader: queries, and documents that try to do harm.
#include "NRenderUtl/host/hostxml.h"

#include <gtest/gtest.h>

#include "tests/host/testfiles.h"

namespace {

TEST(Xml, FindsElementsInDocumentOrderAndExpandsNoEntities) {
    const std::optional<XmlDocument> document = XmlDocument::parse(
        R"(<!DOCTYPE r [<!ENTITY a "aa"><!ENTITY f SYSTEM "file:///proc/self/comm">]>
        <r><!-- <m n="comment"/> --><deep>m<m n="1" note="&lt;&#xE9;&quot;&a;&f;"/>text<b n="2"><a n="9"/></b>
        <![CDATA[<c n="8"/>]]><c n="3"/></deep><m n="4"/></r>)");
    ASSERT_TRUE(document);
    const XmlElement first = document->findFirst("m");
    ASSERT_TRUE(first);
    EXPECT_EQ(first.attribute("note"), GuString(L"<\u00E9\"&a;&f;"));
    EXPECT_FALSE(first.attribute("absent"));
    std::wstring order;
    for (XmlElement e = first; e; e = e.nextSibling())
        order += e.attribute("n")->Wide();
    EXPECT_EQ(order, L"123");
    EXPECT_TRUE(document->findFirst("r").child("deep").child("b"));
    EXPECT_FALSE(document->findFirst("r").child("b")) << "a grandchild is no child";
    EXPECT_FALSE(document->findFirst("text") || XmlElement().child("m") || XmlElement().nextSibling());
}

TEST(Xml, ThatDoesNotParseIsRefused) {
    for (const char* text :
         {"", "text", "<a>", "<a></b>", "<a b=c/>", "<a b='c'", "<a><!-- </a>", "<a", "<!DOCTYPE a ["})
        EXPECT_FALSE(XmlDocument::parse(text)) << text;
    const nrutest::TestFolder folder;
    EXPECT_FALSE(XmlDocument::load(folder.name("missing")));
    const std::string largest = "<r n='1'/>" + std::string((std::size_t{64} << 20) - 10, ' ');
    EXPECT_TRUE(XmlDocument::load(folder.write("r.xml", largest)));
    EXPECT_FALSE(XmlDocument::load(folder.write("r.xml", largest + ' '))) << "one byte more than allowed";
}

} // namespace
