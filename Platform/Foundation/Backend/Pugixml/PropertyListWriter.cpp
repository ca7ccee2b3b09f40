#include <Foundation/Backend/Icu/Unicode.h>
#include <Foundation/Backend/Pugixml/PropertyListXML.h>
#include <Foundation/Class.h>
#include <Foundation/Values.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <pugixml.hpp>

namespace flarebox::detail {

bool isXMLText(std::string_view text) {
    return isValidUTF8(text) && std::ranges::none_of(text, [](unsigned char character) {
               return character < 0x20 && character != '\t' && character != '\n' && character != '\r';
           });
}

namespace {

class StringWriter : public pugi::xml_writer {
public:
    void write(const void* data, std::size_t size) override { text.append(static_cast<const char*>(data), size); }
    std::string text;
};

/// The library would write a carriage return as it is, which every reader of XML takes for the end of a line.
std::string escaped(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (char character : text) {
        switch (character) {
            case '&':
                result += "&amp;";
                break;
            case '<':
                result += "&lt;";
                break;
            case '>':
                result += "&gt;";
                break;
            case '\r':
                result += "&#13;";
                break;
            default:
                result += character;
        }
    }
    return result;
}

std::string dateText(double secondsSince1970) {
    using namespace std::chrono;
    double days = std::floor(secondsSince1970 / 86400);
    if (!(std::abs(days) < 4e6)) return {};
    year_month_day day(sys_days(std::chrono::days(static_cast<int>(days))));
    int year = static_cast<int>(day.year());
    if (year < 0 || year > 9999) return {};
    int seconds = static_cast<int>(secondsSince1970 - days * 86400);
    char text[80];
    std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02dZ", year, static_cast<unsigned>(day.month()),
                  static_cast<unsigned>(day.day()), seconds / 3600, seconds / 60 % 60, seconds % 60);
    return text;
}

std::string className(const Value& value) {
    Class valueClass = value.classOf();
    return valueClass ? std::string(valueClass->name()) : "an absent value";
}

class Writer {
public:
    std::string writeDocument(const Value& value) {
        pugi::xml_document document;
        pugi::xml_node declaration = document.append_child(pugi::node_declaration);
        declaration.append_attribute("version") = "1.0";
        declaration.append_attribute("encoding") = "UTF-8";
        document.append_child(pugi::node_doctype)
            .set_value(
                "plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\"");
        pugi::xml_node root = document.append_child("plist");
        root.append_attribute("version") = "1.0";
        write(root, value, 1);
        if (failed()) return {};
        StringWriter writer;
        document.save(writer, "\t", pugi::format_default | pugi::format_no_escapes, pugi::encoding_utf8);
        return std::move(writer.text);
    }

    bool failed() const { return !failure.empty(); }

    std::string failure;

private:
    void write(pugi::xml_node parent, const Value& value, int depth) {
        if (failed()) return;
        if (depth > maximumPropertyListDepth) return fail("nested too deep for a property list");
        switch (value.kind()) {
            case Value::Kind::String:
                return writeText(parent, "string", value.as<NSString>().text());
            case Value::Kind::Number:
                return writeNumber(parent, value.as<NSNumber>());
            case Value::Kind::Date:
                return writeDate(parent, value.as<NSDate>());
            case Value::Kind::Data:
                return writeText(parent, "data", value.as<NSData>().base64EncodedString());
            case Value::Kind::Array: {
                pugi::xml_node array = parent.append_child("array");
                for (const Value& element : value.as<NSArray>()) write(array, element, depth + 1);
                return;
            }
            case Value::Kind::Dictionary:
                return writeDictionary(parent, value.as<NSDictionary>(), depth);
            default:
                return fail("a property list cannot hold " + className(value));
        }
    }

    void writeDictionary(pugi::xml_node parent, const NSDictionary& dictionary, int depth) {
        pugi::xml_node node = parent.append_child("dict");
        for (const auto& [key, value] : dictionary.entries()) {
            auto name = key.as<NSString>();
            if (!name) return fail("a key of a property list is a text, not " + className(key));
            writeText(node, "key", name.text());
            write(node, value, depth + 1);
        }
    }

    void writeNumber(pugi::xml_node parent, const NSNumber& number) {
        if (number.isBoolean())
            parent.append_child(number.boolValue() ? "true" : "false");
        else
            writeText(parent, number.isFloating() ? "real" : "integer", number.stringValue());
    }

    void writeDate(pugi::xml_node parent, const NSDate& date) {
        std::string text = dateText(date.timeIntervalSince1970());
        if (text.empty()) return fail("a date of a property list lies within the years 0 to 9999");
        writeText(parent, "date", text);
    }

    void writeText(pugi::xml_node parent, const char* element, std::string_view text) {
        if (!isXMLText(text)) return fail("a text holds bytes that a property list cannot carry");
        pugi::xml_node node = parent.append_child(element);
        if (!text.empty()) node.append_child(pugi::node_pcdata).set_value(escaped(text).c_str());
    }

    void fail(std::string_view what) {
        if (!failed()) failure = what;
    }
};

}  // namespace

std::string writePropertyListXML(const Value& value, std::string& failure) {
    Writer writer;
    std::string text = writer.writeDocument(value);
    failure = std::move(writer.failure);
    return text;
}

}  // namespace flarebox::detail
