#include <android/log.h>
#include <errno.h>
#include <fcntl.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/types.h>
#include <unistd.h>

namespace {

char priorityLetter(int priority) {
    static constexpr char kLetters[] = "??VDIWEFS";
    return priority >= ANDROID_LOG_UNKNOWN && priority <= ANDROID_LOG_SILENT ? kLetters[priority]
                                                                             : '?';
}

// Copies `length` bytes to `out` with line ends spelled out, and returns the end of the copy, at
// most 2 * length bytes on.
char* appendVisible(char* out, const char* text, size_t length) {
    for (size_t i = 0; i < length; ++i) {
        if (text[i] == '\n' || text[i] == '\r') {
            *out++ = '\\';
            *out++ = text[i] == '\n' ? 'n' : 'r';
        } else {
            *out++ = text[i];
        }
    }
    return out;
}

// Writes the line as a whole; goes on only after an interruption or a short write (a full disk or a
// pipe). Returns 0 or an errno value.
int writeAll(int file, const char* line, size_t length) {
    while (length > 0) {
        const ssize_t written = write(file, line, length);
        if (written < 0) {
            if (errno == EINTR) continue;
            return errno;
        }
        line += written;
        length -= static_cast<size_t>(written);
    }
    return 0;
}

int writeEntry(int priority, const char* tag, const char* text, size_t textLength) {
    if (textLength > 0 && text[textLength - 1] == '\n') --textLength;
    const size_t tagLength = strlen(tag);
    // 5: letter, slash, colon, space, newline
    char* line = static_cast<char*>(malloc(2 * tagLength + 2 * textLength + 5));
    if (line == nullptr) return -ENOMEM;
    char* end = line;
    *end++ = priorityLetter(priority);
    *end++ = '/';
    end = appendVisible(end, tag, tagLength);
    *end++ = ':';
    *end++ = ' ';
    end = appendVisible(end, text, textLength);
    *end++ = '\n';
    const size_t length = static_cast<size_t>(end - line);

    const char* path = getenv("ZOREN_LOG_FILE");
    const int file = path != nullptr && path[0] != '\0'
                         ? open(path, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644)
                         : -1;
    const int error = writeAll(file >= 0 ? file : STDERR_FILENO, line, length);
    if (file >= 0) close(file);
    free(line);
    return error != 0 ? -error : static_cast<int>(length);
}

}  // namespace

int __android_log_print(int prio, const char* tag, const char* fmt, ...) {
    if (fmt == nullptr) return -EINVAL;
    const int savedErrno = errno;
    char* text = nullptr;
    va_list arguments;
    va_start(arguments, fmt);
    const int textLength = vasprintf(&text, fmt, arguments);
    va_end(arguments);
    int result = -errno;  // of the formatting, when it failed
    if (textLength >= 0) {
        result = writeEntry(prio, tag != nullptr ? tag : "", text, static_cast<size_t>(textLength));
        free(text);
    }
    errno = savedErrno;
    return result;
}
