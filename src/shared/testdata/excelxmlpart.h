#pragma once

#include <QByteArray>
#include <functional>
#include <string_view>
#include <vector>

class TiXmlElement;

namespace Tamrix {

/// One XML document of an .xlsx file. Its elements are found by their paths and handed out one at a
/// time, each as a tree of its own: a sheet as one tree would take a hundred times its size.
class ExcelXmlPart {
public:
    /// Names from the root element on. The root element's prefix, if it has one, is left out: it
    /// stands for the namespace that all names of a path belong to.
    using Path = std::vector<std::string_view>;

    /// An element and what it holds may take up this much, in bytes, to be handed out.
    static constexpr std::size_t maxElementSize = std::size_t(8) << 20;
    /// And this many tags: some three times what a row of full width has.
    static constexpr std::ptrdiff_t maxElementTags = 300000;

    /// Throws std::runtime_error with the line when the document isn't well-formed, declares a
    /// document type (so there are no entities but XML's own), nests deeper than maxXmlDepth or has
    /// an element of more than maxXmlAttributes.
    explicit ExcelXmlPart(QByteArray document);

    bool has(const Path& path) const;
    /// Calls `handle` with each element at the path, in their order; the names in it are without
    /// the root element's prefix, line ends are line feeds. The element goes when `handle` returns.
    /// Throws std::runtime_error for an element that TinyXML can't read or that exceeds
    /// maxElementSize or maxElementTags, and what `handle` throws.
    void forEach(const Path& path, const std::function<void(const TiXmlElement&)>& handle) const;

private:
    QByteArray m_document;
};

}  // namespace Tamrix
