// An .xlsx file: an archive, or, when the first bytes are others, a sheet in an archive.

#include <minizip/zip.h>
#include <sys/mman.h>
#include <unistd.h>

#include <QString>
#include <string>

#include "base/shared.h"
#include "fuzz/fuzztarget.h"
#include "fuzz/quietqt.h"
#include "shared/testdata/excelxmltestdataset.h"

using namespace Tamrix;

namespace {

void addEntry(zipFile archive, const char* name, const char* data, std::size_t size) {
    zipOpenNewFileInZip(archive, name, nullptr, nullptr, 0, nullptr, 0, nullptr, 0, 0);
    zipWriteInFileInZip(archive, data, static_cast<unsigned>(size));
    zipCloseFileInZip(archive);
}

/// The input takes the place of all documents but the first.
void writeArchive(const std::string& path, const std::uint8_t* data, std::size_t size) {
    const std::string workbook =
        "<workbook><sheets><sheet name='A' sheetId='1' r:id='a'/></sheets></workbook>";
    const auto* const text = reinterpret_cast<const char*>(data);
    const zipFile archive = zipOpen(path.c_str(), APPEND_STATUS_CREATE);
    addEntry(archive, "xl/workbook.xml", workbook.data(), workbook.size());
    addEntry(archive, "xl/_rels/workbook.xml.rels", text, size);
    addEntry(archive, "xl/sharedStrings.xml", text, size);
    addEntry(archive, "xl/worksheets/sheet1.xml", text, size);
    zipClose(archive, nullptr);
}

}  // namespace

int fuzzTarget(const std::uint8_t* data, std::size_t size) {
    Tamrix::Fuzz::silenceQt();
    // A file in memory, to be opened by a name.
    static const int s_file = ::memfd_create("xlsx", MFD_CLOEXEC);
    static const std::string s_path = "/proc/self/fd/" + std::to_string(s_file);
    fuzzRequire(::ftruncate(s_file, 0) == 0, "there is a file");
    if (size >= 2 && data[0] == 'P' && data[1] == 'K')
        fuzzRequire(::pwrite(s_file, data, size, 0) == static_cast<ssize_t>(size), "it is written");
    else
        writeArchive(s_path, data, size);

    int count = 0;
    const ExcelXmlTestDataSet set(QString::fromStdString(s_path), QString());
    for (int row = 0; row < set.count(); row += 1 + set.count() / 10)
        count += set.record(row)->valueAsString(0).size();
    fuzzRequire(count >= 0, "the records are there");
    return 0;
}
