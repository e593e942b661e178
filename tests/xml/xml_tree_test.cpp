#include <gtest/gtest.h>

#include "tests/xml/shape.h"

namespace {

TEST(XmlTree, ChildrenAreAddedUnlessTheyHaveNeitherNameNorChildren) {
    EXPECT_EQ(Shape(XMLNode("a", 4294967295u)), "1'a'[2'4294967295']");
    EXPECT_EQ(Shape(XMLNode("a", "")), "1'a'");
    XMLNode parent = Node(XMLNode::kElement, "p");
    EXPECT_EQ(&parent.AddChild(Node(XMLNode::kText, "")), &parent);
    XMLNode unnamed = Node(XMLNode::kElement, "");
    unnamed.AddChild(Node(XMLNode::kText, "x"));
    EXPECT_EQ(parent.AddChild(unnamed).name, "");
    const XMLNode* const added = &parent.AddChild(Node(XMLNode::kElement, "c"));
    EXPECT_EQ(added, &parent.Child(1));
    EXPECT_EQ(Shape(parent), "1'p'[1''[2'x'] 1'c']");
    parent.Clear();
    EXPECT_EQ(Shape(parent), "1''");
}

// All misses share an empty node, also after somebody wrote to it.
TEST(XmlTree, LookupsGoByWholeNameAndAnyKindAndMissesReadAsEmptyAllTheWay) {
    XMLNode node("<a><x i='0'/>x<xx/><x i='1'/>y</a>");
    const XMLNode& readOnly = node;
    EXPECT_EQ(node.Count("x"), 3);
    EXPECT_EQ(node.Child("x", 1).kind, XMLNode::kText);
    EXPECT_EQ(node.Child("x", 2).attributes["i"], "1");
    EXPECT_EQ(readOnly.Child(2).name, "xx");
    EXPECT_EQ(node.Text(), "x");
    for (int round = 0; round < 2; ++round) {
        for (const std::int32_t missing : {3, -1, INT32_MIN, INT32_MAX})
            EXPECT_EQ(&readOnly.Child("x", missing), &node.Child("none")) << missing;
        EXPECT_EQ(&readOnly.Child(-1), &node.Child(5));
        EXPECT_EQ(readOnly.Child("y").Child("z").Text(), "");
        for (XMLNode* missing : {&node.Child("none"), &node.Child(9)}) {
            EXPECT_EQ(Shape(*missing), "0''");
            *missing = XMLNode("<none spoilt='yes'><none/></none>");
        }
    }
}

TEST(XmlTree, RemoveChildComparesAllButTheChildren) {
    XMLNode node("<a><b k='1'/><b k='2'>x</b><b k='2'/>b</a>");
    EXPECT_FALSE(node.RemoveChild(XMLNode("<b/>")) || node.RemoveChild(XMLNode("<b k='3'/>")));
    EXPECT_TRUE(node.RemoveChild(XMLNode("<b k='2'/>")));
    EXPECT_TRUE(node.RemoveChild(Node(XMLNode::kText, "b")));
    EXPECT_TRUE(node.RemoveChild(node.Child(0)));
    EXPECT_EQ(node.Write(), R"(<a><b k="2"/></a>)");
}

TEST(XmlTree, ANodeCanBeAssignedFromAndToItsOwnParts) {
    const XMLNode original("<a><b><c/></b><d k='1'/></a>");
    XMLNode node = original;
    node = *&node;
    EXPECT_EQ(Shape(node), Shape(original));
    node.Child("b") = node;
    EXPECT_EQ(node.Write(), R"(<a><a><b><c/></b><d k="1"/></a><d k="1"/></a>)");
    node = node.Child("a").Child("b");
    node.AddChild(node).AddChild(node);
    EXPECT_EQ(node.Write(), "<b><c/><b><c/><b><c/><b><c/></b></b></b></b>");
}

TEST(XmlWriter, HasAReadableAndACompactFormWithoutLineEndsInText) {
    const XMLNode node("<a b='1'><c>x</c></a>");
    EXPECT_EQ(node.Write(), "<a b=\"1\"><c>x</c></a>");
    EXPECT_EQ(node.Write("|", "--", "> "), "> <a b=\"1\">|> --<c>x</c>|> </a>");
    EXPECT_EQ(Readable(XMLNode("<a/>")), "<a/>");
    XMLNode mixed = Node(XMLNode::kElement, "a");
    for (const XMLNode& child : {Node(2, "1"), Node(2, "2"), XMLNode("<b><c/></b>"), Node(2, "3")})
        mixed.AddChild(child);
    EXPECT_EQ(Readable(mixed), "<a>1 2\t<b>\n\t\t<c/>\n\t</b>3</a>");
    mixed.children.erase(mixed.children.begin(), mixed.children.begin() + 2);
    EXPECT_EQ(Readable(mixed), "<a>\n\t<b>\n\t\t<c/>\n\t</b>\n3\n</a>");
    mixed.Clear();
    mixed.AddChild(Node(XMLNode::kComment, "x<"));
    mixed.AddChild(Node(3, "self-closed is no kind of node"));
    EXPECT_EQ(mixed.Write(), "<><!-- x&#60;-- ></>");
}

TEST(XmlWriter, EscapesWhatIsNotPrintableAsciiAndChoosesTheQuoteThatTheValueLacks) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes += static_cast<char>(byte);
    const std::string written = Node(XMLNode::kText, bytes).Write();
    EXPECT_TRUE(written.starts_with("&#0;&#1;&#2;") && written.ends_with("&#254;&#255;"));
    EXPECT_NE(written.find("&#31; !\"#$%&#38;'()*+,-./0123456789:;&#60;=>?@"), std::string::npos);
    EXPECT_NE(written.find("z{|}~&#127;&#128;"), std::string::npos);
    XMLNode node = Node(XMLNode::kElement, "n");
    node.attributes = {{"b", "a'b"}, {"\xE5", "a\"b"}, {"B", "\"a\"b'c\""}, {"a", ""}};
    EXPECT_EQ(node.Write(), "<n B=\"&#34;a&#34;b'c&#34;\" a=\"\" b=\"a'b\" \xE5='a\"b'/>");
}

}  // namespace
