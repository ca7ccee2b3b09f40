#pragma once

#include <span>
#include <string>
#include <string_view>

namespace flarebox::examples {

class Media;

struct Brand {
    int id;
    std::string_view name;
};

struct Product {
    /// Also the name of its files.
    std::string_view name;
    std::string_view title;
    std::string_view subtitle;
    std::string_view description;
    const Brand* brand;
    std::string_view tags;
    int category;
    std::string_view categoryTitle;
    /// Empty where the product cannot be bought.
    std::string_view whereToBuy;
    bool hasIcon = true;
    bool hasImage = true;
};

std::span<const Product> catalogue();

/// The JSON array of the first `limit` products, their files below the base URL.
std::string assetsJson(int limit, std::string_view baseURL, const Media& media);

/// A UUID text that depends on nothing but the name.
std::string uidOf(std::string_view name);

/// A number from 1 to 9,999 that depends on nothing but the name.
int numberOf(std::string_view name);

}  // namespace flarebox::examples
