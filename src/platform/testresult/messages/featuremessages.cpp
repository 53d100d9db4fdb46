#include "platform/testresult/messages/featuremessages.h"

#include <QJsonArray>
#include <string_view>

#include "platform/gherkin/errors.h"
#include "platform/gherkin/parser.h"
#include "platform/gherkin/recordsfromtree.h"

namespace Tamrix {

namespace {

namespace Syntax = Gherkin::Syntax;
using Gherkin::KeywordType;

QString text(std::string_view view) {
    return QString::fromUtf8(view.data(), static_cast<int>(view.size()));
}

QString text(const std::string& bytes) {
    return text(std::string_view(bytes));
}

const char* typeName(KeywordType type) {
    switch (type) {
        case KeywordType::Context:
            return "Context";
        case KeywordType::Action:
            return "Action";
        case KeywordType::Outcome:
            return "Outcome";
        case KeywordType::Conjunction:
            return "Conjunction";
        case KeywordType::Unknown:
            break;
    }
    return "Unknown";
}

QJsonObject location(const Gherkin::Location& place) {
    QJsonObject object{{"line", place.line}};
    if (place.column > 0)
        object.insert("column", place.column);
    return object;
}

/// Makes the tree of a file and gives each of its nodes an id; then the pickles refer to these.
class Builder {
public:
    Builder(const QString& uri, MessageIds* ids, FeatureMessages* result)
        : m_uri(uri), m_ids(ids), m_result(result) {}

    void build(const Gherkin::Document& document) {
        QJsonArray comments;
        for (const Syntax::Comment& comment : document.comments())
            comments.append(QJsonObject{{"location", location(comment.location)},
                                        {"text", text(comment.text)}});
        QJsonObject tree{{"uri", m_uri}, {"comments", comments}};
        const Syntax::Feature* const feature = document.feature();
        if (feature)
            tree.insert("feature", featureObject(*feature));
        m_result->messages.push_back({{"gherkinDocument", tree}});
        if (feature)
            addPickles(*feature);
    }

private:
    using Tags = std::vector<const Syntax::Tag*>;
    using Backgrounds = std::vector<const Syntax::Background*>;

    /// The id of a node, given when it is asked for first.
    QString id(const void* node) {
        QString& known = m_nodeIds[node];
        if (known.isEmpty())
            known = m_ids->next();
        return known;
    }

    // The tree.

    QJsonObject heading(const Syntax::Heading& node) {
        QStringList description;
        for (const std::string_view line : node.description)
            description += text(line);
        return {{"location", location(node.location)},
                {"keyword", text(node.keyword)},
                {"name", text(node.name)},
                {"description", description.join('\n')}};
    }

    QJsonArray tagArray(std::span<const Syntax::Tag> tags) {
        QJsonArray array;
        for (const Syntax::Tag& tag : tags)
            array.append(QJsonObject{
                {"location", location(tag.location)}, {"name", text(tag.name)}, {"id", id(&tag)}});
        return array;
    }

    QJsonObject rowObject(const Syntax::TableRow& row) {
        QJsonArray cells;
        for (const Syntax::TableCell& cell : row.cells)
            cells.append(
                QJsonObject{{"location", location(cell.location)}, {"value", text(cell.text)}});
        return {{"location", location(row.location)}, {"cells", cells}, {"id", id(&row)}};
    }

    QJsonObject stepObject(const Syntax::Step& step) {
        QJsonObject object{{"location", location(step.location)},
                           {"keyword", text(step.keyword)},
                           {"keywordType", typeName(step.type)},
                           {"text", text(step.text)},
                           {"id", id(&step)}};
        if (step.docString) {
            QJsonObject docString{{"location", location(step.docString->location)},
                                  {"content", text(step.docString->text)},
                                  {"delimiter", text(step.docString->fence)}};
            if (!step.docString->mediaType.empty())
                docString.insert("mediaType", text(step.docString->mediaType));
            object.insert("docString", docString);
        }
        if (!step.table.empty()) {
            QJsonArray rows;
            for (const Syntax::TableRow& row : step.table)
                rows.append(rowObject(row));
            object.insert("dataTable", QJsonObject{{"location", location(step.table[0].location)},
                                                   {"rows", rows}});
        }
        return object;
    }

