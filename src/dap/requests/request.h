#pragma once

#include <QJsonObject>
#include <functional>
#include <vector>

#include "base/outcome.h"
#include "dap/protocol/json.h"
#include "dap/session/session.h"

namespace Tamrix::Dap {

/// One kind of request: its name, and what answers it. A failure becomes the error of the response.
struct RequestKind {
    const char* command;
    std::function<Outcome<QJsonObject>(Session& session, const QJsonObject& arguments)> answer;
};

/// A request as its file describes it, from the arguments as a struct to the response's body.
/// Arguments that do not fit are a failure that names the field.
template <typename Arguments, typename Body>
RequestKind makeRequest(const char* command, Outcome<Body> (*answer)(Session&, const Arguments&)) {
    return {command, [answer](Session& session, const QJsonObject& json) -> Outcome<QJsonObject> {
                const Outcome<Arguments> arguments = fromJson<Arguments>(json);
                if (!arguments)
                    return fail(arguments.error());
                const Outcome<Body> body = answer(session, *arguments);
                if (!body)
                    return fail(body.error());
                return toJson(*body);
            }};
}

/// All of them.
const std::vector<RequestKind>& requestKinds();

}  // namespace Tamrix::Dap
