// The floor of loading a library, and an extension that adds nothing to a web process.
extern "C" [[gnu::visibility("default")]] void webkit_web_extension_initialize_with_user_data(
    void* /*extension*/, void* /*user_data*/) {}
