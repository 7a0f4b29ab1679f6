// Preloaded into zenity: writes the text of every label that is in a window, as it is shown after
// markup, shortcuts and escapes were taken out, to the file that WINDOW_LABELS names. One label a
// line, a line break in it as a vertical bar. The number of rows that its lists hold by now is
// written to a file of that name with ".rows" at its end: they come in after the window is up.

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

// What is used of GTK is looked up by name, so that nothing but zenity itself needs it.
using Widget = void*;
struct List {
    Widget data;
    List* next;
};

template <class Function>
Function* gtk(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_DEFAULT, name));
}

bool is_a(Widget widget, const char* type) {
    return gtk<int(Widget, unsigned long)>("g_type_check_instance_is_a")(
               widget, gtk<unsigned long()>(type)()) != 0;
}

void write_labels(Widget widget, void* file) {
    if (is_a(widget, "gtk_label_get_type")) {
        std::string text = gtk<const char*(Widget)>("gtk_label_get_text")(widget);
        for (char& letter : text) {
            if (letter == '\n') letter = '|';
        }
        std::fprintf(static_cast<std::FILE*>(file), "%s\n", text.c_str());
    } else if (is_a(widget, "gtk_container_get_type")) {
        gtk<void(Widget, void (*)(Widget, void*), void*)>("gtk_container_forall")(
            widget, write_labels, file);
    }
}

List* windows() {
    return gtk<List*()>("gtk_window_list_toplevels")();
}

void count_rows(Widget widget, void* rows) {
    if (is_a(widget, "gtk_tree_view_get_type")) {
        void* model = gtk<void*(Widget)>("gtk_tree_view_get_model")(widget);
        *static_cast<int*>(rows) +=
            gtk<int(void*, void*)>("gtk_tree_model_iter_n_children")(model, nullptr);
    } else if (is_a(widget, "gtk_container_get_type")) {
        gtk<void(Widget, void (*)(Widget, void*), void*)>("gtk_container_forall")(widget,
                                                                                  count_rows, rows);
    }
}

/// Called again and again while the window is up.
int write_rows(void* path) {
    int rows = 0;
    for (List* window = windows(); window != nullptr; window = window->next) {
        count_rows(window->data, &rows);
    }
    if (std::FILE* file =
            std::fopen((std::string(static_cast<char*>(path)) + ".rows").c_str(), "w")) {
        std::fprintf(file, "%d\n", rows);
        std::fclose(file);
    }
    return 1;
}

}  // namespace

extern "C" void gtk_main() {
    if (char* path = std::getenv("WINDOW_LABELS")) {
        gtk<unsigned(unsigned, int (*)(void*), void*)>("g_timeout_add")(50, write_rows, path);
        if (std::FILE* file = std::fopen(path, "w")) {
            for (List* window = windows(); window != nullptr; window = window->next) {
                write_labels(window->data, file);
            }
            std::fclose(file);
        }
    }
    reinterpret_cast<void (*)()>(dlsym(RTLD_NEXT, "gtk_main"))();
}
