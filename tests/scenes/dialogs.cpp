#include "scenes/dialogs.h"

namespace gatescope {
namespace {

using Args = std::vector<std::string>;

constexpr char PROMPT_RESULT[] = "{tmp}/gatewarden_prompt_result_{pid}_.txt";
constexpr char PROMPT_DEFAULT[] = "{tmp}/gatewarden_prompt_prompt_{pid}_.txt";
constexpr char SELECT_RESULT[] = "{tmp}/gatewarden_select_result_{pid}_.txt";
constexpr char SCRATCH[] = "{tmp}/t_file_gatescope_{pid}.txt";

/// `head`, -newline if the text contains "\n", and the text after its option.
Args with_text(Args head, const std::string& text_option, const std::string& text) {
    if (text.find("\\n") != std::string::npos) head.push_back("-newline");
    head.push_back(text_option);
    head.push_back(text);
    return head;
}

Dialog buttons(const std::string& text, const std::string& def, const std::string& mask,
               bool waited) {
    return {with_text({"yes_no", "-mask", mask, "-def", def, "-pre"}, "-pro", text), waited, {}};
}

}  // namespace

void PrintTo(const Dialog& dialog, std::ostream* stream) {
    *stream << (dialog.waited ? "waited for" : "in the background");
    for (const std::string& argument : dialog.args) *stream << " [" << argument << ']';
    if (dialog.shown) *stream << " with the file {" << *dialog.shown << '}';
}

Dialog asked(const std::string& text, const std::string& def, const std::string& mask) {
    return buttons(text, def, mask, true);
}

Dialog advised(const std::string& text) {
    return buttons(text, "yes", "yes", false);
}

Dialog advised_and_waited(const std::string& text) {
    return buttons(text, "yes", "yes", true);
}

Dialog griped(const std::string& text) {
    return buttons(text, "abort", "abort", false);
}

Dialog prompted(const std::string& text, const std::string& def) {
    const Args head = {"text", "-prefer_gui", "-outfile", PROMPT_RESULT, "-default", def};
    return {with_text(head, "-prompt", text), true, {}};
}

Dialog prompted_from_file(const std::string& text, const std::string& def) {
    const Args head = {"text", "-prefer_gui", "-outfile", PROMPT_RESULT, "-dfile", PROMPT_DEFAULT};
    return {with_text(head, "-prompt", text), true, def};
}

Dialog showed_file(const std::string& title, const std::string& file, const std::string& content,
                   bool errors) {
    const std::string prompt =
        title + "\\n -- File has " +
        (errors ? "one or more errors displayed near bottom " : "NO errors ") + "--";
    return {{"text", "-prefer_gui", "-multi_line", "-outfile", PROMPT_RESULT, "-dfile", file,
             "-newline", "-prompt", prompt},
            true,
            content};
}

Dialog listed(const std::string& title, const std::string& items) {
    return {{"list", "-prefer_gui", "-outfile", SELECT_RESULT, "-newline", "-items", items,
             "-prompt", title},
            true,
            {}};
}

Dialog listed_for_several(const std::string& title, const std::string& items) {
    return {{"list", "-prefer_gui", "-outfile", SELECT_RESULT, "-newline", "-items", items,
             "-choices", "-prompt", title},
            true,
            {}};
}

Dialog file_dialog_in(const std::string& directory) {
    return {{"file", "-prefer_gui", "-outfile", SCRATCH, "-pattern", "*.txt", "-directory",
             directory, "-prompt", "-directory " + directory},
            true,
            {}};
}

Dialog file_dialog_without_directory() {
    return {{"file", "-prefer_gui", "-outfile", SCRATCH, "-pattern", "*.txt", "-prompt", " "},
            true,
            {}};
}

}  // namespace gatescope
