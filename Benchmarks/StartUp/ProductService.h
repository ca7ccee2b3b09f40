#pragma once

#include <Benchmarks/Support/LoopbackService.h>

#include <map>
#include <string>
#include <string_view>

namespace flarebox::benchmarks {

/// A service of twenty products, each with an icon and a model of 1 MB of its own, everything made
/// beforehand.
class ProductService {
public:
    static constexpr int products = 20;

    ProductService();

    std::string baseURL() const { return service_.baseURL(); }

private:
    std::string_view answer(std::string_view target) const;

    /// By their paths.
    std::map<std::string, std::string, std::less<>> answers_;
    LoopbackService service_;
};

}  // namespace flarebox::benchmarks
