// The system log, under the platform's own names.
#ifndef ANDROID_LOG_H
#define ANDROID_LOG_H

typedef enum android_LogPriority {
    ANDROID_LOG_UNKNOWN = 0,
    ANDROID_LOG_DEFAULT = 1,
    ANDROID_LOG_VERBOSE = 2,
    ANDROID_LOG_DEBUG = 3,
    ANDROID_LOG_INFO = 4,
    ANDROID_LOG_WARN = 5,
    ANDROID_LOG_ERROR = 6,
    ANDROID_LOG_FATAL = 7,
    ANDROID_LOG_SILENT = 8,
} android_LogPriority;

#pragma GCC visibility push(default)
#ifdef __cplusplus
extern "C" {
#endif

// Writes one entry, the text that `fmt` makes, as one line: `I/tag: text`.
//
// One newline at the end of the text is dropped; further ones appear as `\n` and carriage returns
// as `\r`, so an entry is always one line. The text may have any length.
//
// The line is appended to the file that the environment variable ZOREN_LOG_FILE names, which is
// created if need be; it goes to standard error when the variable is unset or empty or the file
// can't be opened. It is handed over in one write, so entries of several threads or processes don't
// mix.
//
// Returns the number of bytes written, or a negative errno value. errno itself is left as it was.
// Any thread may call it.
int __android_log_print(int prio, const char* tag, const char* fmt, ...)
    __attribute__((__format__(printf, 3, 4)));

#ifdef __cplusplus
}
#endif
#pragma GCC visibility pop

#endif  // ANDROID_LOG_H
