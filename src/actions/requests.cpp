#include "actions/requests.h"

#include <array>

#include "actions/actions.h"
#include "base/filled.h"
#include "base/selections.h"
#include "messages/menu_labels.h"
#include "policy/edition.h"
#include "policy/region.h"
#include "queries/query_drivers.h"

unsigned char chapter = 1;
unsigned char initial_chapter = 1;
std::string QUERY_OR_ACTION;
std::string CHOICES;

namespace {

/// A handler that puts another gatebits file in use makes the region's settings stale.
template <int (*handler)()>
void then_reload() {
    if (handler() == 1) interrogate_the_enterprise();
}

/// A handler whose result only its other callers need.
template <int (*handler)()>
void without_result() {
    handler();
}

constexpr auto QUERY = RequestKind::QUERY;
constexpr auto ACTION = RequestKind::ACTION;

constexpr std::array<Request, 34> REQUESTS = {{
    {QUERY, 1, Q1, nullptr, Q_1, false, false},
    {QUERY, 2, Q2, nullptr, Q_2, false, false},
    {QUERY, 3, Q3, Q3_L, Q_3, false, false},
    {QUERY, 4, Q4, nullptr, Q_4, false, false},
    {QUERY, 5, Q5, Q5_L, Q_5, false, false},
    {QUERY, 6, Q6, nullptr, Q_6, false, false},
    {ACTION, 1, A1, nullptr, A_1, false, false},
    {ACTION, 2, A2, nullptr, A_2, false, true},
    {ACTION, 4, A4, nullptr, without_result<A_4>, true, true},
    {ACTION, 5, A5, nullptr, without_result<A_5>, true, true},
    {ACTION, 6, A6, nullptr, A_6, true, true},
    {ACTION, 7, A7, nullptr, A_7, true, true},
    {ACTION, 8, A8, nullptr, A_8, false, true},
    {ACTION, 9, A9, nullptr, A_9, true, true},
    {ACTION, 10, A10, nullptr, A_10, true, true},
    {ACTION, 11, A11, nullptr, A_11, true, true},
    {ACTION, 12, A12, nullptr, A_12, true, true},
    {ACTION, 13, A13, nullptr, A_13, false, true},
    {ACTION, 14, A14, nullptr, A_14, true, true},
    {ACTION, 15, A15, nullptr, A_15, false, true},
    {ACTION, 16, A16, nullptr, A_16, true, true},
    {ACTION, 17, A17, nullptr, A_17, true, true},
    {ACTION, 18, A18, nullptr, A_18, false, true},
    {ACTION, 19, A19, nullptr, A_19, false, true},
    {ACTION, 20, A20, nullptr, A_20, true, true},
    {ACTION, 21, A21, nullptr, A_21, true, true},
    {ACTION, 22, A22, nullptr, A_22, true, true},
    {ACTION, 23, A23, nullptr, A_23, false, true},
    {ACTION, 24, A24, nullptr, A_24, false, true},
    {ACTION, 25, A25, nullptr, then_reload<A_25>, false, false},
    {ACTION, 26, A26, nullptr, then_reload<A_26>, false, false},
    {ACTION, 27, A27, nullptr, then_reload<A_27>, false, false},
    {ACTION, 28, A28, nullptr, A_28, false, true},
    {ACTION, 29, A29, nullptr, A_29, false, true},
}};

std::string entries(std::initializer_list<const char*> labels) {
    std::string list;
    for (const char* label : labels) list.append(list.empty() ? "" : ",").append(label);
    return list;
}

}  // namespace

void Request::run() const {
    if (guarded) {
        A_X(number);
    } else {
        handler();
    }
}

std::span<const Request> all_requests() {
    return REQUESTS;
}

const Request* request_numbered(RequestKind kind, int number) {
    for (const Request& request : REQUESTS) {
        if (request.kind == kind && request.number == number) return &request;
    }
    return nullptr;
}

const Request* request_labelled(const std::string& label) {
    for (const Request& request : REQUESTS) {
        if (label == request.label) return &request;
        if (request.lite_label != nullptr && label == request.lite_label) return &request;
    }
    return nullptr;
}

const char* label_of(const Request& request) {
    return request.lite_label != nullptr && GATEWARDEN_IS == 0 ? request.lite_label : request.label;
}

std::string main_menu_entries() {
    const char* q3 = label_of(*request_numbered(QUERY, 3));
    const char* q5 = label_of(*request_numbered(QUERY, 5));
    return entries({Q1, Q2, q3, Q4, q5, Q6, SEPERATOR, A1, SEPERATOR, A2, A23, SEPERATOR, A24,
                    SEPERATOR, A25, A26, A27});
}

std::string submenu_entries() {
    const std::string list = entries({A4,  A5,  A6,  A7,  A8,  A9,  A10,       A11, A12, A13, A14,
                                      A15, A16, A17, A18, A19, A20, SEPERATOR, A21, A22, A23});
    return IS_DURING_INSTALL ? list + "," + A24 : list;
}

std::string submenu_title() {
    return filled(IS_DURING_INSTALL ? INSTALL_MENU_TITLE : SUBMENU_TITLE, ENTERPRIZE_NAME.c_str());
}

bool is_separator(const std::string& pick) {
    return pick.compare(0, 5, std::string(SEPERATOR, 5)) == 0;
}
