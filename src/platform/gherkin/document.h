#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "base/export.h"

namespace Tamrix::Gherkin {

/// A place in a feature file: line and column from 1, columns in code points. The column is 0 where
/// the whole line is meant, as behind the last one.
struct Location {
    int line = 0;
    int column = 0;

    bool operator==(const Location&) const = default;
};

/// What a step's keyword says about it. Unknown: an asterisk, or a word with several meanings.
enum class KeywordType { Unknown, Context, Action, Outcome, Conjunction };

/// The tree of a feature file. Its texts and lists belong to the Document that it was made with,
/// and live as long as that one. Names and cells are without the whitespace around them.
namespace Syntax {

struct Comment {
    Location location;
    /// The whole line.
    std::string_view text;
};

struct Tag {
    Location location;
    /// With its "@".
    std::string_view name;
};

struct TableCell {
    Location location;
    /// Escapes are replaced.
    std::string_view text;
};

struct TableRow {
    Location location;
    std::span<const TableCell> cells;
};

struct DocString {
    Location location;
    /// Where the closing fence is.
    int lastLine = 0;
    /// What follows the opening fence.
    std::string_view mediaType;
    /// Three quotation marks or three backticks.
    std::string_view fence;
    /// Without the indentation of the opening fence; lines end with "\n", but for the last.
    std::string_view text;
};

struct Step {
    Location location;
    /// With the space at its end, if it has one.
    std::string_view keyword;
    std::string_view text;
    KeywordType type = KeywordType::Unknown;
    /// May be null.
    const DocString* docString = nullptr;
    /// May be empty; its rows have equally many cells.
    std::span<const TableRow> table;
};

/// What has a keyword with a colon, a name and a description.
struct Heading {
    Location location;
    std::string_view keyword;
    std::string_view name;
    /// The lines as they stand in the file, without comments and without empty lines at either end.
    std::span<const std::string_view> description;
};

struct Background : Heading {
    std::span<const Step> steps;
};

struct Examples : Heading {
    std::span<const Tag> tags;
    /// The first row, if there is one, names the columns.
    std::span<const TableRow> table;
};

/// With examples it is an outline, whatever its keyword is.
struct Scenario : Heading {
    std::span<const Tag> tags;
    std::span<const Step> steps;
    std::span<const Examples> examples;
};

struct Rule : Heading {
    std::span<const Tag> tags;
    /// May be null.
    const Background* background = nullptr;
    std::span<const Scenario> scenarios;
};

struct Feature : Heading {
    /// The code of the spoken language.
    std::string_view language;
    std::span<const Tag> tags;
    /// May be null.
    const Background* background = nullptr;
    /// Those before the first rule.
    std::span<const Scenario> scenarios;
    std::span<const Rule> rules;
};

}  // namespace Syntax

/// A feature file as it was read; owns its text and its tree. Can be moved, and then read from any
/// thread.
class TAMRIX_EXPORT Document {
public:
    Document();
    ~Document();
    Document(Document&&) noexcept;
    Document& operator=(Document&&) noexcept;

    /// Null when the file holds no feature.
    const Syntax::Feature* feature() const;
    /// All of them, in the order of the file.
    std::span<const Syntax::Comment> comments() const;

private:
    friend class DocumentBuilder;
    struct Storage;
    std::unique_ptr<Storage> m_storage;
};

}  // namespace Tamrix::Gherkin