    QJsonArray stepArray(std::span<const Syntax::Step> steps) {
        QJsonArray array;
        for (const Syntax::Step& step : steps)
            array.append(stepObject(step));
        return array;
    }

    QJsonObject examplesObject(const Syntax::Examples& examples) {
        QJsonObject object = heading(examples);
        object.insert("tags", tagArray(examples.tags));
        object.insert("id", id(&examples));
        QJsonArray body;
        for (std::size_t row = 0; row < examples.table.size(); ++row) {
            if (row == 0)
                object.insert("tableHeader", rowObject(examples.table[row]));
            else
                body.append(rowObject(examples.table[row]));
        }
        object.insert("tableBody", body);
        return object;
    }

    /// A background and scenarios, as the children of a feature or a rule.
    QJsonArray children(const Syntax::Background* background,
                        std::span<const Syntax::Scenario> scenarios) {
        QJsonArray array;
        if (background) {
            QJsonObject object = heading(*background);
            object.insert("steps", stepArray(background->steps));
            object.insert("id", id(background));
            array.append(QJsonObject{{"background", object}});
        }
        for (const Syntax::Scenario& scenario : scenarios) {
            QJsonObject object = heading(scenario);
            object.insert("tags", tagArray(scenario.tags));
            object.insert("steps", stepArray(scenario.steps));
            QJsonArray examples;
            for (const Syntax::Examples& each : scenario.examples)
                examples.append(examplesObject(each));
            object.insert("examples", examples);
            object.insert("id", id(&scenario));
            array.append(QJsonObject{{"scenario", object}});
        }
        return array;
    }

    QJsonObject featureObject(const Syntax::Feature& feature) {
        QJsonArray array = children(feature.background, feature.scenarios);
        for (const Syntax::Rule& rule : feature.rules) {
            QJsonObject object = heading(rule);
            object.insert("tags", tagArray(rule.tags));
            object.insert("children", children(rule.background, rule.scenarios));
            object.insert("id", id(&rule));
            array.append(QJsonObject{{"rule", object}});
        }
        QJsonObject object = heading(feature);
        object.insert("language", text(feature.language));
        object.insert("tags", tagArray(feature.tags));
        object.insert("children", array);
        m_language = text(feature.language);
        return object;
    }

    // The pickles.

    static void append(std::span<const Syntax::Tag> tags, Tags* all) {
        for (const Syntax::Tag& tag : tags)
            all->push_back(&tag);
    }

    void addPickles(const Syntax::Feature& feature) {
        Tags tags;
        append(feature.tags, &tags);
        Backgrounds backgrounds;
        if (feature.background)
            backgrounds.push_back(feature.background);
        addPickles(feature.scenarios, tags, backgrounds);
        for (const Syntax::Rule& rule : feature.rules) {
            Tags ofRule = tags;
            append(rule.tags, &ofRule);
            Backgrounds backgroundsOfRule = backgrounds;
            if (rule.background)
                backgroundsOfRule.push_back(rule.background);
            addPickles(rule.scenarios, ofRule, backgroundsOfRule);
        }
    }

    void addPickles(std::span<const Syntax::Scenario> scenarios, const Tags& inherited,
                    const Backgrounds& backgrounds) {
        for (const Syntax::Scenario& scenario : scenarios) {
            Tags tags = inherited;
            append(scenario.tags, &tags);
            if (scenario.examples.empty())
                addPickle(scenario, tags, backgrounds, nullptr, nullptr);
            for (const Syntax::Examples& examples : scenario.examples) {
                Tags withExamples = tags;
                append(examples.tags, &withExamples);
                for (std::size_t row = 1; row < examples.table.size(); ++row)
                    addPickle(scenario, withExamples, backgrounds, &examples.table[0],
                              &examples.table[row]);
            }
        }
    }

