#include "platform/spreadsheet/workbook.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <new>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/spreadsheet/biffreader.h"
#include "platform/spreadsheet/compoundfile.h"

namespace Swinder {

namespace {

class File {
public:
    explicit File(const char* path)
        : m_descriptor(::open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {}
    ~File() {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    std::vector<std::uint8_t> read() const {
        struct stat facts = {};
        if (m_descriptor < 0 || ::fstat(m_descriptor, &facts) != 0)
            throw FormatError(std::strerror(errno));
        if (!S_ISREG(facts.st_mode))
            throw FormatError("it is no regular file");
        if (static_cast<std::size_t>(facts.st_size) > Workbook::maxFileSize)
            throw FormatError("it is larger than 512 MiB");
        std::vector<std::uint8_t> bytes(static_cast<std::size_t>(facts.st_size));
        std::size_t done = 0;
        while (done < bytes.size()) {
            const ssize_t count = ::read(m_descriptor, bytes.data() + done, bytes.size() - done);
            if (count < 0 && errno != EINTR)
                throw FormatError(std::strerror(errno));
            if (count == 0)
                break;
            done += count > 0 ? static_cast<std::size_t>(count) : 0;
        }
        bytes.resize(done);
        return bytes;
    }

private:
    int m_descriptor;
};

/// Up to Excel 4 the records were the file, without folders around them.
bool isBareSheet(Bytes file) {
    constexpr std::uint16_t beginnings[] = {0x0009, 0x0209, 0x0409};
    return file.size() >= 2 && std::find(std::begin(beginnings), std::end(beginnings),
                                         u16At(file, 0)) != std::end(beginnings);
}

std::vector<std::uint8_t> readWorkbookStream(const char* path) {
    const std::vector<std::uint8_t> file = File(path).read();
    if (isBareSheet(file))
        throw FormatError("it is a sheet of Excel 4 or earlier; only Excel 97 and later are read");
    const CompoundFile compound(file);
    // A file for old and new programs has both, and the old one is not of this version.
    for (const std::u16string_view name : {u"Workbook", u"Book"}) {
        if (auto stream = compound.stream(name))
            return *std::move(stream);
    }
    throw FormatError("the compound file holds no workbook");
}

}  // namespace

struct Workbook::Contents : BiffContents {};

Workbook::Workbook(Store* /*store*/) : m_contents(std::make_unique<Contents>()) {}

Workbook::~Workbook() = default;

bool Workbook::load(const char* path) {
    m_contents = std::make_unique<Contents>();
    m_errorText.clear();
    try {
        readBiff(readWorkbookStream(path), *m_contents);
    } catch (const FormatError& error) {
        m_errorText = error.what();
    } catch (const std::bad_alloc&) {
        m_errorText = "there is not enough memory for it";
    }
    if (m_errorText.empty())
        return true;
    m_contents = std::make_unique<Contents>();
    return false;
}

bool Workbook::isPasswordProtected() const {
    return m_contents->isPasswordProtected;
}

unsigned Workbook::sheetCount() const {
    return static_cast<unsigned>(m_contents->sheets.size());
}

Sheet* Workbook::sheet(unsigned index) {
    return index < sheetCount() ? &m_contents->sheets[index] : nullptr;
}

}  // namespace Swinder
