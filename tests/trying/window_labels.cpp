// Preloaded into zenity: writes the texts of all labels in its windows to the file that
// WINDOW_LABELS names, as they are shown, without markup, shortcuts and escapes. One label per
// line, with line breaks as vertical bars. The last line has the number of rows of its lists so
// far: they are added after the window has appeared.

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace gatescope {
namespace {

// Functions of GTK are looked up by name, so that only zenity needs the library.
using Widget = void*;
struct List {
    Widget data;
    List* next;
};
struct Shown {
    std::string labels;
    int rows = 0;
};

template <class Function>
Function* gtk(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_DEFAULT, name));
}

bool is_a(Widget widget, const char* type) {
    return gtk<int(Widget, unsigned long)>("g_type_check_instance_is_a")(
               widget, gtk<unsigned long()>(type)()) != 0;
}

void read_widget(Widget widget, void* result) {
    auto& shown = *static_cast<Shown*>(result);
    if (is_a(widget, "gtk_label_get_type")) {
        std::string text = gtk<const char*(Widget)>("gtk_label_get_text")(widget);
        for (char& letter : text) {
            if (letter == '\n') letter = '|';
        }
        shown.labels += text + '\n';
    } else if (is_a(widget, "gtk_tree_view_get_type")) {
        void* model = gtk<void*(Widget)>("gtk_tree_view_get_model")(widget);
        shown.rows += gtk<int(void*, void*)>("gtk_tree_model_iter_n_children")(model, nullptr);
    } else if (is_a(widget, "gtk_container_get_type")) {
        gtk<void(Widget, void (*)(Widget, void*), void*)>("gtk_container_forall")(
            widget, read_widget, result);
    }
}

/// Called periodically while the window is open. It renames a new file, so that readers get whole
/// files.
int write_file(void* path) {
    Shown shown;
    for (List* window = gtk<List*()>("gtk_window_list_toplevels")(); window != nullptr;
         window = window->next) {
        read_widget(window->data, &shown);
    }
    const std::string name = static_cast<char*>(path);
    if (std::FILE* file = std::fopen((name + ".new").c_str(), "w")) {
        std::fprintf(file, "%srows %d\n", shown.labels.c_str(), shown.rows);
        std::fclose(file);
        std::rename((name + ".new").c_str(), name.c_str());
    }
    return 1;
}

}  // namespace

extern "C" void gtk_main() {
    if (char* path = std::getenv("WINDOW_LABELS")) {
        write_file(path);
        gtk<unsigned(unsigned, int (*)(void*), void*)>("g_timeout_add")(50, write_file, path);
    }
    reinterpret_cast<void (*)()>(dlsym(RTLD_NEXT, "gtk_main"))();
}

}  // namespace gatescope
