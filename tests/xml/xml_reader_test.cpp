#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/xml/shape.h"

namespace {

using namespace std::string_literals;

struct Reading {
    std::string text;
    std::int32_t result;
    std::string shape;  // of what was read, also on a failure
};

// A root is a tag; a declaration is skipped unread.
const std::vector<Reading> kRoots = {{"", 2, "0''"},
                                     {"x<a/>", 2, "0''"},
                                     {"</a>", 2, "0''"},
                                     {"<!-- c --><a/>", 2, "0''"},
                                     {"<><a/>", 0, "1'a'"},
                                     {"  <a/><b/>", 0, "1'a'"},
                                     {"<?bad =?/>\n<a/>", 0, "1'a'"},
                                     {"<?xml?>", 5, "0''"},
                                     {"<?xml?><!c><a/>", 0, "4'c'"},
                                     {"<?xml?></a>", 2, "0''"},
                                     {"<a><?pi?></a>", 4, "1'a'"}};

// Tags are paired by their raw text.
const std::vector<Reading> kTags = {{"<a>", 3, "1'a'"},
                                    {"<a></a >", 4, "1'a'"},
                                    {"<a></a/></a>", 0, "1'a'[1'a']"},
                                    {"<a><a/></a>", 0, "1'a'[1'a']"},
                                    {"<a></>< /></a>", 0, "1'a'"},
                                    {"<a><b/><c><d/></a>", 4, "1'a'[1'b']"},
                                    {"<a><b/><c x></c></a>", 5, "1'a'[1'b']"},
                                    {"<a><b/>\n", 3, "1'a'[1'b' 2'\n']"},
                                    {"<&#65;></A>", 0, "1'A'"},
                                    {"<&#229;></&#229;>", 0, "1'\xE5'"}};

// There are no blanks around attributes.
const std::vector<Reading> kAttributes = {{"<a b=\"it's\"c='2'/>", 0, "1'a' b=it's c=2"},
                                          {"<a\tb='1'\r\nb='2'/>", 0, "1'a' b=2"},
                                          {"<a b='&#x26;&#38;&amp;'/>", 0, "1'a' b=&&&amp;"},
                                          {"<a ='x'/>", 0, "1'a' =x"},
                                          {"<a ?junk/>", 0, "1'a'"},
                                          {"<a />", 5, "1'a'"},
                                          {"<a b='c' />", 5, "1'a' b=c"},
                                          {"<a b=c/>", 5, "1'a'"},
                                          {"<a b ='c'/>", 5, "1'a'"},
                                          {"<a b= 'c'/>", 5, "1'a'"},
                                          {"<a b='c\"/>", 5, "1'a'"},
                                          {"<a b='c' d/>", 5, "1'a' b=c"},
                                          {"<a b='>'/>", 5, "1'a'"}};

// Text is kept, white space ahead of tags is not.
const std::vector<Reading> kTexts = {{"<a> <b/> x <c/>\v\f</a>", 0, "1'a'[1'b' 2' x ' 1'c']"},
                                     {"<a>x\0</a>"s, 3, "1'a'[2'x']"},
                                     {"<a><![CDATA[x]]></a>", 0, "1'a'[4'[CDATA[x]]']"},
                                     {"<a><!-- 1 > 2 --></a>", 0, "1'a'[4'-- 1 ' 2' 2 -->']"}};

// Numeric references are expanded once, to one byte each.
const std::vector<Reading> kReferences = {
    {"<a>&#60;&#38;#65;&#x41;</a>", 0, "1'a'[2'<&#65;A']"},
    {"<a>&amp; & &#;&#x;&#X41;&#</a>", 0, "1'a'[2'&amp; & &#;&#x;&#X41;&#']"},
    {"<a>&#321;&#x141;&#99999999999999999999;</a>", 0, "1'a'[2'AA\xFF']"},
    {"<a>&#65x&#65</a>", 0, "1'a'[2'AA']"},
    {"<a>&#xaF;&#12ab;x&#abc;</a>", 0, "1'a'[2'\xAF\x0Cx\0']"s}};

TEST(XmlReader, ReadsWhatIsThereAndSaysWhereItFailed) {
    for (const auto* readings : {&kRoots, &kTags, &kAttributes, &kTexts, &kReferences}) {
        for (const auto& [text, result, shape] : *readings) {
            XMLNode node;
            EXPECT_EQ(node.Parse(text), result) << text;
            EXPECT_EQ(Shape(node), shape) << text;
        }
    }
}

TEST(XmlReader, ReplacesWhatTheNodeHeldAndKeepsTheKindWithoutARoot) {
    XMLNode node("<a b='c'><d/></a>");
    EXPECT_EQ(node.Parse("x"), XMLNode::kNoRoot);
    EXPECT_EQ(Shape(node), "1''");
    XMLNode quoted("quoted", "<a>x</a>");
    EXPECT_EQ(quoted.Parse(quoted.Text()), XMLNode::kParsed);
    EXPECT_EQ(quoted.Write(), "<a>x</a>");
}

}  // namespace
