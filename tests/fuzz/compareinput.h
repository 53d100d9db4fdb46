#pragma once

#include <QByteArray>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace Tamrix::Fuzz {

/// Both documents of a comparison, apart by a line of "====".
inline std::pair<QByteArray, QByteArray> twoDocuments(const std::uint8_t* data, std::size_t size) {
    const QByteArray all(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const QByteArray separator("\n====\n");
    const int middle = all.indexOf(separator);
    if (middle < 0)
        return {all, all};
    return {all.left(middle), all.mid(middle + separator.size())};
}

}  // namespace Tamrix::Fuzz
