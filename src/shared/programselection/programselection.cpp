#include "shared/programselection/programselection.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr size_t maxPrefixLength = 4095;
constexpr size_t maxLineLength = 1024;
constexpr const char* ignoredFile = "ignoredauts.txt";

/// Programs that start others and never show a window.
constexpr const char* ignoredPrograms[] = {
    "[",
    "arch",
    "as",
    "awk",
    "basename",
    "bash",
    "cat",
    "cc1",
    "collect2",
    "csh",
    "cut",
    "date",
    "dbus-launch",
    "dirname",
    "echo",
    "env",
    "fgrep",
    "g++",
    "gcc",
    "gdb",
    "grep",
    "gzip",
    "head",
    "hostname",
    "kde-open",
    "ksh",
    "ld",
    "ldd",
    "lddlibc4",
    "ls",
    "make",
    "manpath",
    "mkdir",
    "perl",
    "pkg-config",
    "ps",
    "pwd",
    "QtWebEngineProcess",
    "readlink",
    "rm",
    "sed",
    "sh",
    "sleep",
    "sysname",
    "tar",
    "tcsh",
    "tee",
    "test",
    "tr",
    "uname",
    "valgrind.bin",
    "valgrind",
    "wc",
    "which",
    "whoami",
    "zsh",
};
static_assert(sizeof(ignoredPrograms) / sizeof(ignoredPrograms[0]) == 56);

constexpr const char* toolkits[] = {"qt", "web", "tk", "java", "vnc", nullptr};

/// A part of a text, not terminated. A null begin means that there is none.
struct Part {
    const char* begin = nullptr;
    size_t length = 0;

    bool equals(const char* text) const {
        return begin && strlen(text) == length && memcmp(begin, text, length) == 0;
    }
};

/// Walks over the parts of a text, empty ones too, without copying them.
class Parts {
public:
    Parts(const char* text, char separator) : Parts(Part{text, strlen(text)}, separator) {}
    Parts(Part text, char separator)
        : m_next(text.begin), m_end(text.begin + text.length), m_separator(separator) {}

    /// False after the last part.
    bool next(Part* part) {
        *part = Part();
        if (!m_next)
            return false;
        const auto left = static_cast<size_t>(m_end - m_next);
        const auto* separator = static_cast<const char*>(memchr(m_next, m_separator, left));
        *part = Part{m_next, separator ? static_cast<size_t>(separator - m_next) : left};
        m_next = separator ? separator + 1 : nullptr;
        return true;
    }

private:
    const char* m_next;
    const char* m_end;
    char m_separator;
};

bool hasPart(Parts parts, const char* text) {
    Part part;
    while (parts.next(&part)) {
        if (part.equals(text))
            return true;
    }
    return false;
}

void cutLineEnd(char* line) {
    size_t length = strlen(line);
    if (length == 0 || line[length - 1] != '\n')
        return;
    line[--length] = '\0';
    if (length > 0 && line[length - 1] == '\r')
        line[length - 1] = '\0';
}

bool fileHasLine(const char* path, const char* text) {
    FILE* file = fopen(path, "re");
    if (!file)
        return false;
    char line[maxLineLength + 1];
    bool found = false;
    while (!found && fgets(line, sizeof(line), file)) {
        cutLineEnd(line);
        found = strcmp(line, text) == 0;
    }
    if (!found && ferror(file))
        fprintf(stderr, "Error %i while reading %s\n", errno, path);
    fclose(file);
    return found;
}

bool liesInOneOf(const char* directories, const char* program) {
    char path[2 * maxPrefixLength];
    Parts parts(directories, ':');
    Part directory;
    while (parts.next(&directory)) {
        const size_t length = directory.length + 1 + strlen(program);
        if (length >= sizeof(path))
            continue;
        snprintf(path, sizeof(path), "%.*s/%s", static_cast<int>(directory.length), directory.begin,
                 program);
        if (access(path, R_OK) == 0)
            return true;
    }
    return false;
}

bool isEmpty(const char* text) {
    return !text || !*text;
}

}  // namespace

int isIgnoredProgram(const char* program) {
    for (const char* ignored : ignoredPrograms) {
        if (strcmp(program, ignored) == 0)
            return 1;
    }
    const char* prefix = getenv("TAMRIX_PREFIX");
    if (!prefix) {
        fprintf(stderr, "TAMRIX_PREFIX not set. Ignoring program %s.\n", program);
        return 1;
    }
    char path[maxPrefixLength + 64];
    snprintf(path, sizeof(path), "%.*s/etc/%s", static_cast<int>(maxPrefixLength), prefix,
             ignoredFile);
    return fileHasLine(path, program) ? 1 : 0;
}

int isAllowedProgram(const char* program) {
    // 1. Without a name: the caller isn't punished for it.
    if (isEmpty(program)) {
        fprintf(stderr, "isAllowedProgram() called with invalid arg.\n");
        return 1;
    }
    // 2. What is ignored.
    if (isIgnoredProgram(program))
        return 0;
    // 3. Without any restriction.
    const char* names = getenv("TAMRIX_AUTS");
    const char* directories = getenv("TAMRIX_AUT_PATHS");
    if (!names && !directories)
        return 1;
    // 4. By name.
    if (!isEmpty(names) && hasPart(Parts(names, ':'), program))
        return 1;
    // 5. By place.
    if (!isEmpty(directories) && liesInOneOf(directories, program))
        return 1;
    // 6. Otherwise, also with both variables set but empty.
    return 0;
}

int matchWrapper(const char* program, const char* wrapper) {
    const char* wrappers = getenv("TAMRIX_AUT_WRAPPERS");
    if (isEmpty(wrappers))
        return 1;
    Parts entries(wrappers, ':');
    Part entry;
    while (entries.next(&entry)) {
        Parts sides(entry, '=');
        Part left, right;
        sides.next(&left);
        if (!left.equals(program))
            continue;
        if (!sides.next(&right)) {
            fprintf(stderr, "TAMRIX_AUT_WRAPPERS: the entry \"%s\" has no \"=\".\n", program);
            // The crash is meant: the tool's own set-up is broken.
            __builtin_trap();
        }
        return hasPart(Parts(right, ','), wrapper) ? 1 : 0;
    }
    return 1;
}

const char* tamrix_basename(const char* path) {
    const char* separator = path ? strrchr(path, '/') : nullptr;
    return separator ? separator + 1 : path;
}

const char* progname() {
    return program_invocation_short_name;
}

const char* const* allToolkits() {
    return toolkits;
}
