#include "policy/file_chooser.h"

#include "base/filled.h"
#include "base/run_identity.h"
#include "base/text.h"
#include "dialog/answer_file.h"
#include "dialog/clearprompt.h"
#include "messages/dialog_texts.h"
#include "messages/policy_texts.h"

namespace gatescope {
namespace {

/// CLEARPROMPT, result file, default option, directory option, its text. The prompt is the
/// directory option, not the caller's text: the command line must not change.
constexpr char CLEARPROMPT_NAVIGATE_PATH[] =
    "%s file -prefer_gui -outfile %s  -pattern \"*.txt\" %s %s -prompt %s";
/// Quoted directory; unquoted directory.
constexpr char DIRECTORY_OPTION[] = "-directory %s";
constexpr char DIRECTORY_OPTION_TEXT[] = "-directory \"%s\"";

/// The option for the first directory of the dialog, and its text; blanks without a directory.
struct DirectoryOption {
    std::string option = " ";
    std::string text = " ";
};

DirectoryOption directory_option(const std::string& directory) {
    if (directory.empty()) return {};
    return {filled(DIRECTORY_OPTION, quoted(directory).c_str()),
            filled(DIRECTORY_OPTION_TEXT, directory.c_str())};
}

}  // namespace

std::optional<std::string> select_cb_file(const std::string& file_in_use,
                                          const std::string& prompt_text) {
    const std::string DEF_OR_NO = " ";
    const DirectoryOption DIR_OR_NO =
        directory_option(file_in_use.substr(0, file_in_use.rfind('/') + 1));
    const AnswerFile answer(t_file_name());
    run_dialog(filled(CLEARPROMPT_NAVIGATE_PATH, CLEARPROMPT, quoted(answer.path()).c_str(),
                      DEF_OR_NO.c_str(), DIR_OR_NO.option.c_str(), quoted(DIR_OR_NO.text).c_str()),
               prompt_text, NOT_ASKED_SO_CANCELLED);
    std::string POSSIBLE_FILE = words_joined(answer.content().value_or(""));
    if (POSSIBLE_FILE.empty()) return std::nullopt;
    return POSSIBLE_FILE;
}

}  // namespace gatescope
