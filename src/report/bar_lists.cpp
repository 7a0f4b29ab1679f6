#include "report/bar_lists.h"

#include <cstdio>
#include <string>

#include "base/filled.h"
#include "logs/query_data.h"
#include "messages/bar_list_texts.h"
#include "messages/bit_names.h"
#include "messages/page_texts.h"
#include "policy/edition.h"
#include "policy/gatebits_file.h"
#include "report/bars.h"
#include "report/graph.h"
#include "report/page.h"

namespace {

void print_list_opening(const char* noun) {
    print_block_to_file__header();
    std::fprintf(DISPLAY_STREAM, BEGIN_3_COL_TABLE, noun, noun, cell_time[0].c_str(),
                 cell_time[1].c_str());
}

void print_list_closing() {
    std::fprintf(DISPLAY_STREAM, CLOSE_TABLE_SHOW_TEXT, DISPLAY_TEXT_WIDGET);
    print_block_to_file__tail();
}

void print_row(const std::string& title, int number, const std::string& description,
               std::uint32_t count) {
    std::fprintf(DISPLAY_STREAM, START_LIST_ROW, title.c_str(), number, description.c_str());
    const int width = bar_width(count, cell_max);
    if (width == LIST_BAR_PIXELS) {
        std::fprintf(DISPLAY_STREAM, LIST_MAX_CONTENTS, count);
    } else {
        std::fprintf(DISPLAY_STREAM, LIST_MIXED_CONTENTS, title.c_str(), width, count,
                     LIST_BAR_PIXELS - width);
    }
    std::fputs(CLOSE_LIST_CONTENTS, DISPLAY_STREAM);
}

std::string bit_title(const char* name, std::uint32_t count) {
    if (count == 0) return filled(BIT_NOT_INVOKED, name);
    if (count == 1) return filled(BIT_INVOKED_ONCE, name);
    return filled(BIT_INVOKED, name, count);
}

std::string key_title(const char* noun, int key, std::uint32_t count) {
    if (count == 0) return filled(KEY_NOT_INVOKED, noun, key);
    if (count == 1) return filled(KEY_INVOKED_ONCE, noun, key);
    return filled(KEY_INVOKED, noun, key, count);
}

/// Only what would open a tag is escaped; the rest of a key's line may be HTML of its own.
std::string without_tags(const std::string& line) {
    std::string text;
    for (const char character : line) {
        switch (character) {
            case '<':
                text += "&lt;";
                break;
            case '>':
                text += "&gt;";
                break;
            default:
                text += character;
        }
    }
    return text;
}

std::string key_description(int key) {
    std::string line;
    return get_a_line(FIRST_KEY_LINE + key - 1, &line) == 1 ? without_tags(line)
                                                            : KEY_NOT_AVAILABLE;
}

}  // namespace

void Display_Graph__hbars_Bits() {
    print_list_opening(BIT_NOUN);
    for (std::size_t bit = 0; bit < GATEWARDEN_BITS_DESC.size(); ++bit) {
        const char* name = GATEWARDEN_BITS_DESC.at(bit);
        const std::uint32_t count = cell_success.at(bit);
        print_row(bit_title(name, count), static_cast<int>(bit), name, count);
    }
    print_list_closing();
}

void Display_Graph__hbars_Keys() {
    const char* noun = GATEWARDEN_IS == 1 ? KEY_NOUN : CPD_NOUN;
    print_list_opening(noun);
    if (highest_key_read == -1) std::fputs(NO_KEY_ROW, DISPLAY_STREAM);
    for (int key = 1; key <= highest_key_read; ++key) {
        const std::uint32_t count = cell_success.at(static_cast<std::size_t>(key));
        print_row(key_title(noun, key, count), key, key_description(key), count);
    }
    print_list_closing();
}
