// What holds for every tree of the stated forms and for every text, however large.
#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <utility>

#include "tests/xml/xml_support.h"

namespace {

constexpr int kMany = 1'000'000;

class RandomTrees {
  public:
    explicit RandomTrees(std::uint32_t seed) : random(seed) {}

    // Elements hold either one text that is more than blanks, or elements.
    XMLNode Element(int depth) {
        XMLNode node = Node(XMLNode::kElement, Name());
        for (int count = Below(4); count > 0; --count)
            node.attributes[Name()] = Value();
        if (Below(3) == 0) {
            node.AddChild(Node(XMLNode::kText, Bytes() + "."));
        } else if (depth > 0) {
            for (int count = Below(5); count > 0; --count)
                node.AddChild(Element(depth - 1));
        }
        return node;
    }

    // Marks of the format in any order, with a NUL at times.
    std::string Garbage() {
        static const std::string pieces[] = {
            "<",  ">",  "/", "!", "?",  "=",  "'",
            "\"", " ",  "a", "b", "<a", "/>", "</",
            "a>", "&#", "x", "4", ";",  "&",  std::string(1, '\0')};
        std::string text = "<a>";
        for (int count = Below(40); count > 0; --count) {
            text += pieces[static_cast<std::size_t>(Below(std::size(pieces)))];
        }
        return text;
    }

  private:
    int Below(std::size_t limit) { return static_cast<int>(random() % limit); }

    std::string Name() {
        static constexpr std::string_view letters = "abXY01.-_\"';#?!\xE5";
        std::string name = "n";
        for (int count = Below(4); count > 0; --count) {
            name += letters[static_cast<std::size_t>(Below(letters.size()))];
        }
        return name;
    }

    std::string Bytes() {
        std::string bytes;
        for (int count = Below(12); count > 0; --count)
            bytes += static_cast<char>(Below(256));
        return bytes;
    }

    std::string Value() {
        std::string value = Bytes();
        std::erase(value, '>');
        return value;
    }

    std::mt19937 random;
};

std::string Repeated(const std::string& text, int times) {
    std::string all;
    for (int count = 0; count < times; ++count)
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

TEST(XmlLaws, AnyTextGivesATreeThatCanBeWritten) {
    for (std::uint32_t seed = 0; seed < 5000; ++seed) {
        const XMLNode read(RandomTrees(seed).Garbage());
        ASSERT_EQ(read.Write().find('\0'), std::string::npos) << seed;
    }
}

TEST(XmlLaws, AChainOfAMillionIsReadCopiedWrittenAndDestroyed) {
    const std::string text = Repeated("<a>", kMany) + "x" + Repeated("</a>", kMany);
    XMLNode read;
    EXPECT_EQ(read.Parse(text), XMLNode::kParsed);
    EXPECT_TRUE(XMLNode(read).Write() == text);
    read = read.Child(0);
    read.Clear();
    EXPECT_EQ(read.Parse(Repeated("<a>", kMany)), XMLNode::kUnclosed);
    EXPECT_EQ(Shape(read), "1'a'");
}

TEST(XmlLaws, AMillionSiblingsAreReadCopiedWrittenAndDestroyed) {
    const std::string text = "<a>" + Repeated("<b/>", kMany) + "</a>";
    XMLNode read;
    EXPECT_EQ(read.Parse(text), XMLNode::kParsed);
    EXPECT_EQ(read.Count("b"), kMany);
    EXPECT_EQ(read.Child("b", kMany - 1).name, "b");
    EXPECT_TRUE(XMLNode(read).Write() == text);
}

TEST(XmlLaws, AttributesThatTouchEachOtherTakeNoMoreTimeThanOthers) {
    XMLNode read;
    EXPECT_EQ(read.Parse("<a " + Repeated("b='c'", kMany) + "/>"), XMLNode::kParsed);
    EXPECT_EQ(read.attributes["b"], "c");
}

}  // namespace
