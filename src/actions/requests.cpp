#include "actions/requests.h"

#include <algorithm>
#include <array>

#include "actions/actions.h"
#include "actions/field_editors.h"
#include "messages/menu_labels.h"
#include "policy/gatebits_file.h"
#include "policy/region.h"
#include "policy/tool_variables.h"
#include "queries/query_drivers.h"

namespace gatescope {
namespace {

// Adapters from Request::handler to the queries and actions.

template <auto query>
Finished run_query(const Options& options, RegionInUse& region, const Request&) {
    const RegionSettings& settings = region.settings;
    query(options, {region.GATEWARDEN_IS,
                    settings.logging_dir,
                    {settings.ENTERPRIZE_NAME, settings.ENTERPRIZE_PERMISSION_FILE,
                     settings.results_dir, settings.tools.GS_VAR[UNIX_BROWSER]}});
    return {};
}
Finished prune(const Options& options, RegionInUse& region, const Request&) {
    A_1(region.settings, options.displays());
    return {};
}
Finished submenu(const Options& options, RegionInUse& region, const Request&) {
    return {.next_menu = A_2(options, region)};
}
/// Runs the editor of the field with the request's number.
Finished field(const Options&, RegionInUse& region, const Request& request) {
    return {edit_field(request.number, &region.settings)};
}
template <auto action>
Finished with_aliases(const Options&, RegionInUse& region, const Request&) {
    return {action(region.settings.ENTERPRIZE_PERMISSION_FILE, region.aliases)};
}
Finished keys(const Options&, RegionInUse& region, const Request&) {
    return {A_21(region.settings.ENTERPRIZE_PERMISSION_FILE, region.GATEWARDEN_IS)};
}
Finished new_key(const Options&, RegionInUse& region, const Request&) {
    return {A_22(region.settings.ENTERPRIZE_PERMISSION_FILE)};
}
Finished verify(const Options& options, RegionInUse& region, const Request&) {
    A_23(region.settings, options.IS_DURING_INSTALL);
    return {};
}
Finished configure(const Options&, RegionInUse& region, const Request&) {
    A_24(region.settings);
    return {};
}
template <auto walk>
Finished walk_through(const Options& options, RegionInUse& region, const Request&) {
    walk(options, region);
    return {};
}

// After a switch to another gatebits file its settings are loaded.

Finished load_settings(RegionSettings& region) {
    const std::string path = region.ENTERPRIZE_PERMISSION_FILE;
    region = interrogate_the_enterprise(path, read_gatebits(path), region.tools);
    return {};
}
template <auto action>
Finished put_in_use(const Options&, RegionInUse& region, const Request&) {
    return action(region.settings) ? load_settings(region.settings) : Finished();
}
Finished create(const Options& options, RegionInUse& region, const Request&) {
    return A_26(options, region) ? load_settings(region.settings) : Finished();
}

constexpr auto QUERY = RequestKind::QUERY;
constexpr auto ACTION = RequestKind::ACTION;
constexpr auto HIDDEN = Shown::NO;
constexpr auto SHOWN = Shown::YES;
constexpr auto APART = Shown::AFTER_SEPARATOR;
constexpr auto INSTALLER = Shown::TO_INSTALLER_ONLY;

constexpr std::array<Request, 34> REQUESTS = {{
    {QUERY, 1, Q1, nullptr, run_query<Q_1>, false, false, SHOWN, HIDDEN},
    {QUERY, 2, Q2, nullptr, run_query<Q_2>, false, false, SHOWN, HIDDEN},
    {QUERY, 3, Q3, Q3_L, run_query<Q_3>, false, false, SHOWN, HIDDEN},
    {QUERY, 4, Q4, nullptr, run_query<Q_4>, false, false, SHOWN, HIDDEN},
    {QUERY, 5, Q5, Q5_L, run_query<Q_5>, false, false, SHOWN, HIDDEN},
    {QUERY, 6, Q6, nullptr, run_query<Q_6>, false, false, SHOWN, HIDDEN},
    {ACTION, 1, A1, nullptr, prune, false, false, APART, HIDDEN},
    {ACTION, 2, A2, nullptr, submenu, false, true, APART, HIDDEN},
    {ACTION, 4, A4, nullptr, field, true, true, HIDDEN, SHOWN},
    {ACTION, 5, A5, nullptr, field, true, true, HIDDEN, SHOWN},
    {ACTION, 6, A6, nullptr, field, true, true, HIDDEN, SHOWN},
    {ACTION, 7, A7, nullptr, field, true, true, HIDDEN, SHOWN},
    {ACTION, 8, A8, nullptr, field, false, true, HIDDEN, SHOWN},
    {ACTION, 9, A9, nullptr, field, true, true, HIDDEN, SHOWN},
    {ACTION, 10, A10, nullptr, field, true, true, HIDDEN, SHOWN},
    {ACTION, 11, A11, nullptr, field, true, true, HIDDEN, SHOWN},
    {ACTION, 12, A12, nullptr, field, true, true, HIDDEN, SHOWN},
    {ACTION, 13, A13, nullptr, field, false, true, HIDDEN, SHOWN},
    {ACTION, 14, A14, nullptr, field, true, true, HIDDEN, SHOWN},
    {ACTION, 15, A15, nullptr, field, false, true, HIDDEN, SHOWN},
    {ACTION, 16, A16, nullptr, field, true, true, HIDDEN, SHOWN},
    {ACTION, 17, A17, nullptr, with_aliases<A_17>, true, true, HIDDEN, SHOWN},
    {ACTION, 18, A18, nullptr, with_aliases<A_18>, false, true, HIDDEN, SHOWN},
    {ACTION, 19, A19, nullptr, with_aliases<A_19>, false, true, HIDDEN, SHOWN},
    {ACTION, 20, A20, nullptr, with_aliases<A_20>, true, true, HIDDEN, SHOWN},
    {ACTION, 21, A21, nullptr, keys, true, true, HIDDEN, APART},
    {ACTION, 22, A22, nullptr, new_key, true, true, HIDDEN, SHOWN},
    {ACTION, 23, A23, nullptr, verify, false, true, SHOWN, SHOWN},
    {ACTION, 24, A24, nullptr, configure, false, true, APART, INSTALLER},
    {ACTION, 25, A25, nullptr, put_in_use<A_25>, false, false, APART, HIDDEN},
    {ACTION, 26, A26, nullptr, create, false, false, SHOWN, HIDDEN},
    {ACTION, 27, A27, nullptr, put_in_use<A_27>, false, false, SHOWN, HIDDEN},
    {ACTION, 28, A28, nullptr, walk_through<A_28>, false, true, HIDDEN, HIDDEN},
    {ACTION, 29, A29, nullptr, walk_through<A_29>, false, true, HIDDEN, HIDDEN},
}};

}  // namespace

Finished Request::execute(const Options& options, RegionInUse& region) const {
    if (refuse_during_install(*this, options)) return {};
    if (guarded) return {A_X(options, region, number)};
    return handler(options, region, *this);
}

std::span<const Request> all_requests() {
    return REQUESTS;
}

int highest_number(RequestKind kind) {
    int highest = 0;
    for (const Request& request : REQUESTS) {
        if (request.kind == kind) highest = std::max(highest, request.number);
    }
    return highest;
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

bool refuse_during_install(const Request& request, const Options& options) {
    if (request.during_install) return false;
    return request.kind == QUERY ? Q_during_install(options.IS_DURING_INSTALL)
                                 : A_during_install(options.IS_DURING_INSTALL, request.label);
}

}  // namespace gatescope
