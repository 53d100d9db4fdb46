#pragma once

#include <QString>
#include <vector>

#include "plugins/perl/frames.h"
#include "plugins/perl/svref.h"

namespace Tamrix::PerlPlugin {

/// A variable of a frame. Its name has Perl's sign in front; its value is the variable itself, also
/// that of an array or a hash.
struct Lexical {
    QString name;
    SvRef variable;
};

/// The variables that the code of a frame sees where it stands, those of the innermost block last
/// to be declared among those of one name; in the order of their declaration.
std::vector<Lexical> lexicalsOf(const CodeFrame& frame);

}  // namespace Tamrix::PerlPlugin
