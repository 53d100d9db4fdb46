#include "agent/core/mnemonic.h"

namespace Tamrix::Agent {

QString withoutMnemonic(const QString& label) {
    if (!label.contains('&'))
        return label;
    QString text;
    text.reserve(label.size());
    for (int index = 0; index < label.size(); ++index) {
        if (label[index] == '&' && ++index == label.size())
            break;
        text += label[index];
    }
    return text;
}

}  // namespace Tamrix::Agent
