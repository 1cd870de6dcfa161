/* What the leak sanitizer has to know, in builds with it. */

extern "C" {
const char *__lsan_default_suppressions();
const char *__lsan_default_options();
}

// fontconfig, which writes the texts of pictures, notes where its memory lies as offsets.
// The sanitizer doesn't follow those.
const char *__lsan_default_suppressions() { return "leak:libfontconfig.so\n"; }

const char *__lsan_default_options() { return "print_suppressions=0"; }
