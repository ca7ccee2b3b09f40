#pragma once

#include <span>
#include <string>
#include <string_view>

namespace flarebox::examples {

struct Brand {
    int id;
    std::string_view name;
};

struct Product {
    /// Also the name of its pictures.
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
    /// File names below /media/models/ and /media/videos/; empty for a product without.
    std::string_view model = {};
    std::string_view video = {};
};

std::span<const Product> catalogue();

/// The JSON array of the first `limit` products, their files below the base URL.
std::string assetsJson(int limit, std::string_view baseURL);

/// A UUID text that depends on nothing but the name.
std::string uidOf(std::string_view name);

/// A number from 1 to 9,999 that depends on nothing but the name.
int numberOf(std::string_view name);

}  // namespace flarebox::examples
