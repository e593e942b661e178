#include <gtest/gtest.h>

#include "tvl/xml_node.h"

namespace {

using namespace std::string_literals;

// The tree as text that hides nothing: kind, name and attributes of every node, and its children.
// For trees of moderate depth.
std::string Shape(const XMLNode& node) {
    std::string shape = std::to_string(node.kind) + "'" + node.name + "'";
    for (const auto& [name, value] : node.attributes)
        shape += " " + name + "=" + value;
    if (node.children.empty()) return shape;
    for (const auto& child : node.children)
        shape += (child == node.children.front() ? "[" : " ") + Shape(*child);
    return shape + "]";
}

XMLNode Node(std::int32_t kind, std::string name) {
    XMLNode node;
    node.kind = kind;
    node.name = std::move(name);
    return node;
}

std::string Readable(const XMLNode& node) {
    return node.Write("\n", "\t", "");
}

std::string EveryByte() {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes += static_cast<char>(byte);
    return bytes;
}

TEST(XmlTree, ChildrenAreAddedUnlessTheyHaveNeitherNameNorChildren) {
    EXPECT_EQ(Shape(XMLNode("a", 4294967295u)), "1'a'[2'4294967295']");
    EXPECT_EQ(Shape(XMLNode("a", "")), "1'a'");
    XMLNode parent = Node(XMLNode::kElement, "p");
    EXPECT_EQ(&parent.AddChild(Node(XMLNode::kText, "")), &parent);
    EXPECT_EQ(parent.AddChild(XMLNode("", "x")).name, "");
    const XMLNode* const added = &parent.AddChild(Node(XMLNode::kElement, "c"));
    EXPECT_EQ(added, &parent.Child(1));
    EXPECT_EQ(Shape(parent), "1'p'[1''[2'x'] 1'c']");
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
    EXPECT_TRUE(node.RemoveChild(XMLNode("<b k='2'/>")) &&
                node.RemoveChild(Node(XMLNode::kText, "b")) && node.RemoveChild(node.Child(0)));
    EXPECT_EQ(node.Write(), R"(<a><b k="2"/></a>)");
}

TEST(XmlTree, ANodeCanBeAssignedFromAndToItsOwnParts) {
    XMLNode node("<a><b><c/></b><d k='1'/></a>");
    node = *&node;
    node.Child("b") = node;
    EXPECT_EQ(node.Write(), R"(<a><a><b><c/></b><d k="1"/></a><d k="1"/></a>)");
    node = node.Child("a").Child("b");
    node.AddChild(node).AddChild(node);
    EXPECT_EQ(node.Write(), "<b><c/><b><c/><b><c/><b><c/></b></b></b></b>");
}

// Each result with what was read, also on a failure, and the texts that give it.
TEST(XmlReader, ReadsWhatIsThereAndSaysWhereItFailed) {
    const std::pair<std::string, std::vector<std::string>> outcomes[] = {
        // A root is a tag; a declaration is skipped unread.
        {"2 0''", {"", "x<a/>", "</a>", "<!-- c --><a/>", "<?xml?></a>"}},
        {"5 0''", {"<?xml?>"}},
        {"0 1'a'", {"  <a/><b/>", "<?bad =?/>\n<a/>", "<a ?junk/>"}},
        // Tags are paired by their raw text.
        {"3 1'a'", {"<a>"}},
        {"4 1'a'", {"<a></a >", "<a><?pi?></a>"}},
        {"0 1'a'[1'a' 1'a']", {"<a></a/><a/></a>"}},
        {"4 1'a'[1'b']", {"<a><b/><c><d/></a>"}},
        {"5 1'a'[1'b']", {"<a><b/><c x></c></a>"}},
        {"3 1'a'[1'b' 2'\n']", {"<a><b/>\n"}},
        {"0 1'\xE5'", {"<&#229;></&#229;>"}},
        // There are no blanks around attributes.
        {"0 1'a' b=it's c=2", {"<a b=\"it's\"c='2'/>", "<a\tc='1'\r\nb='it&#x27;s' c='2'/>"}},
        {"5 1'a'", {"<a />", "<a b=c/>", "<a b ='c'/>", "<a b='c\"/>", "<a b='>'/>"}},
        {"5 1'a' b=c", {"<a b='c' />", "<a b='c' d/>"}},
        // Text is kept, white space ahead of tags is not.
        {"0 1'a'[1'b' 2' x ' 1'c']", {"<a> <b/> x <c/>\v\f</a>"}},
        {"3 1'a'[2'x']", {"<a>x\0</a>"s}},
        {"0 1'a'[4'[CDATA[x]]']", {"<a><![CDATA[x]]></a>"}},
        {"0 1'a'[4'-- 1/' 2' 2 -->']", {"<a><!-- 1/> 2 --></a>"}},
        // Numeric references are expanded once, to one byte each.
        {"0 1'a'[2'<&#65;A']",
         {"<a>&#60;&#38;#65;&#x41;</a>", "<a>&#60;&#38;#65;&#321;</a>",
          "<a>&#60;&#38;#65;&#65x</a>"}},
        {"0 1'a'[2'&amp; & &#;&#x;&#X41;&#']", {"<a>&amp; & &#;&#x;&#X41;&#</a>"}},
        {"0 1'a'[2'\xAF\x0Cx\0\xFF']"s, {"<a>&#xaF;&#12ab;x&#abc;&#99999999999999999999;</a>"}}};
    for (const auto& [outcome, texts] : outcomes) {
        for (const std::string& text : texts) {
            XMLNode node;
            const std::int32_t result = node.Parse(text);
            EXPECT_EQ(std::to_string(result) + ' ' + Shape(node), outcome) << text;
        }
    }
    // What the node held is gone, and its kind stays without a root.
    XMLNode node("<a b='c'>&#60;b/></a>");
    EXPECT_EQ(node.Parse(node.Text()), XMLNode::kParsed);
    EXPECT_EQ(node.Parse("x"), XMLNode::kNoRoot);
    EXPECT_EQ(Shape(node), "1''");
}

TEST(XmlWriter, HasAReadableAndACompactFormWithoutLineEndsInText) {
    const XMLNode node("<a b='1'><c>x</c></a>");
    EXPECT_EQ(node.Write(), "<a b=\"1\"><c>x</c></a>");
    EXPECT_EQ(node.Write("|", "--", "> "), "> <a b=\"1\">|> --<c>x</c>|> </a>");
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
    const std::string written = Node(XMLNode::kText, EveryByte()).Write();
    EXPECT_TRUE(written.starts_with("&#0;&#1;&#2;") && written.ends_with("&#254;&#255;"));
    EXPECT_NE(written.find("&#31; !\"#$%&#38;'()*+,-./0123456789:;&#60;=>?@"), std::string::npos);
    EXPECT_NE(written.find("z{|}~&#127;&#128;"), std::string::npos);
    XMLNode node = Node(XMLNode::kElement, "n");
    node.attributes = {{"b", "a'b"}, {"\xE5", "a\"b"}, {"B", "\"a\"b'c\""}, {"a", ""}};
    EXPECT_EQ(node.Write(), "<n B=\"&#34;a&#34;b'c&#34;\" a=\"\" b=\"a'b\" \xE5='a\"b'/>");
}

// Each at every place, also at the ends. There is no way to write a '>' in an attribute.
TEST(XmlLaws, EveryByteComesBackOutOfTextsAndAttributes) {
    XMLNode tree = Node(XMLNode::kElement, "tree");
    std::string bytes = EveryByte();
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        std::rotate(bytes.begin(), bytes.begin() + 1, bytes.end());
        XMLNode& child = tree.AddChild(XMLNode("n.-_\"';#?!\xE5", bytes));
        for (const std::size_t length : {std::size_t{0}, i % 32, bytes.size()})
            std::erase(child.attributes[std::to_string(length)] = bytes.substr(0, length), '>');
    }
    for (const std::string& text : {tree.Write(), Readable(tree)}) {
        XMLNode read;
        ASSERT_EQ(read.Parse(text), XMLNode::kParsed) << text;
        ASSERT_EQ(Shape(read), Shape(tree));
    }
}

constexpr int kMany = 1'000'000;

std::string Repeated(std::string_view text) {
    std::string all;
    for (int count = 0; count < kMany; ++count)
        all += text;
    return all;
}

TEST(XmlLaws, AMillionBelowOrBesideEachOtherAreReadCopiedWrittenAndDestroyed) {
    const std::string chain = Repeated("<a>") + "x" + Repeated("</a>");
    XMLNode read(chain);
    EXPECT_TRUE(XMLNode(read).Write() == chain);
    read = read.Child(0);
    read.Clear();
    EXPECT_EQ(read.Parse(Repeated("<a>")), XMLNode::kUnclosed);
    const std::string siblings = "<a>" + Repeated("<b/>") + "</a>";
    read.Parse(siblings);
    EXPECT_EQ(read.Count("b"), kMany);
    EXPECT_TRUE(XMLNode(read).Write() == siblings);
    EXPECT_EQ(read.Parse("<a " + Repeated("b='c'") + "/>"), XMLNode::kParsed);
}

}  // namespace
