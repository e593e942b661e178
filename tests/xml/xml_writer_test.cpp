#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "tests/xml/xml_support.h"

namespace {

TEST(XmlWriter, HasAReadableAndACompactForm) {
    XMLNode node("<a b='1'><c>x</c></a>");
    EXPECT_EQ(Readable(node), "<a b=\"1\">\n\t<c>x</c>\n</a>");
    EXPECT_EQ(node.Write(), "<a b=\"1\"><c>x</c></a>");
    EXPECT_EQ(node.Write("|", "--", "> "), "> <a b=\"1\">|> --<c>x</c>|> </a>");
    EXPECT_EQ(Readable(XMLNode("<a/>")), "<a/>");
}

TEST(XmlWriter, AnElementThatStartsWithTextHasNoLineEnds) {
    XMLNode node = Node(XMLNode::kElement, "a");
    node.AddChild(Node(XMLNode::kText, "1"));
    node.AddChild(Node(XMLNode::kText, "2"));
    node.AddChild(XMLNode("<b><c/></b>"));
    node.AddChild(Node(XMLNode::kText, "3"));
    EXPECT_EQ(Readable(node), "<a>1 2\t<b>\n\t\t<c/>\n\t</b>3</a>");
    node.children.erase(node.children.begin(), node.children.begin() + 2);
    EXPECT_EQ(Readable(node), "<a>\n\t<b>\n\t\t<c/>\n\t</b>\n3\n</a>");
}

TEST(XmlWriter, WritesAttributesInOrderOfTheirBytes) {
    XMLNode node = Node(XMLNode::kElement, "a");
    for (const char* name : {"b", "\xE5", "B", "a"})
        node.attributes[name] = "";
    EXPECT_EQ(node.Write(), "<a B=\"\" a=\"\" b=\"\" \xE5=\"\"/>");
}

TEST(XmlWriter, ChoosesTheQuoteThatTheValueLacks) {
    const std::pair<const char*, const char*> values[] = {
        {"a'b", "\"a'b\""},
        {"a\"b", "'a\"b'"},
        {"\"a\"b'c\"", "\"&#34;a&#34;b'c&#34;\""},
    };
    for (const auto& [value, written] : values) {
        XMLNode node = Node(XMLNode::kElement, "n");
        node.attributes["v"] = value;
        EXPECT_EQ(node.Write(), std::string("<n v=") + written + "/>");
        EXPECT_EQ(Shape(XMLNode(node.Write())), Shape(node));
    }
}

TEST(XmlWriter, EscapesWhatIsNotPrintableAscii) {
    std::string allBytes;
    for (int byte = 0; byte < 256; ++byte)
        allBytes += static_cast<char>(byte);
    const std::string written = Node(XMLNode::kText, allBytes).Write();
    EXPECT_TRUE(written.starts_with("&#0;&#1;&#2;"));
    EXPECT_NE(written.find("&#31; !\"#$%&#38;'()*+,-./0123456789:;&#60;=>?@"), std::string::npos);
    EXPECT_NE(written.find("z{|}~&#127;&#128;"), std::string::npos);
    EXPECT_TRUE(written.ends_with("&#254;&#255;"));
}

TEST(XmlWriter, WritesCommentsAndNothingForOtherKinds) {
    XMLNode node = Node(XMLNode::kElement, "a");
    node.AddChild(Node(XMLNode::kComment, "x<"));
    node.AddChild(Node(3, "self-closed is no kind of node"));
    EXPECT_EQ(node.Write(), "<a><!-- x&#60;-- ></a>");
    EXPECT_EQ(Shape(XMLNode(node.Write())), "1'a'[4'-- x<-- ']");
    EXPECT_EQ(Node(XMLNode::kUnset, "x").Write("\n", "\t", "\t"), "");
}

}  // namespace
