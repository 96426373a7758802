// What GLib and GObject do.

#include <glib-object.h>

#include <memory>

#include "Duty.h"

namespace {

const RegisterDuty object("object", "GObject", [](unsigned int size) -> Work {
    return [size, objects = std::vector<void*>(size)](unsigned int times) mutable {
        for (; times > 0; --times) {
            for (void*& held : objects) held = g_object_new(G_TYPE_OBJECT, nullptr);
            for (void* held : objects) g_object_unref(held);
        }
    };
});

const RegisterDuty handle("handle", "GObject", [](unsigned int size) -> Work {
    const auto objects = std::make_shared<std::vector<void*>>(size);
    for (void*& held : *objects) held = g_object_new(G_TYPE_OBJECT, nullptr);
    return [objects](unsigned int times) {
        for (; times > 0; --times) {
            for (void* held : *objects) {
                g_object_ref(held);
                Keep(held);
                g_object_unref(held);
            }
        }
    };
});

const RegisterDuty appendChar("append_char", "GString", [](unsigned int size) -> Work {
    return [size](unsigned int times) {
        for (; times > 0; --times) {
            GString* string = g_string_new(nullptr);
            for (unsigned int i = 0; i < size; ++i) {
                g_string_append_c(string, 'x');
                Keep(*string);
            }
            g_string_free(string, TRUE);
        }
    };
});

const RegisterDuty item("item", "GVariant", [](unsigned int size) -> Work {
    return [size, text = Letters(20)](unsigned int times) {
        for (; times > 0; --times) {
            GVariantBuilder builder;
            g_variant_builder_init(&builder, G_VARIANT_TYPE("a(is)"));
            for (unsigned int i = 0; i < size; ++i) {
                g_variant_builder_add(&builder, "(is)", firstNumber, text.c_str());
            }
            GVariant* sent = g_variant_ref_sink(g_variant_builder_end(&builder));
            GVariant* received =
                g_variant_new_from_data(G_VARIANT_TYPE("a(is)"), g_variant_get_data(sent),
                                        g_variant_get_size(sent), FALSE, nullptr, nullptr);
            for (unsigned int i = 0; i < size; ++i) {
                gint32 number;
                const char* read;
                g_variant_get_child(received, i, "(i&s)", &number, &read);
                Keep(number);
                Keep(read);
            }
            g_variant_unref(received);
            g_variant_unref(sent);
        }
    };
});

const RegisterDuty append("list_append", "GPtrArray", [](unsigned int size) -> Work {
    return [size](unsigned int times) {
        static int pointee;
        for (; times > 0; --times) {
            GPtrArray* list = g_ptr_array_new();
            for (unsigned int i = 0; i < size; ++i) g_ptr_array_add(list, &pointee);
            Keep(*list);
            g_ptr_array_free(list, TRUE);
        }
    };
});

const RegisterDuty front("list_front", "GPtrArray", [](unsigned int size) -> Work {
    return [size](unsigned int times) {
        static int pointee;
        for (; times > 0; --times) {
            GPtrArray* list = g_ptr_array_new();
            for (unsigned int i = 0; i < size; ++i) g_ptr_array_insert(list, 0, &pointee);
            Keep(*list);
            g_ptr_array_free(list, TRUE);
        }
    };
});

}  // namespace
