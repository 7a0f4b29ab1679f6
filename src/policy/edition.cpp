#include "policy/edition.h"

#include "messages/identity.h"
#include "policy/gatebits_file.h"

int read_edition(const std::string& gatebits_file) {
    std::string header;
    const bool lite =
        get_a_line(gatebits_file, HEADER_LINE, &header) && header.starts_with(GATEWARDEN_LITE_LIT);
    return lite ? 0 : 1;
}
