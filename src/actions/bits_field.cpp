#include "actions/bits_field.h"

#include <vector>

#include "actions/picks.h"
#include "base/filled.h"
#include "base/text.h"
#include "dialog/prompts.h"
#include "messages/action_texts.h"

namespace gatescope {

std::string bit_state(std::string field) {
    field.resize(NUMBER_OF_BITS, '0');
    for (char& bit : field) bit = bit == '1' ? '1' : '0';
    return field;
}

std::string bit_entries(const std::string& state) {
    std::vector<std::string> entries;
    for (std::size_t bit = 0; bit < NUMBER_OF_BITS; ++bit) {
        entries.push_back(
            filled(BIT_ENTRY, static_cast<int>(bit), state[bit], GATEWARDEN_BITS_DESC[bit]));
    }
    return as_list(entries);
}

std::string state_with_only(const std::string& picks) {
    std::string state(NUMBER_OF_BITS, '0');
    // STRTOK drops a last piece without a delimiter.
    const std::string terminated = picks + ",";
    std::string_view rest = terminated;
    while (const auto pick = STRTOK(&rest, ",")) {
        const auto bit = number_at_front(std::string(*pick));
        if (bit && static_cast<std::size_t>(*bit) < NUMBER_OF_BITS) {
            state[static_cast<std::size_t>(*bit)] = '1';
        }
    }
    return state;
}

}  // namespace gatescope
