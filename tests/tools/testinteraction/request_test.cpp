#include "tools/testinteraction/request.h"

#include <gtest/gtest.h>

#include "base/overloaded.h"
#include "support/outcomes.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

/// What a command line asks for, or what is wrong with it.
QString read(const QStringList& arguments) {
    const Outcome<Request> request = parseRequest(arguments);
    if (!request)
        return request.error().text;
    const QString content = std::visit(
        Overloaded{
            [](const TextRequest& text) {
                const char* const kinds[] = {"information", "warning", "question"};
                return QString("%1 %2").arg(kinds[static_cast<int>(text.kind)], text.text);
            },
            [](const InputRequest& input) {
                return QString("%1 %2 (%3)")
                    .arg(input.isPassword ? "password" : "input", input.message, input.initialText);
            },
            [](const ChoiceRequest& choice) {
                return QString("%1: %2").arg(choice.message, choice.items.join('|'));
            },
            [](const NoticeRequest& notice) {
                return QString("%1 %2 %3")
                    .arg(notice.text, notice.imageFile, QString::number(notice.milliseconds));
            },
        },
        request->content);
    return request->title + ": " + content;
}

TEST(InteractionRequest, IsReadFromTheCommandLine) {
    const QString kinds =
        " is none of choice, image, information, input, notification, password, question, warning";
    const struct {
        QStringList arguments;
        QString expected;
    } rows[] = {
        {{"information", "T", "-style x"}, "T: information -style x"},
        {{"warning", "T", ""}, "T: warning "},
        {{"question", "T", "a\nb"}, "T: question a\nb"},
        {{"input", "T", "m", "start"}, "T: input m (start)"},
        {{"password", "T", "m"}, "T: password m ()"},
        {{"choice", "T", "m", "a b", "", "c"}, "T: m: a b||c"},
        {{"notification", "T", "text", "1500"}, "T: text  1500"},
        {{"image", "T", "", "/tmp/x", "5000"}, "T:  /tmp/x 5000"},
        {{}, "''" + kinds},
        {{"list", "T"}, "'list'" + kinds},
        {{"information", "T"}, "usage: testinteraction information TITLE TEXT"},
        {{"information", "T", "a", "b"}, "usage: testinteraction information TITLE TEXT"},
        {{"choice", "T", "m"}, "usage: testinteraction choice TITLE MESSAGE ITEM..."},
        {{"password", "T", "m", "secret"}, "usage: testinteraction password TITLE MESSAGE"},
        {{"notification", "T", "x", "0"}, "'0' is no time in milliseconds above 0"},
        {{"notification", "T", "x", "1.5"}, "'1.5' is no time in milliseconds above 0"},
        {{"image", "T", "x", "f", "-1"}, "'-1' is no time in milliseconds above 0"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(read(row.arguments), row.expected);
}

}  // namespace
}  // namespace Tamrix