    /// `header` and `row` are null for a plain scenario.
    void addPickle(const Syntax::Scenario& scenario, const Tags& tags,
                   const Backgrounds& backgrounds, const Syntax::TableRow* header,
                   const Syntax::TableRow* row) {
        const Gherkin::RowValues values =
            row ? Gherkin::RowValues(header, row) : Gherkin::RowValues();
        PickleIds pickle;
        pickle.id = m_ids->next();
        QJsonArray steps;
        KeywordType type = KeywordType::Unknown;
        const auto addSteps = [&](std::span<const Syntax::Step> all,
                                  const Gherkin::RowValues& filled, const Syntax::TableRow* ofRow) {
            for (const Syntax::Step& step : all) {
                type = step.type == KeywordType::Conjunction ? type : step.type;
                pickle.steps += m_ids->next();
                QJsonArray nodes{id(&step)};
                if (ofRow)
                    nodes.append(id(ofRow));
                QJsonObject object = pickleStep(Gherkin::stepRecord(step, filled));
                object.insert("id", pickle.steps.constLast());
                object.insert("astNodeIds", nodes);
                object.insert("type", typeName(type));
                steps.append(object);
            }
        };
        if (!scenario.steps.empty()) {
            for (const Syntax::Background* const background : backgrounds)
                addSteps(background->steps, {}, nullptr);
        }
        addSteps(scenario.steps, values, row);
        QJsonArray tagArray;
        for (const Syntax::Tag* const tag : tags)
            tagArray.append(QJsonObject{{"name", text(tag->name)}, {"astNodeId", id(tag)}});
        QJsonArray nodes{id(&scenario)};
        if (row)
            nodes.append(id(row));
        const Gherkin::Location& place = row ? row->location : scenario.location;
        m_result->messages.push_back(
            {{"pickle", QJsonObject{{"id", pickle.id},
                                    {"uri", m_uri},
                                    {"location", location(place)},
                                    {"name", text(values.filledIn(scenario.name))},
                                    {"language", m_language},
                                    {"steps", steps},
                                    {"tags", tagArray},
                                    {"astNodeIds", nodes}}}});
        m_result->pickles[place.line] = pickle;
    }

    static QJsonObject pickleStep(const Gherkin::Step& step) {
        QJsonObject object{{"text", text(step.text)}};
        if (step.docString) {
            QJsonObject docString{{"content", text(step.docString->text)}};
            if (!step.docString->mediaType.empty())
                docString.insert("mediaType", text(step.docString->mediaType));
            object.insert("argument", QJsonObject{{"docString", docString}});
        } else if (!step.table.empty()) {
            QJsonArray rows;
            for (const std::vector<Gherkin::TableCell>& row : step.table) {
                QJsonArray cells;
                for (const Gherkin::TableCell& cell : row)
                    cells.append(QJsonObject{{"value", text(cell.text)}});
                rows.append(QJsonObject{{"cells", cells}});
            }
            object.insert("argument", QJsonObject{{"dataTable", QJsonObject{{"rows", rows}}}});
        }
        return object;
    }

    QString m_uri;
    MessageIds* m_ids;
    FeatureMessages* m_result;
    QString m_language;
    std::map<const void*, QString> m_nodeIds;
};

}  // namespace

FeatureMessages featureMessages(const QString& uri, const QByteArray& content, MessageIds* ids) {
    FeatureMessages result;
    result.messages.push_back(
        {{"source", QJsonObject{{"uri", uri},
                                {"data", QString::fromUtf8(content)},
                                {"mediaType", "text/x.cucumber.gherkin+plain"}}}});
    const Gherkin::ParseResult parsed = Gherkin::parse(content.toStdString());
    for (const Gherkin::ParseError& error : parsed.errors) {
        const QJsonObject source{{"uri", uri}, {"location", location(error.location)}};
        result.messages.push_back(
            {{"parseError", QJsonObject{{"source", source}, {"message", text(error.message)}}}});
    }
    if (!parsed.errors.empty())
        return result;
    try {
        Builder(uri, ids, &result).build(parsed.document);
    } catch (const Gherkin::RunFeatureError&) {
        // A row that makes a text too long: its run has told so.
    }
    return result;
}

}  // namespace Tamrix
