#pragma once

#include <QByteArray>
#include <QSet>
#include <QString>
#include <memory>
#include <vector>

#include "interpreter/language/nativeclasses.h"
#include "interpreter/language/nativefunction.h"
#include "plugins/perl/guardedcall.h"

namespace Tamrix::PerlPlugin {

/// The library's functions as functions of Perl, for one interpreter. An argument "-name" in front
/// of another one, at the end of a call, gives that one by the name of a parameter.
class NativeFunctions {
public:
    NativeFunctions();
    ~NativeFunctions();

    /// A function in a package. A constructor takes its class first.
    void define(const QByteArray& package, const QString& name, const NativeFunction& function);
    /// A member of the package's native class. A property reads without an argument and writes with
    /// one; methods take their object first, static ones may have it, or the class, in front.
    void defineMember(const QByteArray& package, const NativeMember& member);
    /// A function of applications, unless scripts have the name for something else.
    void defineOfApplications(const QString& name);

    /// A name in `main` that `use tamrix` brings into other packages.
    void addGlobalName(const QString& name);

private:
    struct Target;
    void add(std::unique_ptr<Target> target);
    static NativeEnd call(pTHX_ CV* function, SV** arguments, int count);

    std::vector<std::unique_ptr<Target>> m_targets;
    QSet<QString> m_globalNames;
};

/// Arguments as the script wrote them; `isParameter` says what names there are.
CallArguments givenArguments(pTHX_ SV** arguments, int count,
                             const std::function<bool(const QString&)>& isParameter);

/// Gives a package a function of C++.
CV* defineBody(pTHX_ const QByteArray& name, XSUBADDR_t body);

/// What a script gets.
NativeEnd resultOf(pTHX_ const ScriptResult& result);

}  // namespace Tamrix::PerlPlugin
