#pragma once

namespace Tamrix {

/// One visitor of a std::variant, made of lambdas: `std::visit(Overloaded{...}, variant)`.
template <typename... Functions>
struct Overloaded : Functions... {
    using Functions::operator()...;
};
template <typename... Functions>
Overloaded(Functions...) -> Overloaded<Functions...>;

}  // namespace Tamrix
