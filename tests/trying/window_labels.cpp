// Preloaded into zenity: keeps in the file that WINDOW_LABELS names the text of every label that is
// in its windows, as it is shown after markup, shortcuts and escapes were taken out. One label a
// line, a line break in it as a vertical bar. A last line tells how many rows its lists hold by
// now: they come in after the window is up.

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace gatescope {
namespace {

// What is used of GTK is looked up by name, so that nothing but zenity itself needs it.
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

/// Called again and again while the window is up. The file is replaced, so that it is read whole.
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
