#pragma once

#include <functional>

namespace Tamrix::Vision {

/// How many threads forEachIndex() can put to work, this one included.
int workerCount();

/// Calls work(int index, int worker) for each index below `count`, in this thread (worker 0) and in
/// threads of the global pool that have nothing else to do, at most `workers` in all. Never waits
/// for a thread to become free, so it can be used inside tasks of the pool. Throws the first
/// exception, when all calls have ended; after one no further ones are begun.
void forEachIndex(int count, int workers, const std::function<void(int, int)>& work);

}  // namespace Tamrix::Vision
