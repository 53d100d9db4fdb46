// A program into which no agent comes, as far as one can see: it has a library of the name loaded
// that its argument gives, and Qt linked statically when there is none. Plain C++, since a Qt that
// it really used would be looked at instead. Waits to be ended.

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>

namespace {

[[gnu::used]] const char build[] =
    "Qt 6.5.3 (x86_64-little_endian-lp64 static release build; by GCC 12.2.0)";

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2)
        return ::pause();
    const char* const name = argv[1];
    char folder[] = "/tmp/foreign-target-XXXXXX";
    constexpr size_t size = 4096;
    if (!::mkdtemp(folder) || ::chdir(folder) != 0)
        return 1;
    const int library = ::open(name, O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (::ftruncate(library, size) != 0 ||
        ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, library, 0) == MAP_FAILED)
        return 1;
    ::unlink(name);
    ::rmdir(folder);
    ::pause();
    return 0;
}
