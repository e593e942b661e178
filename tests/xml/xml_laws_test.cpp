// What holds for every tree of the stated forms, however large.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>

#include "tests/xml/shape.h"

namespace {

constexpr int kMany = 1'000'000;

class RandomTrees {
  public:
    explicit RandomTrees(std::uint32_t seed) : random_(seed) {}

    // Elements hold either one text that is more than blanks, or elements.
    XMLNode Element(int depth) {
        XMLNode node = Node(XMLNode::kElement, Name());
        for (int count = Below(4); count > 0; --count) {
            std::string value = Bytes();
            std::erase(value, '>');
            node.attributes[Name()] = value;
        }
        if (Below(3) == 0)
            node.AddChild(Node(XMLNode::kText, Bytes() + "."));
        else if (depth > 0)
            for (int count = Below(5); count > 0; --count)
                node.AddChild(Element(depth - 1));
        return node;
    }

  private:
    int Below(std::size_t limit) { return static_cast<int>(random_() % limit); }
    std::string Some(std::size_t most, std::string_view letters) {
        std::string some;
        for (int count = Below(most); count > 0; --count)
            some += letters[static_cast<std::size_t>(Below(letters.size()))];
        return some;
    }
    std::string Name() { return "n" + Some(4, "abXY01.-_\"';#?!\xE5"); }
    std::string Bytes() {
        std::string bytes;
        for (int count = Below(12); count > 0; --count)
            bytes += static_cast<char>(Below(256));
        return bytes;
    }

    std::mt19937 random_;
};

std::string Repeated(const std::string& text) {
    std::string all;
    for (int count = 0; count < kMany; ++count)
        all += text;
    return all;
}

TEST(XmlLaws, WhatIsWrittenIsReadBackTheSame) {
    for (std::uint32_t seed = 0; seed < 500; ++seed) {
        const XMLNode tree = RandomTrees(seed).Element(4);
        for (const std::string& text : {tree.Write(), Readable(tree)}) {
            XMLNode read;
            ASSERT_EQ(read.Parse(text), XMLNode::kParsed) << seed << text;
            ASSERT_EQ(Shape(read), Shape(tree)) << seed;
        }
    }
}

TEST(XmlLaws, AMillionBelowOrBesideEachOtherAreReadCopiedWrittenAndDestroyed) {
    const std::string chain = Repeated("<a>") + "x" + Repeated("</a>");
    XMLNode read(chain);
    EXPECT_TRUE(XMLNode(read).Write() == chain);
    read = read.Child(0);
    read.Clear();
    EXPECT_EQ(read.Parse(Repeated("<a>")), XMLNode::kUnclosed);
    EXPECT_EQ(Shape(read), "1'a'");

    const std::string siblings = "<a>" + Repeated("<b/>") + "</a>";
    read.Parse(siblings);
    EXPECT_EQ(read.Count("b"), kMany);
    EXPECT_TRUE(XMLNode(read).Write() == siblings);
    EXPECT_EQ(read.Parse("<a " + Repeated("b='c'") + "/>"), XMLNode::kParsed);
}

}  // namespace
