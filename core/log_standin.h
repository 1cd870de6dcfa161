// Stands in for the platform's log where liblog isn't installed.
#pragma once

// Writes "priority/tag: text" to standard error; a null tag is written as
// nothing. Returns the number of characters of the text.
extern "C" [[gnu::visibility("hidden"), gnu::format(printf, 3, 4)]] int __android_log_print(
    int priority, const char *tag, const char *format, ...);
