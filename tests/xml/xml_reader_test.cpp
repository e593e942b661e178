#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>

#include "tests/xml/xml_support.h"

namespace {

using namespace std::string_literals;

struct Reading {
    std::string text;
    std::int32_t result;
    std::string shape;  // of what was read, also on a failure
};

void ExpectReadings(std::initializer_list<Reading> readings) {
    for (const Reading& reading : readings) {
        XMLNode node;
        EXPECT_EQ(node.Parse(reading.text), reading.result) << reading.text;
        EXPECT_EQ(Shape(node), reading.shape) << reading.text;
    }
}

TEST(XmlReader, NeedsATagForARoot) {
    ExpectReadings({
        {"", 2, "0''"},
        {" \n", 2, "0''"},
        {"x<a/>", 2, "0''"},
        {"</a>", 2, "0''"},
        {"<!-- c --><a/>", 2, "0''"},
        {"<><a/>", 0, "1'a'"},
        {"  <a/>", 0, "1'a'"},
        {"<a/><b/>", 0, "1'a'"},
        {"<a", 3, "1'a'"},
        {"<", 2, "0''"},
    });
}

TEST(XmlReader, SkipsADeclarationUnread) {
    ExpectReadings({
        {"<?xml version=\"1.0\"?>\n<a/>", 0, "1'a'"},
        {"<?bad =?/><a/>", 0, "1'a'"},
        {"<?xml?>", 5, "0''"},
        {"<?xml?>x", 0, "2'x'"},
        {"<?xml?><!c><a/>", 0, "4'c'"},
        {"<?xml?></a>", 2, "0''"},
        {"<a><?pi?></a>", 4, "1'a'"},
    });
}

TEST(XmlReader, PairsTagsByTheirRawText) {
    ExpectReadings({
        {"<a>", 3, "1'a'"},
        {"<a></b>", 4, "1'a'"},
        {"<a></a >", 4, "1'a'"},
        {"<a></a/></a>", 0, "1'a'[1'a']"},
        {"<a><a/></a>", 0, "1'a'[1'a']"},
        {"<a></></a>", 0, "1'a'"},
        {"<a>a</a>", 0, "1'a'[2'a']"},
        {"<a><b/><c><d/></a>", 4, "1'a'[1'b']"},
        {"<a><b/><c x></c></a>", 5, "1'a'[1'b']"},
        {"<a><b/>", 3, "1'a'[1'b']"},
        {"<a><b/>\n", 3, "1'a'[1'b' 2'\n']"},
        {"<&#65;></A>", 0, "1'A'"},
        {"<&#229;></&#229;>", 0, "1'\xE5'"},
        {"<a>< /></a>", 0, "1'a'"},
    });
}

TEST(XmlReader, ReadsAttributesWithoutBlanksAroundThem) {
    ExpectReadings({
        {"<a b='c'/>", 0, "1'a' b=c"},
        {"<a b=\"it's\"c='2'/>", 0, "1'a' b=it's c=2"},
        {"<a\tb='1'\r\nb='2'/>", 0, "1'a' b=2"},
        {"<a b='&#x26;&#38;&amp;'/>", 0, "1'a' b=&&&amp;"},
        {"<a ='x'/>", 0, "1'a' =x"},
        {"<a ?junk/>", 0, "1'a'"},
        {"<a />", 5, "1'a'"},
        {"<a b='c' />", 5, "1'a' b=c"},
        {"<a b=c/>", 5, "1'a'"},
        {"<a b = 'c'/>", 5, "1'a'"},
        {"<a b= 'c'/>", 5, "1'a'"},
        {"<a b='c\"/>", 5, "1'a'"},
        {"<a b='c' d/>", 5, "1'a' b=c"},
        {"<a b='>'/>", 5, "1'a'"},
        {"<a b", 5, "1'a'"},
    });
}

TEST(XmlReader, KeepsTextAndDropsWhiteSpaceAheadOfTags) {
    ExpectReadings({
        {"<a> <b/> x <c/>\v\f</a>", 0, "1'a'[1'b' 2' x ' 1'c']"},
        {"<a>  </a>", 0, "1'a'"},
        {"<a>x\0</a>"s, 3, "1'a'[2'x']"},
        {"<a>\xC3\xA9</a>", 0, "1'a'[2'\xC3\xA9']"},
        {"<a><![CDATA[x]]></a>", 0, "1'a'[4'[CDATA[x]]']"},
        {"<a><!DOCTYPE x/></a>", 0, "1'a'[4'DOCTYPE x/']"},
        {"<a><!-- 1 > 2 --></a>", 0, "1'a'[4'-- 1 ' 2' 2 -->']"},
    });
}

TEST(XmlReader, ExpandsNumericReferencesOnce) {
    const std::initializer_list<std::pair<const char*, std::string>> texts = {
        {"&#60;&#38;&#x41;", "<&A"},
        {"&#38;#65;", "&#65;"},
        {"&amp; & &", "&amp; & &"},
        {"&#321;&#x141;&#99999999999999999999;", "AA\xFF"},
        {"&#65x&#65", "AA"},
        {"&#xaF;", "\xAF"},
        {"&#12ab;x", "\x0Cx"},
        {"&#abc;", "\0"s},
        {"&#;&#x;&#X41;&#", "&#;&#x;&#X41;&#"},
    };
    for (const auto& [text, expanded] : texts) {
        EXPECT_EQ(XMLNode("<a>"s + text + "</a>").Text(), expanded) << text;
    }
}

TEST(XmlReader, ReplacesWhatTheNodeHeldAndKeepsTheKindWithoutARoot) {
    XMLNode node("<a b='c'><d/></a>");
    EXPECT_EQ(node.Parse("x"), XMLNode::kNoRoot);
    EXPECT_EQ(Shape(node), "1''");
}

}  // namespace
