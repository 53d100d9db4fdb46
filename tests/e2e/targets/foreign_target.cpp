// A program of another toolkit, as far as one can see: it has a library of that name loaded. Plain
// C++, since Qt 5 would tell it from a foreign one. Waits to be ended.

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>

int main() {
    char folder[] = "/tmp/foreign-target-XXXXXX";
    constexpr size_t size = 4096;
    if (!::mkdtemp(folder) || ::chdir(folder) != 0)
        return 1;
    const int library = ::open("libQt6Core.so.6", O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (::ftruncate(library, size) != 0 ||
        ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, library, 0) == MAP_FAILED)
        return 1;
    ::unlink("libQt6Core.so.6");
    ::rmdir(folder);
    ::pause();
    return 0;
}
