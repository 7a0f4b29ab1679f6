#include "report/bar_lists.h"

#include "base/filled.h"
#include "messages/bar_list_texts.h"
#include "messages/bit_names.h"
#include "report/bar_list_html.h"
#include "report/bars.h"
#include "report/page_html.h"

namespace gatescope {
namespace {

void print_list_opening(const QueryResult& result, const char* noun, Page* page) {
    page->print_block_to_file__header();
    page->print(BEGIN_3_COL_TABLE, noun, noun, result.cell_time[0].c_str(),
                result.cell_time[1].c_str());
}

void print_list_closing(Page* page) {
    page->print(CLOSE_TABLE_SHOW_TEXT, DISPLAY_TEXT_WIDGET);
    page->print_block_to_file__tail();
}

struct Row {
    std::string title;
    int number;
    std::string description;
    std::uint32_t count;
};

/// `scale` is the count of a full bar.
void print_row(const Row& row, std::uint32_t scale, Page* page) {
    page->print(START_LIST_ROW, row.title.c_str(), row.number, row.description.c_str());
    const int width = bar_width(row.count, scale);
    if (width == LIST_BAR_PIXELS) {
        page->print(LIST_MAX_CONTENTS, row.count);
    } else {
        page->print(LIST_MIXED_CONTENTS, row.title.c_str(), width, row.count,
                    LIST_BAR_PIXELS - width);
    }
    page->add(CLOSE_LIST_CONTENTS);
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

/// Escapes angle brackets only: the line of a key may contain other HTML.
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

std::string key_description(const KeyLines& lines, std::size_t key) {
    const bool exists = key <= lines.size() && lines[key - 1];
    return exists ? without_tags(*lines[key - 1]) : KEY_NOT_AVAILABLE;
}

}  // namespace

void Display_Graph__hbars_Bits(const QueryResult& result, Page* page) {
    print_list_opening(result, BIT_NOUN, page);
    for (std::size_t bit = 0; bit < GATEWARDEN_BITS_DESC.size(); ++bit) {
        const char* name = GATEWARDEN_BITS_DESC.at(bit);
        const std::uint32_t count = result.cell_success.at(bit);
        print_row({bit_title(name, count), static_cast<int>(bit), name, count}, result.cell_max,
                  page);
    }
    print_list_closing(page);
}

void Display_Graph__hbars_Keys(const QueryResult& result, const KeyLines& lines, Page* page) {
    const char* noun = result.asked.edition == 1 ? KEY_NOUN : CPD_NOUN;
    print_list_opening(result, noun, page);
    if (result.highest_key_read == -1) page->add(NO_KEY_ROW);
    for (int key = 1; key <= result.highest_key_read; ++key) {
        const auto index = static_cast<std::size_t>(key);
        const std::uint32_t count = result.cell_success.at(index);
        print_row({key_title(noun, key, count), key, key_description(lines, index), count},
                  result.cell_max, page);
    }
    print_list_closing(page);
}

}  // namespace gatescope
