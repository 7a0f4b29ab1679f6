#include "report/page.h"

#include <cstdio>

#include "base/filled.h"
#include "messages/identity.h"
#include "messages/page_texts.h"
#include "report/graph.h"

std::string CALCULATED_STAMP;

namespace {

void print_style_sheet() {
    std::fputs(STYLE_OPENING, DISPLAY_STREAM);
    for (const auto& [selector, declarations, color] : STYLE_RULES) {
        std::fprintf(DISPLAY_STREAM, STYLE_LINE, selector, declarations, color);
    }
    std::fputs(STYLE_CLOSING, DISPLAY_STREAM);
}

}  // namespace

void print_block_to_file__header() {
    if (CALCULATED_STAMP.empty()) {
        CALCULATED_STAMP = filled(STAMP, SELF, VERSION, SUPPORT_ADDRESS);
    }
    std::fprintf(DISPLAY_STREAM, PAGE_OPENING, CALCULATED_STAMP.c_str());
    std::fputs(PAGE_SCRIPT, DISPLAY_STREAM);
    print_style_sheet();
    std::fprintf(DISPLAY_STREAM, PAGE_HEADING, graph_title.c_str());
}

void print_block_to_file__tail() {
    std::fprintf(DISPLAY_STREAM, PAGE_CLOSING, SUPPLIER_NAME, SUPPLIER_URL, SUPPLIER_URL);
}
