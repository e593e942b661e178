#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tvl/xml_node.h"
#include "xml/xml_text.h"

namespace {

// A tree that was read or copied lies in memory about in the order in which it is written, and a
// large one in no cache, so that each new page of it would be waited for. What lies so far behind a
// place is on its way while the place is written; where that is none of the tree, nothing is lost.
void FetchBehind(const void* place) {
    constexpr std::size_t kBytesAhead = 8192;
    const auto address = reinterpret_cast<std::uintptr_t>(place);
    __builtin_prefetch(reinterpret_cast<const void*>(address + kBytesAhead));
}

// Writes one node and its subtree. The elements whose children are being written stand on a stack
// of the writer's.
class XMLWriter {
  public:
    XMLWriter(std::string lineEnd, std::string indentStep, std::string firstIndent)
        : newLine(std::move(lineEnd)),
          step(std::move(indentStep)),
          indent(std::move(firstIndent)) {}

    std::string Write(const XMLNode& root) {
        Begin(root);
        while (!open.empty()) {
            Element& element = open.back();
            EndPreviousChild(element);
            if (element.nextChild == element.node->children.size()) {
                EndElement();
            } else {
                Begin(*element.node->children[element.nextChild++]);
            }
        }
        return out.Finish();
    }

  private:
    struct Element {
        const XMLNode* node;
        std::size_t nextChild;

        // An element that starts with a text is written without line ends, so that they do not
        // become part of it.
        bool IsText(std::size_t child) const {
            return child < node->children.size() && node->children[child]->kind == XMLNode::kText;
        }
        bool IsInTextMode() const { return IsText(0); }
    };

    void Begin(const XMLNode& node) {
        FetchBehind(&node);
        switch (node.kind) {
            case XMLNode::kElement:
                BeginElement(node);
                break;
            case XMLNode::kText:
                EscapeXML(node.name, out);
                break;
            case XMLNode::kComment:
                out.Put(indent, "<!-- ");
                EscapeXML(node.name, out);
                out.Put("-- >");
                break;
            default:
                break;
        }
    }

    void BeginElement(const XMLNode& node) {
        out.Put(indent, "<");
        EscapeXML(node.name, out);
        for (const auto& attribute : node.attributes) {
            FetchBehind(&attribute);
            WriteAttribute(attribute.first, attribute.second);
        }
        if (node.children.empty()) {
            out.Put("/>");
            return;
        }
        out.Put(">");
        open.push_back({&node, 0});
        if (!open.back().IsInTextMode()) out.Put(newLine);
        indent += step;
    }

    void WriteAttribute(std::string_view name, std::string_view value) {
        if (CountPlain(value) == value.size()) return out.Put(" ", name, "=\"", value, "\"");
        const bool hasDouble = value.find('"') != std::string_view::npos;
        const bool hasBoth = hasDouble && value.find('\'') != std::string_view::npos;
        const std::string_view quote = hasDouble && !hasBoth ? "'" : "\"";
        out.Put(" ", name, "=", quote);
        if (hasBoth)
            WriteWithoutDoubleQuotes(value);
        else
            EscapeXML(value, out);
        out.Put(quote);
    }

    void WriteWithoutDoubleQuotes(std::string_view value) {
        while (true) {
            const std::size_t quote = value.find('"');
            EscapeXML(value.substr(0, quote), out);
            if (quote == std::string_view::npos) return;
            out.Put("&#34;");
            value.remove_prefix(quote + 1);
        }
    }

    void EndPreviousChild(const Element& element) {
        if (element.nextChild == 0) return;
        if (!element.IsInTextMode()) {
            out.Put(newLine);
        } else if (element.IsText(element.nextChild - 1) && element.IsText(element.nextChild)) {
            out.Put(" ");
        }
    }

    void EndElement() {
        const Element element = open.back();
        open.pop_back();
        indent.resize(indent.size() - step.size());
        if (!element.IsInTextMode()) out.Put(indent);
        out.Put("</");
        EscapeXML(element.node->name, out);
        out.Put(">");
    }

    const std::string newLine;
    const std::string step;
    std::string indent;  // of what is written next
    std::vector<Element> open;
    XMLOutput out;
};

}  // namespace

std::string XMLNode::Write(std::string lineEnd, std::string indentStep, std::string indent) const {
    return XMLWriter(std::move(lineEnd), std::move(indentStep), std::move(indent)).Write(*this);
}
