#pragma once

#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

#include "base/outcome.h"

namespace Tamrix {

/// Which of the cases run, and in which order; as indexes.
using CaseOrder = std::vector<int>;

/// How the cases of a run follow one another.
struct OrderWish {
    enum class Kind {
        Suite,         ///< as the suite has them
        LongestFirst,  ///< so that no long one is left for the end, when others have nothing to do
        Random
    };

    Kind kind = Kind::Suite;
    quint32 seed = 0;
};

/// All cases in an order. `times` has the expected seconds of each, where there is a history. A
/// random order is the same wherever the seed is.
CaseOrder orderedCases(int count, const std::vector<double>& times, const OrderWish& wish);

/// One of several parts of a suite, from 1 on.
struct Shard {
    int number = 1;
    int count = 1;
};

/// Reads "2/4". Fails with a text for a person.
Outcome<Shard> parseShard(const QString& text);

/// The cases of a shard, in the suite's order: with times, so that all shards take about as long;
/// without, each takes every `count`th one. Depends on nothing but the arguments.
CaseOrder casesOfShard(int count, const std::vector<double>& times, const Shard& shard);

/// The names of the cases of a suite that did not pass in the run of a journal, whether they failed
/// or came to no end; a folder of results has its journal in it. Fails when the journal can't be
/// read or is of another suite.
Outcome<QStringList> failedCases(const QString& path, const QString& suite);

}  // namespace Tamrix
