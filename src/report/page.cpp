#include "report/page.h"

#include <cstdarg>
#include <utility>

#include "base/filled.h"
#include "messages/identity.h"
#include "report/page_html.h"

namespace gatescope {

std::string text_in_page(const std::string& text) {
    std::string escaped;
    for (const char character : text) {
        switch (character) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            default:
                escaped += character;
        }
    }
    return escaped;
}

Page::Page(std::string graph_title) : graph_title_(std::move(graph_title)) {}

void Page::print(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    text_ += filled_whole(format, arguments);
    va_end(arguments);
}

void Page::print_block_to_file__header() {
    print(PAGE_OPENING, filled(STAMP, SELF, VERSION, SUPPORT_ADDRESS).c_str());
    add(PAGE_SCRIPT);
    add(STYLE_OPENING);
    for (const auto& [selector, declarations, color] : STYLE_RULES) {
        print(STYLE_LINE, selector, declarations, color);
    }
    add(STYLE_CLOSING);
    print(PAGE_HEADING, graph_title_.c_str());
}

void Page::print_block_to_file__tail() {
    print(PAGE_CLOSING, SUPPLIER_NAME, SUPPLIER_URL, SUPPLIER_URL);
}

}  // namespace gatescope
