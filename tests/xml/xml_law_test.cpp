#include <gtest/gtest.h>

#include <random>

#include "tests/xml/plain_xml.h"

namespace {

// Sound and unsound texts, a tree at random, and the same one on each run.
class Maker {
  public:
    explicit Maker(unsigned seed) : random(seed) {}

    std::size_t Below(std::size_t count) { return random() % count; }

    // Runs of what needs no change and single bytes that do, of all lengths around a machine word.
    std::string Bytes() {
        std::string bytes;
        for (std::size_t pieces = Below(4); pieces-- > 0;) {
            const std::size_t most = Below(40) == 0 ? 9000 : Below(3) == 0 ? 200 : 20;
            bytes.append(Below(most), static_cast<char>('a' + Below(26)));
            if (Below(2) == 0) bytes += "<&>\"'"[Below(5)];
            if (Below(4) == 0) bytes += static_cast<char>(Below(256));
        }
        return bytes;
    }

    XMLNode Tree(int depth) {
        XMLNode node;
        constexpr std::int32_t kinds[] = {1, 1, 1, 1, 1, 1, 2, 2, 4, 0, 3};
        node.kind = kinds[Below(std::size(kinds))];
        node.name = Below(9) == 0 ? Bytes() : std::string(1 + Below(20), 'n');
        for (std::size_t count = Below(5); count-- > 0;)
            node.attributes[std::string(1 + Below(9), static_cast<char>('a' + Below(9)))] = Bytes();
        for (std::size_t count = depth > 0 ? Below(5) : 0; count-- > 0;)
            node.AddChild(Tree(depth - 1));
        return node;
    }

    // Marks, words and references in any order.
    std::string Marks() {
        static const std::string marks[] = {"<",        "</a>",       "/>",
                                            ">",        "<a",         "<a>",
                                            "<b c='d'", " c='&#65;'", " a=\"x\"",
                                            "=",        "'",          "\"",
                                            " ",        "\n",         "\v",
                                            "<!--",     "-->",        "<?",
                                            "?>",       "/",          "&#",
                                            "&#x",      "6",          "fF;",
                                            "&",        "g",          "word",
                                            "</b>",     "<b>",        "\xE5",
                                            "</",       "<!",         std::string(1, '\0'),
                                            "&#12",     "a='",        "<a/>",
                                            "<a",       "</a>",       "a",
                                            "b=''"};
        std::string text = Below(3) == 0 ? "" : "<a>";
        for (std::size_t count = Below(30); count-- > 0;)
            text += marks[Below(std::size(marks))];
        return text;
    }

    void Damage(std::string& text) {
        for (std::size_t count = Below(4); count-- > 0 && !text.empty();) {
            const std::size_t at = Below(text.size());
            if (Below(3) == 0) text.erase(at, 1 + Below(3));
            if (Below(3) == 0) text.insert(at, Marks());
            if (Below(20) == 0) text.resize(at);
        }
    }

  private:
    std::mt19937 random;
};

void ExpectReadAsDefined(const std::string& text) {
    XMLNode fast;
    XMLNode plain;
    const std::int32_t result = fast.Parse(text);
    ASSERT_EQ(result, plain::Parse(plain, text)) << text;
    ASSERT_EQ(plain::Shape(fast), plain::Shape(plain)) << text;
}

TEST(XmlLaws, ReaderAndWriterDoWhatTheFormIsDefinedToBe) {
    Maker make(7);
    for (int round = 0; round < 600; ++round) {
        XMLNode tree = make.Tree(4);
        tree.kind = XMLNode::kElement;
        std::string text = tree.Write();
        ASSERT_EQ(text, plain::Write(tree, "", "", ""));
        const std::string indent(make.Below(3), ' ');
        ASSERT_EQ(tree.Write("\r\n", "\t ", indent), plain::Write(tree, "\r\n", "\t ", indent));
        ExpectReadAsDefined(text);
        make.Damage(text);
        ExpectReadAsDefined(text);
        for (int marks = 0; marks < 20; ++marks)
            ExpectReadAsDefined(make.Marks());
    }
}

}  // namespace
