#include <gtest/gtest.h>

#include <cstdint>

#include "tests/xml/xml_support.h"

namespace {

TEST(XmlTree, ANodeFromNameAndValueHoldsTheValueAsText) {
    EXPECT_EQ(Shape(XMLNode("a", "x")), "1'a'[2'x']");
    EXPECT_EQ(Shape(XMLNode("a", 4294967295u)), "1'a'[2'4294967295']");
    EXPECT_EQ(Shape(XMLNode("a", "")), "1'a'");
    EXPECT_EQ(XMLNode("a", "").Text(), "");
    EXPECT_EQ(XMLNode("").Write(), "");
}

TEST(XmlTree, AddChildSkipsOnlyANodeWithNeitherNameNorChildren) {
    XMLNode parent = Node(XMLNode::kElement, "p");
    EXPECT_EQ(&parent.AddChild(Node(XMLNode::kText, "")), &parent);
    XMLNode unnamed = Node(XMLNode::kElement, "");
    unnamed.AddChild(Node(XMLNode::kText, "x"));
    EXPECT_EQ(parent.AddChild(unnamed).name, "");
    const XMLNode* const added = &parent.AddChild(Node(XMLNode::kElement, "c"));
    EXPECT_EQ(added, &parent.Child(1));
    EXPECT_EQ(Shape(parent), "1'p'[1''[2'x'] 1'c']");
}

TEST(XmlTree, LookupsGoByWholeNameAndAnyKind) {
    XMLNode node("<a><x i='0'/>x<xx/><x i='1'/></a>");
    EXPECT_EQ(node.Count("x"), 3);
    EXPECT_EQ(node.Child("x", 1).kind, XMLNode::kText);
    EXPECT_EQ(node.Child("x", 2).attributes["i"], "1");
    EXPECT_EQ(node.Child(2).name, "xx");
    EXPECT_EQ(node.Text(), "x");
    EXPECT_EQ(XMLNode("<a>1<b/>2</a>").Text(), "1");
}

TEST(XmlTree, WhatIsMissingReadsAsEmptyAllTheWay) {
    XMLNode node("a", "x");
    const XMLNode& readOnly = node;
    EXPECT_EQ(&node.Child(-1), &node.Child(1));
    EXPECT_EQ(&readOnly.Child(2), &node.Child(1));
    for (const std::int32_t occurrence : {1, -1, INT32_MIN, INT32_MAX}) {
        EXPECT_EQ(&node.Child("x", occurrence), &node.Child("none")) << occurrence;
    }
    EXPECT_EQ(&readOnly.Child("y").Child("z"), &node.Child("none"));
    EXPECT_EQ(readOnly.Child("y").Child("z").Text(), "");
}

TEST(XmlTree, AMissingChildThatSomebodyWroteToReadsAsEmptyAtTheNextLookup) {
    XMLNode node("a", "x");
    for (int round = 0; round < 2; ++round) {
        for (XMLNode* missing : {&node.Child("none"), &node.Child(9)}) {
            EXPECT_EQ(Shape(*missing), "0''");
            *missing = XMLNode("<none><none/></none>");
            missing->attributes["spoilt"] = "yes";
        }
    }
    EXPECT_EQ(Shape(node.Child("none").Child("none")), "0''");
}

TEST(XmlTree, RemoveChildComparesAllButTheChildren) {
    XMLNode node("<a><b k='1'/><b k='2'>x</b><b k='2'/>b</a>");
    EXPECT_FALSE(node.RemoveChild(XMLNode("<b/>")));
    EXPECT_FALSE(node.RemoveChild(XMLNode("<b k='3'/>")));
    EXPECT_TRUE(node.RemoveChild(XMLNode("<b k='2'/>")));
    EXPECT_TRUE(node.RemoveChild(Node(XMLNode::kText, "b")));
    EXPECT_EQ(node.Write(), R"(<a><b k="1"/><b k="2"/></a>)");
    EXPECT_TRUE(node.RemoveChild(node.Child(0)));
    EXPECT_EQ(node.Write(), R"(<a><b k="2"/></a>)");
}

TEST(XmlTree, ClearKeepsTheKind) {
    XMLNode node("<a b='c'>x</a>");
    node.Clear();
    EXPECT_EQ(Shape(node), "1''");
}

TEST(XmlTree, ANodeCanBeAssignedFromAndToItsOwnParts) {
    const XMLNode original("<a><b><c/></b><d k='1'/></a>");
    XMLNode node = original;
    node = *&node;
    EXPECT_EQ(Shape(node), Shape(original));
    node.Child("b") = node;
    EXPECT_EQ(node.Write(), R"(<a><a><b><c/></b><d k="1"/></a><d k="1"/></a>)");
    node = node.Child("a").Child("b");
    EXPECT_EQ(node.Write(), "<b><c/></b>");
    node.AddChild(node).AddChild(node);
    EXPECT_EQ(node.Write(), "<b><c/><b><c/><b><c/><b><c/></b></b></b></b>");
    node.AddChild(node.Child("c"));
    EXPECT_EQ(node.Count("c"), 2);
}

TEST(XmlTree, ANodeCanReadItsOwnText) {
    XMLNode node("quoted", "<a>x</a>");
    EXPECT_EQ(node.Parse(node.Text()), XMLNode::kParsed);
    EXPECT_EQ(node.Write(), "<a>x</a>");
}

}  // namespace
