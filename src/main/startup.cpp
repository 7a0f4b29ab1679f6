#include "main/startup.h"

#include <strings.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <new>

#include "base/filled.h"
#include "base/operator_name.h"
#include "base/run_identity.h"
#include "base/signals.h"
#include "base/standard_streams.h"
#include "base/temporary_files.h"
#include "dialog/messages.h"
#include "main/out_of_memory.h"
#include "messages/environment.h"
#include "messages/identity.h"
#include "messages/startup_texts.h"

namespace gatescope {
namespace {

/// Variables with the directory for temporary files: in lower case for getenv, in upper case for
/// messages.
struct TempDirSource {
    const char* variable;
    const char* spelled;
};
constexpr std::array<TempDirSource, 2> TEMP_DIR_SOURCES = {{{ENV_TMP, "TMP"}, {ENV_TEMP, "TEMP"}}};

/// Names of variables as negated character codes, so that the program file does not contain them as
/// text. They are read one by one at run time, so that the compiler cannot join them.
using HiddenCode = const int;
HiddenCode KIND_OF_VIEW[] = {-'C', -'L', -'E', -'A', -'R', -'C', -'A', -'S', -'E', -'_',
                             -'V', -'I', -'E', -'W', -'_', -'K', -'I', -'N', -'D'};
HiddenCode REMOTE_CLIENT[] = {-'Z', -'U', -'L', -'_', -'U', -'S', -'I',
                              -'N', -'G', -'_', -'C', -'C', -'R', -'C'};
HiddenCode DIALOGS_IN_THE_NET[] = {-'A', -'T', -'R', -'I', -'A', -'_', -'W', -'E', -'B', -'_', -'C',
                                   -'L', -'E', -'A', -'R', -'P', -'R', -'O', -'M', -'P', -'T'};

template <std::size_t SIZE>
const char* hidden_variable(HiddenCode (&codes)[SIZE]) {
    std::string hidden_e_var_name;
    for (const volatile int& code : codes) hidden_e_var_name += static_cast<char>(-code);
    return std::getenv(hidden_e_var_name.c_str());
}

/// Sets what kind of client the operator uses.
void detect_client(Operator* who) {
    const char* view_kind = hidden_variable(KIND_OF_VIEW);
    const std::string kind = view_kind != nullptr ? view_kind : "";
    who->ZUL_SNAPSHOT_USER = kind.find("snapshot") != std::string::npos;
    who->REAL_ZUL_WEB_USER = kind.find("web") != std::string::npos;
    if (hidden_variable(REMOTE_CLIENT) == nullptr &&
        hidden_variable(DIALOGS_IN_THE_NET) == nullptr) {
        return;
    }
    who->REAL_ZUL_WEB_USER = true;
    who->REAL_ZUL_REMOTE_CLIENT_USER = true;
}

bool temp_dir_is_writable() {
    const std::string probe = make_tfile("junk_test", SELF, GLOBAL_PID_STRING.c_str());
    const int file = create_temporary_file(probe);
    if (file == -1) return false;
    close(file);
    remove_temporary_file(probe);
    return true;
}

}  // namespace

int run_program(const char* name, int (*run)(int, char**), int argument_count, char** arguments) {
    if (const int error = open_missing_standard_streams()) {
        note(filled(CANNOT_OPEN_NULL_DEVICE, std::strerror(error)), name);
        return error_status();
    }
    install_signal_cleanup();
    install_out_of_memory_handlers();
    try {
        return run(argument_count, arguments);
    } catch (const std::bad_alloc&) {
        gripe_out_of_memory();
    }
}

Operator clean_start() {
    const auto user = operator_name();
    if (!user) gripe(NO_USER);
    Operator who = {._CALCULATED_USER = *user};
    const char* no_gui = std::getenv(ENV_PREFER_NO_GUI);
    ZUL_PREFER_GUI = no_gui == nullptr || strcasecmp(no_gui, "yes") != 0;
    detect_client(&who);
    ZUL_REMOTE_CLIENT_USER = who.REAL_ZUL_REMOTE_CLIENT_USER;
    return who;
}

void verify_set_tempdir() {
    GLOBAL_PID_STRING = std::to_string(getpid());
    for (const auto& [variable, spelled] : TEMP_DIR_SOURCES) {
        const char* directory = std::getenv(variable);
        if (directory == nullptr) continue;
        TEMP_DIR = directory;
        if (temp_dir_is_writable()) return;
        gripe(filled(ERROR_USIING_TEMP_DIR, SELF, spelled, directory), errno);
    }
    TEMP_DIR = "/tmp";
    if (temp_dir_is_writable()) return;
    gripe(filled(ERROR_USING_SLASH_TMP, SELF, PLEASE_SET_TMP_OR_TEMP), errno);
}

}  // namespace gatescope
