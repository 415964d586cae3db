// Owners for GLib objects.
#pragma once

#include <glib-object.h>

#include <memory>
#include <string>

namespace kestrel {

struct GlibRelease {
    void operator()(GError* error) const { g_error_free(error); }
    void operator()(GBytes* bytes) const { g_bytes_unref(bytes); }
    void operator()(char* text) const { g_free(text); }
    void operator()(guchar* bytes) const { g_free(bytes); }
};
using GlibError = std::unique_ptr<GError, GlibRelease>;
using GlibBytes = std::unique_ptr<GBytes, GlibRelease>;
using GlibText = std::unique_ptr<char, GlibRelease>;
using GlibBinary = std::unique_ptr<guchar, GlibRelease>;

struct ObjectRelease {
    void operator()(gpointer object) const { g_object_unref(object); }
};

// One reference to an object.
template <typename T>
using ObjectHandle = std::unique_ptr<T, ObjectRelease>;

// Takes the floating reference of a new widget.
template <typename T>
ObjectHandle<T> take_reference(T* object) {
    return ObjectHandle<T>(static_cast<T*>(g_object_ref_sink(object)));
}

inline std::string text_or_empty(const char* text) { return text == nullptr ? "" : text; }

}  // namespace kestrel
