#pragma once

#include <Fuzz/Mapping/Declaration.h>

#include <Foundation/NSError.h>
#include <Foundation/NSObject.h>

#include <string>
#include <string_view>
#include <vector>

namespace flarebox::fuzz {

/// What hooks were told, in order, and what they answer by the declaration: the same for objects that the engine fills
/// and for those that are filled by the rules.
class Journal {
public:
    void note(const Declaration& cls, std::string_view what, std::string_view key, const Value& value,
              const Ref<NSError>& error = nullptr);
    bool decide(const Declaration& cls, Verdict verdict, std::string_view property, Value& value, Ref<NSError>& error,
                std::string_view what);
    std::vector<std::string> take() { return std::exchange(events_, {}); }

private:
    std::vector<std::string> events_;
};

/// An object with the fields of a declared class.
class Observed {
public:
    virtual ~Observed() = default;
    virtual std::string contents() const = 0;
};

/// All that can be told of a value: kinds, classes, contents, those of objects included.
std::string written(const Value& value);

}  // namespace flarebox::fuzz
