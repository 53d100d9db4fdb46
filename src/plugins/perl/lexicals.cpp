#include "plugins/perl/lexicals.h"

#include <QHash>

namespace Tamrix::PerlPlugin {

namespace {

bool isVisible(const PADNAME* name, U32 place) {
    return PadnameOUTER(name) ||
           (place > COP_SEQ_RANGE_LOW(name) && place <= COP_SEQ_RANGE_HIGH(name));
}

}  // namespace

std::vector<Lexical> lexicalsOf(const CodeFrame& frame) {
    std::vector<Lexical> lexicals;
    if (!frame.code || CvISXSUB(frame.code) || !CvPADLIST(frame.code))
        return lexicals;
    const PADLIST* const pads = CvPADLIST(frame.code);
    if (frame.depth > PadlistMAX(pads))
        return lexicals;
    const PADNAMELIST* const names = PadlistNAMES(pads);
    PAD* const pad = PadlistARRAY(pads)[frame.depth];
    QHash<QString, std::size_t> places;
    for (SSize_t index = 1; index <= PadnamelistMAX(names); ++index) {
        const PADNAME* const name = PadnamelistARRAY(names)[index];
        if (!name || PadnameLEN(name) < 2 || PadnameIsOUR(name) || *PadnamePV(name) == '&' ||
            !isVisible(name, frame.statement->cop_seq))
            continue;
        SV* const variable = AvARRAY(pad)[index];
        if (!variable)
            continue;
        const QString text = QString::fromUtf8(PadnamePV(name), static_cast<int>(PadnameLEN(name)));
        // A later declaration hides an earlier one.
        const auto known = places.constFind(text);
        if (known != places.constEnd()) {
            lexicals[*known].variable = SvRef::borrow(variable);
            continue;
        }
        places.insert(text, lexicals.size());
        lexicals.push_back({text, SvRef::borrow(variable)});
    }
    return lexicals;
}

}  // namespace Tamrix::PerlPlugin
