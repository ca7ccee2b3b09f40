#include <UIKit/Backend/Pugixml/LayoutFileReader.h>

#include <pugixml.hpp>

#include <algorithm>
#include <utility>

namespace flarebox {
namespace {

constexpr int deepestNesting = 64;

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

class Reader {
public:
    Reader(std::string_view text, LayoutProblem& problem) : text_(text), problem_(problem) {}

    std::optional<LayoutElement> read() {
        pugi::xml_document document;
        const auto result = document.load_buffer(text_.data(), text_.size(), pugi::parse_default, pugi::encoding_utf8);
        if (!result)
            return fail(result.offset,
                        std::string(result.description()) + "; " +
                            (result.status == pugi::status_no_document_element
                                 ? "write a view, as in <UIView/>"
                                 : "write each <Element> with its </Element>, and & in a text as &amp;"));
        const pugi::xml_node outermost = document.document_element();
        if (!outermost) return fail(0, "the file is empty; write a view, as in <UIView/>");
        for (pugi::xml_node next = outermost.next_sibling(); next; next = next.next_sibling()) {
            if (next.type() == pugi::node_element)
                return fail(next.offset_debug(), "a second outermost element; put both into a <layout>");
        }
        return element(outermost, 0);
    }

private:
    std::nullopt_t fail(std::ptrdiff_t offset, std::string text) {
        problem_ = {line(offset), std::move(text)};
        return std::nullopt;
    }

    int line(std::ptrdiff_t offset) {
        // Elements come in the order of the file, so each line is counted once.
        const auto end =
            static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(offset, 0, static_cast<std::ptrdiff_t>(text_.size())));
        if (end < counted_) counted_ = 0, lines_ = 1;
        lines_ += static_cast<int>(std::count(text_.begin() + static_cast<std::ptrdiff_t>(counted_),
                                              text_.begin() + static_cast<std::ptrdiff_t>(end), '\n'));
        counted_ = end;
        return lines_;
    }

    std::optional<LayoutElement> element(const pugi::xml_node& node, int depth) {
        LayoutElement result;
        result.name = node.name();
        result.line = line(node.offset_debug());
        if (depth >= deepestNesting)
            return fail(node.offset_debug(),
                        "elements are nested too deeply; at most " + std::to_string(deepestNesting) + " deep");
        for (const pugi::xml_attribute& attribute : node.attributes()) {
            if (result.attribute(attribute.name())) {
                return fail(node.offset_debug(),
                            std::string("attribute \"") + attribute.name() + "\" is given twice; keep one of them");
            }
            result.attributes.push_back({attribute.name(), attribute.value()});
        }
        for (const pugi::xml_node& child : node.children()) {
            if (child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata) result.text += child.value();
            if (child.type() != pugi::node_element) continue;
            auto below = element(child, depth + 1);
            if (!below) return std::nullopt;
            result.children.push_back(std::move(*below));
        }
        result.text = trimmed(result.text);
        return result;
    }

    std::string_view text_;
    LayoutProblem& problem_;
    std::size_t counted_ = 0;
    int lines_ = 1;
};

}  // namespace

const std::string* LayoutElement::attribute(std::string_view wanted) const {
    const auto found = std::ranges::find(attributes, wanted, &Attribute::name);
    return found == attributes.end() ? nullptr : &found->value;
}

std::optional<LayoutElement> readLayoutFile(std::string_view text, LayoutProblem& problem) {
    return Reader(text, problem).read();
}

}  // namespace flarebox
