#include "policy/edition.h"

#include "messages/identity.h"

namespace gatescope {

int read_edition(const Gatebits& gatebits) {
    const auto header = get_a_line(gatebits, HEADER_LINE);
    return header && header->starts_with(GATEWARDEN_LITE_LIT) ? 0 : 1;
}

}  // namespace gatescope
