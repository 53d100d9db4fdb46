#pragma once

#include "shared/testdata/testdataset.h"

namespace Tamrix {

class TsvParser;

/// A table of delimited text. Without a first line, and so for a file that can't be read, it has
/// the one field "1" and no records.
class TAMRIX_EXPORT TsvTestDataSet : public TestDataSet {
public:
    TsvTestDataSet(const QString& path, char separator);
    /// From the first line of what the parser has read; the parser stays the caller's.
    TsvTestDataSet(TsvParser* parser, char separator);

private:
    void parse(TsvParser* parser, char separator);
};

}  // namespace Tamrix
