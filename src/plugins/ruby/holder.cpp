#include "plugins/ruby/holder.h"

#include <vector>

namespace Tamrix::RubyPlugin {

namespace {

std::vector<SharedPtr<Shared>>& released() {
    static auto* const s_released = new std::vector<SharedPtr<Shared>>;
    return *s_released;
}

}  // namespace

void releaseLater(Shared* held) {
    released().emplace_back(held);
    s_hasReleased = true;
}

void dropAllReleased() {
    s_hasReleased = false;
    // More may come while these go.
    std::vector<SharedPtr<Shared>> dropped;
    dropped.swap(released());
}

}  // namespace Tamrix::RubyPlugin
